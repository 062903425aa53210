#pragma once

#include <QByteArray>
#include <QObject>

#include <functional>

namespace tembra {

/// Calls a function whenever one property of an object tells of a change, for as long as it lives.
///
/// The property is named at run time and must be declared with a NOTIFY signal.
class PropertyObservation final : public QObject
{
    Q_OBJECT

public:
    PropertyObservation(QObject *object, const QByteArray &property, std::function<void()> changed,
                        QObject *parent = nullptr);

private Q_SLOTS:
    void notify();

private:
    std::function<void()> m_changed;
};

} // namespace tembra
