#include "TagBrowserTest.h"

#include "Toolkit/Emoji/EmojiPalette.h"
#include "Toolkit/Emoji/RecentEmoji.h"
#include "Toolkit/Popover.h"

using namespace tembra;
using namespace Qt::StringLiterals;

/// Giving a tag another emoji in its row.
class tst_TagEmoji : public TagBrowserTest
{
    Q_OBJECT

private Q_SLOTS:
    void waysToChangeAnEmoji_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"click", "key", "context menu"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void waysToChangeAnEmoji()
    {
        QFETCH(const QString, way);
        addThreeTags();
        show();
        if (way != u"click")
            clickTag(1);
        if (way == u"click")
            clickEmoji(1);
        else if (way == u"key")
            QTest::keyClick(list(), Qt::Key_E, Qt::ControlModifier);
        else
            action(u"changeEmojiAction"_s)->trigger();
        QVERIFY(emojiEditor());
        QVERIFY(emojiEditor()->hasFocus());
        QVERIFY(m_insertEmoji);
        m_insertEmoji(u"⚡️"_s);
        QCOMPARE(tags().tagAt(1)->emoji(), u"⚡️"_s);
        QCOMPARE(tags().tagAt(1)->titleString(), u"Goal ⚡️"_s);
        QTRY_VERIFY(!emojiEditor());
        QVERIFY(list()->hasFocus());
        undo();
        QTRY_COMPARE(tags().tagAt(1)->emoji(), u"🎯"_s);
    }

    void anotherEmojiMovesTheTagAmongItsNamesakes()
    {
        addTag(u"Goal"_s, u"⚽"_s);
        const auto tag = addTag(u"Goal"_s, u"🎯"_s);
        show();
        clickEmoji(1);
        m_insertEmoji(u"☀"_s);
        QTRY_COMPARE(tags().rowOf(tag.get()), 0);
        QVERIFY(list()->selectionModel()->isRowSelected(0));
    }

    void aTypedEmojiCounts()
    {
        addThreeTags();
        show();
        clickEmoji(1);
        QTest::keyClick(emojiEditor(), Qt::Key_A);
        QCOMPARE(tags().tagAt(1)->emoji(), u"🎯"_s);
        emojiEditor()->insert(u"🚀"_s);
        QCOMPARE(tags().tagAt(1)->emoji(), u"🚀"_s);
        QTRY_VERIFY(!emojiEditor());
    }

    void escapeLeavesTheEmoji()
    {
        addThreeTags();
        show();
        clickEmoji(1);
        QTest::keyClick(emojiEditor(), Qt::Key_Escape);
        QTRY_VERIFY(!emojiEditor());
        QCOMPARE(tags().tagAt(1)->emoji(), u"🎯"_s);
        QVERIFY(!m_journal->context().hasChanges());
    }

    void leavingTheFieldKeepsTheEmoji()
    {
        addThreeTags();
        show();
        clickEmoji(1);
        clickTag(0);
        QTRY_VERIFY(!emojiEditor());
        QCOMPARE(tags().tagAt(1)->emoji(), u"🎯"_s);
        QCOMPARE(m_window->selectedTag()->name(), u"Blocked"_s);
    }

    void clicksThatExtendTheSelectionOpenNothing()
    {
        addThreeTags();
        show();
        clickTag(0);
        clickEmoji(1, Qt::ControlModifier);
        clickEmoji(2, Qt::ShiftModifier);
        QVERIFY(!emojiEditor());
        QVERIFY(!m_insertEmoji);
        QVERIFY(tags().selectedTags().size() > 1);
    }

    // With the palette of the program.

    void theKeyboardAloneGetsAnEmojiFromThePalette()
    {
        RecentEmoji recent(m_journal->filePath(u"windows.ini"_s));
        showWithPalette(recent);
        clickTag(1);
        QTest::keyClick(list(), Qt::Key_E, Qt::ControlModifier);
        QTRY_VERIFY(QApplication::activePopupWidget());
        for (const QChar letter : u"rocket"_s)
            QTest::keyClick(QApplication::focusWidget(), letter.toLatin1());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_COMPARE(tags().tagAt(1)->emoji(), u"🚀"_s);
        QTRY_VERIFY(!emojiEditor());
        QTRY_VERIFY(list()->hasFocus());
    }

    void aPaletteThatIsClosedLeavesTheEmojiAndTheField()
    {
        RecentEmoji recent(m_journal->filePath(u"windows.ini"_s));
        showWithPalette(recent);
        clickEmoji(1);
        QTRY_VERIFY(QApplication::activePopupWidget());
        QVERIFY(emojiEditor());
        QTest::qWait(50);
        QVERIFY(emojiEditor());
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!emojiEditor());
        QTRY_VERIFY(list()->hasFocus());
        QCOMPARE(tags().tagAt(1)->emoji(), u"🎯"_s);
        QVERIFY(!m_journal->context().hasChanges());
    }

private:
    void showWithPalette(RecentEmoji &recent)
    {
        addThreeTags();
        showWith([&recent](QWidget *sender, std::function<void(const QString &)> insert) {
            EmojiPalette::orderFrontCharacterPalette(sender, recent, std::move(insert));
        });
    }
};

QTEST_MAIN(tst_TagEmoji)
#include "tst_TagEmoji.moc"
