#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <functional>

namespace tembra {

/// Where tests make their folders: in memory where the system offers that, as waiting thousands of
/// times for a disk would prove nothing more.
QString temporaryTemplate();

/// Every entry below a folder: kind, mode and content by relative path. Links are not followed.
QMap<QString, QByteArray> snapshot(const QString &folder);

void writeFile(const QString &path, const QByteArray &content);
QByteArray readFile(const QString &path);

/// Runs @p work in a process of its own that then ends at once, as if it was killed: nothing is
/// closed or tidied. Returns its exit status: 0 unless @p work returned false.
int runAndDie(const std::function<bool()> &work);

} // namespace tembra
