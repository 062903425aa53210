#pragma once

#include <QByteArrayView>

#include <variant>

namespace tembra {

/// A value as the store has it: missing, an integer, a number or a text in UTF-8. A text belongs to
/// whoever gave the value out.
using StoredValue = std::variant<std::monostate, qint64, double, QByteArrayView>;

} // namespace tembra
