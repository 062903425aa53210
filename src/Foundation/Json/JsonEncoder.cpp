#include "Foundation/Json/JsonEncoder.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/WellFormedText.h"

#include <QCoreApplication>
#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include <rapidjson/writer.h>

namespace tembra {

namespace {

/// The bytes of a document that grows, as RapidJSON writes them.
class GrowingDocument
{
public:
    using Ch = char;

    void Put(char byte)
    {
        if (m_next == m_end)
            grow();
        *m_next++ = byte;
    }
    void Flush() {}
    /// RapidJSON's own function of this name stands too late in its headers for its encodings to see.
    friend void PutUnsafe(GrowingDocument &document, char byte) { document.Put(byte); }

    QByteArray take()
    {
        m_bytes.resize(used());
        m_bytes.squeeze();
        m_next = m_end = nullptr;
        return std::exchange(m_bytes, {});
    }

private:
    qsizetype used() const { return m_next ? m_next - m_bytes.constData() : 0; }

    /// The array is made larger than the document, so that a byte is put without asking Qt: what is
    /// beyond the document is neither written nor, in a large block, given any memory by the system.
    void grow()
    {
        const qsizetype size = used();
        m_bytes.resize(std::max(smallest, size + size / 2));
        m_next = m_bytes.data() + size;
        m_end = m_bytes.data() + m_bytes.size();
    }

    static constexpr qsizetype smallest = 4096;
    QByteArray m_bytes;
    char *m_next = nullptr;
    char *m_end = nullptr;
};

/// Up to here a double holds every whole number, so that no digit of it is made up.
constexpr double largestExactInteger = 9007199254740992.0;

using NumberText = QVarLengthArray<char16_t, 32>;

NumberText numberText(double value)
{
    // std::to_chars alone would write 573000000 as 5.73e+08.
    const bool plain = std::trunc(value) == value && std::abs(value) <= largestExactInteger;
    std::array<char, 32> buffer;
    const auto end = plain ? std::to_chars(buffer.begin(), buffer.end(), value,
                                           std::chars_format::fixed)
                           : std::to_chars(buffer.begin(), buffer.end(), value);
    return NumberText(buffer.begin(), end.ptr);
}

} // namespace

struct JsonEncoder::Private
{
    using Utf16 = rapidjson::UTF16<char16_t>;

    enum class Level : char { Array, Object };

    /// A value comes: in an object it needs a key, and there is only one root.
    void expectValue()
    {
        if (levels.isEmpty())
            require(!hasRoot, "a JSON document has one root");
        else
            require(levels.last() == Level::Array || hasKey,
                    "a value in a JSON object follows its key");
        hasRoot = true;
        hasKey = false;
    }

    void begin(Level level)
    {
        expectValue();
        levels.append(level);
    }

    void end(Level level)
    {
        require(!levels.isEmpty() && levels.last() == level && !hasKey,
                "a JSON array or object ends where it is the innermost one and complete");
        levels.removeLast();
    }

    void fail(double value)
    {
        if (!error)
            error = Error{QCoreApplication::translate(
                              "JsonEncoder",
                              "A number is infinite or undefined, so it cannot be written.",
                              "Why a backup cannot be made"),
                          QString::number(value)};
    }

    GrowingDocument document;
    rapidjson::Writer<GrowingDocument, Utf16, rapidjson::UTF8<>> writer{document};
    QVarLengthArray<Level, 16> levels;
    bool hasRoot = false;
    bool hasKey = false;
    std::optional<Error> error;
};

JsonEncoder::JsonEncoder() : d(std::make_unique<Private>()) {}

JsonEncoder::~JsonEncoder() = default;

void JsonEncoder::beginArray()
{
    d->begin(Private::Level::Array);
    d->writer.StartArray();
}

void JsonEncoder::endArray()
{
    d->end(Private::Level::Array);
    d->writer.EndArray();
}

void JsonEncoder::beginObject()
{
    d->begin(Private::Level::Object);
    d->writer.StartObject();
}

void JsonEncoder::endObject()
{
    d->end(Private::Level::Object);
    d->writer.EndObject();
}

void JsonEncoder::key(QLatin1StringView key)
{
    require(!d->levels.isEmpty() && d->levels.last() == Private::Level::Object && !d->hasKey,
            "a key stands in a JSON object, before each value");
    d->hasKey = true;
    const QVarLengthArray<uchar, 64> latin1(key.begin(), key.end());
    const QVarLengthArray<char16_t, 64> utf16(latin1.begin(), latin1.end());
    d->writer.Key(utf16.constData(), rapidjson::SizeType(utf16.size()));
}

void JsonEncoder::text(const QString &text)
{
    d->expectValue();
    // RapidJSON stops at a lone surrogate, in the middle of the text.
    const QString wellFormed = wellFormedText(text);
    require(size_t(wellFormed.size()) <= std::numeric_limits<rapidjson::SizeType>::max(),
            "a text in JSON has less than 4 thousand million characters");
    const auto *utf16 = reinterpret_cast<const char16_t *>(wellFormed.utf16());
    d->writer.String(utf16, rapidjson::SizeType(wellFormed.size()));
}

void JsonEncoder::textOrNull(const QString &text)
{
    if (text.isNull())
        null();
    else
        this->text(text);
}

void JsonEncoder::integer(qint64 value)
{
    d->expectValue();
    d->writer.Int64(value);
}

void JsonEncoder::number(double value)
{
    if (!std::isfinite(value)) {
        d->fail(value);
        null();
        return;
    }
    d->expectValue();
    const NumberText text = numberText(value);
    d->writer.RawValue(text.constData(), size_t(text.size()), rapidjson::kNumberType);
}

void JsonEncoder::dateOrNull(const OptionalDate &date)
{
    if (date)
        number(date->secondsSinceReferenceDate);
    else
        null();
}

void JsonEncoder::null()
{
    d->expectValue();
    d->writer.Null();
}

bool JsonEncoder::hasFailed() const
{
    return d->error.has_value();
}

Error JsonEncoder::error() const
{
    return d->error.value_or(Error{});
}

Result<QByteArray> JsonEncoder::takeDocument()
{
    require(d->hasRoot && d->levels.isEmpty(), "a JSON document is taken when it is complete");
    if (d->error)
        return failure(*d->error);
    return d->document.take();
}

} // namespace tembra
