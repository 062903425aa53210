#include "TagBrowserTest.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QMenu>
#include <QScrollBar>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The left side of the tag browser: order, selection, what happens elsewhere.
class tst_TagList : public TagBrowserTest
{
    Q_OBJECT

private Q_SLOTS:
    void tagsStandFromAToZ()
    {
        addThreeTags();
        addTag(u"Goal"_s, u"⚽"_s);
        addTag(u"apple"_s, u"🍎"_s);
        addTag({}, u"🏷"_s);
        show();
        const QAbstractItemModelTester tester(&tags());
        QCOMPARE(m_window->windowTitle(), u"Tags"_s);
        QCOMPARE(names(),
                 (QStringList{{}, u"Blocked"_s, u"Goal"_s, u"Goal"_s, u"Zebra"_s, u"apple"_s}));
        QCOMPARE(tags().tagAt(2)->emoji(), u"⚽"_s);
        QCOMPARE(tags().tagAt(3)->emoji(), u"🎯"_s);
        const auto descriptors = tags().sortDescriptors();
        QCOMPARE(descriptors.size(), 2);
        QCOMPARE(descriptors.at(0).key, QByteArray("name"));
        QVERIFY(descriptors.at(0).ascending);
        QCOMPARE(descriptors.at(1).key, QByteArray("emoji"));
        QVERIFY(descriptors.at(1).ascending);
    }

    void namesComeInCodePointOrder()
    {
        for (const QString &name : {u"\uFF21"_s, u"😀"_s, u"é"_s, u"z"_s})
            addTag(name, u"🏷"_s);
        show();
        QCOMPARE(names(), (QStringList{u"z"_s, u"é"_s, u"\uFF21"_s, u"😀"_s}));
    }

    void nothingIsSelectedAtFirst()
    {
        addThreeTags();
        show();
        QVERIFY(tags().selectedObjects().isEmpty());
        QVERIFY(!m_window->selectedTag());
        QVERIFY(m_window->sessionViewModels().isEmpty());
        QVERIFY(isShown(u"noSelection"_s));
        QVERIFY(!isShown(u"promptLabel"_s));
        QVERIFY(!isShown(u"noTags"_s));
        for (const QString &name :
             {u"renameTagAction"_s, u"changeEmojiAction"_s, u"deleteTagAction"_s})
            QVERIFY(!action(name)->isEnabled());
        QVERIFY(!m_window->findChild<QWidget *>(u"deleteTagsButton"_s)->isEnabled());
    }

    void aJournalWithoutTagsSaysWhatTheyAreFor()
    {
        show();
        QVERIFY(isShown(u"noTags"_s));
        QVERIFY(!isShown(u"tagsTableView"_s));
        addTag(u"Goal"_s, u"🎯"_s);
        QTRY_VERIFY(!isShown(u"noTags"_s));
        QVERIFY(isShown(u"tagsTableView"_s));
        QCOMPARE(names(), QStringList{u"Goal"_s});
    }

