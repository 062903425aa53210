#include "Application/UnixSignals.h"

#include <QSocketNotifier>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#endif

namespace tembra {

#ifdef Q_OS_UNIX

namespace {

// A signal handler may do next to nothing; it can write to a pipe that the event loop reads.
std::array<int, 2> signalPipe{-1, -1};

void handleSignal(int)
{
    const int savedErrno = errno;
    const char byte = 1;
    // The pipe is full only when a request is already waiting there.
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedErrno;
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGTERM, SIGINT})
        sigaction(number, &action, nullptr);
}

} // namespace

UnixSignals::UnixSignals(QObject *parent) : QObject(parent)
{
    if (pipe(signalPipe.data()) != 0)
        return;
    for (const int end : signalPipe) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    m_notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &UnixSignals::readPending);
    setHandler(handleSignal);
}

UnixSignals::~UnixSignals()
{
    setHandler(SIG_DFL);
    m_notifier.reset();
    for (int &end : signalPipe) {
        if (end >= 0)
            ::close(std::exchange(end, -1));
    }
}

void UnixSignals::readPending()
{
    std::array<char, 16> bytes;
    while (::read(signalPipe[0], bytes.data(), bytes.size()) > 0) {}
    Q_EMIT terminationRequested();
}

#else

UnixSignals::UnixSignals(QObject *parent) : QObject(parent) {}

UnixSignals::~UnixSignals() = default;

void UnixSignals::readPending() {}

#endif

} // namespace tembra
