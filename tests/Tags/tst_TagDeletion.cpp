#include "TagBrowserTest.h"

#include "support/FaultVfs.h"

#include <QToolButton>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Deleting tags in the tag browser.
class tst_TagDeletion : public TagBrowserTest
{
    Q_OBJECT

private Q_SLOTS:
    void waysToAsk_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"button", "Delete key", "context menu"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void waysToAsk()
    {
        QFETCH(const QString, way);
        addThreeTags();
        show();
        clickTag(1);
        if (way == u"button")
            QTest::mouseClick(m_window->findChild<QToolButton *>(u"deleteTagsButton"_s),
                              Qt::LeftButton);
        else if (way == u"Delete key")
            QTest::keyClick(list(), Qt::Key_Delete);
        else
            action(u"deleteTagAction"_s)->trigger();
        QVERIFY(sheet());
        QCOMPARE(sheet()->windowModality(), Qt::WindowModal);
        QCOMPARE(sheetText(u"messageText"_s), u"Do you really want to delete these tags?"_s);
        QCOMPARE(sheetText(u"informativeText"_s), u"Goal 🎯 will be removed."_s);
        QCOMPARE(sheet()->buttons().size(), 2);
        QCOMPARE(sheet()->buttons().at(0)->text(), u"Delete"_s);
        QCOMPARE(sheet()->buttons().at(1)->text(), u"Cancel"_s);
        press(0);
        QCOMPARE(names(), (QStringList{u"Blocked"_s, u"Zebra"_s}));
        QVERIFY(tags().selectedObjects().isEmpty());
    }

    void severalAreNamedInTheOrderOfTheList()
    {
        addThreeTags();
        show();
        clickTag(2);
        clickTag(0, Qt::ControlModifier);
        m_window->handleDelete();
        QCOMPARE(sheetText(u"informativeText"_s), u"Blocked ⛔, Zebra 🦓 will be removed."_s);
        press(0);
        QCOMPARE(names(), QStringList{u"Goal"_s});
    }

