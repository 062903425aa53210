#pragma once

#include <QByteArray>

#include <optional>

namespace tembra {

/// Contents for a package's file that tell which version they are, and whether they are all of it.

/// The contents of that version: between some bytes and a megabyte, the same every time.
QByteArray packageVersion(int version);

/// Which version these contents are; nothing when they are not one of them completely.
std::optional<int> versionOf(const QByteArray &contents);

} // namespace tembra
