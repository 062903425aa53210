#include "Application/CommandLine.h"

#include "Application/DataFolder.h"
#include "Application/Version.h"

#include <QCommandLineParser>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int usageError = 2;

struct Options
{
    QCommandLineOption dataDir{u"data-dir"_s, u"Keep the journal, the settings and the window state in DIR."_s,
                               u"DIR"_s};
    QCommandLineOption sample{u"sample"_s, u"Start with a sample journal that is thrown away at the end."_s};
    QCommandLineOption screenshots{u"screenshots"_s, u"Leave a picture of each window in DIR, then quit."_s, u"DIR"_s};
    QCommandLineOption help{{u"h"_s, u"help"_s}, u"Show this help."_s};
    QCommandLineOption version{{u"v"_s, u"version"_s}, u"Show the version."_s};
};

QString usage()
{
    return u"Usage: tembra [--data-dir DIR | --sample] [--screenshots DIR] [--help] [--version]\n"
           "A journal for people who manage a team.\n\n"
           "  --data-dir DIR     keep the journal, the settings and the window state in DIR\n"
           "                     (without it the journal lies in\n"
           "                     %1)\n"
           "  --sample           start with a sample journal that is thrown away at the end;\n"
           "                     your own journal is not touched\n"
           "  --screenshots DIR  leave a picture of each window in DIR, then quit\n"
           "  -h, --help         show this help\n"
           "  -v, --version      show the version\n"_s
        .arg(DataFolder::usualJournalDirectory());
}

PrintAndExit mistake(const QString &sentence)
{
    return {u"tembra: %1\nTry 'tembra --help'.\n"_s.arg(sentence), usageError};
}

/// The directory an option names; null when the option is not there.
QString directoryValue(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    return parser.isSet(option) ? parser.value(option) : QString();
}

} // namespace

std::variant<StartOptions, PrintAndExit> parseCommandLine(const QStringList &arguments)
{
    const Options options;
    QCommandLineParser parser;
    parser.addOptions({options.dataDir, options.sample, options.screenshots, options.help, options.version});
    const bool understood = parser.parse(arguments);
    if (parser.isSet(options.help))
        return PrintAndExit{usage(), 0};
    if (parser.isSet(options.version))
        return PrintAndExit{u"tembra %1\n"_s.arg(programVersion()), 0};
    if (!understood)
        return mistake(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return mistake(u"'%1' is not an option."_s.arg(parser.positionalArguments().first()));

    const StartOptions start{.dataDirectory = directoryValue(parser, options.dataDir),
                             .sample = parser.isSet(options.sample),
                             .screenshotsDirectory = directoryValue(parser, options.screenshots)};
    if (parser.isSet(options.dataDir) && start.dataDirectory.isEmpty())
        return mistake(u"--data-dir needs the name of a folder."_s);
    if (parser.isSet(options.screenshots) && start.screenshotsDirectory.isEmpty())
        return mistake(u"--screenshots needs the name of a folder."_s);
    if (start.sample && !start.dataDirectory.isEmpty())
        return mistake(u"--sample uses a folder of its own; leave --data-dir out."_s);
    return start;
}

} // namespace tembra
