#include "Toolkit/List/PropertyObservation.h"

#include "Foundation/Precondition.h"

#include <QMetaMethod>
#include <QMetaProperty>

namespace tembra {

PropertyObservation::PropertyObservation(QObject *object, const QByteArray &property,
                                         std::function<void()> changed, QObject *parent)
    : QObject(parent)
    , m_changed(std::move(changed))
{
    const QMetaObject *metaObject = object->metaObject();
    const QMetaProperty metaProperty = metaObject->property(
        metaObject->indexOfProperty(property.constData()));
    require(metaProperty.hasNotifySignal(),
            "An observed property is declared with a NOTIFY signal");
    static const QMetaMethod slot = staticMetaObject.method(
        staticMetaObject.indexOfSlot("notify()"));
    connect(object, metaProperty.notifySignal(), this, slot);
}

void PropertyObservation::notify()
{
    m_changed();
}

} // namespace tembra
