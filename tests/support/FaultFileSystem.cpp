#include "support/FaultFileSystem.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace tembra {

namespace {

constexpr const char *callNames[] = {
    "open a folder by its path",
    "open a folder",
    "open a file",
    "create a file",
    "create a folder",
    "status by name",
    "status",
    "names",
    "lock",
    "write",
    "read",
    "sync",
    "forget",
    "close",
    "rename",
    "remove a file",
    "remove a folder",
};

bool mayBeInterrupted(FaultFileSystem::Call call)
{
    using Call = FaultFileSystem::Call;
    return call == Call::OpenFolderAt || call == Call::OpenFolder || call == Call::OpenFile
           || call == Call::CreateFile || call == Call::Write || call == Call::ReadAt;
}

} // namespace

QList<FaultFileSystem::Call> FaultFileSystem::allCalls()
{
    QList<Call> all;
    for (int call = 0; call < int(std::size(callNames)); ++call)
        all.append(Call(call));
    return all;
}

const char *FaultFileSystem::nameOf(Call call)
{
    return callNames[int(call)];
}

void FaultFileSystem::fail(const Fault &fault)
{
    m_faults.append(fault);
}

void FaultFileSystem::before(Call call, int number, std::function<void()> action)
{
    m_actions.append({call, number, std::move(action)});
}

void FaultFileSystem::beforeAny(int number, std::function<void(Call)> action)
{
    m_anyNumber = number;
    m_anyAction = std::move(action);
}

void FaultFileSystem::alterRead(int number, Lasting lasting)
{
    m_alteredRead = number;
    m_alteredLasting = lasting;
}

int FaultFileSystem::nextError(Call call)
{
    const std::lock_guard guard(m_mutex);
    m_calls.append(call);
    const int number = count(call);
    if (m_anyAction && m_calls.size() == m_anyNumber)
        m_anyAction(call);
    for (const Action &action : std::as_const(m_actions)) {
        if (action.call == call && action.number == number)
            action.work();
    }
    for (const Fault &fault : std::as_const(m_faults)) {
        const bool isHit = fault.call == call
                           && (number == fault.number
                               || (number > fault.number && fault.lasting != Lasting::Once));
        const bool isAfter = fault.lasting == Lasting::EveryCall
                             && count(fault.call) >= fault.number;
        if (isHit || isAfter) {
            ++m_failures;
            return fault.systemError;
        }
    }
    if (m_isInterrupted && mayBeInterrupted(call) && number % 2 == 1)
        return EINTR;
    return 0;
}

template<typename Work>
auto FaultFileSystem::made(Call call, const Work &work) -> decltype(work())
{
    const int error = nextError(call);
    if (error == 0)
        return work();
    const bool isDone = std::any_of(m_faults.cbegin(), m_faults.cend(), [&](const Fault &fault) {
        return fault.call == call && fault.isDoneNevertheless;
    });
    if (isDone || call == Call::Close)
        (void)work();
    return tl::unexpected<int>(error);
}

SystemResult<FileId> FaultFileSystem::openFolderAt(const QString &path)
{
    return made(Call::OpenFolderAt, [&] { return m_system.openFolderAt(path); });
}

SystemResult<FileId> FaultFileSystem::openFolder(FileId parent, const QString &name)
{
    return made(Call::OpenFolder, [&] { return m_system.openFolder(parent, name); });
}

SystemResult<FileId> FaultFileSystem::openFile(FileId folder, const QString &name,
                                               FileAccess access)
{
    return made(Call::OpenFile, [&] { return m_system.openFile(folder, name, access); });
}

SystemResult<FileId> FaultFileSystem::createFile(FileId folder, const QString &name)
{
    return made(Call::CreateFile, [&] { return m_system.createFile(folder, name); });
}

SystemResult<void> FaultFileSystem::createFolder(FileId parent, const QString &name)
{
    return made(Call::CreateFolder, [&] { return m_system.createFolder(parent, name); });
}

SystemResult<FileStatus> FaultFileSystem::statusIn(FileId folder, const QString &name)
{
    return made(Call::StatusIn, [&] { return m_system.statusIn(folder, name); });
}

SystemResult<FileStatus> FaultFileSystem::status(FileId file)
{
    return made(Call::Status, [&] { return m_system.status(file); });
}

SystemResult<QStringList> FaultFileSystem::names(FileId folder)
{
    return made(Call::Names, [&] { return m_system.names(folder); });
}

SystemResult<void> FaultFileSystem::lock(FileId file)
{
    return made(Call::Lock, [&] { return m_system.lock(file); });
}

SystemResult<qint64> FaultFileSystem::write(FileId file, QByteArrayView bytes)
{
    const bool isCut = m_mostBytes > 0 && bytes.size() > m_mostBytes;
    const auto piece = isCut ? bytes.first(qsizetype(m_mostBytes)) : bytes;
    return made(Call::Write, [&] { return m_system.write(file, piece); });
}

SystemResult<qint64> FaultFileSystem::readAt(FileId file, qint64 offset, char *bytes, qint64 size)
{
    const qint64 wanted = m_mostBytes > 0 ? std::min(size, m_mostBytes) : size;
    const auto count = made(Call::ReadAt,
                            [&] { return m_system.readAt(file, offset, bytes, wanted); });
    if (count && *count > 0 && isAltered())
        bytes[*count / 2] ^= 1;
    return count;
}

bool FaultFileSystem::isAltered() const
{
    const std::lock_guard guard(m_mutex);
    const int number = count(Call::ReadAt);
    return m_alteredRead > 0
           && (number == m_alteredRead
               || (number > m_alteredRead && m_alteredLasting == Lasting::ForGood));
}

SystemResult<void> FaultFileSystem::sync(FileId fileOrFolder)
{
    return made(Call::Sync, [&] { return m_system.sync(fileOrFolder); });
}

SystemResult<void> FaultFileSystem::forgetCached(FileId file)
{
    return made(Call::ForgetCached, [&] { return m_system.forgetCached(file); });
}

SystemResult<void> FaultFileSystem::close(FileId fileOrFolder)
{
    return made(Call::Close, [&] { return m_system.close(fileOrFolder); });
}

SystemResult<void> FaultFileSystem::rename(FileId folder, const QString &from, const QString &to)
{
    return made(Call::Rename, [&] { return m_system.rename(folder, from, to); });
}

SystemResult<void> FaultFileSystem::removeFile(FileId folder, const QString &name)
{
    return made(Call::RemoveFile, [&] { return m_system.removeFile(folder, name); });
}

SystemResult<void> FaultFileSystem::removeFolder(FileId parent, const QString &name)
{
    return made(Call::RemoveFolder, [&] { return m_system.removeFolder(parent, name); });
}

} // namespace tembra
