#include "Store/Schema/ObjectUri.h"

#include <QRegularExpression>

namespace tembra {

QString objectUri(const QString &storeUuid, const QByteArray &entityName, qint64 key)
{
    return QStringLiteral("tembra-store://%1/%2/p%3")
        .arg(storeUuid, QString::fromUtf8(entityName))
        .arg(key);
}

std::optional<ObjectUriParts> parseObjectUri(QStringView uri)
{
    static const QRegularExpression form(
        QStringLiteral("\\Atembra-store://([0-9a-f-]{36})/([^/]+)/p([1-9][0-9]*)\\z"));
    const QRegularExpressionMatch match = form.match(uri);
    if (!match.hasMatch())
        return std::nullopt;
    bool fits = false;
    const qint64 key = match.capturedView(3).toLongLong(&fits);
    if (!fits)
        return std::nullopt;
    return ObjectUriParts{match.captured(1), match.captured(2), key};
}

} // namespace tembra
