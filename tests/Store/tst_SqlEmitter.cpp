#include "QueryJournal.h"

#include "Store/File/Connection.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(tembra::FetchRequest)

namespace {

const ObjectID counterpart{counterpartEntity, 1};
const ObjectID tag{tagEntity, 5};
const Date date{4};
const SortDescriptor newestFirst{"date", false};

FetchRequest ask(const QByteArray &entity, QStringView format,
                 const QList<PredicateArgument> &arguments, const QList<SortDescriptor> &sort = {})
{
    return {.entityName = entity,
            .predicate = Predicate::fixed(format, arguments),
            .sortDescriptors = sort};
}

} // namespace

class tst_SqlEmitter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void joinsATableOnce_data();
    void joinsATableOnce();
    void aSearchForNothingFindsAnyText();
    void refusesWhatDoesNotFitTheModel_data();
    void refusesWhatDoesNotFitTheModel();
    void usesIndexes_data();
    void usesIndexes();
    void notesOfAnyTeammateAreNotSorted();
    void neverSplicesArguments();
    void bindsInTheOrderOfThePlaceholders();
    void findsNoMoreThanTheLimit();
    void staysWithinSqlitesDepth();
    void tellsNamesApartFromSql();
};

void tst_SqlEmitter::joinsATableOnce_data()
{
    QTest::addColumn<FetchRequest>("request");
    QTest::addColumn<int>("joins");

    QTest::newRow("everything") << FetchRequest{.entityName = "Tag"} << 0;
    QTest::newRow("sorted and limited")
        << FetchRequest{.entityName = "Tag",
                        .sortDescriptors = {{"name", false}, {"emoji", true}},
                        .fetchLimit = 3}
        << 0;
    QTest::newRow("the last key of a path needs no join")
        << ask("Note", u"session.counterpart == %@", {counterpart}) << 1;
    QTest::newRow("one join per prefix")
        << ask("Note",
               u"session.date < %@ AND session.date > %@ AND session.counterpart.name == NULL",
               {date, date}, {{"session.date", true}})
        << 2;
    QTest::newRow("ANY is no join") << ask("Session", u"counterpart == %@ AND ANY tags == %@",
                                           {counterpart, tag}, {newestFirst})
                                    << 0;
    QTest::newRow("ANY through a join table")
        << ask("Session", u"ANY tags.name == %@", {u"x"_s}, {newestFirst}) << 1;
    QTest::newRow("a search") << ask(
        "Session", u"counterpart == %@ AND ANY notes.contentString CONTAINS[cd] %@",
        {counterpart, u"x"_s}) << 0;
    QTest::newRow("what is and what is not")
        << ask("Note", u"NOT (identifier == %d OR contentString != %@) AND session == NULL",
               {qint64(1), u"x"_s})
        << 0;
    QTest::newRow("missing arguments")
        << ask("Note", u"session == %@ AND contentString != %@ AND identifier < NULL",
               {ObjectID{}, QString()})
        << 0;
}

/// What the requests mean is compared with a plain evaluation in tst_PredicateEvaluation.
void tst_SqlEmitter::joinsATableOnce()
{
    QFETCH(FetchRequest, request);
    QFETCH(int, joins);
    const auto statement = compileFetch(queryModel(), request);
    QVERIFY(statement);
    QCOMPARE(int(statement->sql.count(" JOIN ")), joins);
    QCOMPARE(statement->bindings.size(), size_t(statement->sql.count('?')));
    QVERIFY(QueryJournal().fetchKeys(request));
}

void tst_SqlEmitter::aSearchForNothingFindsAnyText()
{
    QueryJournal journal;
    const qint64 empty = journal.insert(noteEntity, {qint64(0), u""_s, Value()});
    const qint64 filled = journal.insert(noteEntity, {qint64(1), u"x"_s, Value()});
    journal.insert(noteEntity, {qint64(2), Value(), Value()});
    for (const QString &nothing : {u""_s, u"\u0301"_s})
        QCOMPARE(*journal.fetchKeys(ask("Note", u"contentString CONTAINS[cd] %@", {nothing})),
                 (std::vector<qint64>{empty, filled}));
    QCOMPARE(*journal.fetchKeys(ask("Note", u"contentString CONTAINS[cd] %@", {u"X"_s})),
             std::vector<qint64>{filled});
}

