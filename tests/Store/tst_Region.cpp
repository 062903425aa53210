#include "QueryJournal.h"

#include "Store/Query/Region.h"

#include <QTest>

using namespace tembra;
using namespace tembra::test;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(tembra::FetchRequest)
Q_DECLARE_METATYPE(tembra::Region)

namespace {

enum class What { Insertion, Deletion, Update };

ChangeSet change(What what, int entity, const QByteArray &property = {})
{
    const EntityDescription description = queryModel().entity(entity);
    const PropertyMask mask = property.isEmpty() ? allProperties
                                                 : propertyBit(description.propertyIndex(property));
    const ObjectChange one{{entity, 1}, mask, {}};
    ChangeSet changes;
    (what == What::Insertion  ? changes.inserted
     : what == What::Deletion ? changes.deleted
                              : changes.updated)
        .push_back(one);
    return changes;
}

const FetchRequest sessionsFound{
    .entityName = "Session",
    .predicate = Predicate::fixed(u"counterpart == %@ AND ANY notes.contentString CONTAINS[cd] %@",
                                  {ObjectID{counterpartEntity, 1}, u"x"_s}),
    .sortDescriptors = {{"date", false}}};
const FetchRequest sessionsTagged{.entityName = "Session",
                                  .predicate = Predicate::fixed(u"ANY tags == %@",
                                                                {ObjectID{tagEntity, 1}})};
const FetchRequest sessionsByTagName{
    .entityName = "Session",
    .predicate = Predicate::fixed(u"NOT (ANY tags.name == %@ OR flag > %d)", {u"x"_s, qint64(0)})};
const FetchRequest notesByDate{.entityName = "Note",
                               .predicate = Predicate::fixed(u"session.counterpart != NULL", {}),
                               .sortDescriptors = {{"session.date", false}}};
const FetchRequest allTags{.entityName = "Tag"};

} // namespace

class tst_Region : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isTouchedByWhatTheRequestReads_data();
    void isTouchedByWhatTheRequestReads();
    void isTouchedByOneOfMany();
    void unites_data();
    void unites();
    void refusesWhatDoesNotFitTheModel();
};

void tst_Region::isTouchedByWhatTheRequestReads_data()
{
    QTest::addColumn<FetchRequest>("request");
    QTest::addColumn<ChangeSet>("changes");
    QTest::addColumn<bool>("touched");

    const auto row = [](const char *name, const FetchRequest &request, const ChangeSet &changes,
                        bool touched) { QTest::newRow(name) << request << changes << touched; };
    row("nothing", sessionsFound, {}, false);
    row("a record comes", allTags, change(What::Insertion, tagEntity), true);
    row("a record goes", allTags, change(What::Deletion, tagEntity), true);
    row("another entity's record comes", allTags, change(What::Insertion, sessionEntity), false);
    row("an attribute that is not asked for", allTags, change(What::Update, tagEntity, "name"),
        false);

    row("the sort key", sessionsFound, change(What::Update, sessionEntity, "date"), true);
    row("the condition's to-one", sessionsFound, change(What::Update, sessionEntity, "counterpart"),
        true);
    row("another attribute", sessionsFound, change(What::Update, sessionEntity, "flag"), false);
    row("the teammate's name", sessionsFound, change(What::Update, counterpartEntity, "name"),
        false);
    row("a teammate comes", sessionsFound, change(What::Insertion, counterpartEntity), false);
    row("a text that is searched", sessionsFound, change(What::Update, noteEntity, "contentString"),
        true);
    row("a note's other attribute", sessionsFound, change(What::Update, noteEntity, "identifier"),
        false);
    row("a note changes its meeting", sessionsFound, change(What::Update, noteEntity, "session"),
        true);
    row("a note comes", sessionsFound, change(What::Insertion, noteEntity), true);
    row("a note goes", sessionsFound, change(What::Deletion, noteEntity), true);

    row("a link of the condition", sessionsTagged, change(What::Update, sessionEntity, "tags"),
        true);
    row("a tag without links comes", sessionsTagged, change(What::Insertion, tagEntity), false);
    row("a note where none is searched", sessionsTagged,
        change(What::Update, noteEntity, "contentString"), false);
    row("a name across a link, within NOT and OR", sessionsByTagName,
        change(What::Update, tagEntity, "name"), true);
    row("the other side of OR", sessionsByTagName, change(What::Update, sessionEntity, "flag"),
        true);
    row("another attribute across a link", sessionsByTagName,
        change(What::Update, tagEntity, "emoji"), false);

    row("a condition across a to-one", notesByDate,
        change(What::Update, sessionEntity, "counterpart"), true);
    row("a sort key across a to-one", notesByDate, change(What::Update, sessionEntity, "date"),
        true);
    row("the to-one itself", notesByDate, change(What::Update, noteEntity, "session"), true);
    row("a meeting comes", notesByDate, change(What::Insertion, sessionEntity), false);
}

