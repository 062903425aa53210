#include "Foundation/Time/Clock.h"
#include "Model/TagPasteboard.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"
#include "support/RecordCount.h"
#include "TagFieldTest.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QTimer>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Typing tags, and what comes of them.
class tst_TagField : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_test = std::make_unique<TagFieldTest>();
        m_test->field->setSession(m_test->meeting);
        QVERIFY(QTest::qWaitForWindowActive(m_test->window.get()));
    }
    void cleanup() { m_test.reset(); }

    void showsTheTagsOfTheMeeting()
    {
        const auto second = m_test->journal.addSessionDaysAgo(m_test->meeting->counterpart(), 2);
        second->addTag(*m_test->make(u"b"_s, u"🚀"_s));
        second->addTag(*m_test->make(u"a"_s));
        m_test->field->setSession(second);
        QCOMPARE(m_test->titles(), (QStringList{u"a "_s, u"b 🚀"_s}));
        m_test->field->setSession({});
        QVERIFY(m_test->titles().isEmpty());
    }

    void typedTextBecomesATag()
    {
        focus();
        QTest::keyClicks(m_test->field, u"Hiring "_s);
        m_test->compose(u"🚀"_s);
        m_test->press(Qt::Key_Return);
        QCOMPARE(m_test->titles(), QStringList{u"Hiring 🚀"_s});
        const auto tag = m_test->field->tags().first();
        QCOMPARE(tag->name(), u"Hiring"_s);
        QCOMPARE(tag->emoji(), u"🚀"_s);
        // On the meeting at once, but not used before editing ends.
        QCOMPARE(m_test->titlesOfMeeting(), QStringList{u"Hiring 🚀"_s});
        QVERIFY(!tag->lastUse());
        leave();
        QCOMPARE(tag->lastUse(), m_test->journal.clock.now());
    }

    void aTextWithoutEmojiMakesATagWithoutOne()
    {
        focus();
        QTest::keyClicks(m_test->field, u"Hiring,"_s);
        QCOMPARE(m_test->titles(), QStringList{u"Hiring "_s});
        QVERIFY(m_test->field->tags().first()->emoji().isNull());
    }

    void thePromptIsNoPartOfTheName()
    {
        focus();
        QTest::keyClicks(m_test->field, u"Plan (Create New Tag)"_s);
        QTest::keyClicks(m_test->field, u","_s);
        QCOMPARE(m_test->field->tags().first()->name(), u"Plan"_s);
        // By itself it names nothing.
        QTest::keyClicks(m_test->field, u" (Create New Tag),"_s);
        QCOMPARE(m_test->titles(), QStringList{u"Plan "_s});
    }

    void aSecondTagOfANameCanBeMade()
    {
        const auto planning = m_test->make(u"Planning"_s, u"🗓"_s);
        m_test->meeting->addTag(*planning);
        QCOMPARE(m_test->titles(), QStringList{u"Planning 🗓"_s});
        focus();
        QTest::keyClicks(m_test->field, u"planning,"_s);
        QCOMPARE(m_test->titles(), (QStringList{u"Planning 🗓"_s, u"planning "_s}));
        QVERIFY(m_test->field->tags().last() != planning);
    }

    void anExactTitleIsTheTag()
    {
        const auto planning = m_test->make(u"Planning"_s, u"🗓"_s);
        focus();
        QTest::keyClicks(m_test->field, u"Planning "_s);
        m_test->compose(u"🗓"_s);
        QTest::keyClicks(m_test->field, u","_s);
        QCOMPARE(m_test->field->tags(), QList{planning});
    }

    void blanksMakeNothing()
    {
        focus();
        QTest::keyClicks(m_test->field, u"   ,  "_s);
        m_test->press(Qt::Key_Return);
        leave();
        QVERIFY(m_test->field->tags().isEmpty());
        QCOMPARE(allTags(), 0);
    }

    void aLongPasteMakesTagsOfItsLines()
    {
        focus();
        QGuiApplication::clipboard()->setText(u"one\ntwo 🎯\tthree, four\n\n"_s
                                              + QString(10'000, u'x'));
        m_test->press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_test->titles().first(4),
                 (QStringList{u"one "_s, u"two 🎯"_s, u"three "_s, u"four "_s}));
        leave();
        QCOMPARE(m_test->titles().size(), 5);
        QCOMPARE(m_test->field->tags().last()->name(), QString(10'000, u'x'));
    }

    void thousandsOfPastedLinesBecomeTags()
    {
        QString lines;
        for (int i = 0; i < 5'000; ++i)
            lines += u"tag %1\n"_s.arg(i);
        focus();
        gui::pasteText(*m_test->field, lines);
        leave();
        QCOMPARE(m_test->field->tags().size(), 5'000);
        QCOMPARE(m_test->meeting->tags().size(), 5'000);
    }

    void aPastedTitleIsItsTag()
    {
        const auto planning = m_test->make(u"Planning"_s);
        focus();
        gui::pasteText(*m_test->field, planning->titleString());
        QCOMPARE(m_test->field->tags(), QList{planning});
        QCOMPARE(allTags(), 1);
    }

    void aTypedWholeNameIsTheOfferedTag_data()
    {
        QTest::addColumn<bool>("closesTheList");
        QTest::addColumn<qint64>("tagsAfter");
        QTest::newRow("comma takes the tag") << false << qint64(1);
        QTest::newRow("with the list closed it is a second tag") << true << qint64(2);
    }

    void aTypedWholeNameIsTheOfferedTag()
    {
        QFETCH(bool, closesTheList);
        const auto planning = m_test->make(u"Planning"_s, u"🗓"_s);
        focus();
        QTest::keyClicks(m_test->field, u"planning"_s);
        if (closesTheList)
            m_test->press(Qt::Key_Escape);
        QTest::keyClicks(m_test->field, u","_s);
        QCOMPARE(m_test->field->tags().contains(planning), !closesTheList);
        QTEST(allTags(), "tagsAfter");
    }

    void withoutPermissionTextsAreDropped()
    {
        m_test->field->setCreatesNewTags(false);
        const auto planning = m_test->make(u"Planning"_s);
        focus();
        QTest::keyClicks(m_test->field, u"Other,Planning ,"_s);
        QCOMPARE(m_test->field->tags(), QList{planning});
        QCOMPARE(allTags(), 1);
    }

    void removedTokensGoWhenEditingEnds()
    {
        const auto tag = m_test->make(u"Planning"_s);
        m_test->meeting->addTag(*tag);
        focus();
        m_test->press(Qt::Key_Backspace);
        m_test->press(Qt::Key_Backspace);
        QVERIFY(m_test->titles().isEmpty());
        QCOMPARE(m_test->titlesOfMeeting(), QStringList{u"Planning "_s});
        leave();
        QVERIFY(m_test->titlesOfMeeting().isEmpty());
        QVERIFY(!tag->isDeleted());
        QVERIFY(!tag->lastUse());
    }

    void theHandlerIsCalledWithTheTagsStored()
    {
        QStringList stored;
        int calls = 0;
        m_test->field->setAddedTagHandler([&] {
            ++calls;
            stored = m_test->titlesOfMeeting();
        });
        focus();
        QTest::keyClicks(m_test->field, u"half"_s);
        leave();
        QCOMPARE(stored, QStringList{u"half "_s});
        QCOMPARE(calls, 1);
    }

    void useIsStampedOnceForEachEditing()
    {
        focus();
        QTest::keyClicks(m_test->field, u"a,"_s);
        leave();
        const auto tag = m_test->field->tags().first();
        tag->setLastUse({});
        focus();
        QTest::keyClicks(m_test->field, u"b,"_s);
        leave();
        QVERIFY(!tag->lastUse());
        QVERIFY(m_test->field->tags().last()->lastUse());
    }

    void undoTakesTheTagBackAndNotItsUse()
    {
        focus();
        QTest::keyClicks(m_test->field, u"a,"_s);
        m_test->journal.context().processPendingChanges();
        const auto tag = m_test->field->tags().first();
        leave();
        m_test->journal.context().processPendingChanges();
        m_test->journal.context().undoManager()->undo();
        QVERIFY(tag->isDeleted());
        m_test->journal.context().processPendingChanges();
        QVERIFY(m_test->field->tags().isEmpty());
    }

    void anotherMeetingEndsTheEditingInTheFirst()
    {
        const auto second = m_test->journal.addSessionDaysAgo(m_test->meeting->counterpart(), 2);
        focus();
        QTest::keyClicks(m_test->field, u"half"_s);
        m_test->field->setSession(second);
        QCOMPARE(m_test->titlesOfMeeting(), QStringList{u"half "_s});
        QVERIFY(second->tags().isEmpty());
        QVERIFY(m_test->titles().isEmpty());
    }

    void changesElsewhereShowAtOnce()
    {
        TagField other(m_test->journal.context(), m_test->journal.clock);
        other.setSession(m_test->meeting);
        focus();
        QTest::keyClicks(m_test->field, u"here,ha"_s);
        QCOMPARE(other.tags(), m_test->field->tags());
        const auto there = m_test->make(u"there"_s);
        m_test->meeting->addTag(*there);
        QCOMPARE(m_test->titles(), (QStringList{u"here "_s, u"there "_s}));
        m_test->meeting->removeTag(*there);
        QCOMPARE(m_test->titles(), QStringList{u"here "_s});
        QCOMPARE(m_test->field->editor().halfTypedText().text, u"ha"_s);
    }

    void aRenamedTagShowsAtOnce()
    {
        const auto tag = m_test->make(u"old"_s);
        m_test->meeting->addTag(*tag);
        focus();
        QTest::keyClicks(m_test->field, u"ha"_s);
        tag->setName(u"new"_s);
        tag->setEmoji(u"🎯"_s);
        m_test->journal.context().processPendingChanges();
        QCOMPARE(m_test->titles(), QStringList{u"new 🎯"_s});
        QVERIFY(m_test->field->toolTip().isEmpty());
        QCOMPARE(m_test->field->editor().halfTypedText().text, u"ha"_s);
    }

    void aDeletedTagGoesWhileItIsSelected()
    {
        const auto tag = m_test->make(u"gone"_s);
        m_test->meeting->addTag(*tag);
        focus();
        QTest::keyClicks(m_test->field, u"ha"_s);
        m_test->field->selectAll();
        QVERIFY(m_test->journal.context().deleteObject(tag));
        m_test->journal.context().processPendingChanges();
        QVERIFY(m_test->titles().isEmpty());
        leave();
        QCOMPARE(m_test->titlesOfMeeting(), QStringList{u"ha "_s});
    }

    void aDeletedTagDoesNotComeBackWhenItsTokenIsEdited()
    {
        const auto tag = m_test->make(u"gone"_s);
        m_test->meeting->addTag(*tag);
        focus();
        m_test->press(Qt::Key_Backspace);
        m_test->press(Qt::Key_F2);
        QVERIFY(m_test->titles().isEmpty());
        QVERIFY(m_test->journal.context().deleteObject(tag));
        m_test->journal.context().processPendingChanges();
        leave();
        QVERIFY(m_test->titles().isEmpty());
        QVERIFY(m_test->titlesOfMeeting().isEmpty());
        QCOMPARE(allTags(), 0);
    }

    void aDeletedMeetingLeavesTheField()
    {
        focus();
        QTest::keyClicks(m_test->field, u"a,"_s);
        QVERIFY(m_test->journal.context().deleteObject(m_test->meeting));
        QVERIFY(!m_test->field->session());
        QVERIFY(m_test->titles().isEmpty());
    }

    void tagsTravelOverTheClipboard()
    {
        const auto tag = m_test->make(u"Planning"_s, u"🗓"_s);
        m_test->meeting->addTag(*tag);
        focus();
        m_test->field->selectAll();
        m_test->field->copy();
        const QMimeData *copied = QGuiApplication::clipboard()->mimeData();
        QCOMPARE(copied->data(TagPasteboard::type), TagPasteboard::encode({tag}));
        QCOMPARE(copied->text(), u"Planning 🗓"_s);
        // Here it is already.
        m_test->press(Qt::Key_End);
        m_test->press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_test->field->tags(), QList{tag});

        const auto second = m_test->journal.addSessionDaysAgo(m_test->meeting->counterpart(), 2);
        m_test->field->setSession(second);
        m_test->press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_test->field->tags(), QList{tag});
        QCOMPARE(second->tags(), QList{tag});
        leave();
        QVERIFY(tag->lastUse());
    }

    void foreignTagsAreNotPasted()
    {
        const JournalFixture other;
        const auto foreign = Tag::findOrCreate(other.context(), u"x"_s, {});
        auto *data = new QMimeData;
        data->setData(TagPasteboard::type, TagPasteboard::encode({foreign}));
        QGuiApplication::clipboard()->setMimeData(data);
        focus();
        m_test->press(Qt::Key_V, Qt::ControlModifier);
        QVERIFY(m_test->field->tags().isEmpty());
        QCOMPARE(allTags(), 0);
    }

    void theMenuOfATokenEditsItsTag()
    {
        const auto tag = m_test->make(u"Planning"_s);
        m_test->meeting->addTag(*tag);
        std::shared_ptr<Tag> shown;
        m_test->field->setShowTag([&](const std::shared_ptr<Tag> &asked) { shown = asked; });
        auto *menu = m_test->field->findChild<QMenu *>(u"tagEditMenu"_s);
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions().first()->text(), u"Edit Tag"_s);
        QVERIFY(menu->actions().first()->shortcut().isEmpty());
        focus();
        m_test->press(Qt::Key_Backspace); // Selects it.
        QTimer::singleShot(0, menu, [menu] {
            menu->actions().first()->trigger();
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QCoreApplication::sendEvent(m_test->field, &event);
        QTRY_COMPARE(shown, tag);
        QCOMPARE(m_test->field->tagToEdit(), tag);
    }

    void growsWithItsTokens()
    {
        const int low = m_test->field->sizeHint().height();
        for (int i = 0; i < 30; ++i)
            m_test->meeting->addTag(*m_test->make(u"a tag of some length %1"_s.arg(i)));
        QVERIFY(m_test->field->sizeHint().height() > 3 * low);
        QVERIFY(m_test->field->sizeHint().height() <= 750);
        m_test->field->setWraps(false);
        QCOMPARE(m_test->field->sizeHint().height(), low);
    }

private:
    void focus() const
    {
        m_test->field->setFocus();
        QTRY_VERIFY(m_test->field->hasFocus());
        m_test->press(Qt::Key_End);
    }
    void leave() const
    {
        m_test->elsewhere->setFocus();
        QTRY_VERIFY(m_test->elsewhere->hasFocus());
    }
    qint64 allTags() const
    {
        return recordCount(m_test->journal.context(), {.entityName = Tag::entityName()});
    }

    std::unique_ptr<TagFieldTest> m_test;
};

QTEST_MAIN(tst_TagField)
#include "tst_TagField.moc"
