#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "support/JournalFixture.h"
#include "support/RecordCount.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_Tag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newTagHasTheLabelEmoji();
    void titleFollowsNameAndEmoji();
    void titleIsThereAfterLoading();
    void factoryReusesByNameAndEmoji();
    void missingEqualsOnlyMissing();
    void allTagsByNameDescending();
    void sessionsCarryingTheTagNewestFirst();
};

void tst_Tag::newTagHasTheLabelEmoji()
{
    JournalFixture journal;
    const auto tag = journal.context().insert<Tag>();
    QCOMPARE(tag->emoji(), u"\U0001F3F7"_s);
    QVERIFY(tag->name().isNull());
    QCOMPARE(tag->titleString(), u" \U0001F3F7"_s);
}

void tst_Tag::titleFollowsNameAndEmoji()
{
    JournalFixture journal;
    const auto tag = journal.context().insert<Tag>();
    QSignalSpy changed(tag.get(), &Tag::titleStringChanged);
    tag->setName(u"launch"_s);
    QCOMPARE(tag->titleString(), u"launch \U0001F3F7"_s);
    tag->setEmoji(QString());
    QCOMPARE(tag->titleString(), u"launch "_s);
    QCOMPARE(changed.count(), 2);
}

void tst_Tag::titleIsThereAfterLoading()
{
    JournalFixture journal;
    ObjectID id;
    {
        const auto meeting = journal.addSession(journal.addCounterpart(u"Ana"_s), Date{5});
        id = journal.addTag(meeting, u"launch"_s, u"🚀"_s)->objectID();
        journal.settle();
    }
    journal.reopen();
    QCOMPARE(journal.context().object<Tag>(id)->titleString(), u"launch 🚀"_s);
    journal.reopen();
    const auto meeting = journal.context().fetch<Session>({.entityName = Session::entityName()});
    QCOMPARE(meeting->first()->tags().first()->titleString(), u"launch 🚀"_s);
}

void tst_Tag::factoryReusesByNameAndEmoji()
{
    JournalFixture journal;
    const auto first = Tag::findOrCreate(journal.context(), u"launch"_s, u"🚀"_s);
    QCOMPARE(Tag::findOrCreate(journal.context(), u"launch"_s, u"🚀"_s), first);
    QVERIFY(Tag::findOrCreate(journal.context(), u"launch"_s, u"🎯"_s) != first);
    QVERIFY(Tag::findOrCreate(journal.context(), u"Launch"_s, u"🚀"_s) != first);
    QCOMPARE(recordCount(journal.context(), {.entityName = "Tag"}), 3);
}

void tst_Tag::missingEqualsOnlyMissing()
{
    JournalFixture journal;
    const auto missing = Tag::findOrCreate(journal.context(), u"launch"_s, QString());
    QCOMPARE(Tag::findOrCreate(journal.context(), u"launch"_s, QString()), missing);
    QVERIFY(Tag::findOrCreate(journal.context(), u"launch"_s, u""_s) != missing);
}

void tst_Tag::allTagsByNameDescending()
{
    JournalFixture journal;
    for (const QString &name : {u"b"_s, u"a"_s, u"c"_s})
        Tag::findOrCreate(journal.context(), name, u"🚀"_s);
    const auto controller = Tag::allTagsResultController(journal.context());
    QVERIFY(controller->performFetch().has_value());
    const auto tags = controller->fetchedObjects();
    QVERIFY(tags.has_value());
    QStringList names;
    for (const auto &tag : *tags)
        names.append(tag->property("name").toString());
    QCOMPARE(names, QStringList({u"c"_s, u"b"_s, u"a"_s}));
}

void tst_Tag::sessionsCarryingTheTagNewestFirst()
{
    JournalFixture journal;
    const auto ana = journal.addCounterpart(u"Ana"_s);
    const auto ben = journal.addCounterpart(u"Ben"_s);
    const auto older = journal.addSessionDaysAgo(ana, 5);
    const auto newer = journal.addSessionDaysAgo(ben, 1);
    journal.addSessionDaysAgo(ben, 3);
    const auto tag = journal.addTag(older, u"launch"_s, u"🚀"_s);
    newer->addTag(*tag);
    const auto controller = tag->sessionsResultController();
    QVERIFY(controller->performFetch().has_value());
    QCOMPARE(*controller->fetchedObjects(), (QList<std::shared_ptr<ManagedObject>>{newer, older}));
}

QTEST_GUILESS_MAIN(tst_Tag)
#include "tst_Tag.moc"