void tst_SqlEmitter::refusesWhatDoesNotFitTheModel_data()
{
    QTest::addColumn<FetchRequest>("request");
    QTest::addColumn<QString>("reason");

    QTest::newRow("unknown entity") << FetchRequest{.entityName = "Person"} << u"“Person”"_s;
    QTest::newRow("unknown key") << ask("Tag", u"colour == NULL", {}) << u"Tag has no “colour”"_s;
    QTest::newRow("unknown key further on")
        << ask("Note", u"session.colour == NULL", {}) << u"Session has no “colour”"_s;
    QTest::newRow("beyond an attribute")
        << ask("Tag", u"name.length == NULL", {}) << u"nothing comes after an attribute"_s;
    QTest::newRow("to-many without ANY") << ask("Session", u"tags == %@", {tag}) << u"takes ANY"_s;
    QTest::newRow("ANY without to-many")
        << ask("Session", u"ANY date == %@", {date}) << u"ANY takes a to-many"_s;
    QTest::newRow("two to-manys") << ask("Session", u"ANY tags.sessions == NULL", {})
                                  << u"more than one to-many"_s;
    QTest::newRow("record of another entity")
        << ask("Session", u"counterpart == %@", {tag}) << u"of another kind"_s;
    QTest::newRow("text for a date")
        << ask("Session", u"date == %@", {u"x"_s}) << u"of another kind"_s;
    QTest::newRow("integer for a text")
        << ask("Tag", u"name == %d", {qint64(1)}) << u"of another kind"_s;
    QTest::newRow("date for a record")
        << ask("Session", u"ANY tags == %@", {date}) << u"of another kind"_s;
    QTest::newRow("order of records")
        << ask("Session", u"counterpart < %@", {counterpart}) << u"records have no order"_s;
    QTest::newRow("text of records")
        << ask("Session", u"counterpart CONTAINS[cd] NULL", {}) << u"records have no order"_s;
    QTest::newRow("sort by a relationship")
        << FetchRequest{.entityName = "Session", .sortDescriptors = {{"counterpart", true}}}
        << u"cannot be sorted by “counterpart”"_s;
    QTest::newRow("sort through a to-many")
        << FetchRequest{.entityName = "Session", .sortDescriptors = {{"tags.name", true}}}
        << u"cannot be sorted by “tags.name”"_s;
    QTest::newRow("sort by an unknown key")
        << FetchRequest{.entityName = "Session", .sortDescriptors = {{"", true}}}
        << u"Session has no “”"_s;
}

void tst_SqlEmitter::refusesWhatDoesNotFitTheModel()
{
    QFETCH(FetchRequest, request);
    QFETCH(QString, reason);
    const auto statement = compileFetch(queryModel(), request);
    QVERIFY(!statement);
    QVERIFY2(statement.error().message.contains(reason), qPrintable(statement.error().message));
}

void tst_SqlEmitter::usesIndexes_data()
{
    QTest::addColumn<FetchRequest>("request");
    QTest::addColumn<QByteArrayList>("indexes");
    QTest::addColumn<bool>("isSortedByIndex");

    const auto lastEntry = u"session.counterpart == %@ AND identifier == %d AND contentString != "
                           u"%@ AND contentString != NULL";
    const auto window =
        u"session.date < %@ AND session.date > %@ AND identifier == %d AND contentString != %@ AND "
        u"contentString != NULL";
    using Indexes = QByteArrayList;

    QTest::newRow("meetings of a teammate")
        << ask("Session", u"counterpart == %@", {counterpart}, {newestFirst})
        << Indexes{"session_counterpart_date"} << true;
    QTest::newRow("with a tag") << ask("Session", u"counterpart == %@ AND ANY tags == %@",
                                       {counterpart, tag}, {newestFirst})
                                << Indexes{"session_counterpart_date", "(session=? AND tag=?)"}
                                << true;
    QTest::newRow("with two tags")
        << ask("Session", u"counterpart == %@ AND ANY tags == %@ AND ANY tags == %@",
               {counterpart, tag, tag}, {newestFirst})
        << Indexes{"session_tag_tag", "(session=? AND tag=?)"} << false;
    QTest::newRow("found") << ask("Session",
                                  u"counterpart == %@ AND ANY notes.contentString CONTAINS[cd] %@",
                                  {counterpart, u"x"_s}, {newestFirst})
                           << Indexes{"session_counterpart_date", "note_filled"} << true;
    QTest::newRow("carrying a tag") << ask("Session", u"ANY tags == %@", {tag}, {newestFirst})
                                    << Indexes{"session_tag_tag"} << false;
    // The order of the meetings comes from the index; only notes of one moment are sorted.
    QTest::newRow("last entry") << ask("Note", lastEntry, {counterpart, qint64(3), u""_s},
                                       {{"session.date", false}})
                                << Indexes{"session_counterpart_date", "note_filled"} << true;
    QTest::newRow("window") << ask("Note", window, {date, date, qint64(3), u""_s})
                            << Indexes{"session_date", "note_filled"} << false;
    QTest::newRow("notes of a teammate")
        << ask("Note", u"session.counterpart == %@", {counterpart})
        << Indexes{"session_counterpart_date", "note_session_identifier"} << false;
    QTest::newRow("range") << ask("Session", u"date < %@ AND date > %@", {date, date})
                           << Indexes{"session_date"} << false;
    QTest::newRow("range by date")
        << ask("Session", u"date < %@ AND date > %@", {date, date}, {newestFirst})
        << Indexes{"session_date"} << true;
    QTest::newRow("flagged") << ask("Session", u"flag > %d", {qint64(0)}) << Indexes{"session_flag"}
                             << false;
}

