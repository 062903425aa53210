#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace tembra {

/// Turns SIGTERM and SIGINT into a Qt signal, so that they take the same way out as the menu. On
/// systems without such signals it does nothing. One per program.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    explicit UnixSignals(QObject *parent = nullptr);
    ~UnixSignals() override;

Q_SIGNALS:
    void terminationRequested();

private:
    void readPending();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tembra
