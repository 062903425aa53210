#pragma once

#include <QFile>
#include <QString>

#include <csignal>
#include <functional>

#include <sys/wait.h>
#include <unistd.h>

namespace tembra {

/// What the program says last when @p misuse stops it, tried on a copy of it; nothing when it goes
/// on.
inline QString lastWords(const std::function<void()> &misuse)
{
    static int writing = -1;
    int ends[2];
    if (pipe(ends) != 0)
        return QStringLiteral("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        writing = ends[1];
        std::signal(SIGABRT, SIG_DFL); // Without the test framework's report.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
            const QByteArray words = message.toUtf8();
            (void)!write(writing, words.constData(), size_t(words.size()));
        });
        misuse();
        _exit(0);
    }
    close(ends[1]);
    QFile reading;
    const bool isOpen = reading.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle);
    const QString words = isOpen ? QString::fromUtf8(reading.readAll()) : QString();
    int status = 0;
    const bool stopped = child > 0 && waitpid(child, &status, 0) == child && WIFSIGNALED(status)
                         && WTERMSIG(status) == SIGABRT;
    return stopped ? words : QString();
}

} // namespace tembra
