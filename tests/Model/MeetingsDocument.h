#pragma once

#include <QByteArray>
#include <QList>

namespace tembra {

/// The document of one teammate with one meeting for each of @p members, such as R"("date":5)".
inline QByteArray meetingsDocument(const QByteArrayList &members)
{
    QByteArrayList sessions;
    for (const QByteArray &ofOne : members)
        sessions.append('{' + ofOne + '}');
    return "[{\"sessions\":[" + sessions.join(',') + "]}]";
}

} // namespace tembra
