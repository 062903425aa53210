#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Application/Version.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Note.h"
#include "RunningProgram.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTest>

#include <csignal>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// All texts of a journal: names and notes.
QStringList textsIn(const QString &directory)
{
    const auto folder = DataFolder::forOptions({.dataDirectory = directory});
    ProgramServices services(*folder);
    ManagedObjectContext &context = services.coreData.viewContext();
    QStringList texts;
    if (const auto teammates = context.fetch<Counterpart>(JournalQueries::counterparts())) {
        for (const auto &teammate : *teammates)
            texts.append(teammate->name());
    }
    if (const auto notes = context.fetch<Note>(JournalQueries::notesOfAnyCounterpart())) {
        for (const auto &note : *notes)
            texts.append(note->contentString());
    }
    texts.removeAll(QString());
    return texts;
}

/// Adds a teammate and a meeting and types a note, by keys alone.
void typeANote(const QString &name, const QString &text)
{
    RunningProgram::press({u"ctrl+shift+n"_s});
    RunningProgram::type(name);
    RunningProgram::press({u"Return"_s, u"ctrl+n"_s, u"ctrl+3"_s});
    RunningProgram::type(text);
}

} // namespace

namespace {

bool holdsYellow(const QImage &image, const QRect &place)
{
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.red() > 200 && color.green() > 150 && color.blue() < 100)
                return true;
        }
    }
    return false;
}

void openAndCloseThePanels(RunningProgram &program)
{
    for (const QString &command : {u"i"_s, u"b"_s}) {
        RunningProgram::press({u"alt+f"_s, command});
        QTRY_VERIFY2(!program.isInFront(), qPrintable(command));
        RunningProgram::press({u"Escape"_s});
        QVERIFY(program.waitForWindow());
    }
}

} // namespace

class tst_Start : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_account = std::make_unique<FreshAccount>(); }
    void cleanup() { m_account.reset(); }

    void helpVersionAndMistakesNeedNoDisplay_data();
    void helpVersionAndMistakesNeedNoDisplay();
    void everyWayOutKeepsWhatWasTyped_data();
    void everyWayOutKeepsWhatWasTyped();
    void aKilledProgramStartsAgain();
    void theSampleLeavesNoTrace();
    void aDataFolderHoldsEverything();
    void theUsualFoldersAreUsedOtherwise();
    void panelsLeaveNothingElsewhere_data();
    void panelsLeaveNothingElsewhere();
    void othersCannotReadWhatItWrites();
    void aNameThatIsNoTextIsRefused_data();
    void aNameThatIsNoTextIsRefused();
    void withoutADisplayItSaysSo_data();
    void withoutADisplayItSaysSo();
    void picturesAreTaken();
    void picturesChangeNothing();
    void picturesOfAnEmptyJournal();
    void picturesThatCannotBeWrittenAreToldOf();

private:
    QString journal() const { return m_account->path(u"journal"_s); }

    std::unique_ptr<FreshAccount> m_account;
};

void tst_Start::helpVersionAndMistakesNeedNoDisplay_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors");

    QTest::newRow("help") << u"--help"_s << 0 << u"Usage: tembra "_s << QString();
    QTest::newRow("version") << u"--version"_s << 0 << u"tembra %1\n"_s.arg(programVersion())
                             << QString();
    QTest::newRow("mistake") << u"--nonsense"_s << 2 << QString()
                             << u"tembra: Unknown option 'nonsense'."_s;
}

void tst_Start::helpVersionAndMistakesNeedNoDisplay()
{
    QFETCH(QString, argument);
    QFETCH(int, status);
    QFETCH(QString, output);
    QFETCH(QString, errors);
    QProcess program;
    QProcessEnvironment environment = m_account->environment();
    environment.remove(u"DISPLAY"_s);
    environment.remove(u"WAYLAND_DISPLAY"_s);
    program.setProcessEnvironment(environment);
    program.start(RunningProgram::file(), {argument});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), status);
    const QString said = QString::fromUtf8(program.readAllStandardOutput());
    QVERIFY2(output.isEmpty() ? said.isEmpty() : said.startsWith(output), qPrintable(said));
    const QString complained = QString::fromUtf8(program.readAllStandardError());
    QVERIFY2(errors.isEmpty() ? complained.isEmpty() : complained.startsWith(errors),
             qPrintable(complained));
    QVERIFY(m_account->filesLeft().isEmpty());
}

