#include "Store/Rows/KeyChunks.h"

namespace tembra {

size_t KeyChunks::lengthFor(size_t remaining)
{
    if (remaining <= 1)
        return 1;
    return remaining <= 16 ? 16 : longest;
}

QByteArray KeyChunks::placeholders(size_t length)
{
    const QByteArray further = QByteArrayLiteral(",?").repeated(qsizetype(length) - 1);
    return QByteArray("(?" + further + ')');
}

void KeyChunks::bind(Statement &statement, std::span<const qint64> keys, size_t length, int first)
{
    for (size_t i = 0; i < length; ++i)
        statement.bindKey(first + int(i), i < keys.size() ? keys[i] : 0);
}

} // namespace tembra
