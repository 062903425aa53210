#pragma once

#include "Foundation/Files/FileSystem.h"

#include <QList>

#include <functional>
#include <mutex>

namespace tembra {

/// The file system of the machine, until it is told to fail. May be used from any thread.
class FaultFileSystem : public FileSystem
{
public:
    enum class Call {
        OpenFolderAt,
        OpenFolder,
        OpenFile,
        CreateFile,
        CreateFolder,
        StatusIn,
        Status,
        Names,
        Lock,
        Write,
        ReadAt,
        Sync,
        ForgetCached,
        Close, ///< Closes even when it fails, as systems do.
        Rename,
        RemoveFile,
        RemoveFolder
    };
    static QList<Call> allCalls();
    static const char *nameOf(Call call);

    enum class Lasting {
        Once,
        ForGood, ///< Every later call of the kind fails too.
        EveryCall ///< From there on nothing works any more, as with a disk that was pulled out.
    };
    struct Fault
    {
        Call call = Call::Write;
        int number = 1; ///< Which call of the kind, from 1.
        int systemError = 0;
        Lasting lasting = Lasting::Once;
        bool isDoneNevertheless = false; ///< The call reports a failure, but did its work.
    };

    void fail(const Fault &fault);
    /// Does something just before the call of that kind and number.
    void before(Call call, int number, std::function<void()> action);
    /// Does something just before the call of that number among all calls.
    void beforeAny(int number, std::function<void(Call)> action);
    /// Lets each write and each read do at most that many bytes.
    void setMostBytes(qint64 bytes) { m_mostBytes = bytes; }
    /// Interrupts every second call of the kinds that signals may interrupt.
    void setInterrupted(bool interrupted) { m_isInterrupted = interrupted; }
    /// Changes one bit of what the reading of that number gives, or of that and all later ones.
    void alterRead(int number, Lasting lasting);

    /// How many calls of that kind were made.
    int count(Call call) const { return int(m_calls.count(call)); }
    /// How many calls failed because they were told to.
    int failures() const { return m_failures; }
    /// All calls in their order.
    QList<Call> calls() const { return m_calls; }

    SystemResult<FileId> openFolderAt(const QString &path) override;
    SystemResult<FileId> openFolder(FileId parent, const QString &name) override;
    SystemResult<FileId> openFile(FileId folder, const QString &name, FileAccess access) override;
    SystemResult<FileId> createFile(FileId folder, const QString &name) override;
    SystemResult<void> createFolder(FileId parent, const QString &name) override;
    SystemResult<FileStatus> statusIn(FileId folder, const QString &name) override;
    SystemResult<FileStatus> status(FileId file) override;
    SystemResult<QStringList> names(FileId folder) override;
    SystemResult<void> lock(FileId file) override;
    SystemResult<qint64> write(FileId file, QByteArrayView bytes) override;
    SystemResult<qint64> readAt(FileId file, qint64 offset, char *bytes, qint64 size) override;
    SystemResult<void> sync(FileId fileOrFolder) override;
    SystemResult<void> forgetCached(FileId file) override;
    SystemResult<void> close(FileId fileOrFolder) override;
    SystemResult<void> rename(FileId folder, const QString &from, const QString &to) override;
    SystemResult<void> removeFile(FileId folder, const QString &name) override;
    SystemResult<void> removeFolder(FileId parent, const QString &name) override;

private:
    template<typename Work>
    auto made(Call call, const Work &work) -> decltype(work());
    /// The error of the call that is about to be made, or 0; counts it.
    int nextError(Call call);
    bool isAltered() const;

    struct Action
    {
        Call call;
        int number;
        std::function<void()> work;
    };

    FileSystem &m_system = systemFileSystem();
    mutable std::mutex m_mutex;
    QList<Call> m_calls;
    QList<Fault> m_faults;
    QList<Action> m_actions;
    int m_anyNumber = 0;
    std::function<void(Call)> m_anyAction;
    int m_failures = 0;
    qint64 m_mostBytes = 0;
    bool m_isInterrupted = false;
    int m_alteredRead = 0;
    Lasting m_alteredLasting = Lasting::Once;
};

} // namespace tembra
