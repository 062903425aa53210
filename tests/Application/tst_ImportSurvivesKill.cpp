#include "Backup/BackupDocument.h"
#include "Foundation/Precondition.h"
#include "JournalState.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr unsigned seed = 20261121;
constexpr int kills = 200;
constexpr int killsBetweenSecondImports = 20;

using Moment = std::chrono::microseconds;

/// An import in a process of its own, that tells how far it is (see JournalImporter).
class Importer
{
public:
    Importer(const QString &directory, const QString &package)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(JOURNAL_IMPORTER), {directory, package});
        require(m_process.waitForStarted(), "The importer starts");
        m_sinceStart.start();
    }

    /// Waits until it has told this for the @p count-th time; the time since the start.
    Moment waitFor(char letter, qsizetype count = 1)
    {
        while (m_said.count(letter) < count && m_process.waitForReadyRead(20'000))
            m_said += m_process.readAllStandardOutput();
        return Moment(m_sinceStart.nsecsElapsed() / 1000);
    }
    /// Waits until it ends by itself; the time since the start.
    Moment waitForEnd()
    {
        m_process.waitForFinished(20'000);
        m_said += m_process.readAllStandardOutput();
        return Moment(m_sinceStart.nsecsElapsed() / 1000);
    }
    void killAfter(Moment wait)
    {
        std::this_thread::sleep_for(wait);
        ::kill(pid_t(m_process.processId()), SIGKILL);
        waitForEnd();
    }

    bool hasEndedWell() const
    {
        return m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    }
    const QByteArray &said() const { return m_said; }

private:
    QProcess m_process;
    QElapsedTimer m_sinceStart;
    QByteArray m_said;
};

/// How long the parts of an import take that nobody kills.
struct Durations
{
    Moment whole;
    Moment save;
    Moment closing;
    qsizetype pieces = 0; ///< Of the reading.
};

/// How often an import was killed where, and what was found then.
struct Tally
{
    int beforeTheImport = 0;
    int reading = 0;
    int saving = 0;
    int savedWhenKilledInSave = 0;
    int afterwards = 0;
    QByteArrayList problems;
};

} // namespace

class tst_ImportSurvivesKill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void allOfItIsThereOrNothing();

private:
    /// A copy of the journal, each time in the same place.
    QString freshJournal() const;
    Moment randomUpTo(Moment longest)
    {
        return Moment(qint64(m_random() % quint64(longest.count() + 1)));
    }
    void killSomewhere(Importer &importer, int kill);
    void look(const QByteArray &said, const JournalState &found);
    void importAgain();

    QTemporaryDir m_folder;
    QString m_package;
    QString m_journal;
    JournalState m_before;
    JournalState m_after;
    Durations m_durations;
    std::mt19937 m_random{seed};
    Tally m_tally;
};

void tst_ImportSurvivesKill::initTestCase()
{
    makeJournal(m_folder.filePath(u"original"_s));
    m_package = m_folder.filePath(u"Mine.tembrabackup"_s);
    QVERIFY(BackupDocument{backupOfManyMeetings()}.write(m_package));
    m_journal = m_folder.filePath(u"journal"_s);
    m_before = stateOf(freshJournal());
    QCOMPARE(m_before.counts, (QList<qint64>{3, 15, 135, 1}));
    QCOMPARE(m_before.integrity, "ok");

    // The first run warms up; the second one is measured.
    for (int run = 0; run < 2; ++run) {
        Importer importer(freshJournal(), m_package);
        const Moment saves = importer.waitFor('S');
        const Moment saved = importer.waitFor('D');
        const Moment ended = importer.waitForEnd();
        QVERIFY(importer.hasEndedWell());
        m_durations = {ended, saved - saves, ended - saved, importer.said().count('R')};
    }
    m_after = stateOf(m_journal);
    constexpr int meetings = teammatesInBackup * meetingsOfEach;
    // Four of the nine notes that each meeting is made with are replaced, and stay.
    QCOMPARE(m_after.counts,
             (QList<qint64>{3 + teammatesInBackup, 15 + meetings, 135 + 13 * meetings, 8}));
    QCOMPARE(m_after.integrity, "ok");
    QVERIFY(m_durations.pieces > 20);
}

