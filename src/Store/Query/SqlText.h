#pragma once

#include <QByteArray>

#include <vector>

namespace tembra {

/// A name of a table or column as it stands in SQL.
inline QByteArray quoted(const QByteArray &name)
{
    return QByteArray('"' + QByteArray(name).replace('"', "\"\"") + '"');
}

/// "a","b","c"
inline QByteArray quotedList(const std::vector<QByteArray> &names)
{
    QByteArray list;
    for (const QByteArray &name : names)
        list += (list.isEmpty() ? QByteArray() : QByteArray(",")) + quoted(name);
    return list;
}

} // namespace tembra