    void whatATagLacksStaysEmpty_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("emoji");
        QTest::addColumn<QString>("text");
        QTest::newRow("no name") << QString() << u"🏷"_s
                                 << u" 🏷, Zebra 🦓 will be removed."_s;
        QTest::newRow("no emoji") << u"Bare"_s << QString()
                                  << u"Bare , Zebra 🦓 will be removed."_s;
        QTest::newRow("neither") << QString() << QString() << u" , Zebra 🦓 will be removed."_s;
        QTest::newRow("placeholder")
            << u"%1 %2"_s << u"🏷"_s << u"%1 %2 🏷, Zebra 🦓 will be removed."_s;
        QTest::newRow("markup") << u"<b>x</b>"_s << u"🏷"_s
                                << u"<b>x</b> 🏷, Zebra 🦓 will be removed."_s;
    }

    void whatATagLacksStaysEmpty()
    {
        QFETCH(const QString, name);
        QFETCH(const QString, emoji);
        QFETCH(const QString, text);
        addTag(name, emoji);
        addTag(u"Zebra"_s, u"🦓"_s);
        show();
        list()->selectAll();
        m_window->handleDelete();
        QCOMPARE(sheetText(u"informativeText"_s), text);
        press(1);
    }

    void waysToCancel_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("button") << Qt::Key_unknown;
        QTest::newRow("Escape") << Qt::Key_Escape;
        QTest::newRow("Return, which destroys nothing") << Qt::Key_Return;
    }

    void waysToCancel()
    {
        QFETCH(const Qt::Key, key);
        addThreeTags();
        show();
        list()->selectAll();
        m_window->handleDelete();
        QTRY_COMPARE(QApplication::activeWindow(), sheet());
        if (key == Qt::Key_unknown)
            press(1);
        else
            QTest::keyClick(QApplication::focusWidget(), key);
        QTRY_VERIFY(!sheet());
        QCOMPARE(tags().rowCount(), 3);
        QCOMPARE(tags().selectedTags().size(), 3);
        QVERIFY(!m_journal->context().hasChanges());
    }

    void withoutASelectionNothingIsAsked()
    {
        addThreeTags();
        show();
        QTest::keyClick(list(), Qt::Key_Delete);
        m_window->handleDelete();
        QVERIFY(!sheet());
    }

    void thoseThatWereNamedGoWhateverIsSelectedThen()
    {
        addThreeTags();
        show();
        clickTag(1);
        m_window->handleDelete();
        m_window->selectTag(tags().tagAt(2));
        press(0);
        QCOMPARE(names(), (QStringList{u"Blocked"_s, u"Zebra"_s}));
    }

    void onesThatAreGoneBeforeTheAnswerAreNoError()
    {
        addThreeTags();
        show();
        list()->selectAll();
        m_window->handleDelete();
        QVERIFY(m_journal->context().deleteObject(tags().tagAt(1)));
        tell();
        press(0);
        QVERIFY(names().isEmpty());
        QVERIFY(!sheet());
        QTRY_VERIFY(isShown(u"noTags"_s));
    }

    void meetingsLoseTheTagAndStay()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        m_journal->addTag(session, u"Goal"_s, u"🎯"_s);
        m_journal->addTag(session, u"Zebra"_s, u"🦓"_s);
        show();
        clickTag(0);
        QCOMPARE(column(2), QStringList{u"Goal 🎯, Zebra 🦓"_s});
        m_window->handleDelete();
        press(0);
        QTRY_VERIFY(!m_window->selectedTag());
        QVERIFY(m_window->sessionViewModels().isEmpty());
        QVERIFY(isShown(u"noSelection"_s));
        QVERIFY(!session->isDeleted());
        QCOMPARE(session->tagEmojiSummary(), u"🦓"_s);
        clickTag(0);
        QCOMPARE(column(2), QStringList{u"Zebra 🦓"_s});
    }

    void undoBringsThemBackWithTheirMeetings()
    {
        const auto session = m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ana"_s), 1);
        m_journal->addTag(session, u"Goal"_s, u"🎯"_s);
        addTag(u"Zebra"_s, u"🦓"_s);
        show();
        const ObjectID goal = tags().tagAt(0)->objectID();
        list()->selectAll();
        m_window->handleDelete();
        press(0);
        QTRY_VERIFY(isShown(u"noTags"_s));
        m_window->reveal(goal);
        undo();
        QTRY_COMPARE(names(), (QStringList{u"Goal"_s, u"Zebra"_s}));
        QVERIFY(m_window->selectedTag());
        QCOMPARE(m_window->selectedTag()->name(), u"Goal"_s);
        QTRY_COMPARE(m_window->sessionViewModels().size(), 1);
        redo();
        QTRY_VERIFY(names().isEmpty());
    }

    void theNextArrowAfterADeletionSkipsNoTag()
    {
        addThreeTags();
        show();
        clickTag(1);
        m_window->handleDelete();
        press(0);
        QTRY_VERIFY(list()->hasFocus());
        const int row = list()->currentRow();
        QVERIFY(row >= 0);
        QTest::keyClick(list(), Qt::Key_Down);
        QCOMPARE(tags().selectionIndexes(), QList<int>{row});
    }

    void aFailedDeletionSaysSoAndKeepsThem()
    {
        FaultVfs disk;
        m_journal = std::make_unique<JournalFixture>(utc(2026, 11, 20), disk.name());
        addThreeTags();
        show();
        clickTag(0);
        clickTag(2, Qt::ControlModifier);
        disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Could not delete records: ."_s));
        m_window->handleDelete();
        press(0);
        QCOMPARE(names(), (QStringList{u"Blocked"_s, u"Goal"_s, u"Zebra"_s}));
        QCOMPARE(tags().selectedTags().size(), 2);
        QVERIFY(sheet());
        QCOMPARE(sheetText(u"messageText"_s), u"The tags could not be deleted."_s);
        QVERIFY(!sheetText(u"informativeText"_s).isEmpty());
        press(0);
        disk.failNothing();
        m_window->handleDelete();
        press(0);
        QCOMPARE(names(), QStringList{u"Goal"_s});
        cleanup();
    }

    void theWindowMayGoWhileItAsks()
    {
        addThreeTags();
        show();
        clickTag(1);
        m_window->handleDelete();
        QVERIFY(sheet());
        m_window.reset();
        gui::handlePendingEvents();
        QVERIFY(!m_journal->context().hasChanges());
    }
};

QTEST_MAIN(tst_TagDeletion)
#include "tst_TagDeletion.moc"
