#include "PlainEvaluator.h"
#include "QueryJournal.h"

#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

namespace {

struct NamedRequest
{
    QByteArray name;
    FetchRequest request;
};

const SortDescriptor newestFirst{"date", false};

ObjectID randomRecord(QRandomGenerator &random, const QueryJournal &journal, int entity)
{
    const auto &rows = journal.rows[size_t(entity)];
    auto row = rows.begin();
    std::advance(row, random.bounded(int(rows.size())));
    return {entity, row->first};
}

/// Every question the program asks.
std::vector<NamedRequest> requests(QRandomGenerator &random, const QueryJournal &journal)
{
    const ObjectID counterpart = randomRecord(random, journal, counterpartEntity);
    const ObjectID tag = randomRecord(random, journal, tagEntity);
    const ObjectID otherTag = randomRecord(random, journal, tagEntity);
    const QString needle = randomText(random);
    const Date start{random.bounded(8) + 0.25};
    const Date end{random.bounded(8) + 0.25};
    const qint64 identifier = random.bounded(3);
    const Predicate ofCounterpart = Predicate::fixed(u"counterpart == %@", {counterpart});
    const Predicate withTag = Predicate::fixed(u"ANY tags == %@", {tag});
    const Predicate withOther = Predicate::fixed(u"ANY tags == %@", {otherTag});
    const Predicate found = Predicate::fixed(u"ANY notes.contentString CONTAINS[cd] %@", {needle});
    const Predicate lastEntry = Predicate::fixed(
        u"session.counterpart == %@ AND identifier == %d AND contentString != %@ AND contentString "
        u"!= NULL",
        {counterpart, identifier, u""_s});
    const Predicate window = Predicate::fixed(
        u"session.date < %@ AND session.date > %@ AND identifier == %d AND contentString != %@ AND "
        u"contentString != NULL",
        {end, start, identifier, u""_s});
    const auto sessions = [](QList<Predicate> parts, int limit = 0) {
        return FetchRequest{.entityName = "Session",
                            .predicate = Predicate::andPredicate(parts),
                            .sortDescriptors = {newestFirst},
                            .fetchLimit = limit};
    };
    return {
        {"meetings of a teammate", sessions({ofCounterpart})},
        {"meetings with a tag", sessions({ofCounterpart, withTag})},
        {"meetings with two tags", sessions({ofCounterpart, withTag, withOther})},
        {"meetings found", sessions({ofCounterpart, found})},
        {"meetings with a tag found", sessions({ofCounterpart, withTag, found})},
        {"most recent meeting", sessions({ofCounterpart}, 1)},
        {"meetings carrying a tag", sessions({withTag})},
        {"all tags",
         {.entityName = "Tag",
          .sortDescriptors = {{"name", false}},
          .returnsDistinctResults = true}},
        {"teammates by name", {.entityName = "Counterpart", .sortDescriptors = {{"name", true}}}},
        {"flagged meetings",
         {.entityName = "Session", .predicate = Predicate::fixed(u"flag > %d", {qint64(0)})}},
        {"last entry",
         {.entityName = "Note",
          .predicate = lastEntry,
          .sortDescriptors = {{"session.date", false}},
          .fetchLimit = 1}},
        {"entries",
         {.entityName = "Note",
          .predicate = lastEntry,
          .sortDescriptors = {{"session.date", false}}}},
        {"entries in a window", {.entityName = "Note", .predicate = window}},
        {"entries in a window by date",
         {.entityName = "Note", .predicate = window, .sortDescriptors = {{"session.date", true}}}},
        {"notes of a teammate",
         {.entityName = "Note",
          .predicate = Predicate::fixed(u"session.counterpart == %@", {counterpart})}},
        {"notes of any teammate",
         {.entityName = "Note", .predicate = Predicate::fixed(u"session.counterpart != NULL", {})}},
        {"meetings in a range",
         {.entityName = "Session",
          .predicate = Predicate::fixed(u"date < %@ AND date > %@", {end, start})}},
    };
}

/// Makes formats of the whole language on the entities of the journal.
class FormatMaker
{
public:
    FormatMaker(QRandomGenerator &random, const QueryJournal &journal)
        : m_random(random)
        , m_journal(journal)
    {
    }

    QString condition(int entity, int depth)
    {
        const int choice = depth == 0 ? 0 : m_random.bounded(4);
        if (choice == 0)
            return comparison(entity);
        const QString first = condition(entity, depth - 1);
        if (choice == 1)
            return QString("NOT "_L1 + first);
        const QString second = condition(entity, depth - 1);
        return QString(u'(' + first + (choice == 2 ? " AND "_L1 : " OR "_L1) + second + u')');
    }

    QList<PredicateArgument> arguments;

private:
    struct Path
    {
        const char16_t *text;
        int kind; ///< Entity of a record; or one of these:
    };
    enum { date = 100, integer, text };

