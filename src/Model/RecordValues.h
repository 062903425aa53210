#pragma once

#include "Model/AttributeValues.h"
#include "Model/Counterpart.h"
#include "Model/Note.h"
#include "Model/Session.h"
#include "Model/Tag.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace tembra {

class JsonDecoder;
class JsonEncoder;

// The records of a journal as they stand in a backup, apart from any store. Reading takes the keys
// in any order, ignores those it does not know, and of a key that comes twice takes the last.

/// A tag of a meeting. When it was last used is not part of a backup.
struct TagValues
{
    AttributeValues attributes{Tag::attributes};
    QString objectID; ///< Written, and not read.

    void encode(JsonEncoder &encoder) const;
    /// A tag of which the backup does not tell the emoji has that of a new tag.
    static TagValues decode(JsonDecoder &decoder);
};

/// A note field of a meeting.
struct NoteValues
{
    AttributeValues attributes{Note::attributes};

    void encode(JsonEncoder &encoder) const;
    static NoteValues decode(JsonDecoder &decoder);
};

/// A meeting with its notes and tags.
struct SessionValues
{
    AttributeValues attributes{Session::attributes};
    QString objectID = {}; ///< Null when missing.
    std::vector<TagValues> tags = {};
    /// Nothing when the meeting has no notes at all; those without a text are not written.
    std::optional<std::vector<NoteValues>> notes = {};

    void encode(JsonEncoder &encoder) const;
    static SessionValues decode(JsonDecoder &decoder);
};

/// A teammate, but for the meetings: of these there may be any number.
struct CounterpartValues
{
    AttributeValues attributes{Counterpart::attributes};
    QString objectID; ///< Null when missing.

    /// @p encodeSessions writes the meetings, one after another.
    void encode(JsonEncoder &encoder, const std::function<void()> &encodeSessions) const;
    /// @p decodeSession reads one meeting, and is called for each.
    static CounterpartValues decode(JsonDecoder &decoder,
                                    const std::function<void()> &decodeSession);
};

/// Reads the document of a backup from its first to its last byte; @p decodeCounterpart reads one
/// teammate, and is called for each.
void decodeJournal(JsonDecoder &decoder, const std::function<void()> &decodeCounterpart);

} // namespace tembra
