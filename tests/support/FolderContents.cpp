#include "support/FolderContents.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tembra {

namespace {

char kindOf(mode_t mode)
{
    if (S_ISREG(mode))
        return 'f';
    if (S_ISDIR(mode))
        return 'd';
    return S_ISLNK(mode) ? 'l' : 'o';
}

} // namespace

QString temporaryTemplate()
{
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath())
           + QStringLiteral("/tembra-XXXXXX");
}

QMap<QString, QByteArray> snapshot(const QString &folder)
{
    QMap<QString, QByteArray> entries;
    QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString path = walk.next();
        struct stat status = {};
        ::lstat(QFile::encodeName(path).constData(), &status);
        QByteArray entry = QByteArray(1, kindOf(status.st_mode))
                           + QByteArray::number(status.st_mode, 8) + ' ';
        if (S_ISREG(status.st_mode))
            entry += readFile(path);
        if (S_ISLNK(status.st_mode))
            entry += QFile::symLinkTarget(path).toUtf8();
        entries.insert(QDir(folder).relativeFilePath(path), entry);
    }
    return entries;
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int runAndDie(const std::function<bool()> &work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work() ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace tembra