void tst_Start::everyWayOutKeepsWhatWasTyped_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("window") << 0;
}

void tst_Start::everyWayOutKeepsWhatWasTyped()
{
    QFETCH(int, signal);
    RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
    QVERIFY(program.waitForWindow());
    typeANote(u"Ana"_s, u"every word"_s);
    if (signal != 0)
        program.sendSignal(signal);
    else
        program.closeWindow();
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(textsIn(journal()), (QStringList{u"Ana"_s, u"every word"_s}));
    QVERIFY(!QFile::exists(journal() + u"/Vum.lock"_s));
}

void tst_Start::aKilledProgramStartsAgain()
{
    {
        RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
        QVERIFY(program.waitForWindow());
        typeANote(u"Ana"_s, u"before the end"_s);
        QTest::qWait(2000);
        program.sendSignal(SIGKILL);
        QCOMPARE(program.waitForEnd(), -SIGKILL);
    }
    {
        RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
        QVERIFY(program.waitForWindow());
        program.sendSignal(SIGTERM);
        QCOMPARE(program.waitForEnd(), 0);
    }
    QCOMPARE(textsIn(journal()), (QStringList{u"Ana"_s, u"before the end"_s}));
}

void tst_Start::theSampleLeavesNoTrace()
{
    RunningProgram program(*m_account, {u"--sample"_s});
    QVERIFY(program.waitForWindow());
    typeANote(u"Nobody"_s, u"gone at once"_s);
    program.sendSignal(SIGTERM);
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(m_account->filesLeft(), QStringList());
}

void tst_Start::aDataFolderHoldsEverything()
{
    RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
    QVERIFY(program.waitForWindow());
    program.closeWindow();
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(m_account->filesLeft(), QStringList());
    const QStringList files = QDir(journal()).entryList(QDir::AllEntries | QDir::Hidden
                                                        | QDir::NoDotAndDotDot);
    QCOMPARE(files, (QStringList{u"Vum.sqlite"_s, u"windows.ini"_s}));
}

void tst_Start::theUsualFoldersAreUsedOtherwise()
{
    RunningProgram program(*m_account, {});
    QVERIFY(program.waitForWindow());
    program.closeWindow();
    QCOMPARE(program.waitForEnd(), 0);
    QVERIFY(QFile::exists(m_account->path(u"home/.local/share/Tembra/Vum.sqlite"_s)));
    QVERIFY(QFile::exists(m_account->path(u"home/.config/Tembra/windows.ini"_s)));
}

void tst_Start::panelsLeaveNothingElsewhere_data()
{
    QTest::addColumn<bool>("sample");
    QTest::newRow("data folder") << false;
    QTest::newRow("sample") << true;
}

/// The toolkit's own panels have settings of their own.
void tst_Start::panelsLeaveNothingElsewhere()
{
    QFETCH(bool, sample);
    RunningProgram program(*m_account, sample ? QStringList{u"--sample"_s}
                                              : QStringList{u"--data-dir"_s, journal()});
    QVERIFY(program.waitForWindow());
    openAndCloseThePanels(program);
    program.sendSignal(SIGTERM);
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(m_account->filesLeft(), QStringList());
}

void tst_Start::othersCannotReadWhatItWrites()
{
    QVERIFY(QDir().mkpath(journal()));
    QFile old(journal() + u"/windows.ini"_s);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.close();
    QVERIFY(old.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup
                               | QFile::ReadOther));
    for (const QString &folder : {journal(), m_account->path(u"new"_s)}) {
        RunningProgram program(*m_account, {u"--data-dir"_s, folder});
        QVERIFY(program.waitForWindow());
        openAndCloseThePanels(program);
        program.sendSignal(SIGTERM);
        QCOMPARE(program.waitForEnd(), 0);
        const auto files = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden);
        QVERIFY(files.size() >= 2);
        for (const QFileInfo &file : files) {
            const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup
                                              | QFile::ReadOther | QFile::WriteOther;
            QVERIFY2(!(file.permissions() & others), qPrintable(file.filePath()));
        }
    }
}

