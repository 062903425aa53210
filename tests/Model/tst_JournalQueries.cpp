#include "Model/JournalModel.h"
#include "Model/JournalQueries.h"
#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Query/FetchStatement.h"
#include "support/JournalFixture.h"

#include <QRegularExpression>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_JournalQueries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void questionsUseIndexes_data();
    void questionsUseIndexes();
};

namespace {

/// What SQLite means to do for a statement, a line a step.
QStringList planOf(const QString &storeFile, const FetchStatement &statement)
{
    const auto connection = Connection::open(storeFile, Connection::Mode::ReadWrite);
    const auto prepared = (*connection)->prepare("EXPLAIN QUERY PLAN " + statement.sql);
    for (size_t i = 0; i < statement.bindings.size(); ++i)
        (*prepared)->bind(int(i) + 1, statement.bindings[i]);
    QStringList plan;
    while ((*prepared)->step().value_or(false))
        plan.append(std::get<QString>((*prepared)->value(3)));
    return plan;
}

} // namespace

void tst_JournalQueries::questionsUseIndexes_data()
{
    QTest::addColumn<FetchRequest>("request");
    QTest::addColumn<QString>("index");
    QTest::addColumn<bool>("sorts");

    const ObjectID teammate{0, 1};
    const ObjectID tag{1, 2};
    const Date start{0};
    const Date end{1000};
    QTest::newRow("sessions of a teammate")
        << JournalQueries::sessions(teammate) << u"session_counterpart_date"_s << false;
    QTest::newRow("most recent session")
        << JournalQueries::mostRecentSession(teammate) << u"session_counterpart_date"_s << false;
    QTest::newRow("sessions with a tag")
        << JournalQueries::sessions(teammate, {tag}) << u"session_counterpart_date"_s << false;
    QTest::newRow("note search") << JournalQueries::sessions(teammate, {}, u"word"_s)
                                 << u"note_filled"_s << false;
    QTest::newRow("sessions carrying a tag")
        << JournalQueries::sessionsCarrying(tag) << u"session_tag_tag"_s << true;
    QTest::newRow("flagged sessions")
        << JournalQueries::flaggedSessions() << u"session_flag"_s << true;
    QTest::newRow("last entry of a field")
        << JournalQueries::filledNotes(teammate, 3) << u"note_filled"_s << true;
    QTest::newRow("entries in a window")
        << JournalQueries::filledNotesBetween(start, end, 3) << u"note_filled"_s << true;
    QTest::newRow("notes of one teammate")
        << JournalQueries::notes(teammate) << u"note_session_identifier"_s << true;
    QTest::newRow("sessions in a range")
        << JournalQueries::sessionsBetween(start, end) << u"session_date"_s << true;
}

void tst_JournalQueries::questionsUseIndexes()
{
    QFETCH(FetchRequest, request);
    QFETCH(QString, index);
    QFETCH(bool, sorts);
    JournalFixture journal;
    const PersistentContainer &container = journal.coreData().persistentContainer();
    const auto statement = compileFetch(container.model(), request);
    QVERIFY(statement.has_value());
    const QStringList plan = planOf(container.storeFile(), *statement);
    const QByteArray told = plan.join(u'\n').toUtf8();
    QVERIFY(!plan.isEmpty());
    QVERIFY2(plan.filter(index).size() > 0, told.constData());
    // Without an index to go by, SQLite would read a whole table.
    QVERIFY2(plan.filter(QRegularExpression(u"^SCAN "_s)).isEmpty(), told.constData());
    if (!sorts)
        QVERIFY2(plan.filter(u"TEMP B-TREE FOR ORDER BY"_s).isEmpty(), told.constData());
}

QTEST_GUILESS_MAIN(tst_JournalQueries)
#include "tst_JournalQueries.moc"
