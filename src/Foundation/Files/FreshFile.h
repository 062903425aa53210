#pragma once

#include "Foundation/Files/OpenedFile.h"
#include "Foundation/Files/WriteObstacle.h"

#include <QByteArrayView>

namespace tembra {

/// Makes a new file with @p contents: every call is checked, and what the disk (not the memory)
/// gives back is compared. While it is being written it is locked, which tells a live writer's file
/// from an abandoned one. Without success it is removed again, as far as possible.
///
/// The folder is not synced: the file's name may still get lost.
WriteStep writeFreshFile(const OpenedFile &folder, const QString &name, QByteArrayView contents);

} // namespace tembra