/// No table is read from end to end, and no longer list is sorted than must be.
void tst_SqlEmitter::usesIndexes()
{
    QFETCH(FetchRequest, request);
    QFETCH(QByteArrayList, indexes);
    QFETCH(bool, isSortedByIndex);
    const QByteArray plan = QueryJournal().plan(request);
    QVERIFY2(!plan.contains("SCAN"), plan.constData());
    for (const QByteArray &index : indexes)
        QVERIFY2(plan.contains(index), plan.constData());
    QCOMPARE(!plan.contains("TEMP B-TREE FOR ORDER BY"), isSortedByIndex);
}

/// They are nearly all: then reading the table is quickest, in the order of its keys.
void tst_SqlEmitter::notesOfAnyTeammateAreNotSorted()
{
    const QByteArray plan = QueryJournal().plan(ask("Note", u"session.counterpart != NULL", {}));
    QVERIFY2(!plan.contains("TEMP B-TREE"), plan.constData());
}

void tst_SqlEmitter::neverSplicesArguments()
{
    const QString sly = u"x'); DROP TABLE note; --"_s;
    QueryJournal journal;
    const qint64 note = journal.insert(noteEntity, {qint64(0), sly, Value()});
    const FetchRequest request = ask("Note",
                                     u"contentString == %@ AND contentString CONTAINS[cd] %@",
                                     {sly, sly});
    const auto statement = compileFetch(journal.model, request);
    QVERIFY(!statement->sql.contains("DROP"));
    QCOMPARE(*journal.fetchKeys(request), std::vector<qint64>{note});
}

void tst_SqlEmitter::bindsInTheOrderOfThePlaceholders()
{
    const FetchRequest request{
        .entityName = "Session",
        .predicate = Predicate::fixed(
            u"date < %@ AND ANY notes.contentString CONTAINS[cd] %@ AND counterpart == %@",
            {date, u"x"_s, counterpart}),
        .fetchLimit = 7};
    const auto statement = compileFetch(queryModel(), request);
    const std::vector<Value> expected{4.0, u"x"_s, qint64(1), qint64(7)};
    QVERIFY(statement->bindings == expected);
}

void tst_SqlEmitter::findsNoMoreThanTheLimit()
{
    QueryJournal journal;
    for (int i = 0; i < 5; ++i)
        journal.insert(tagEntity, {Value(), Value(), Value()});
    QCOMPARE(journal.fetchKeys({.entityName = "Tag"})->size(), size_t(5));
    QCOMPARE(journal.fetchKeys({.entityName = "Tag", .fetchLimit = 3})->size(), size_t(3));
    QCOMPARE(journal.fetchKeys({.entityName = "Tag", .fetchLimit = 30})->size(), size_t(5));
}

/// SQLite's parser has a stack of its own; the deepest format there is must fit in.
void tst_SqlEmitter::staysWithinSqlitesDepth()
{
    const QueryJournal journal;
    for (const QString &nesting :
         {u"flag == NULL AND (%1)"_s, u"NOT %1"_s, u"NOT (flag == NULL OR %1)"_s}) {
        QString deepest;
        QString format = u"ANY notes.contentString CONTAINS[cd] %@"_s;
        for (int depth = 0; depth < 100 && Predicate::withFormat(format, {u"x"_s}); ++depth) {
            deepest = format;
            format = nesting.arg(format);
        }
        QVERIFY(deepest.size() < format.size());
        const Predicate all = Predicate::andPredicate(
            {Predicate::fixed(u"date != NULL", {}), Predicate::fixed(deepest, {u"x"_s})});
        QVERIFY2(journal.fetchKeys({.entityName = "Session", .predicate = all}),
                 qPrintable(deepest));
    }
}

void tst_SqlEmitter::tellsNamesApartFromSql()
{
    const EntityDescription odd{"Odd", "odd \"table", {{"order", AttributeType::Text}}};
    const auto statement = compileFetch({{odd}, {}}, {.entityName = "Odd",
                                                      .sortDescriptors = {{"order", true}}});
    QVERIFY(statement);
    const QTemporaryDir folder;
    const auto connection = Connection::open(folder.filePath(u"odd.sqlite"_s),
                                             Connection::Mode::Create);
    QVERIFY(connection);
    QVERIFY((*connection)->execute(R"(CREATE TABLE "odd ""table" (id INTEGER, "order" TEXT))"));
    QVERIFY((*connection)->prepare(statement->sql));
}

QTEST_GUILESS_MAIN(tst_SqlEmitter)
#include "tst_SqlEmitter.moc"
