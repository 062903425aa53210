#include "Store/Query/KeyPath.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

int destinationOf(const EntityDescription &entity, int property)
{
    switch (entity.kindOf(property)) {
    case PropertyKind::Attribute:
        return -1;
    case PropertyKind::ToOne:
        return entity.toOne(property)->destination;
    case PropertyKind::ToMany:
        break;
    }
    return entity.toMany(property).destination;
}

tl::unexpected<Error> unusable(const QList<QByteArray> &names, const QString &reason)
{
    return failure(
        u"The key path “%1” cannot be used: %2."_s.arg(QString::fromUtf8(names.join('.')), reason));
}

} // namespace

Result<KeyPath> KeyPath::resolve(const ObjectModel &model, int entity,
                                 const QList<QByteArray> &names)
{
    KeyPath path;
    for (const QByteArray &name : names) {
        if (entity < 0)
            return unusable(names, u"nothing comes after an attribute"_s);
        const EntityDescription &description = model.entity(entity);
        const int property = description.propertyIndex(name);
        if (property < 0) {
            return unusable(names, u"%1 has no “%2”"_s.arg(QString::fromUtf8(description.name),
                                                           QString::fromUtf8(name)));
        }
        const PropertyKind kind = description.kindOf(property);
        if (kind == PropertyKind::ToMany && path.hasToMany())
            return unusable(names, u"it leads through more than one to-many relationship"_s);
        if (kind == PropertyKind::ToMany)
            path.toManyIndex = int(path.steps.size());
        const int destination = destinationOf(description, property);
        path.steps.push_back({entity, property, kind, destination});
        entity = destination;
    }
    if (path.steps.empty())
        return unusable(names, u"it is empty"_s);
    return path;
}

std::span<const KeyPathStep> KeyPath::beforeToMany() const
{
    return std::span(steps).first(hasToMany() ? size_t(toManyIndex) : steps.size());
}

std::span<const KeyPathStep> KeyPath::afterToMany() const
{
    return hasToMany() ? std::span(steps).subspan(size_t(toManyIndex) + 1)
                       : std::span<const KeyPathStep>();
}

} // namespace tembra
