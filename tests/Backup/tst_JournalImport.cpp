#include "Backup/JournalImport.h"

#include "Model/JournalEncoding.h"
#include "Model/JournalQueries.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "support/JournalFixture.h"
#include "support/RecordCount.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

const QByteArray twoTeammates =
    R"json([{"name":"Ana","sessions":[{"date":1,"tags":[{"emoji":"🚀","name":"launch"}],
    "notes":[{"identifier":0,"contentString":"x"},{"identifier":1,"contentString":null}]},
    {"date":2,"tags":[{"emoji":"🚀","name":"launch"}]}]},{"name":"Ben"}])json";

bool goOn(double)
{
    return true;
}

} // namespace

class tst_JournalImport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_journal = std::make_unique<JournalFixture>(); }
    void cleanup() { m_journal.reset(); }

    void countsWhatIsInABackup()
    {
        const auto counts = inspectJournal(twoTeammates);
        QVERIFY(counts);
        QCOMPARE(counts->teammates, 2);
        QCOMPARE(counts->sessions, 2);
        QCOMPARE(counts->notes, 1);
        QCOMPARE(counts->tags, 1); // The same one on both meetings.
        QCOMPARE(inspectJournal("[]")->teammates, 0);
    }

    void saysWhereAMistakeIs_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("place");
        const auto row = [](const char *name, const char *json, const char *place) {
            QTest::newRow(name) << QByteArray(json) << QString::fromUtf8(place);
        };
        row("a meeting's date", R"([{},{"sessions":[{},{"date":"x"}]}])",
            "teammate 2, session 2, date: ");
        row("a note", R"([{"sessions":[{"notes":[{},{"identifier":40000}]}]}])",
            "teammate 1, session 1, note 2, identifier: ");
        row("a tag", R"([{"sessions":[{"tags":[{"emoji":1}]}]}])",
            "teammate 1, session 1, tag 1, emoji: ");
        row("a teammate", R"([{"name":[]}])", "teammate 1, name: ");
        row("no list", R"({})", "");
        row("nothing", "", "");
        row("cut off", "[{\"name\":\"A", "");
        row("more behind it", "[] x", "");
    }
    void saysWhereAMistakeIs()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, place);
        const auto counts = inspectJournal(json);
        QVERIFY(!counts);
        QVERIFY2(counts.error().message.startsWith(place), qPrintable(counts.error().message));
        // An import says the same, and changes nothing.
        const auto context = background();
        const auto imported = importJournal(json, *context, goOn);
        QVERIFY(!imported);
        QCOMPARE(imported.error().message, counts.error().message);
        QVERIFY(m_journal->counterparts().isEmpty());
    }

    void bringsEverythingIn()
    {
        const auto context = background();
        const auto counts = importJournal(twoTeammates, *context, goOn);
        QVERIFY(counts);
        QCOMPARE(counts->teammates, 2);
        QCOMPARE(counts->sessions, 2);
        const auto counterparts = m_journal->counterparts();
        QCOMPARE(counterparts.size(), 2);
        QCOMPARE(counterparts.first()->name(), u"Ana"_s);
        const auto newest = counterparts.first()->mostRecentSession();
        QCOMPARE(newest->date(), OptionalDate(Date{2}));
        QCOMPARE(newest->tags().size(), 1);
        QCOMPARE(newest->tags().first()->sessions().size(), 2);
    }

    void twiceIsEverythingTwiceButTags()
    {
        for (int round = 0; round < 2; ++round)
            QVERIFY(importJournal(twoTeammates, *background(), goOn));
        QCOMPARE(m_journal->counterparts().size(), 4);
        QCOMPARE(recordCount(m_journal->context(), JournalQueries::allTags()), 1);
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Session"}), 4);
    }

    void tagsOfThisMomentMergeToo()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Cem"_s), 1);
        const auto tag = m_journal->addTag(session, u"launch"_s, u"🚀"_s);
        QVERIFY(m_journal->context().hasChanges()); // Not saved, but a draft.
        QVERIFY(m_journal->context().writeDrafts());
        QVERIFY(importJournal(twoTeammates, *background(), goOn));
        QCOMPARE(recordCount(m_journal->context(), JournalQueries::allTags()), 1);
        QCOMPARE(tag->sessions().size(), 3);
    }

    void anEmptyBackupChangesNothing()
    {
        const auto counts = importJournal("[]", *background(), goOn);
        QVERIFY(counts);
        QCOMPARE(counts->teammates, 0);
        QVERIFY(m_journal->counterparts().isEmpty());
    }

    void canBeCancelledAtAnyRecord()
    {
        QByteArray json = R"([{"sessions":[{})";
        for (int i = 0; i < 2000; ++i)
            json += ",{}";
        json += "]}]";
        int questions = 0;
        QVERIFY(importJournal(json, *background(), [&](double) { return ++questions > 0; }));
        QVERIFY(questions > 2000); // At every record.
        const int sessions = int(recordCount(m_journal->context(), {.entityName = "Session"}));
        for (int stop = 1; stop <= questions; stop += 199) {
            int left = stop;
            QVERIFY(!importJournal(json, *background(), [&](double) { return --left > 0; }));
        }
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Session"}), sessions);
    }

    void aMistakeAtTheEndChangesNothing()
    {
        QByteArray json = R"([{"sessions":[{})";
        for (int i = 0; i < 2000; ++i)
            json += ",{}"; // Many pieces are written already.
        json += R"(,{"flag":70000}]}])";
        QVERIFY(!importJournal(json, *background(), goOn));
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Session"}), 0);
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Note"}), 0);
        QVERIFY(m_journal->counterparts().isEmpty());
    }

private:
    std::unique_ptr<ManagedObjectContext> background()
    {
        // What it saves is to be seen here.
        auto made = m_journal->coreData().persistentContainer().newBackgroundContext();
        return made ? std::move(*made) : nullptr;
    }

    std::unique_ptr<JournalFixture> m_journal;
};

QTEST_GUILESS_MAIN(tst_JournalImport)

#include "tst_JournalImport.moc"