void tst_Start::aNameThatIsNoTextIsRefused_data()
{
    QTest::addColumn<QString>("command"); // Of a shell, in the account's folder.
    QTest::newRow("data folder") << u"exec \"$0\" --data-dir \"$1/caf\351\""_s;
    QTest::newRow("data folder after =") << u"exec \"$0\" \"--data-dir=$1/caf\351\""_s;
    QTest::newRow("data folder below one")
        << u"mkdir \"caf\351\" && cd \"caf\351\" && exec \"$0\" --data-dir mine"_s;
    QTest::newRow("home folder") << u"mkdir \"caf\351\" && HOME=\"$1/caf\351\"; exec \"$0\""_s;
    QTest::newRow("folder for temporary files")
        << u"mkdir \"caf\351\" && TMPDIR=\"$1/caf\351\"; exec \"$0\" --sample"_s;
    QTest::newRow("pictures") << u"exec \"$0\" --sample --screenshots \"$1/caf\351\""_s;
    QTest::newRow("package") << u"exec \"$0\" --sample \"$1/caf\351\""_s;
}

void tst_Start::aNameThatIsNoTextIsRefused()
{
    QFETCH(QString, command);
    QFile script(m_account->path(u"start"_s));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write(command.toLatin1());
    script.close();
    QProcess shell;
    QProcessEnvironment environment = m_account->environment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    shell.setProcessEnvironment(environment);
    shell.setWorkingDirectory(m_account->path(QString()));
    // It must end by itself: an alert would wait for somebody to read it.
    shell.start(u"bash"_s, {u"-c"_s, u". ./start"_s, RunningProgram::file(),
                            QDir(m_account->path(QString())).absolutePath()});
    QVERIFY(shell.waitForFinished(10'000));
    QCOMPARE(shell.exitCode(), 1);
    const QString said = QString::fromUtf8(shell.readAllStandardError());
    QVERIFY2(said.contains(u"is not UTF-8 text"), qPrintable(said));
    QVERIFY2(said.contains(u"caf\\xE9"), qPrintable(said));
    // A name that Qt cannot spell cannot be removed by it either.
    QProcess::execute(u"bash"_s,
                      {u"-c"_s, u"rmdir \"$0\"/caf* 2>/dev/null"_s, m_account->path(QString())});
    QCOMPARE(QDir(m_account->path(QString())).entryList({u"caf*"_s}), QStringList());
    QCOMPARE(m_account->filesLeft(), QStringList());
}

void tst_Start::withoutADisplayItSaysSo_data()
{
    QTest::addColumn<QStringList>("variables");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("none") << QStringList()
                          << u"tembra: Tembra needs a display, and there is none here."_s;
    QTest::newRow("empty") << QStringList{u"DISPLAY="_s, u"WAYLAND_DISPLAY="_s}
                           << u"tembra: Tembra needs a display, and there is none here."_s;
    QTest::newRow("X that is gone")
        << QStringList{u"DISPLAY=:4711"_s}
        << u"tembra: Tembra needs a display, and this one cannot be opened: DISPLAY=:4711"_s;
    QTest::newRow("Wayland that is gone")
        << QStringList{u"WAYLAND_DISPLAY=gone"_s}
        << u"tembra: Tembra needs a display, and this one cannot be opened: WAYLAND_DISPLAY=gone"_s;
    QTest::newRow("another platform")
        << QStringList{u"QT_QPA_PLATFORM=nonsense"_s, u"DISPLAY=:4711"_s}
        << u"QT_QPA_PLATFORM=nonsense"_s;
}

void tst_Start::withoutADisplayItSaysSo()
{
    QFETCH(QStringList, variables);
    QFETCH(QString, sentence);
    QProcess program;
    QProcessEnvironment environment = m_account->environment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
        environment.remove(name);
    for (const QString &variable : variables)
        environment.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    program.setProcessEnvironment(environment);
    program.start(RunningProgram::file(), {u"--data-dir"_s, journal()});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 1);
    const QString said = QString::fromUtf8(program.readAllStandardError());
    QVERIFY2(said.contains(sentence), qPrintable(said));
    QVERIFY(!QFile::exists(journal()));
    QCOMPARE(m_account->filesLeft(), QStringList());
}

void tst_Start::picturesAreTaken()
{
    const QString folder = m_account->path(u"some/pictures"_s);
    RunningProgram program(*m_account, {u"--sample"_s, u"--screenshots"_s, folder});
    QCOMPARE(program.waitForEnd(), 0);
    const QStringList scenes{u"alert"_s,         u"calendar"_s,    u"completion-list"_s,
                             u"emoji-palette"_s, u"main-window"_s, u"meeting-window"_s,
                             u"nothing-found"_s, u"recent-tags"_s, u"tags-window"_s};
    QStringList files;
    for (const QString &scene : scenes)
        files += {scene + u"-dark.png"_s, scene + u"-light.png"_s};
    QCOMPARE(QDir(folder).entryList(QDir::Files), files);
    const auto brightness = [](const QImage &image) {
        return qGray(
            image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0));
    };
    for (const QString &scene : scenes) {
        const QImage light(folder + u'/' + scene + u"-light.png"_s);
        const QImage dark(folder + u'/' + scene + u"-dark.png"_s);
        QCOMPARE(dark.size(), light.size());
        QVERIFY2(brightness(light) > 150, qPrintable(scene));
        QVERIFY2(brightness(dark) < 100, qPrintable(scene));
    }
    const QImage light(folder + u"/main-window-light.png"_s);
    const QImage dark(folder + u"/main-window-dark.png"_s);
    QVERIFY(light.width() >= 900 && light.height() >= 560);
    QVERIFY2(brightness(light) > 180, qPrintable(QString::number(brightness(light))));
    QVERIFY2(brightness(dark) < 75, qPrintable(QString::number(brightness(dark))));
    // What comes up over a window is on its picture, and gone from the next one.
    const QStringList overTheWindow{u"nothing-found"_s, u"recent-tags"_s};
    for (const QString &scene : overTheWindow)
        QVERIFY2(QImage(folder + u'/' + scene + u"-light.png"_s) != light, qPrintable(scene));
    // Rows that are not selected are grey but for their emoji.
    QVERIFY(holdsYellow(light, QRect(0, 110, 300, 280)));
    QCOMPARE(m_account->filesLeft(), QStringList());
}

