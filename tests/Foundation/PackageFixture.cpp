#include "PackageFixture.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

bool isTemporary(const QString &path)
{
    return path.contains(u".tmp");
}

void makeSocket(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, name.constData(), sizeof address.sun_path);
    const int handle = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (::bind(handle, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        qFatal("no socket");
    ::close(handle);
}

} // namespace

PackageFolder::PackageFolder(const QString &pathTemplate) : root(pathTemplate) {}

void PackageFolder::putPackage(const QByteArray &content) const
{
    QDir().mkpath(package);
    writeFile(file, content);
    writeFile(package + u"/note of mine.txt"_s, "stays");
}

QString PackageFolder::putOutside() const
{
    const QString outside = root.filePath(u"outside"_s);
    QDir().mkpath(outside + u"/folder"_s);
    writeFile(outside + u"/file"_s, "outside");
    writeFile(outside + u"/folder/"_s + fileName, "outside too");
    return outside;
}

QMap<QString, QByteArray> PackageFolder::inPlace() const
{
    auto entries = snapshot(root.path());
    entries.removeIf([](const auto &entry) { return isTemporary(entry.key()); });
    return entries;
}

QStringList PackageFolder::temporaries() const
{
    QStringList names = snapshot(root.path()).keys();
    names.removeIf([](const QString &path) { return !isTemporary(path); });
    return names;
}

QByteArray sampleContents(qsizetype size, quint32 version)
{
    QByteArray contents(size, Qt::Uninitialized);
    quint32 state = version * 2654435761U + 1;
    for (char &byte : contents) {
        state = state * 1664525U + 1013904223U;
        byte = char(state >> 24);
    }
    return contents;
}

void makePipe(const QString &path)
{
    if (::mkfifo(QFile::encodeName(path).constData(), 0600) != 0)
        qFatal("no pipe");
}

void makeOddity(const QString &kind, const QString &path, const QString &outside)
{
    if (kind == u"file")
        writeFile(path, "not mine");
    else if (kind == u"folder")
        QDir().mkpath(path);
    else if (kind == u"pipe")
        makePipe(path);
    else if (kind == u"socket")
        makeSocket(path);
    else if (kind == u"link to a file")
        QFile::link(outside + u"/file"_s, path);
    else if (kind == u"link to a folder")
        QFile::link(outside + u"/folder"_s, path);
    else if (kind == u"link to nothing")
        QFile::link(outside + u"/nothing"_s, path);
    else
        qFatal("no such kind");
}

} // namespace tembra
