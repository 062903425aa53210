#include "Application/CommandLine.h"

#include "Application/Version.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_CommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startOptions_data();
    void startOptions();
    void packages_data();
    void packages();
    void verify_data();
    void verify();
    void helpAndVersion_data();
    void helpAndVersion();
    void theReadmeRepeatsTheHelp();
    void mistakes_data();
    void mistakes();
};

void tst_CommandLine::startOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("dataDirectory");
    QTest::addColumn<bool>("sample");
    QTest::addColumn<QString>("screenshots");

    QTest::newRow("nothing") << QStringList() << QString() << false << QString();
    QTest::newRow("data folder") << QStringList{u"--data-dir"_s, u"/j"_s} << u"/j"_s << false
                                 << QString();
    QTest::newRow("data folder after =")
        << QStringList{u"--data-dir=/j k"_s} << u"/j k"_s << false << QString();
    QTest::newRow("the last one of two counts")
        << QStringList{u"--data-dir=/a"_s, u"--data-dir=/b"_s} << u"/b"_s << false << QString();
    QTest::newRow("sample") << QStringList{u"--sample"_s} << QString() << true << QString();
    QTest::newRow("sample with pictures")
        << QStringList{u"--screenshots"_s, u"p"_s, u"--sample"_s} << QString() << true << u"p"_s;
    QTest::newRow("options of the toolkit")
        << QStringList{u"-platform"_s, u"xcb"_s, u"--style"_s, u"fusion"_s,
                       u"-session"_s,  u"a_b"_s, u"-reverse"_s}
        << QString() << false << QString();
}

void tst_CommandLine::startOptions()
{
    QFETCH(QStringList, arguments);
    const auto parsed = parseCommandLine(QStringList{u"tembra"_s} + arguments);
    QVERIFY(std::holds_alternative<StartOptions>(parsed));
    const auto &options = std::get<StartOptions>(parsed);
    QTEST(options.dataDirectory, "dataDirectory");
    QTEST(options.sample, "sample");
    QTEST(options.screenshotsDirectory, "screenshots");
    QCOMPARE(options.packages, QStringList());
}

void tst_CommandLine::packages_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("paths");

    QTest::newRow("absolute") << QStringList{u"/b/Mine.tembrabackup"_s}
                              << QStringList{u"/b/Mine.tembrabackup"_s};
    QTest::newRow("from the working directory")
        << QStringList{u"Mine.tembrabackup"_s} << QStringList{u"/work here/Mine.tembrabackup"_s};
    QTest::newRow("with the slash of a folder")
        << QStringList{u"Mine.tembrabackup//"_s, u"/"_s}
        << QStringList{u"/work here/Mine.tembrabackup"_s, u"/"_s};
    // Through a link it may lead elsewhere than a clean path does.
    QTest::newRow("by way of another folder")
        << QStringList{u"link/../Mine.tembrabackup"_s}
        << QStringList{u"/work here/link/../Mine.tembrabackup"_s};
    QTest::newRow("several, in this order")
        << QStringList{u"b"_s, u"a"_s, u"b"_s}
        << QStringList{u"/work here/b"_s, u"/work here/a"_s, u"/work here/b"_s};
    QTest::newRow("behind an option")
        << QStringList{u"--data-dir"_s, u"/j"_s, u"a"_s} << QStringList{u"/work here/a"_s};
    QTest::newRow("before an option")
        << QStringList{u"a"_s, u"--sample"_s} << QStringList{u"/work here/a"_s};
    QTest::newRow("that looks like an option")
        << QStringList{u"--"_s, u"--sample"_s} << QStringList{u"/work here/--sample"_s};
    QTest::newRow("behind a colon, in lines, in another alphabet")
        << QStringList{u":/a"_s, u"two\nlines"_s, u"Übergabe 🎉"_s}
        << QStringList{u"/work here/:/a"_s, u"/work here/two\nlines"_s, u"/work here/Übergabe 🎉"_s};
}

void tst_CommandLine::packages()
{
    QFETCH(QStringList, arguments);
    const auto parsed = parseCommandLine(QStringList{u"tembra"_s} + arguments,
                                         QDir(u"/work here"_s));
    QVERIFY(std::holds_alternative<StartOptions>(parsed));
    QTEST(std::get<StartOptions>(parsed).packages, "paths");
}

void tst_CommandLine::verify_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("package");
    QTest::newRow("package") << QStringList{u"--verify"_s, u"a/Mine.tembrabackup/"_s}
                             << u"a/Mine.tembrabackup/"_s;
    QTest::newRow("package after =") << QStringList{u"--verify=b c"_s} << u"b c"_s;
}

void tst_CommandLine::verify()
{
    QFETCH(QStringList, arguments);
    const auto parsed = parseCommandLine(QStringList{u"tembra"_s} + arguments);
    QVERIFY(std::holds_alternative<VerifyRequest>(parsed));
    QTEST(std::get<VerifyRequest>(parsed).package, "package");
}

void tst_CommandLine::helpAndVersion_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("begins");

    const QString help = u"Usage: tembra "_s;
    QTest::newRow("help") << QStringList{u"--help"_s} << help;
    QTest::newRow("h") << QStringList{u"-h"_s} << help;
    QTest::newRow("help beside a mistake") << QStringList{u"--nonsense"_s, u"--help"_s} << help;
    QTest::newRow("version") << QStringList{u"--version"_s}
                             << u"tembra %1\n"_s.arg(programVersion());
    QTest::newRow("v") << QStringList{u"-v"_s} << u"tembra %1\n"_s.arg(programVersion());
}

