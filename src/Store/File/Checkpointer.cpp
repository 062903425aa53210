#include "Store/File/Checkpointer.h"

#include "Foundation/Logging.h"
#include "Store/File/Connection.h"
#include "Store/File/Transaction.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFileInfo>

#include <sqlite3.h>

namespace tembra {

namespace {

int afterCommit(void *checkpointer, sqlite3 *, const char *, int)
{
    static_cast<Checkpointer *>(checkpointer)->logMayHaveGrown();
    return SQLITE_OK;
}

bool isInput(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
    case QEvent::TouchUpdate:
    case QEvent::DragMove:
        return true;
    default:
        return false;
    }
}

} // namespace

Checkpointer::Checkpointer(Connection &connection, std::function<bool()> isOnlyConnection,
                           Limits limits)
    : m_connection(connection)
    , m_isOnlyConnection(std::move(isOnlyConnection))
    , m_limits(limits)
{
    m_idle.setSingleShot(true);
    m_idle.setInterval(limits.idleMilliseconds);
    connect(&m_idle, &QTimer::timeout, this, &Checkpointer::checkpointWhenIdle);
    sqlite3_wal_hook(connection.handle(), afterCommit, this);
}

Checkpointer::~Checkpointer()
{
    sqlite3_wal_hook(m_connection.handle(), nullptr, nullptr);
}

void Checkpointer::logMayHaveGrown()
{
    if (!m_idle.isActive())
        QCoreApplication::instance()->installEventFilter(this);
    m_idle.start();
}

bool Checkpointer::eventFilter(QObject *object, QEvent *event)
{
    if (m_idle.isActive() && isInput(*event))
        m_idle.start();
    return QObject::eventFilter(object, event);
}

void Checkpointer::checkpointWhenIdle()
{
    QCoreApplication::instance()->removeEventFilter(this);
    const qint64 logSize = QFileInfo(m_connection.file() + QLatin1String("-wal")).size();
    if (logSize < m_limits.logBytes || m_connection.inTransaction() || !m_isOnlyConnection())
        return;
    if (const auto done = m_connection.checkpoint(); !done)
        qCWarning(storeLog, "The log could not be copied into the store: %s",
                  qPrintable(done.error().detail));
}

} // namespace tembra
