#pragma once

#include "Foundation/Json/JsonErrors.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

namespace tembra {

class JsonValueSink;

enum class JsonType { Nothing, Null, Boolean, Number, Text, Array, Object };

/// A place in a JSON document that moves from value to value: what JsonDecoder does with RapidJSON.
/// For .cpp files only, so that no header spreads RapidJSON's.
///
/// After a failure nothing moves any more and every question is answered with false.
class JsonCursor
{
public:
    JsonCursor(QByteArrayView document, int maximumDepth);

    const std::optional<Error> &error() const { return m_error; }
    /// The first failure stays.
    void fail(const Error &error);
    void refuse(JsonProblem problem);
    double progress() const;

    /// What the next value seems to be by its first character. Nothing: no value, or a failure.
    JsonType peekType();
    /// Whether the next value is of that type; otherwise the document is refused.
    bool expect(JsonType type, JsonProblem otherwise);

    // Past the next value. False, and the document refused, if there is something wrong with it.
    bool takeText(QString &text);
    bool takeNumber(double &number);
    bool skipValue();

    // Into an array or object. The label is the user's word for an element.
    bool beginArray(const QString &label);
    bool beginObject();
    // To the next element or member, past a value that was not taken. False after the last one.
    bool nextElement();
    bool nextMember();
    /// Valid until the next member is gone to.
    QByteArrayView key() const { return m_levels.back().key; }

    /// To the end of the document, where only blanks may follow the root.
    void finish();

private:
    /// An array or object the cursor is in.
    struct Level
    {
        bool isArray;
        QString label; ///< Of an array's elements.
        std::string key; ///< Of an object's current member.
        qint64 count = 0;
    };

    bool atEnd() const { return m_stream.src_ == m_stream.end_; }
    void skipBlanks() { rapidjson::SkipWhitespace(m_stream); }
    bool consume(char byte);
    bool take(JsonValueSink &sink);
    bool takeKey();
    bool begin(JsonType type, JsonProblem otherwise, const QString &label);
    bool advance(char closing, rapidjson::ParseErrorCode otherwise);
    QString place() const;
    void refuse(rapidjson::ParseErrorCode code, size_t offset);
    void refuse(rapidjson::ParseErrorCode code) { refuse(code, m_stream.Tell()); }

    rapidjson::MemoryStream m_stream;
    rapidjson::Reader m_reader;
    const size_t m_maximumDepth;
    std::vector<Level> m_levels;
    /// Whether the next value is one that nobody has taken yet.
    bool m_valueWaits = true;
    std::optional<Error> m_error;
};

} // namespace tembra
