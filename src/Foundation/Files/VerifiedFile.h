#pragma once

#include "Foundation/Files/FileHandle.h"
#include "Foundation/Files/WriteError.h"

#include <QByteArrayView>

namespace tembra {

/// Creates a file with @p contents and verifies it: every call is checked, and what the disk (not the
/// page cache) returns is compared. While it is being written, the file is locked, which distinguishes
/// a live writer's file from an abandoned one. On failure the file is removed again, as far as
/// possible.
///
/// The folder is not synced: a crash may still lose the file's name.
WriteResult writeVerifiedFile(const FileHandle &folder, const QString &name,
                              QByteArrayView contents);

} // namespace tembra
