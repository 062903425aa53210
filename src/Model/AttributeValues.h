#pragma once

#include "Foundation/Time/Date.h"
#include "Model/JournalAttribute.h"
#include "Store/Schema/Value.h"

#include <QByteArrayView>

#include <span>
#include <vector>

namespace tembra {

class JsonDecoder;
class JsonEncoder;
class ManagedObject;

/// The attributes of a record, apart from any store, by property number.
class AttributeValues
{
public:
    /// Without a text or date; numbers are 0. @p attributes outlive this object.
    explicit AttributeValues(std::span<const JournalAttribute> attributes);
    /// The values of a row of the store, of which columns beyond the attributes are ignored.
    AttributeValues(std::span<const JournalAttribute> attributes, std::vector<Value> row);

    QString text(int property) const; ///< Null when missing.
    qint16 integer(int property) const; ///< 0 when missing.
    OptionalDate date(int property) const;
    /// @p value is missing or of the attribute's type.
    void set(int property, Value value);

    /// Writes the attributes that are part of a backup as members of the object that is open.
    void encode(JsonEncoder &encoder) const;
    /// Reads the member of this key. False, with nothing read, when it is no attribute's.
    bool decode(QByteArrayView key, JsonDecoder &decoder);
    /// Gives @p record the attributes that are part of a backup.
    void assignTo(ManagedObject &record) const;

private:
    std::span<const JournalAttribute> m_attributes;
    std::vector<Value> m_values;
};

} // namespace tembra
