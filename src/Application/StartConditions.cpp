#include "Application/StartConditions.h"

#include <QDir>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int couldNotStart = 1;

bool isText(const QByteArray &name)
{
    return QString::fromUtf8(name).toUtf8() == name;
}

/// With each byte that is not ASCII as "\xE9".
QString spelledOut(const QByteArray &name)
{
    QString result;
    for (const char byte : name) {
        const auto code = static_cast<unsigned char>(byte);
        result += code < 0x80 ? QString(QLatin1Char(byte))
                              : u"\\x%1"_s.arg(QString::number(code, 16).toUpper());
    }
    return result;
}

/// The folders from which the start makes the names of its own.
QByteArrayList foldersUsed(const StartOptions &options)
{
    if (options.sample)
        return {qgetenv("TMPDIR")};
    if (options.dataDirectory.isEmpty())
        return {qgetenv("HOME"), qgetenv("XDG_DATA_HOME"), qgetenv("XDG_CONFIG_HOME")};
    if (QDir::isAbsolutePath(options.dataDirectory))
        return {};
    std::error_code unknown;
    return {QByteArray::fromStdString(std::filesystem::current_path(unknown).string())};
}

QString describedDisplay()
{
    QStringList variables;
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (const QString value = qEnvironmentVariable(name); !value.isEmpty())
            variables.append(QLatin1StringView(name) + u'=' + value);
    }
    return variables.join(u", "_s);
}

QtMessageHandler usualHandler = nullptr;

void exitWithoutDisplay(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtFatalMsg) {
        usualHandler(type, context, message);
        return;
    }
    const QString display = describedDisplay();
    const QString sentence = display.isEmpty() ? u"there is none here. Start it at a desktop."_s
                                               : u"this one cannot be opened: %1"_s.arg(display);
    std::fprintf(stderr, "tembra: Tembra needs a display, and %s\n", qUtf8Printable(sentence));
    std::fflush(nullptr);
    // Nothing of the program exists yet that would have to be taken down.
    std::_Exit(couldNotStart);
}

} // namespace

QString complaintAboutNames(const QByteArrayList &arguments, const CommandLine &commandLine)
{
    QByteArrayList names = arguments;
    if (const auto *options = std::get_if<StartOptions>(&commandLine))
        names += foldersUsed(*options);
    for (const QByteArray &name : std::as_const(names)) {
        if (!isText(name))
            return u"“%1” is not UTF-8 text, and Tembra can use no other names of files and "
                   u"folders. "
                   "Rename it, or choose another."_s.arg(spelledOut(name));
    }
    return {};
}

DisplayGuard::DisplayGuard()
{
    usualHandler = qInstallMessageHandler(exitWithoutDisplay);
}

DisplayGuard::~DisplayGuard()
{
    qInstallMessageHandler(usualHandler);
}

} // namespace tembra
