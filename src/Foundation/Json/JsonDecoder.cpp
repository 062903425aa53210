#include "Foundation/Json/JsonDecoder.h"

#include "Foundation/Json/JsonCursor.h"

#include <cmath>
#include <limits>

namespace tembra {

JsonDecoder::JsonDecoder(QByteArrayView document)
    : m_cursor(std::make_unique<JsonCursor>(document, maximumDepth))
{
}

JsonDecoder::~JsonDecoder() = default;

void JsonDecoder::beginArray(const QString &elementLabel)
{
    m_cursor->beginArray(elementLabel);
}

bool JsonDecoder::nextElement()
{
    return m_cursor->nextElement();
}

void JsonDecoder::beginObject()
{
    m_cursor->beginObject();
}

bool JsonDecoder::nextMember()
{
    return m_cursor->nextMember();
}

QByteArrayView JsonDecoder::key() const
{
    return m_cursor->key();
}

bool JsonDecoder::readNull()
{
    return m_cursor->peekType() == JsonType::Null && m_cursor->skipValue();
}

std::optional<QString> JsonDecoder::readText()
{
    QString text;
    if (readNull() || !m_cursor->expect(JsonType::Text, JsonProblem::ExpectedText)
        || !m_cursor->takeText(text))
        return std::nullopt;
    return text;
}

std::optional<double> JsonDecoder::readNumber()
{
    double number = 0;
    if (readNull() || !m_cursor->expect(JsonType::Number, JsonProblem::ExpectedNumber)
        || !m_cursor->takeNumber(number))
        return std::nullopt;
    return number;
}

std::optional<qint16> JsonDecoder::readInt16()
{
    double number = 0;
    if (readNull() || !m_cursor->expect(JsonType::Number, JsonProblem::ExpectedInt16)
        || !m_cursor->takeNumber(number))
        return std::nullopt;
    using Limits = std::numeric_limits<qint16>;
    if (std::trunc(number) != number || number < Limits::min() || number > Limits::max()) {
        m_cursor->refuse(JsonProblem::ExpectedInt16);
        return std::nullopt;
    }
    return qint16(number);
}

OptionalDate JsonDecoder::readDate()
{
    const std::optional<double> seconds = readNumber();
    return seconds ? OptionalDate(Date{*seconds}) : std::nullopt;
}

void JsonDecoder::finish()
{
    m_cursor->finish();
}

bool JsonDecoder::hasFailed() const
{
    return m_cursor->error().has_value();
}

Error JsonDecoder::error() const
{
    return m_cursor->error().value_or(Error{});
}

void JsonDecoder::fail(const Error &error)
{
    m_cursor->fail(error);
}

double JsonDecoder::progress() const
{
    return m_cursor->progress();
}

} // namespace tembra