    void theKeyboardStartsInTheList()
    {
        addThreeTags();
        show();
        QVERIFY(list()->hasFocus());
        QTest::keyClick(list(), Qt::Key_Down);
        QCOMPARE(m_window->selectedTag()->name(), u"Blocked"_s);
        QTest::keyClick(list(), Qt::Key_Down);
        QCOMPARE(m_window->selectedTag()->name(), u"Goal"_s);
        QTest::keyClick(list(), Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(tags().selectedTags().size(), 2);
    }

    void anUnnamedTagSaysSo()
    {
        addTag({}, u"🏷"_s);
        addTag(u"Bare"_s, {});
        show();
        const auto read = [this](int row, int column) {
            return tags().index(row, column).data(Qt::AccessibleTextRole).toString();
        };
        QCOMPARE(read(0, 1), u"Unnamed tag"_s);
        QCOMPARE(read(0, 0), u"🏷"_s);
        QCOMPARE(read(1, 1), u"Bare"_s);
        QCOMPARE(read(1, 0), u"No emoji"_s);
    }

    // What happens elsewhere.

    void tagsFromElsewhereComeIntoTheirPlaces()
    {
        addThreeTags();
        show();
        clickTag(2);
        addTag(u"Middle"_s, u"🏷"_s);
        QTRY_COMPARE(names(), (QStringList{u"Blocked"_s, u"Goal"_s, u"Middle"_s, u"Zebra"_s}));
        QCOMPARE(m_window->selectedTag()->name(), u"Zebra"_s);
        QVERIFY(list()->selectionModel()->isRowSelected(3));
        tags().tagAt(0)->setName(u"Nothing"_s);
        QTRY_COMPARE(names(), (QStringList{u"Goal"_s, u"Middle"_s, u"Nothing"_s, u"Zebra"_s}));
    }

    void whatIsTypedSurvivesThatTagsComeAndGo()
    {
        addThreeTags();
        show();
        const auto goal = tags().tagAt(1);
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Gold"_s);
        addTag(u"Aa"_s, u"🏷"_s);
        QVERIFY(m_journal->context().deleteObject(tags().tagAt(0)));
        tell();
        QCOMPARE(tags().rowCount(), 3);
        QCOMPARE(nameEditor(), editor);
        QCOMPARE(editor->text(), u"Gold"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(names(), (QStringList{u"Aa"_s, u"Gold"_s, u"Zebra"_s}));
        QCOMPARE(goal->name(), u"Gold"_s);
    }

    void aTagDeletedWhileItIsRenamedTakesTheFieldAlong()
    {
        addThreeTags();
        show();
        const auto goal = tags().tagAt(1);
        QTest::keyClicks(startRenaming(1), u"Gold"_s);
        QVERIFY(m_journal->context().deleteObject(goal));
        QTRY_COMPARE(names(), (QStringList{u"Blocked"_s, u"Zebra"_s}));
        QTRY_VERIFY(!nameEditor());
        QVERIFY(m_window->commitEditing());
        QVERIFY(!m_window->selectedTag());
        QVERIFY(isShown(u"noSelection"_s));
        // And the order follows again.
        tags().tagAt(0)->setName(u"Zzz"_s);
        QTRY_COMPARE(names(), (QStringList{u"Zebra"_s, u"Zzz"_s}));
    }

    void selectingATagFromElsewhereShowsIt()
    {
        for (int number = 0; number < 100; ++number)
            addTag(u"Tag %1"_s.arg(number, 2, 10, QChar(u'0')), u"🏷"_s);
        show();
        clickTag(0);
        clickTag(1, Qt::ControlModifier);
        const auto tag = tags().tagAt(90);
        m_window->selectTag(tag);
        QCOMPARE(tags().selectedTags(), QList<std::shared_ptr<Tag>>{tag});
        QCOMPARE(m_window->selectedTag(), tag);
        QVERIFY(list()->viewport()->rect().contains(middleOf(90)));
        m_window->selectTag(nullptr);
        QCOMPARE(m_window->selectedTag(), tag);
    }

    void aTagMadeThisVeryMomentCanBeSelected()
    {
        addThreeTags();
        show();
        m_window->selectTag(addTag(u"Brand new"_s, u"🆕"_s));
        QVERIFY(m_window->selectedTag());
        QCOMPARE(m_window->selectedTag()->name(), u"Brand new"_s);
        QVERIFY(list()->selectionModel()->isRowSelected(1));
    }

    void theCommandsStandInAMenuToo()
    {
        addThreeTags();
        show();
        QMenu menu;
        m_window->addTagCommandsTo(menu);
        QCOMPARE(menu.actions(), list()->actions());
        QCOMPARE(menu.actions().size(), 3);
    }

    void fiveThousandTagsOpenAndScrollAtOnce()
    {
        for (int number = 0; number < 5000; ++number) {
            const auto tag = m_journal->context().insert<Tag>();
            tag->setName(u"Tag %1"_s.arg(number));
        }
        QElapsedTimer timer;
        m_journal->settle();
        timer.start();
        show();
        const qint64 opening = timer.restart();
        QCOMPARE(tags().rowCount(), 5000);
        list()->verticalScrollBar()->setValue(list()->verticalScrollBar()->maximum() / 2);
        list()->viewport()->repaint();
        const qint64 scrolling = timer.restart();
        tags().tagAt(0)->setName(u"Zz"_s);
        tell();
        const qint64 renaming = timer.elapsed();
        qInfo("5,000 tags: opening %lld ms, scrolling %lld ms, renaming %lld ms", opening,
              scrolling, renaming);
        QCOMPARE(names().last(), u"Zz"_s);
        // No widget for each row, whatever there is to see.
        QVERIFY(list()->viewport()->findChildren<QWidget *>().size() < 5);
        QVERIFY(opening < 2000);
        QVERIFY(scrolling < 500);
        QVERIFY(renaming < 500);
    }
};

QTEST_MAIN(tst_TagList)
#include "tst_TagList.moc"
