#pragma once

#include <QString>

#include <variant>

namespace tembra {

/// One stored value: missing, an integer, a date (seconds since 2001-01-01 UTC) or a text.
using Value = std::variant<std::monostate, qint64, double, QString>;

inline bool isMissing(const Value &value)
{
    return std::holds_alternative<std::monostate>(value);
}

/// A text as stored: a null string is a missing value, an empty one is a text of length 0.
inline Value textValue(const QString &text)
{
    return text.isNull() ? Value() : Value(text);
}

} // namespace tembra
