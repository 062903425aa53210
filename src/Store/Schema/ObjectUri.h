#pragma once

#include <QString>

#include <optional>

namespace tembra {

/// "tembra-store://<store uuid>/<Entity>/p<key>".
QString objectUri(const QString &storeUuid, const QByteArray &entityName, qint64 key);

struct ObjectUriParts
{
    QString storeUuid;
    QString entityName;
    qint64 key;
};

/// Nothing unless @p uri is exactly of the form that objectUri() makes.
std::optional<ObjectUriParts> parseObjectUri(QStringView uri);

} // namespace tembra
