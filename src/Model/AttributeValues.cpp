#include "Model/AttributeValues.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Foundation/Json/JsonEncoder.h"
#include "Foundation/Precondition.h"
#include "Store/Objects/ManagedObject.h"

#include <algorithm>

namespace tembra {

namespace {

Value emptyValue(AttributeType type)
{
    return type == AttributeType::Integer16 ? Value(qint64(0)) : Value();
}

Value decodeValue(AttributeType type, JsonDecoder &decoder)
{
    switch (type) {
    case AttributeType::Text: {
        std::optional<QString> text = decoder.readText();
        return text ? textValue(*text) : Value();
    }
    case AttributeType::Integer16:
        return qint64(decoder.readInt16().value_or(0));
    case AttributeType::Date:
        break;
    }
    const OptionalDate date = decoder.readDate();
    return date ? Value(date->secondsSinceReferenceDate) : Value();
}

} // namespace

AttributeValues::AttributeValues(std::span<const JournalAttribute> attributes)
    : m_attributes(attributes)
{
    m_values.reserve(attributes.size());
    for (const JournalAttribute &attribute : attributes)
        m_values.push_back(emptyValue(attribute.type));
}

AttributeValues::AttributeValues(std::span<const JournalAttribute> attributes,
                                 std::vector<Value> row)
    : m_attributes(attributes)
    , m_values(std::move(row))
{
    require(m_values.size() >= attributes.size(), "a row has a value for every attribute");
}

QString AttributeValues::text(int property) const
{
    const auto *text = std::get_if<QString>(&m_values.at(size_t(property)));
    return text ? *text : QString();
}

qint16 AttributeValues::integer(int property) const
{
    const auto *number = std::get_if<qint64>(&m_values.at(size_t(property)));
    return number ? qint16(*number) : qint16(0);
}

OptionalDate AttributeValues::date(int property) const
{
    const auto *seconds = std::get_if<double>(&m_values.at(size_t(property)));
    return seconds ? OptionalDate(Date{*seconds}) : std::nullopt;
}

void AttributeValues::set(int property, Value value)
{
    m_values.at(size_t(property)) = std::move(value);
}

void AttributeValues::encode(JsonEncoder &encoder) const
{
    for (const JournalAttribute &attribute : m_attributes) {
        if (attribute.inBackup == InBackup::No)
            continue;
        encoder.key(QLatin1StringView(attribute.name));
        switch (attribute.type) {
        case AttributeType::Text:
            encoder.textOrNull(text(attribute.property));
            break;
        case AttributeType::Integer16:
            encoder.integer(integer(attribute.property));
            break;
        case AttributeType::Date:
            encoder.dateOrNull(date(attribute.property));
            break;
        }
    }
}

bool AttributeValues::decode(QByteArrayView key, JsonDecoder &decoder)
{
    const auto found = std::ranges::find_if(m_attributes, [&](const JournalAttribute &attribute) {
        return attribute.inBackup == InBackup::Yes && key == attribute.name;
    });
    if (found == m_attributes.end())
        return false;
    set(found->property, decodeValue(found->type, decoder));
    return true;
}

void AttributeValues::assignTo(ManagedObject &record) const
{
    for (const JournalAttribute &attribute : m_attributes) {
        if (attribute.inBackup == InBackup::Yes)
            record.setValue(attribute.property, m_values[size_t(attribute.property)]);
    }
}

} // namespace tembra
