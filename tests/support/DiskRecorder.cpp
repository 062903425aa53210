#include "support/DiskRecorder.h"

namespace tembra {

namespace {

using Operation = DiskRecorder::Operation;

void apply(QByteArray &content, const Operation &operation)
{
    if (operation.kind == Operation::Kind::Truncate) {
        content.resize(qMin(content.size(), qsizetype(operation.offset)));
    } else if (operation.kind == Operation::Kind::Write) {
        const qsizetype end = operation.offset + operation.bytes.size();
        if (content.size() < end)
            content.append(end - content.size(), '\0');
        content.replace(operation.offset, operation.bytes.size(), operation.bytes);
    }
}

} // namespace

void DiskRecorder::add(Operation operation)
{
    const std::lock_guard lock(m_mutex);
    m_operations.append(std::move(operation));
}

int DiskRecorder::count() const
{
    const std::lock_guard lock(m_mutex);
    return int(m_operations.size());
}

QMap<QByteArray, QByteArray> DiskRecorder::afterPowerLoss(
    const QMap<QByteArray, QByteArray> &before, int operations, const Survives &survives) const
{
    const std::lock_guard lock(m_mutex);
    // Up to the last sync of its file, an operation is on the disk.
    QMap<QByteArray, int> lastSync;
    for (int number = 0; number < operations; ++number) {
        if (m_operations[number].kind == Operation::Kind::Sync)
            lastSync[m_operations[number].file] = number;
    }
    QMap<QByteArray, QByteArray> files = before;
    for (int number = 0; number < operations; ++number) {
        const Operation &operation = m_operations[number];
        if (operation.kind == Operation::Kind::Sync
            || (number > lastSync.value(operation.file, -1) && !survives(number)))
            continue;
        apply(files[operation.file], operation);
    }
    return files;
}

} // namespace tembra
