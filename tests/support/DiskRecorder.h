#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <functional>
#include <mutex>

namespace tembra {

/// What a database's file system was asked to change, in order, so that a power loss at any moment
/// can be acted out afterwards. Filled by a FaultVfs; from any thread.
class DiskRecorder
{
public:
    struct Operation
    {
        enum class Kind { Write, Truncate, Sync };
        Kind kind;
        QByteArray file;
        qint64 offset = 0; ///< The size, of a truncation.
        QByteArray bytes = {};
    };
    /// Whether the disk got the operation of this number although nobody had waited for it.
    using Survives = std::function<bool(int number)>;

    void add(Operation operation);
    int count() const;

    /// The files as they are found when the power failed after the first @p operations: everything
    /// that was synced, and of the rest what @p survives says.
    QMap<QByteArray, QByteArray> afterPowerLoss(const QMap<QByteArray, QByteArray> &before,
                                                int operations, const Survives &survives) const;

private:
    mutable std::mutex m_mutex;
    QList<Operation> m_operations;
};

} // namespace tembra
