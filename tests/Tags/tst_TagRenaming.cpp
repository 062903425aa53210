#include "TagBrowserTest.h"

#include <QInputMethodEvent>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Typing the name of a tag in its row.
class tst_TagRenaming : public TagBrowserTest
{
    Q_OBJECT

private Q_SLOTS:
    void aPastedLineBreakBecomesABlank()
    {
        addThreeTags();
        show();
        QLineEdit *editor = startRenaming(0);
        gui::pasteText(*editor, u"Long\nterm\tgoal"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(names().contains(u"Long term goal"_s));
    }

    void waysToRename_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"F2", "Return", "Enter", "double click", "context menu"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void waysToRename()
    {
        QFETCH(const QString, way);
        addThreeTags();
        show();
        clickTag(1);
        if (way == u"F2")
            QTest::keyClick(list(), Qt::Key_F2);
        else if (way == u"Return")
            QTest::keyClick(list(), Qt::Key_Return);
        else if (way == u"Enter")
            QTest::keyClick(list(), Qt::Key_Enter, Qt::KeypadModifier);
        else if (way == u"double click")
            QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, middleOf(1));
        else
            action(u"renameTagAction"_s)->trigger();
        QVERIFY(nameEditor());
        QVERIFY(nameEditor()->hasFocus());
        QCOMPARE(nameEditor()->selectedText(), u"Goal"_s);
        QTest::keyClicks(nameEditor(), u"Plan"_s);
        QTest::keyClick(nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(names(), (QStringList{u"Blocked"_s, u"Plan"_s, u"Zebra"_s}));
        QTRY_VERIFY(list()->hasFocus());
    }

    void aRenamedTagMovesToItsPlaceAndStaysSelectedAndInSight()
    {
        for (int number = 0; number < 60; ++number)
            addTag(u"Tag %1"_s.arg(number, 2, 10, QChar(u'0')), u"🏷"_s);
        show();
        const auto tag = tags().tagAt(1);
        QTest::keyClicks(startRenaming(1), u"Zoe"_s);
        QTest::keyClick(nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(tags().rowOf(tag.get()), 59);
        QCOMPARE(tags().selectedTags(), QList<std::shared_ptr<Tag>>{tag});
        QVERIFY(list()->selectionModel()->isRowSelected(59));
        QCOMPARE(list()->currentRow(), 59);
        QVERIFY(list()->viewport()->rect().contains(middleOf(59)));
        QCOMPARE(m_window->selectedTag(), tag);
        QTRY_VERIFY(prompt().contains(u"Zoe 🏷"_s));
    }

    void theRowStaysWhileItsNameIsTyped()
    {
        addThreeTags();
        show();
        QTest::keyClicks(startRenaming(1), u"Zz"_s);
        m_window->commitEditing();
        tell();
        QTest::qWait(50);
        QCOMPARE(names(), (QStringList{u"Blocked"_s, u"Zz"_s, u"Zebra"_s}));
        QVERIFY(nameEditor());
        QTest::keyClick(nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(names(), (QStringList{u"Blocked"_s, u"Zebra"_s, u"Zz"_s}));
    }

    void aSaveTakesAHalfTypedNameAndLetsTheTypingGoOn()
    {
        addThreeTags();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Goall"_s);
        editor->setCursorPosition(2);
        QVERIFY(m_window->commitEditing());
        QCOMPARE(tags().tagAt(1)->name(), u"Goall"_s);
        QCOMPARE(nameEditor(), editor);
        QVERIFY(editor->hasFocus());
        QCOMPARE(editor->cursorPosition(), 2);
    }

    void nothingIsTakenWhileAnInputMethodIsComposing()
    {
        addThreeTags();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Go"_s);
        QInputMethodEvent composing(u"あ"_s, {});
        QApplication::sendEvent(editor, &composing);
        QVERIFY(m_window->commitEditing());
        QTest::qWait(700);
        QCOMPARE(tags().tagAt(1)->name(), u"Goal"_s);
        QInputMethodEvent composed;
        composed.setCommitString(u"亜"_s);
        QApplication::sendEvent(editor, &composed);
        m_window->commitEditing();
        QCOMPARE(tags().tagAt(1)->name(), u"Go亜"_s);
    }

    void whatIsTypedIsHandedOnWithinASecond()
    {
        addThreeTags();
        show();
        QTest::keyClicks(startRenaming(1), u"Gold"_s);
        QCOMPARE(tags().tagAt(1)->name(), u"Goal"_s);
        QTRY_COMPARE_WITH_TIMEOUT(tags().tagAt(1)->name(), u"Gold"_s, 900);
        QVERIFY(nameEditor());
    }

    void escapePutsBackTheNameThoughASaveTookTheNewOne()
    {
        addThreeTags();
        show();
        QTest::keyClicks(startRenaming(1), u"Zz"_s);
        m_window->commitEditing();
        QTest::keyClick(nameEditor(), Qt::Key_Escape);
        QTRY_VERIFY(!nameEditor());
        QCOMPARE(names(), (QStringList{u"Blocked"_s, u"Goal"_s, u"Zebra"_s}));
    }

    void tabEndsTheTypingAndKeepsTheName()
    {
        addThreeTags();
        show();
        QTest::keyClicks(startRenaming(1), u"Gold"_s);
        QTest::keyClick(nameEditor(), Qt::Key_Tab);
        QTRY_VERIFY(!nameEditor());
        QVERIFY(!emojiEditor());
        QCOMPARE(tags().tagAt(1)->name(), u"Gold"_s);
        QVERIFY(list()->hasFocus());
    }

    void anEmptiedNameIsMissing()
    {
        addThreeTags();
        show();
        const auto tag = tags().tagAt(1);
        QTest::keyClick(startRenaming(1), Qt::Key_Backspace);
        QCOMPARE(nameEditor()->placeholderText(), u"Unnamed tag"_s);
        QTest::keyClick(nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(tags().rowOf(tag.get()), 0);
        QVERIFY(tag->name().isNull());
        QCOMPARE(tag->titleString(), u" 🎯"_s);
    }

    void oddNamesAreStoredAsTyped_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("markup") << u"<b>Bo</b> &amp; %1"_s;
        QTest::newRow("right to left") << u"מטרה"_s;
        QTest::newRow("emoji") << u"Zap ⚡️👩‍🚀"_s;
        QTest::newRow("comma") << u"a, b"_s;
        QTest::newRow("blanks") << u" x "_s;
    }

    void oddNamesAreStoredAsTyped()
    {
        QFETCH(const QString, name);
        addTag(u"Goal"_s, u"🎯"_s);
        show();
        startRenaming(0)->insert(name);
        QTest::keyClick(nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(names(), QStringList{name});
        QTRY_COMPARE(prompt(), QString(u"0 tagged: "_s + name
                                       + u" 🎯 (double-click a session for more detail)"_s));
        list()->grab();
    }

    void undoTakesTheWholeNameBack()
    {
        addThreeTags();
        show();
        QTest::keyClicks(startRenaming(1), u"Zz"_s);
        QTest::keyClick(nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(names().last(), u"Zz"_s);
        undo();
        QTRY_COMPARE(names(), (QStringList{u"Blocked"_s, u"Goal"_s, u"Zebra"_s}));
        redo();
        QTRY_COMPARE(names().last(), u"Zz"_s);
    }
};

QTEST_MAIN(tst_TagRenaming)
#include "tst_TagRenaming.moc"