QString tst_ImportSurvivesKill::freshJournal() const
{
    QDir(m_journal).removeRecursively();
    QDir().mkpath(m_journal);
    const QString original = m_folder.filePath(u"original/Vum.sqlite"_s);
    require(QFile::copy(original, m_journal + u"/Vum.sqlite"_s), "The journal can be copied");
    return m_journal;
}

/// Anywhere in the whole run, and as often in each of the parts that matter most.
void tst_ImportSurvivesKill::killSomewhere(Importer &importer, int kill)
{
    switch (kill % 5) {
    case 0:
        return importer.killAfter(randomUpTo(m_durations.whole * 11 / 10));
    case 1:
        importer.waitFor('R', 1 + qsizetype(m_random() % quint64(m_durations.pieces)));
        return importer.killAfter(randomUpTo(Moment(2000)));
    case 2:
        importer.waitFor('D');
        return importer.killAfter(randomUpTo(m_durations.closing));
    case 3:
        importer.waitFor('S');
        return importer.killAfter(randomUpTo(m_durations.save * 5 / 4));
    default:
        // The journal changes hands early in the save.
        importer.waitFor('S');
        return importer.killAfter(randomUpTo(randomUpTo(m_durations.save)));
    }
}

void tst_ImportSurvivesKill::look(const QByteArray &said, const JournalState &found)
{
    const bool hasAll = found == m_after;
    const bool wasSaving = said.contains('S') && !said.contains('D');
    m_tally.beforeTheImport += !said.contains('O');
    m_tally.reading += said.contains('O') && !said.contains('S');
    m_tally.saving += wasSaving;
    m_tally.savedWhenKilledInSave += wasSaving && hasAll;
    m_tally.afterwards += said.contains('D');
    const bool mustHaveAll = said.contains('D');
    const bool mayHaveAll = said.contains('S');
    if (hasAll ? mayHaveAll : found == m_before && !mustHaveAll)
        return;
    QByteArrayList counts;
    for (const qint64 count : found.counts)
        counts.append(QByteArray::number(count));
    m_tally.problems.append("Killed after " + said.last(std::min<qsizetype>(said.size(), 3)) + ": "
                            + counts.join('/') + " rows, " + found.integrity);
}

/// What was left must also bear the next import.
void tst_ImportSurvivesKill::importAgain()
{
    const QList<qint64> before = stateOf(m_journal).counts;
    Importer importer(m_journal, m_package);
    importer.waitForEnd();
    const JournalState after = stateOf(m_journal);
    if (!importer.hasEndedWell() || after.integrity != "ok"
        || after.counts.value(1) != before.value(1) + teammatesInBackup * meetingsOfEach
        || after.counts.value(3) != 8)
        m_tally.problems.append("The next import does not work: " + after.integrity);
}

void tst_ImportSurvivesKill::allOfItIsThereOrNothing()
{
    qInfo("Seed %u; an import takes %lld ms, of which its save %lld and closing %lld", seed,
          qlonglong(m_durations.whole.count() / 1000), qlonglong(m_durations.save.count() / 1000),
          qlonglong(m_durations.closing.count() / 1000));
    for (int kill = 0; kill < kills; ++kill) {
        QByteArray said;
        {
            Importer importer(freshJournal(), m_package);
            killSomewhere(importer, kill);
            said = importer.said();
        }
        look(said, stateOf(m_journal));
        if (kill % killsBetweenSecondImports == 0)
            importAgain();
    }
    qInfo("Killed before the import %d, reading %d, saving %d (of which %d were saved), afterwards "
          "%d",
          m_tally.beforeTheImport, m_tally.reading, m_tally.saving, m_tally.savedWhenKilledInSave,
          m_tally.afterwards);
    QVERIFY2(m_tally.problems.isEmpty(), m_tally.problems.mid(0, 20).join('\n').constData());
    // Otherwise the above has shown little.
    QVERIFY(m_tally.reading > kills / 8);
    QVERIFY(m_tally.saving > kills / 8);
    QVERIFY(m_tally.afterwards > kills / 8);
}

QTEST_GUILESS_MAIN(tst_ImportSurvivesKill)
#include "tst_ImportSurvivesKill.moc"
