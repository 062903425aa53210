#pragma once

#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace tembra {

/// A user's account with nothing in it: a home folder and a folder for temporary files.
class FreshAccount
{
public:
    FreshAccount();

    QString path(const QString &name) const { return m_folder.filePath(name); }
    QProcessEnvironment environment() const;
    /// For programs started from now on.
    void setVariable(const QString &name, const QString &value) { m_variables.insert(name, value); }
    /// What lies in the home folder and among the temporary files, all the way down.
    QStringList filesLeft() const;

private:
    QTemporaryDir m_folder;
    QMap<QString, QString> m_variables;
};

/// The built program as a process of its own, used through the display's own keyboard.
class RunningProgram
{
public:
    /// Where the program was built.
    static QString file();

    RunningProgram(const FreshAccount &account, const QStringList &arguments,
                   const QString &workingDirectory = {}, const QString &program = file());
    /// Kills it if it still runs.
    ~RunningProgram();

    /// Waits until it shows a window that has the keyboard; false after a while without.
    bool waitForWindow();
    bool isRunning();
    /// Whether one of its windows has the keyboard.
    bool isInFront() const;
    /// Waits until it shows this many windows, alerts counted.
    bool waitForWindows(qsizetype count) const;
    /// Waits for the end; the exit status, or -1 after a while, or the negative number of the signal.
    int waitForEnd(int milliseconds = 20'000);

    void minimise() const;
    /// Has the window manager close the window that is in front.
    static void closeWindow();
    /// Presses keys as xdotool names them ("ctrl+n").
    static void press(const QStringList &keys);
    static void type(const QString &text);
    void sendSignal(int number) const;

    QString output() const { return m_output; }
    QString errors() const { return m_errors; }

private:
    static QString xdotool(const QStringList &arguments);
    QStringList windows() const;

    QProcess m_process;
    QString m_output;
    QString m_errors;
};

} // namespace tembra