void tst_Region::isTouchedByWhatTheRequestReads()
{
    QFETCH(FetchRequest, request);
    QFETCH(ChangeSet, changes);
    QFETCH(bool, touched);
    const auto region = Region::of(queryModel(), request);
    QVERIFY(region);
    QCOMPARE(region->touches(changes), touched);
}

void tst_Region::isTouchedByOneOfMany()
{
    ChangeSet changes = change(What::Update, tagEntity, "name");
    changes.updated.push_back(change(What::Update, sessionEntity, "flag").updated.front());
    QVERIFY(!Region::of(queryModel(), sessionsFound)->touches(changes));
    changes.updated.push_back(change(What::Update, sessionEntity, "date").updated.front());
    QVERIFY(Region::of(queryModel(), sessionsFound)->touches(changes));
}

void tst_Region::unites_data()
{
    QTest::addColumn<Region>("first");
    QTest::addColumn<Region>("second");
    QTest::addColumn<Region>("united");

    const Region nothing;
    const Region tags = Region::records(tagEntity);
    const Region names = Region::properties(tagEntity, 1);
    const Region emoji = Region::properties(tagEntity, 2);
    const Region dates = Region::properties(sessionEntity, 1);
    QTest::newRow("nothing and nothing") << nothing << nothing << nothing;
    QTest::newRow("nothing and records") << nothing << tags << tags;
    QTest::newRow("nothing and properties") << nothing << names << names;
    QTest::newRow("no properties") << nothing << Region::properties(tagEntity, 0) << nothing;
    QTest::newRow("records and themselves") << tags << tags << tags;
    QTest::newRow("properties and themselves") << names << names << names;
    QTest::newRow("two properties") << names << emoji << Region::properties(tagEntity, 3);
    QTest::newRow("records and properties") << tags << names << Region(names).unite(tags);
    QTest::newRow("two entities") << names << dates << Region(dates).unite(names);
}

void tst_Region::unites()
{
    QFETCH(Region, first);
    QFETCH(Region, second);
    QFETCH(Region, united);
    QVERIFY(Region(first).unite(second) == united);
    QVERIFY(Region(second).unite(first) == united);
    for (const auto what : {What::Insertion, What::Deletion, What::Update}) {
        for (const int entity : {int(tagEntity), int(sessionEntity)}) {
            const ChangeSet changes = change(what, entity);
            QCOMPARE(united.touches(changes), first.touches(changes) || second.touches(changes));
        }
    }
}

void tst_Region::refusesWhatDoesNotFitTheModel()
{
    QVERIFY(!Region::of(queryModel(), {.entityName = "Person"}));
    QVERIFY(!Region::of(queryModel(), {.entityName = "Tag",
                                       .predicate = Predicate::fixed(u"colour == NULL", {})}));
    QVERIFY(
        !Region::of(queryModel(), {.entityName = "Tag", .sortDescriptors = {{"colour", true}}}));
}

QTEST_GUILESS_MAIN(tst_Region)
#include "tst_Region.moc"
