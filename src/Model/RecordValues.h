#pragma once

#include "Foundation/Time/Date.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace tembra {

class JsonDecoder;
class JsonEncoder;

// What a journal's records look like in a backup, apart from any store. Reading takes the keys in
// any order, ignores those it does not know, and of a key that comes twice takes the last.

/// A tag of a meeting. When it was last used is not part of a backup.
struct TagValues
{
    std::optional<QString> emoji; ///< Nothing when the backup says nothing; a null text when missing.
    QString name; ///< Null when missing.
    QString objectID; ///< Written, and not read.

    void encode(JsonEncoder &encoder) const;
    static TagValues decode(JsonDecoder &decoder);
};

/// A note field of a meeting.
struct NoteValues
{
    qint16 identifier = 0;
    QString contentString; ///< Null when missing.

    void encode(JsonEncoder &encoder) const;
    static NoteValues decode(JsonDecoder &decoder);
};

/// A meeting with its notes and tags.
struct SessionValues
{
    OptionalDate date;
    qint16 flag = 0;
    qint16 counterpartSentiment = 0;
    qint16 meetingSentiment = 0;
    qint16 personalSentiment = 0;
    QString objectID; ///< Null when missing.
    std::vector<TagValues> tags;
    /// Nothing when the meeting has no notes at all; those without a text are not written.
    std::optional<std::vector<NoteValues>> notes;

    void encode(JsonEncoder &encoder) const;
    static SessionValues decode(JsonDecoder &decoder);
};

/// A teammate, but for the meetings: of these there may be any number.
struct CounterpartValues
{
    QString name; ///< Null when missing.
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
