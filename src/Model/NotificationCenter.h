#pragma once

#include <QObject>

namespace tembra {

/// The notifications that cross from one window to others. One per program, made by its root.
class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    /// The number of days after which a teammate is overdue was changed.
    void didChangeStaleness();
    /// An emoji of a rating scale was stored or removed; whoever shows ratings draws anew.
    void didChangeEmoji();
};

} // namespace tembra
