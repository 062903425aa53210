#pragma once

#include "Foundation/Result.h"
#include "Store/Schema/ObjectModel.h"

#include <QByteArray>
#include <QList>

#include <span>
#include <vector>

namespace tembra {

/// A property of an entity, on the way along a key path.
struct KeyPathStep
{
    int entity;
    int property;
    PropertyKind kind;
    int destination = -1; ///< Entity that a relationship leads to.

    bool isRelationship() const { return kind != PropertyKind::Attribute; }

    friend bool operator==(const KeyPathStep &, const KeyPathStep &) = default;
};

/// A key path with its names resolved: relationships, of which one at most is to-many, and then an
/// attribute or one more relationship.
struct KeyPath
{
    std::vector<KeyPathStep> steps;
    int toManyIndex = -1; ///< The step that is to-many; -1 when there is none.

    /// Fails, with the reason, on an unknown name, a way on from an attribute, or a second to-many.
    static Result<KeyPath> resolve(const ObjectModel &model, int entity,
                                   const QList<QByteArray> &names);

    const KeyPathStep &last() const { return steps.back(); }
    bool hasToMany() const { return toManyIndex >= 0; }
    /// The steps before and after the to-many one.
    std::span<const KeyPathStep> beforeToMany() const;
    std::span<const KeyPathStep> afterToMany() const;
};

} // namespace tembra