void tst_CommandLine::helpAndVersion()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, begins);
    const auto parsed = parseCommandLine(QStringList{u"tembra"_s} + arguments);
    QVERIFY(std::holds_alternative<PrintAndExit>(parsed));
    const auto &text = std::get<PrintAndExit>(parsed);
    QCOMPARE(text.exitStatus, 0);
    QVERIFY2(text.text.startsWith(begins), qPrintable(text.text));
    if (!begins.startsWith(u"Usage"))
        return;
    for (const QString &option :
         {u"PACKAGE..."_s, u"--data-dir DIR"_s, u"--sample"_s, u"--screenshots DIR"_s,
          u"--verify PACKAGE"_s, u"--help"_s, u"--version"_s})
        QVERIFY2(text.text.contains(option), qPrintable(option));
}

void tst_CommandLine::theReadmeRepeatsTheHelp()
{
    const auto parsed = parseCommandLine({u"tembra"_s, u"--help"_s});
    // As one line, so that it does not matter where lines are wrapped.
    const QString help = std::get<PrintAndExit>(parsed).text.simplified();
    QFile readme(QFINDTESTDATA("../../README.md"));
    QVERIFY(readme.open(QIODevice::ReadOnly));
    static const QRegularExpression row(u"^\\| `([^`]+)` \\| (.+) \\|$"_s,
                                        QRegularExpression::MultilineOption);
    int rows = 0;
    for (auto found = row.globalMatch(QString::fromUtf8(readme.readAll())); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        ++rows;
        const QString entry = match.captured(1) + u' ' + match.captured(2);
        QVERIFY2(help.contains(entry), qPrintable(entry));
    }
    QCOMPARE(rows, 7);
}

void tst_CommandLine::mistakes_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("says");

    QTest::newRow("unknown option") << QStringList{u"--nonsense"_s} << u"nonsense"_s;
    QTest::newRow("unknown letter") << QStringList{u"-x"_s} << u"x"_s;
    QTest::newRow("package without a name")
        << QStringList{u"a"_s, QString()} << u"The name of a backup package is empty."_s;
    QTest::newRow("package with pictures") << QStringList{u"--screenshots"_s, u"p"_s, u"a"_s}
                                           << u"--screenshots imports nothing; leave 'a' out."_s;
    QTest::newRow("nothing to verify") << QStringList{u"--verify"_s} << u"verify"_s;
    for (const QString &name : {QString(), u"--sample"_s})
        QTest::addRow("verify '%s'", qPrintable(name))
            << QStringList{u"--verify"_s, name}
            << u"--verify needs the name of a backup package."_s;
    QTest::newRow("two to verify") << QStringList{u"--verify"_s, u"a"_s, u"b"_s}
                                   << u"--verify reads one package; leave 'b' out."_s;
    QTest::newRow("verify twice") << QStringList{u"--verify"_s, u"a"_s, u"--verify"_s, u"b"_s}
                                  << u"--verify reads one package; leave 'b' out."_s;
    QTest::newRow("verify a sample")
        << QStringList{u"--sample"_s, u"--verify"_s, u"a"_s} << u"leave --sample out."_s;
    QTest::newRow("verify with a data folder")
        << QStringList{u"--verify"_s, u"a"_s, u"--data-dir"_s, u"/j"_s}
        << u"leave --data-dir out."_s;
    QTest::newRow("verify with pictures")
        << QStringList{u"--verify"_s, u"a"_s, u"--screenshots"_s, u"p"_s}
        << u"leave --screenshots out."_s;
    QTest::newRow("data folder without a name") << QStringList{u"--data-dir"_s} << u"data-dir"_s;
    QTest::newRow("data folder with an empty name")
        << QStringList{u"--data-dir"_s, QString()} << u"--data-dir needs the name of a folder."_s;
    QTest::newRow("an option in place of the data folder")
        << QStringList{u"--data-dir"_s, u"--sample"_s}
        << u"--data-dir needs the name of a folder."_s;
    QTest::newRow("pictures without a folder")
        << QStringList{u"--screenshots"_s} << u"screenshots"_s;
    QTest::newRow("an option in place of the folder for pictures")
        << QStringList{u"--screenshots"_s, u"--sample"_s}
        << u"--screenshots needs the name of a folder."_s;
    QTest::newRow("a value for sample") << QStringList{u"--sample=yes"_s} << u"sample"_s;
    QTest::newRow("sample with a data folder")
        << QStringList{u"--sample"_s, u"--data-dir"_s, u"/j"_s} << u"leave --data-dir out"_s;
}

void tst_CommandLine::mistakes()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, says);
    const auto parsed = parseCommandLine(QStringList{u"tembra"_s} + arguments);
    QVERIFY(std::holds_alternative<PrintAndExit>(parsed));
    const auto &text = std::get<PrintAndExit>(parsed);
    QCOMPARE(text.exitStatus, 2);
    QVERIFY2(text.text.contains(says), qPrintable(text.text));
    QVERIFY2(text.text.startsWith(u"tembra: "), qPrintable(text.text));
    QVERIFY(text.text.endsWith(u"\nTry 'tembra --help'.\n"));
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_CommandLine.moc"
