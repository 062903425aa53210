#include "QueryJournal.h"

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
    void writesSql_data();
    void writesSql();
    void refusesWhatDoesNotFitTheModel_data();
    void refusesWhatDoesNotFitTheModel();
    void usesIndexes_data();
    void usesIndexes();
    void neverSplicesArguments();
    void bindsInTheOrderOfThePlaceholders();
    void findsNoMoreThanTheLimit();
    void staysWithinSqlitesDepth();
    void tellsNamesApartFromSql();
};

void tst_SqlEmitter::writesSql_data()
{
    QTest::addColumn<FetchRequest>("request");
    QTest::addColumn<QByteArray>("sql");

    QTest::newRow("everything") << FetchRequest{
        .entityName = "Tag"} << QByteArray(R"(SELECT t0."id" FROM "tag" AS t0 ORDER BY t0."id")");
    QTest::newRow("sorted")
        << FetchRequest{.entityName = "Tag", .sortDescriptors = {{"name", false}, {"emoji", true}}}
        << QByteArray(
               R"(SELECT t0."id" FROM "tag" AS t0 ORDER BY t0."name" DESC, t0."emoji", t0."id")");
    QTest::newRow("limited") << FetchRequest{.entityName = "Tag", .fetchLimit = 3}
                             << QByteArray(
                                    R"(SELECT t0."id" FROM "tag" AS t0 ORDER BY t0."id" LIMIT ?)");
    QTest::newRow("the last key of a path needs no join")
        << ask("Note", u"session.counterpart == %@", {counterpart})
        << QByteArray(
               R"(SELECT t0."id" FROM "note" AS t0 LEFT JOIN "session" AS t1 ON t1."id" = t0."session" )"
               R"(WHERE t1."counterpart" = ? ORDER BY +t0."id")");
    QTest::newRow("one join per prefix")
        << ask("Note",
               u"session.date < %@ AND session.date > %@ AND session.counterpart.name == NULL",
               {date, date}, {{"session.date", true}})
        << QByteArray(
               R"(SELECT t0."id" FROM "note" AS t0 LEFT JOIN "session" AS t1 ON t1."id" = t0."session" )"
               R"(LEFT JOIN "counterpart" AS t2 ON t2."id" = t1."counterpart" )"
               R"(WHERE t1."date" < ? AND t1."date" > ? AND t2."name" IS NULL ORDER BY t1."date", t0."id")");
    QTest::newRow("ANY as a test")
        << ask("Session", u"counterpart == %@ AND ANY tags == %@", {counterpart, tag},
               {newestFirst})
        << QByteArray(
               R"(SELECT t0."id" FROM "session" AS t0 WHERE t0."counterpart" = ? AND )"
               R"(EXISTS (SELECT 1 FROM "session_tag" AS t1 WHERE t1."session" = t0."id" AND t1."tag" = ?) )"
               R"(ORDER BY t0."date" DESC, t0."id")");
    QTest::newRow("two ANYs: the first is the way in, and the plain one a test")
        << ask("Session", u"counterpart == %@ AND ANY tags == %@ AND ANY tags == %@",
               {counterpart, tag, tag}, {newestFirst})
        << QByteArray(
               R"(SELECT t0."id" FROM "session" AS t0 WHERE +t0."counterpart" = ? AND )"
               R"(t0."id" IN (SELECT t1."session" FROM "session_tag" AS t1 WHERE t1."tag" = ?) AND )"
               R"(EXISTS (SELECT 1 FROM "session_tag" AS t2 WHERE t2."session" = t0."id" AND t2."tag" = ?) )"
               R"(ORDER BY t0."date" DESC, t0."id")");
    QTest::newRow("ANY as the way in")
        << ask("Session", u"ANY tags == %@", {tag}, {newestFirst})
        << QByteArray(
               R"(SELECT t0."id" FROM "session" AS t0 WHERE )"
               R"(t0."id" IN (SELECT t1."session" FROM "session_tag" AS t1 WHERE t1."tag" = ?) )"
               R"(ORDER BY t0."date" DESC, t0."id")");
    QTest::newRow("a search")
        << ask("Session", u"counterpart == %@ AND ANY notes.contentString CONTAINS[cd] %@",
               {counterpart, u"x"_s})
        << QByteArray(R"(SELECT t0."id" FROM "session" AS t0 WHERE t0."counterpart" = ? AND )"
                      R"(EXISTS (SELECT 1 FROM "note" AS t1 WHERE t1."session" = t0."id" AND )"
                      R"(t1."contentString" IS NOT NULL AND t1."contentString" IS NOT '' AND )"
                      R"(text_contains(t1."contentString", ?)) ORDER BY +t0."id")");
    QTest::newRow("a search for nothing finds any text")
        << ask("Note", u"contentString CONTAINS[cd] %@", {u"\u0301"_s})
        << QByteArray(
               R"(SELECT t0."id" FROM "note" AS t0 WHERE t0."contentString" IS NOT NULL ORDER BY t0."id")");
    QTest::newRow("what is and what is not")
        << ask("Note", u"NOT (identifier == %d OR contentString != %@) AND session == NULL",
               {qint64(1), u"x"_s})
        << QByteArray(R"(SELECT t0."id" FROM "note" AS t0 WHERE )"
                      R"(((t0."identifier" = ? OR t0."contentString" IS NOT ?)) IS NOT TRUE AND )"
                      R"(t0."session" IS NULL ORDER BY t0."id")");
    QTest::newRow("missing arguments")
        << ask("Note", u"session == %@ AND contentString != %@ AND identifier < NULL",
               {ObjectID{}, QString()})
        << QByteArray(R"(SELECT t0."id" FROM "note" AS t0 WHERE t0."session" IS NULL AND )"
                      R"(t0."contentString" IS NOT NULL AND FALSE ORDER BY t0."id")");
}