void tst_Start::picturesChangeNothing()
{
    {
        RunningProgram program(*m_account, {u"--data-dir"_s, journal()});
        QVERIFY(program.waitForWindow());
        typeANote(u"Ana"_s, u"mine"_s);
        RunningProgram::press({u"shift+Tab"_s});
        program.sendSignal(SIGTERM);
        QCOMPARE(program.waitForEnd(), 0);
    }
    const auto content = [&] {
        QProcess dump;
        dump.start(u"/usr/bin/python3"_s,
                   {u"-c"_s,
                    u"import sqlite3,sys; print('\\n'.join(l for l in "
                    "sqlite3.connect(sys.argv[1]).iterdump() if 'store_meta' not in l))"_s,
                    journal() + u"/Vum.sqlite"_s});
        dump.waitForFinished();
        return dump.readAllStandardOutput();
    };
    const QByteArray before = content();
    QVERIFY(before.contains("mine"));
    RunningProgram program(*m_account, {u"--data-dir"_s, journal(), u"--screenshots"_s,
                                        m_account->path(u"pictures"_s)});
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(content(), before);
}

void tst_Start::picturesOfAnEmptyJournal()
{
    const QString folder = m_account->path(u"pictures"_s);
    RunningProgram program(*m_account, {u"--data-dir"_s, journal(), u"--screenshots"_s, folder});
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(QDir(folder).entryList(QDir::Files),
             (QStringList{u"main-window-dark.png"_s, u"main-window-light.png"_s,
                          u"tags-window-dark.png"_s, u"tags-window-light.png"_s}));
}

void tst_Start::picturesThatCannotBeWrittenAreToldOf()
{
    QFile file(m_account->path(u"file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    RunningProgram program(*m_account,
                           {u"--sample"_s, u"--screenshots"_s, m_account->path(u"file/below"_s)});
    QCOMPARE(program.waitForEnd(), 1);
    QVERIFY2(program.errors().contains(u"Could not make the folder for the screenshots"),
             qPrintable(program.errors()));
    QCOMPARE(m_account->filesLeft(), QStringList());
}

QTEST_MAIN(tst_Start)
#include "tst_Start.moc"
