#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

namespace tembra {

class Connection;

/// Copies the write-ahead log back into the store's file when it has grown and the user rests: no
/// commit and no input for a while. Never while another connection is open. Lives on the
/// connection's thread and goes before it.
class Checkpointer : public QObject
{
    Q_OBJECT

public:
    struct Limits
    {
        int idleMilliseconds = 5000;
        qint64 logBytes = 1 << 20; ///< Shorter logs stay.
    };

    Checkpointer(Connection &connection, std::function<bool()> isOnlyConnection, Limits limits);
    ~Checkpointer() override;

    /// To be called when the log may have grown by other connections; its own commits it sees.
    void logMayHaveGrown();

    /// Input anywhere in the program puts the checkpoint off.
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void checkpointWhenIdle();

    Connection &m_connection;
    std::function<bool()> m_isOnlyConnection;
    Limits m_limits;
    QTimer m_idle;
};

} // namespace tembra