    Path path(int entity)
    {
        static const std::vector<Path> paths[] = {
            {{u"name", text},
             {u"lastUpdate", date},
             {u"ANY sessions.date", date},
             {u"ANY sessions", sessionEntity},
             {u"ANY sessions.flag", integer}},
            {{u"name", text},
             {u"emoji", text},
             {u"lastUse", date},
             {u"ANY sessions", sessionEntity},
             {u"ANY sessions.counterpart", counterpartEntity},
             {u"ANY sessions.counterpart.name", text}},
            {{u"date", date},
             {u"flag", integer},
             {u"counterpart", counterpartEntity},
             {u"counterpart.name", text},
             {u"ANY tags", tagEntity},
             {u"ANY tags.name", text},
             {u"ANY notes", noteEntity},
             {u"ANY notes.contentString", text},
             {u"ANY notes.identifier", integer},
             {u"ANY counterpart.sessions", sessionEntity}},
            {{u"contentString", text},
             {u"identifier", integer},
             {u"session", sessionEntity},
             {u"session.date", date},
             {u"session.counterpart", counterpartEntity},
             {u"session.counterpart.name", text},
             {u"ANY session.tags", tagEntity},
             {u"ANY session.tags.name", text},
             {u"ANY session.notes.identifier", integer}},
        };
        return paths[entity][size_t(m_random.bounded(int(paths[entity].size())))];
    }

    QString comparison(int entity)
    {
        static const QString orders[] = {u"=="_s, u"!="_s, u"<"_s,           u">"_s,
                                         u"<="_s, u">="_s, u"CONTAINS[cd]"_s};
        const Path chosen = path(entity);
        const bool isRecord = chosen.kind < date;
        const QString op = orders[m_random.bounded(isRecord ? 2 : (chosen.kind == text ? 7 : 6))];
        const QString start(QString::fromUtf16(chosen.text) + u' ' + op + u' ');
        if (m_random.bounded(6) == 0)
            return QString(start + u"NULL"_s);
        switch (chosen.kind) {
        case integer:
            arguments << PredicateArgument(qint64(m_random.bounded(3)));
            return QString(start + u"%d"_s);
        case date:
            arguments << PredicateArgument(Date{m_random.bounded(8) + 0.25});
            break;
        case text:
            arguments << PredicateArgument(m_random.bounded(10) == 0 ? QString()
                                                                     : randomText(m_random));
            break;
        default:
            arguments << PredicateArgument(randomRecord(m_random, m_journal, chosen.kind));
        }
        return QString(start + u"%@"_s);
    }

    QRandomGenerator &m_random;
    const QueryJournal &m_journal;
};

} // namespace

/// What SQL answers and what a plain reading of the condition answers must be the same.
class tst_PredicateEvaluation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersEveryQueryOfTheProgram();
    void answersAnyCondition_data();
    void answersAnyCondition();
};

void tst_PredicateEvaluation::answersEveryQueryOfTheProgram()
{
    int rowsSeen = 0;
    for (quint32 seed = 1; seed <= 12; ++seed) {
        QRandomGenerator random(seed);
        QueryJournal journal;
        journal.fillAtRandom(random, 30);
        const PlainEvaluator plain(journal);
        for (int round = 0; round < 8; ++round) {
            for (const auto &[name, request] : requests(random, journal)) {
                const auto keys = journal.fetchKeys(request);
                QVERIFY2(keys, name.constData());
                QVERIFY2(*keys == plain.fetchKeys(request), name.constData());
                rowsSeen += int(keys->size());
            }
        }
    }
    QVERIFY(rowsSeen > 1000);
}

void tst_PredicateEvaluation::answersAnyCondition_data()
{
    QTest::addColumn<int>("entity");
    QTest::newRow("on teammates") << int(counterpartEntity);
    QTest::newRow("on tags") << int(tagEntity);
    QTest::newRow("on meetings") << int(sessionEntity);
    QTest::newRow("on notes") << int(noteEntity);
}

void tst_PredicateEvaluation::answersAnyCondition()
{
    QFETCH(int, entity);
    QRandomGenerator random(quint32(17 + entity));
    QueryJournal journal;
    journal.fillAtRandom(random, 25);
    const PlainEvaluator plain(journal);
    int matches = 0;
    for (int round = 0; round < 1200; ++round) {
        FormatMaker maker(random, journal);
        const QString format = maker.condition(entity, round % 4);
        const auto predicate = Predicate::withFormat(format, maker.arguments);
        QVERIFY2(predicate, qPrintable(format));
        const auto again = Predicate::withFormat(predicate->describe(), predicate->arguments());
        QVERIFY2(again && again->describe() == predicate->describe(), qPrintable(format));
        const FetchRequest request{.entityName = journal.model.entity(entity).name,
                                   .predicate = *again};
        const auto keys = journal.fetchKeys(request);
        QVERIFY2(keys, qPrintable(format));
        const std::vector<qint64> expected = plain.fetchKeys(
            {.entityName = request.entityName, .predicate = *predicate});
        QVERIFY2(*keys == expected, qPrintable(format));
        matches += int(keys->size());
    }
    QVERIFY(matches > 500);
}

QTEST_GUILESS_MAIN(tst_PredicateEvaluation)
#include "tst_PredicateEvaluation.moc"
