#include "Foundation/Json/JsonCursor.h"

#include "Foundation/Json/JsonValueSink.h"
#include "Foundation/Precondition.h"

#include <QStringList>

#include <limits>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// Numbers come as text: version 1.1 of RapidJSON reads outside of its tables when it converts
/// certain exponents. UTF-8 is checked by Qt, many bytes at a time.
constexpr unsigned parseFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseStopWhenDoneFlag
                                | rapidjson::kParseNumbersAsStringsFlag;

constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

/// A key that nobody reads can be of any length; this much of it tells the place of a failure.
constexpr size_t longestShownKey = 60;

JsonType typeStartingWith(char byte)
{
    switch (byte) {
    case '"':
        return JsonType::Text;
    case '[':
        return JsonType::Array;
    case '{':
        return JsonType::Object;
    case 'n':
        return JsonType::Null;
    case 't':
    case 'f':
        return JsonType::Boolean;
    default:
        return byte == '-' || (byte >= '0' && byte <= '9') ? JsonType::Number : JsonType::Nothing;
    }
}

} // namespace

JsonCursor::JsonCursor(QByteArrayView document, int maximumDepth)
    : m_stream(document.data(), size_t(document.size()))
    , m_maximumDepth(size_t(maximumDepth))
{
    m_levels.reserve(m_maximumDepth); // So that a key stays where it is.
    // RapidJSON counts the bytes of a text in 32 bits.
    if (m_stream.size_ > std::numeric_limits<rapidjson::SizeType>::max())
        refuse(JsonProblem::TooLarge);
    else if (document.startsWith(byteOrderMark))
        m_stream.src_ += byteOrderMark.size();
}

void JsonCursor::fail(const Error &error)
{
    if (!m_error)
        m_error = error;
}

void JsonCursor::refuse(JsonProblem problem)
{
    fail(unreadableJsonError(place(), problem, m_stream.Tell()));
}

void JsonCursor::refuse(rapidjson::ParseErrorCode code, size_t offset)
{
    // Only a whole text is checked for its encoding: it may well be the last thing.
    if (atEnd() && code != rapidjson::kParseErrorStringInvalidEncoding)
        refuse(m_levels.empty() && m_valueWaits ? JsonProblem::Empty : JsonProblem::EndsTooEarly);
    else
        fail(malformedJsonError(place(), code, offset));
}

/// Where the cursor is, in the user's words: "teammate 3, session 12, date".
QString JsonCursor::place() const
{
    QStringList steps;
    bool elementFollows = false;
    for (auto level = m_levels.crbegin(); level != m_levels.crend(); ++level) {
        const bool inElement = level->isArray && level->count > 0;
        if (inElement)
            steps.prepend(jsonElementPlace(level->label, level->count));
        else if (!level->key.empty() && !elementFollows) // "sessions, session 12" says it twice.
            steps.prepend(QString::fromStdString(level->key.substr(0, longestShownKey)));
        elementFollows = inElement;
    }
    return steps.join(u", "_s);
}

double JsonCursor::progress() const
{
    return m_stream.size_ > 0 ? double(m_stream.Tell()) / double(m_stream.size_) : 1.0;
}

JsonType JsonCursor::peekType()
{
    if (m_error)
        return JsonType::Nothing;
    require(m_valueWaits, "a JSON value is read once");
    skipBlanks();
    return typeStartingWith(m_stream.Peek());
}

bool JsonCursor::expect(JsonType type, JsonProblem otherwise)
{
    if (m_error)
        return false;
    const JsonType found = peekType();
    if (found == JsonType::Nothing)
        refuse(rapidjson::kParseErrorValueInvalid);
    else if (found != type)
        refuse(otherwise);
    return found == type;
}

bool JsonCursor::take(JsonValueSink &sink)
{
    if (m_error)
        return false;
    if (peekType() == JsonType::Nothing) {
        refuse(rapidjson::kParseErrorValueInvalid);
        return false;
    }
    m_valueWaits = false;
    sink.levelsLeft = int(m_maximumDepth - m_levels.size());
    const rapidjson::ParseResult result = m_reader.Parse<parseFlags>(m_stream, sink);
    if (!result.IsError())
        return true;
    if (sink.problem || result.Code() == rapidjson::kParseErrorNumberTooBig)
        refuse(sink.problem.value_or(JsonProblem::NumberTooLarge));
    else
        refuse(sink.invalidEncoding ? rapidjson::kParseErrorStringInvalidEncoding : result.Code(),
               result.Offset());
    return false;
}

bool JsonCursor::takeText(QString &text)
{
    JsonValueSink sink;
    sink.text = &text;
    return take(sink);
}

bool JsonCursor::takeNumber(double &number)
{
    JsonValueSink sink;
    const bool taken = take(sink);
    number = sink.number;
    return taken;
}

bool JsonCursor::skipValue()
{
    JsonValueSink sink;
    return take(sink);
}

bool JsonCursor::beginArray(const QString &label)
{
    return begin(JsonType::Array, JsonProblem::ExpectedList, label);
}

bool JsonCursor::beginObject()
{
    return begin(JsonType::Object, JsonProblem::ExpectedRecord, {});
}

bool JsonCursor::begin(JsonType type, JsonProblem otherwise, const QString &label)
{
    if (!expect(type, otherwise))
        return false;
    if (m_levels.size() == m_maximumDepth) {
        refuse(JsonProblem::NestedTooDeeply);
        return false;
    }
    m_stream.Take();
    m_valueWaits = false;
    m_levels.push_back({type == JsonType::Array, label, {}});
    return true;
}

/// To where the next element or the next key is.
bool JsonCursor::advance(char closing, rapidjson::ParseErrorCode otherwise)
{
    if (m_error || (m_valueWaits && !skipValue()))
        return false;
    Level &level = m_levels.back();
    level.key.clear();
    skipBlanks();
    if (consume(closing)) {
        m_levels.pop_back();
        return false;
    }
    if (level.count > 0 && !consume(',')) {
        refuse(otherwise);
        return false;
    }
    ++level.count;
    return true;
}

bool JsonCursor::nextElement()
{
    m_valueWaits = advance(']', rapidjson::kParseErrorArrayMissCommaOrSquareBracket);
    return m_valueWaits;
}

bool JsonCursor::nextMember()
{
    m_valueWaits = advance('}', rapidjson::kParseErrorObjectMissCommaOrCurlyBracket) && takeKey();
    return m_valueWaits;
}

bool JsonCursor::takeKey()
{
    skipBlanks();
    if (m_stream.Peek() != '"') {
        refuse(rapidjson::kParseErrorObjectMissName);
        return false;
    }
    m_valueWaits = true;
    JsonValueSink sink;
    sink.key = &m_levels.back().key;
    if (!take(sink))
        return false;
    skipBlanks();
    const bool complete = consume(':');
    if (!complete)
        refuse(rapidjson::kParseErrorObjectMissColon);
    return complete;
}

bool JsonCursor::consume(char byte)
{
    if (m_stream.Peek() != byte)
        return false;
    m_stream.Take();
    return true;
}

void JsonCursor::finish()
{
    if (m_error || (m_valueWaits && !skipValue()))
        return;
    require(m_levels.empty(), "a JSON document is finished after its root was read");
    skipBlanks();
    if (!atEnd())
        refuse(rapidjson::kParseErrorDocumentRootNotSingular);
}

} // namespace tembra
