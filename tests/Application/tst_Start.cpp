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
    void picturesAreTaken();
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

void tst_Start::picturesAreTaken()
{
    const QString folder = m_account->path(u"some/pictures"_s);
    RunningProgram program(*m_account, {u"--sample"_s, u"--screenshots"_s, folder});
    QCOMPARE(program.waitForEnd(), 0);
    QCOMPARE(QDir(folder).entryList(QDir::Files),
             (QStringList{u"main-window-dark.png"_s, u"main-window-light.png"_s,
                          u"meeting-window-dark.png"_s, u"meeting-window-light.png"_s,
                          u"tags-window-dark.png"_s, u"tags-window-light.png"_s}));
    const QImage light(folder + u"/main-window-light.png"_s);
    const QImage dark(folder + u"/main-window-dark.png"_s);
    QVERIFY(light.width() >= 900 && light.height() >= 560);
    QCOMPARE(dark.size(), light.size());
    const auto brightness = [](const QImage &image) {
        return qGray(
            image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0));
    };
    QVERIFY2(brightness(light) > 180, qPrintable(QString::number(brightness(light))));
    QVERIFY2(brightness(dark) < 75, qPrintable(QString::number(brightness(dark))));
    // Rows that are not selected are grey but for their emoji.
    QVERIFY(holdsYellow(light, QRect(0, 110, 300, 280)));
    QCOMPARE(m_account->filesLeft(), QStringList());
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
