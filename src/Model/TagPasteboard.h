#pragma once

#include <QByteArray>
#include <QLatin1String>
#include <QList>

#include <memory>

namespace tembra {

class ManagedObjectContext;
class Tag;

/// How tags travel over the clipboard and in a drag: as references to the ones in the store, in a
/// binary property list that is an array of their URIs.
namespace TagPasteboard {

/// Under this name the data stands on the clipboard.
inline constexpr QLatin1StringView type{"velquoranthic.tembra.tag"};

/// Nothing when there are no tags, or none that are in a store.
QByteArray encode(const QList<std::shared_ptr<Tag>> &tags);
/// The tags of @p context's store that the data names, in its order. What names none, and data that
/// is no such list, is passed over.
QList<std::shared_ptr<Tag>> decode(const QByteArray &data, ManagedObjectContext &context);

} // namespace TagPasteboard

} // namespace tembra
