#include "Application/CommandLine.h"

#include "Application/DataFolder.h"
#include "Application/Version.h"

#include <QCommandLineParser>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int usageError = 2;

/// The options with their help, which the README repeats.
struct Options
{
    QCommandLineOption dataDir{u"data-dir"_s,
                               u"keep the journal, the settings and the window state in DIR"_s,
                               u"DIR"_s};
    QCommandLineOption sample{u"sample"_s,
                              u"start with a sample journal that is thrown away at the end; "
                              "your own journal is not touched"_s};
    QCommandLineOption screenshots{u"screenshots"_s,
                                   u"leave a picture of each window in DIR, then quit"_s, u"DIR"_s};
    QCommandLineOption verify{
        u"verify"_s,
        u"read a backup as an import would, and only say how much is in it (exit status 0) or "
        "what is wrong with it (1); needs no screen"_s,
        u"PACKAGE"_s};
    QCommandLineOption help{{u"h"_s, u"help"_s}, u"show this help"_s};
    QCommandLineOption version{{u"v"_s, u"version"_s}, u"show the version"_s};
};

/// What the toolkit takes off the command line by itself, as "-platform xcb" or "--platform xcb".
QList<QCommandLineOption> optionsOfTheToolkit()
{
    QList<QCommandLineOption> options;
    for (const QString &name :
         {u"display"_s, u"geometry"_s, u"icon"_s, u"name"_s, u"platform"_s, u"platformpluginpath"_s,
          u"platformtheme"_s, u"plugin"_s, u"qwindowgeometry"_s, u"qwindowicon"_s,
          u"qwindowtitle"_s, u"session"_s, u"style"_s, u"stylesheet"_s, u"title"_s})
        options.append(QCommandLineOption(name, QString(), u"VALUE"_s));
    for (const QString &name : {u"dograb"_s, u"nograb"_s, u"reverse"_s, u"widgetcount"_s})
        options.append(QCommandLineOption(name));
    return options;
}

constexpr qsizetype helpColumn = 21;
constexpr qsizetype lineLength = 85;

/// One entry of the help: a name, and beside it the description, wrapped.
QString helpEntry(const QString &name, const QString &description)
{
    QString entry = QString(u"  "_s + name).leftJustified(helpColumn);
    qsizetype column = entry.size();
    for (const QString &word : description.split(u' ')) {
        if (column > helpColumn && column + 1 + word.size() > lineLength) {
            entry += u'\n' + QString(helpColumn, u' ');
            column = helpColumn;
        } else if (column > helpColumn) {
            entry += u' ';
            ++column;
        }
        entry += word;
        column += word.size();
    }
    return entry + u'\n';
}

QString helpEntry(const QCommandLineOption &option)
{
    QStringList names;
    for (const QString &name : option.names())
        names.append((name.size() == 1 ? u"-"_s : u"--"_s) + name);
    const QString value = option.valueName();
    return helpEntry(names.join(u", "_s) + (value.isEmpty() ? value : QString(u' ' + value)),
                     option.description());
}

QString usage(const Options &options)
{
    QString text = u"Usage: tembra [--data-dir DIR | --sample] [PACKAGE...]\n"
                   "       tembra [--data-dir DIR | --sample] --screenshots DIR\n"
                   "       tembra --verify PACKAGE\n"
                   "       tembra --help | --version\n"
                   "A journal for people who manage a team.\n\n"_s
                   + helpEntry(u"PACKAGE"_s, u"a backup; Tembra asks whether to import it"_s);
    for (const QCommandLineOption &option : {options.dataDir, options.sample, options.screenshots,
                                             options.verify, options.help, options.version})
        text += helpEntry(option);
    return text
           + u"\nWithout --data-dir the journal lies in\n  %1\n"_s.arg(
               DataFolder::usualJournalDirectory());
}

PrintAndExit mistake(const QString &sentence)
{
    return {u"tembra: %1\nTry 'tembra --help'.\n"_s.arg(sentence), usageError};
}

/// What is wrong with an option that names a folder; empty when nothing is.
QString mistakeInFolder(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    // "--data-dir --sample" is a forgotten folder and not one with a curious name.
    const QString folder = parser.value(option);
    if (!parser.isSet(option) || !(folder.isEmpty() || folder.startsWith(u'-')))
        return {};
    return u"--%1 needs the name of a folder."_s.arg(option.names().first());
}

QString mistakeInVerifying(const QCommandLineParser &parser, const Options &options)
{
    const QStringList packages = parser.values(options.verify) + parser.positionalArguments();
    if (packages.first().isEmpty() || packages.first().startsWith(u'-'))
        return u"--verify needs the name of a backup package."_s;
    if (packages.size() > 1)
        return u"--verify reads one package; leave '%1' out."_s.arg(packages.at(1));
    for (const QCommandLineOption &option :
         {options.dataDir, options.sample, options.screenshots}) {
        if (parser.isSet(option))
            return u"--verify looks at nothing but the package; leave --%1 out."_s.arg(
                option.names().first());
    }
    return {};
}

QString mistakeInPackages(const QCommandLineParser &parser, const Options &options)
{
    const QStringList packages = parser.positionalArguments();
    if (packages.contains(QString()))
        return u"The name of a backup package is empty."_s;
    if (!packages.isEmpty() && parser.isSet(options.screenshots))
        return u"--screenshots imports nothing; leave '%1' out."_s.arg(packages.first());
    return {};
}

QString mistakeIn(const QCommandLineParser &parser, const Options &options)
{
    if (parser.isSet(options.verify))
        return mistakeInVerifying(parser, options);
    for (const QCommandLineOption &option : {options.dataDir, options.screenshots}) {
        if (const QString found = mistakeInFolder(parser, option); !found.isEmpty())
            return found;
    }
    if (parser.isSet(options.sample) && parser.isSet(options.dataDir))
        return u"--sample uses a folder of its own; leave --data-dir out."_s;
    return mistakeInPackages(parser, options);
}

/// The package's own name stays its last part, also after the slash that a shell adds to folders.
QString absolutePath(const QString &package, const QDir &workingDirectory)
{
    // To Qt a colon in front means something else than a name.
    const bool isAbsolute = QDir::isAbsolutePath(package) && !package.startsWith(u':');
    QString path = isAbsolute ? package : workingDirectory.absolutePath() + u'/' + package;
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

StartOptions startOptions(const QCommandLineParser &parser, const Options &options,
                          const QDir &workingDirectory)
{
    QStringList packages;
    for (const QString &package : parser.positionalArguments())
        packages.append(absolutePath(package, workingDirectory));
    return {.dataDirectory = parser.value(options.dataDir),
            .sample = parser.isSet(options.sample),
            .screenshotsDirectory = parser.value(options.screenshots),
            .packages = packages};
}

} // namespace

CommandLine parseCommandLine(const QStringList &arguments, const QDir &workingDirectory)
{
    const Options options;
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({options.dataDir, options.sample, options.screenshots, options.verify,
                       options.help, options.version});
    parser.addOptions(optionsOfTheToolkit());
    const bool understood = parser.parse(arguments);
    if (parser.isSet(options.help))
        return PrintAndExit{usage(options), 0};
    if (parser.isSet(options.version))
        return PrintAndExit{u"tembra %1\n"_s.arg(programVersion()), 0};
    const QString wrong = understood ? mistakeIn(parser, options) : parser.errorText();
    if (!wrong.isEmpty())
        return mistake(wrong);
    if (parser.isSet(options.verify))
        return VerifyRequest{parser.value(options.verify)};
    return startOptions(parser, options, workingDirectory);
}

} // namespace tembra
