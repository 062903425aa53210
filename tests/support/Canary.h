#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/inotify.h>
#include <unistd.h>

namespace tembra {

/// A picture in the current folder that notices when somebody opens it, as a text shown as markup
/// does. The folder is temporary, and current for as long as the canary lives.
class Canary
{
public:
    Canary() : m_before(QDir::currentPath()), m_watcher(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        QFile picture(m_folder.filePath(name()));
        if (!picture.open(QFile::WriteOnly) || !QDir::setCurrent(m_folder.path()))
            qFatal("The canary has no folder");
        // A real picture, for of others Qt looks at the name only.
        picture.close();
        if (inotify_add_watch(m_watcher, QFile::encodeName(picture.fileName()).constData(), IN_OPEN)
            < 0)
            qFatal("The canary cannot watch");
    }
    ~Canary()
    {
        close(m_watcher);
        QDir::setCurrent(m_before);
    }
    Q_DISABLE_COPY_MOVE(Canary)

    static QString name() { return QStringLiteral("canary.png"); }
    /// What opens the picture if it is taken for markup; fits into a file's name.
    static QString markup() { return QStringLiteral("<img src=\"canary.png\">"); }
    QString folder() const { return m_folder.path(); }
    bool wasOpened()
    {
        char events[4096];
        while (read(m_watcher, events, sizeof events) > 0)
            m_wasOpened = true;
        return m_wasOpened;
    }

private:
    QString m_before;
    QTemporaryDir m_folder;
    int m_watcher;
    bool m_wasOpened = false;
};

} // namespace tembra