void tst_SqlEmitter::writesSql()
{
    QFETCH(FetchRequest, request);
    QFETCH(QByteArray, sql);
    const auto statement = compileFetch(queryModel(), request);
    QVERIFY(statement);
    QCOMPARE(statement->sql, sql);
    QCOMPARE(statement->bindings.size(), size_t(sql.count('?')));
    QVERIFY(QueryJournal().fetchKeys(request));
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
    QTest::addColumn<QByteArray>("plan");

    const auto lastEntry = u"session.counterpart == %@ AND identifier == %d AND contentString != "
                           u"%@ AND contentString != NULL";
    const auto window =
        u"session.date < %@ AND session.date > %@ AND identifier == %d AND contentString != %@ AND "
        u"contentString != NULL";
    const QByteArray byCounterpart =
        "SEARCH t0 USING COVERING INDEX session_counterpart_date (counterpart=?)\n";
    const QByteArray byTag =
        "CORRELATED SCALAR SUBQUERY 1\nSEARCH t1 USING PRIMARY KEY (session=? AND tag=?)\n";
    const QByteArray sorted = "USE TEMP B-TREE FOR ORDER BY\n";
    const QByteArray tiesSorted = "USE TEMP B-TREE FOR RIGHT PART OF ORDER BY\n";

    QTest::newRow("meetings of a teammate")
        << ask("Session", u"counterpart == %@", {counterpart}, {newestFirst}) << byCounterpart;
    QTest::newRow("with a tag") << ask("Session", u"counterpart == %@ AND ANY tags == %@",
                                       {counterpart, tag}, {newestFirst})
                                << QByteArray(byCounterpart + byTag);
    QTest::newRow("with two tags")
        << ask("Session", u"counterpart == %@ AND ANY tags == %@ AND ANY tags == %@",
               {counterpart, tag, tag}, {newestFirst})
        << QByteArray("SEARCH t0 USING INTEGER PRIMARY KEY (rowid=?)\nLIST SUBQUERY 1\n"
                      "SEARCH t1 USING COVERING INDEX session_tag_tag (tag=?)\n"
                      "CORRELATED SCALAR SUBQUERY 2\nSEARCH t2 USING PRIMARY KEY (session=? AND "
                      "tag=?)\n"
                      + sorted);
    QTest::newRow("found")
        << ask("Session", u"counterpart == %@ AND ANY notes.contentString CONTAINS[cd] %@",
               {counterpart, u"x"_s}, {newestFirst})
        << QByteArray(
               byCounterpart
               + "CORRELATED SCALAR SUBQUERY 1\nSEARCH t1 USING INDEX note_filled (session=?)\n");
    QTest::newRow("carrying a tag")
        << ask("Session", u"ANY tags == %@", {tag}, {newestFirst})
        << QByteArray("SEARCH t0 USING INTEGER PRIMARY KEY (rowid=?)\nLIST SUBQUERY 1\n"
                      "SEARCH t1 USING COVERING INDEX session_tag_tag (tag=?)\n"
                      + sorted);
    QTest::newRow("last entry")
        << ask("Note", lastEntry, {counterpart, qint64(3), u""_s}, {{"session.date", false}})
        << QByteArray("SEARCH t1 USING COVERING INDEX session_counterpart_date (counterpart=?)\n"
                      "SEARCH t0 USING INDEX note_filled (session=? AND identifier=?)\n"
                      + tiesSorted);
    QTest::newRow("window")
        << ask("Note", window, {date, date, qint64(3), u""_s})
        << QByteArray("SEARCH t1 USING COVERING INDEX session_date (date>? AND date<?)\n"
                      "SEARCH t0 USING INDEX note_filled (session=? AND identifier=?)\n"
                      + sorted);
    QTest::newRow("notes of a teammate")
        << ask("Note", u"session.counterpart == %@", {counterpart})
        << QByteArray("SEARCH t1 USING COVERING INDEX session_counterpart_date (counterpart=?)\n"
                      "SEARCH t0 USING COVERING INDEX note_session_identifier (session=?)\n"
                      + sorted);
    QTest::newRow("notes of any teammate, which are nearly all")
        << ask("Note", u"session.counterpart != NULL", {})
        << QByteArray("SCAN t0\nSEARCH t1 USING INTEGER PRIMARY KEY (rowid=?)\n");
    QTest::newRow("range")
        << ask("Session", u"date < %@ AND date > %@", {date, date})
        << QByteArray("SEARCH t0 USING COVERING INDEX session_date (date>? AND date<?)\n" + sorted);
    QTest::newRow("range by date")
        << ask("Session", u"date < %@ AND date > %@", {date, date}, {newestFirst})
        << QByteArray("SEARCH t0 USING COVERING INDEX session_date (date>? AND date<?)\n");
    QTest::newRow("flagged") << ask("Session", u"flag > %d", {qint64(0)})
                             << QByteArray("SEARCH t0 USING COVERING INDEX session_flag (flag>?)\n"
                                           + sorted);
}

void tst_SqlEmitter::usesIndexes()
{
    QFETCH(FetchRequest, request);
    QFETCH(QByteArray, plan);
    QCOMPARE(QueryJournal().plan(request), plan);
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
    const EntityDescription odd{"Odd", "odd \"table", {{"order", AttributeType::Text}}, {}, {}, {}};
    const auto statement = compileFetch({{odd}, {}}, {.entityName = "Odd",
                                                      .sortDescriptors = {{"order", true}}});
    QCOMPARE(statement->sql,
             QByteArray(R"(SELECT t0."id" FROM "odd ""table" AS t0 ORDER BY t0."order", t0."id")"));
}

QTEST_GUILESS_MAIN(tst_SqlEmitter)
#include "tst_SqlEmitter.moc"
