#include "RunningProgram.h"

#include <QDir>
#include <QDirIterator>
#include <QStandardPaths>
#include <QTest>

#include <csignal>

namespace tembra {

using namespace Qt::StringLiterals;

FreshAccount::FreshAccount()
{
    for (const QString &name : {u"home"_s, u"tmp"_s})
        QDir().mkpath(path(name));
}

QProcessEnvironment FreshAccount::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s, u"XDG_STATE_HOME"_s})
        environment.remove(name);
    // Where the system's cache of fonts is stale, any program that shows text writes one for its user.
    environment.insert(u"XDG_CACHE_HOME"_s,
                       QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    environment.insert(u"HOME"_s, path(u"home"_s));
    environment.insert(u"TMPDIR"_s, path(u"tmp"_s));
    for (const auto &[name, value] : m_variables.asKeyValueRange())
        environment.insert(name, value);
    return environment;
}

QStringList FreshAccount::filesLeft() const
{
    QStringList files;
    for (const QString &name : {u"home"_s, u"tmp"_s}) {
        QDirIterator iterator(path(name),
                              QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                              QDirIterator::Subdirectories);
        while (iterator.hasNext())
            files.append(iterator.next());
    }
    return files;
}

RunningProgram::RunningProgram(const FreshAccount &account, const QStringList &arguments,
                               const QString &workingDirectory, const QString &program)
{
    m_process.setProcessEnvironment(account.environment());
    m_process.setWorkingDirectory(workingDirectory);
    m_process.start(program, arguments);
    m_process.waitForStarted();
}

QString RunningProgram::file()
{
    return QStringLiteral(TEMBRA_PROGRAM);
}

RunningProgram::~RunningProgram()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished();
}

QString RunningProgram::xdotool(const QStringList &arguments)
{
    QProcess tool;
    tool.start(u"xdotool"_s, arguments);
    tool.waitForFinished();
    return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
}

QStringList RunningProgram::windows() const
{
    const QString found = xdotool({u"search"_s, u"--all"_s, u"--onlyvisible"_s, u"--pid"_s,
                                   QString::number(m_process.processId()), u"--name"_s,
                                   u"^Tembra$"_s});
    return found.split(u'\n', Qt::SkipEmptyParts);
}

bool RunningProgram::isRunning()
{
    m_process.waitForFinished(0); // Hears of an end without an event loop.
    return m_process.state() != QProcess::NotRunning;
}

bool RunningProgram::isInFront() const
{
    return windows().contains(xdotool({u"getactivewindow"_s}));
}

bool RunningProgram::waitForWindow()
{
    return QTest::qWaitFor([this] { return isInFront(); }, 20'000);
}

bool RunningProgram::waitForWindows(qsizetype count) const
{
    return QTest::qWaitFor([this, count] { return windows().size() == count; }, 20'000);
}

int RunningProgram::waitForEnd(int milliseconds)
{
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(milliseconds))
        return -1;
    m_output += QString::fromUtf8(m_process.readAllStandardOutput());
    m_errors += QString::fromUtf8(m_process.readAllStandardError());
    return m_process.exitStatus() == QProcess::CrashExit ? -m_process.exitCode()
                                                         : m_process.exitCode();
}

void RunningProgram::minimise() const
{
    for (const QString &window : windows())
        xdotool({u"windowminimize"_s, u"--sync"_s, window});
}

void RunningProgram::closeWindow()
{
    xdotool({u"key"_s, u"alt+F4"_s});
}

void RunningProgram::press(const QStringList &keys)
{
    for (const QString &key : keys) {
        xdotool({u"key"_s, key});
        // What a key brings up must be there before the next one is for it.
        QTest::qWait(400);
    }
}

void RunningProgram::type(const QString &text)
{
    xdotool({u"type"_s, text});
    QTest::qWait(400);
}

void RunningProgram::sendSignal(int number) const
{
    ::kill(pid_t(m_process.processId()), number);
}

} // namespace tembra
