#pragma once

#include <QByteArray>

#include <functional>
#include <memory>

namespace tembra {

class DiskRecorder;

/// A SQLite file system that passes everything on to the usual one, until it is told to fail.
/// Registered under a name of its own for as long as it lives; may be used from any thread.
class FaultVfs
{
public:
    /// The kinds of operation that are counted, and may fail.
    enum Operation {
        Write = 1,
        Sync = 2,
        Open = 4,
        Truncate = 8,
        Read = 16,
        AnyChange = Write | Sync | Open | Truncate
    };
    enum class Fault {
        DiskFull,
        InputOutput,
        OpenedReadOnly, ///< A file is opened, but for reading only, as SQLite does when it must.
        ProcessEnds ///< At once, before the operation, as if the process was killed.
    };
    enum class Lasting {
        Once,
        ForGood, ///< Every later operation of the counted kinds fails too.
        Torn ///< Once, and a write leaves its first half in the file.
    };

    FaultVfs();
    ~FaultVfs();
    FaultVfs(const FaultVfs &) = delete;
    FaultVfs &operator=(const FaultVfs &) = delete;

    /// The name to open a database with.
    QByteArray name() const;

    /// Counts from 1 again, and fails the operation of number @p number among @p operations.
    void failAt(int number, Fault fault, Lasting lasting, int operations = AnyChange);
    /// Counts from 1 again, and calls @p callback before the operation of number @p number, on the
    /// thread and in the middle of the SQLite call that does it: it must use another connection.
    void callAt(int number, std::function<void()> callback, int operations = AnyChange);
    /// Tells @p recorder of every change from now on; null tells nobody.
    void record(DiskRecorder *recorder);
    /// Counts from 1 again, and fails nothing.
    void failNothing(int operations = AnyChange);

    /// Operations of the counted kinds since the last call of one of the two above.
    int count() const;
    /// How many of them failed.
    int failures() const;

    struct Private;

private:
    std::unique_ptr<Private> d;
};

} // namespace tembra
