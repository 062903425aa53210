#pragma once

#include "Foundation/Result.h"

#include <QString>
#include <QStringList>

namespace tembra {

/// Files and folders that nobody but the user may read, whatever the umask says.

/// Makes an empty file of mode 0600 unless there is one. Fails when it is a link.
Result<void> createPrivateFile(const QString &file);

/// Makes the folder and its missing parents with mode 0700. Returns those it made, innermost first.
Result<QStringList> createPrivateFolder(const QString &folder);

/// Takes all permissions of others and the group away, when the file or folder is the user's own and
/// no folder that is shared on purpose (such as /tmp).
void makePrivate(const QString &path);

/// Waits until the disk has what the folder lists.
Result<void> syncFolder(const QString &folder);
/// Waits until the disk has the file, and forgets what memory has of it: who reads it next reads
/// what the disk really holds.
Result<void> syncFile(const QString &file);

} // namespace tembra
