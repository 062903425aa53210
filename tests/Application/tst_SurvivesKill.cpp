#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "JournalContents.h"
#include "Store/Objects/PersistentContainer.h"
#include "WriterLog.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <random>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr unsigned seed = 20261120;
constexpr int kills = 200;
constexpr int journals = 8;
constexpr int earliestKill = 20;
constexpr int latestKill = 4000;

qint64 steadyNow()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return qint64(std::chrono::nanoseconds(now).count());
}

/// How often what happened.
struct Tally
{
    int kills = 0;
    int withConfirmedSave = 0;
    int withOldDrafts = 0;
    QByteArrayList problems;
};

/// A journal that is written to, killed and looked at, again and again.
class KilledJournal : public QObject
{
    Q_OBJECT

public:
    KilledJournal(std::mt19937 &random, Tally &tally, int &killsLeft)
        : m_random(random)
        , m_tally(tally)
        , m_killsLeft(killsLeft)
    {
        m_writer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        connect(&m_writer, &QProcess::finished, this, &KilledJournal::look);
    }

    void startWriter()
    {
        if (m_killsLeft == 0) {
            Q_EMIT finished();
            return;
        }
        --m_killsLeft;
        m_killTime = 0;
        const QString manner = m_random() % 2 == 0 ? u"types"_s : u"does-everything"_s;
        m_writer.start(QStringLiteral(JOURNAL_WRITER),
                       {m_folder.path(), QString::number(m_random()), manner});
        const int wait = earliestKill + int(m_random() % unsigned(latestKill - earliestKill));
        QTimer::singleShot(wait, this, [this] {
            m_killTime = steadyNow();
            m_writer.kill();
        });
    }

Q_SIGNALS:
    void finished();

private:
    void look(int exitCode)
    {
        if (m_killTime == 0) {
            m_tally.problems.append("The writer ended by itself, with status "
                                    + QByteArray::number(exitCode));
            Q_EMIT finished();
            return;
        }
        const WriterLog log(m_contents, m_writer.readAllStandardOutput());
        ++m_tally.kills;
        m_tally.withConfirmedSave += log.hasConfirmedSave();
        m_tally.withOldDrafts += log.hasOldDrafts(m_killTime);
        if (!readJournal()) {
            Q_EMIT finished();
            return;
        }
        m_tally.problems += log.differences(m_contents, m_killTime);
        startWriter();
    }

    bool readJournal()
    {
        const auto folder = DataFolder::forOptions({.dataDirectory = m_folder.path()});
        ProgramServices services(*folder);
        bool opens = true;
        services.coreData.setStopProgram([&](const QString &reason, const PersistentContainer &) {
            opens = false;
            m_tally.problems.append("The store does not open: " + reason.toUtf8());
            throw StoreIsBroken();
        });
        try {
            m_contents = contentsOf(services.coreData.viewContext());
        } catch (const StoreIsBroken &) {
        }
        return opens;
    }

    struct StoreIsBroken
    {
    };

    std::mt19937 &m_random;
    Tally &m_tally;
    int &m_killsLeft;
    QTemporaryDir m_folder;
    QProcess m_writer;
    qint64 m_killTime = 0;
    JournalContents m_contents;
};

} // namespace

class tst_SurvivesKill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLost();
    void theLogFindsWhatIsMissing();
};

void tst_SurvivesKill::nothingIsLost()
{
    qInfo("Seed %u", seed);
    std::mt19937 random(seed);
    Tally tally;
    int killsLeft = kills;
    int running = journals;
    QEventLoop loop;
    std::vector<std::unique_ptr<KilledJournal>> all;
    for (int i = 0; i < journals; ++i) {
        all.push_back(std::make_unique<KilledJournal>(random, tally, killsLeft));
        connect(all.back().get(), &KilledJournal::finished, &loop, [&] {
            if (--running == 0)
                loop.quit();
        });
        all.back()->startWriter();
    }
    loop.exec();
    qInfo(
        "%d kills, %d of them after a confirmed save, %d with unsaved edits older than two seconds",
        tally.kills, tally.withConfirmedSave, tally.withOldDrafts);
    QVERIFY2(tally.problems.isEmpty(), tally.problems.mid(0, 20).join('\n').constData());
    QCOMPARE(tally.kills, kills);
    // Otherwise the above has shown little.
    QVERIFY(tally.withConfirmedSave > kills / 4);
    QVERIFY(tally.withOldDrafts > kills / 8);
}

void tst_SurvivesKill::theLogFindsWhatIsMissing()
{
    const qint64 second = 1'000'000'000;
    const JournalContents before{{"N1", "=old"}};
    const WriterLog log(
        before,
        "W N1 =a\nD 1000000000\nS\nW N1 =b\nD 2000000000\nW N1 =c\nD 3000000000\nW N1 =d\n");
    const auto isRight = [&](const QByteArray &found, qint64 killTime) {
        return log.differences({{"N1", found}}, killTime).isEmpty();
    };
    QVERIFY(!isRight("=old", 3 * second)); // A confirmed save was lost.
    QVERIFY(isRight("=a", 3 * second));
    QVERIFY(!isRight("=a", 4 * second)); // "=b" is two seconds old.
    QVERIFY(isRight("=b", 4 * second));
    QVERIFY(isRight("=d", 4 * second)); // Announced, so it may have happened.
    QVERIFY(!isRight("=x", 4 * second));
    QVERIFY(!log.differences({}, 3 * second).isEmpty());
    QVERIFY(!log.differences({{"N1", "=c"}, {"N2", "=c"}}, 3 * second).isEmpty());
}

QTEST_GUILESS_MAIN(tst_SurvivesKill)
#include "tst_SurvivesKill.moc"
