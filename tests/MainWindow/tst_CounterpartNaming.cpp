#include "CounterpartsPaneTest.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_CounterpartNaming : public CounterpartsPaneTest
{
    Q_OBJECT

private Q_SLOTS:
    void addingStartsTypingTheName()
    {
        addThree();
        show();
        QTest::mouseClick(m_panes->button(u"addTeammateButton"_s), Qt::LeftButton);
        QCOMPARE(m_panes->controller().rowCount(), 4);
        QCOMPARE(m_panes->controller().selectionIndexes(), QList<int>{3});
        QVERIFY(m_panes->detail->selectedCounterpart());
        QVERIFY(!m_panes->nameEditor());
        QTRY_VERIFY(m_panes->nameEditor());
        QCOMPARE(m_panes->nameEditor()->placeholderText(), u"New teammate"_s);
        QVERIFY(m_panes->nameEditor()->hasFocus());
        QTest::keyClicks(m_panes->nameEditor(), u"Dana"_s);
        QTest::keyClick(m_panes->nameEditor(), Qt::Key_Return);
        QTRY_VERIFY(!m_panes->nameEditor());
        QCOMPARE(m_panes->names().last(), u"Dana"_s);
        QCOMPARE(m_journal->counterparts().last()->name(), u"Dana"_s);
        QVERIFY(m_panes->view->hasFocus());
    }

    void aTeammateWithoutNameSaysSo()
    {
        m_journal->addCounterpart({});
        show();
        const QString text =
            m_panes->controller().index(0, 0).data(Qt::AccessibleTextRole).toString();
        QCOMPARE(text, u"New teammate, No sessions"_s);
        QVERIFY(m_journal->counterparts().first()->name().isNull());
    }

    void waysToRename_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"F2", "double click", "context menu"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void waysToRename()
    {
        QFETCH(const QString, way);
        addThree();
        show();
        m_panes->clickRow(1);
        if (way == u"F2")
            QTest::keyClick(m_panes->view, Qt::Key_F2);
        else if (way == u"double click")
            QTest::mouseDClick(m_panes->view->viewport(), Qt::LeftButton, {}, m_panes->middleOf(1));
        else
            m_panes->list->findChild<QAction *>(u"renameAction"_s)->trigger();
        QVERIFY(m_panes->nameEditor());
        QCOMPARE(m_panes->nameEditor()->selectedText(), u"Ben"_s);
        QTest::keyClicks(m_panes->nameEditor(), u"Bea"_s);
        QTest::keyClick(m_panes->nameEditor(), Qt::Key_Return);
        QTRY_COMPARE(m_panes->names().at(1), u"Bea"_s);
        QVERIFY(!m_panes->sheet());
    }

    void escapeLeavesTheName()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Bea"_s);
        QTest::keyClick(editor, Qt::Key_Escape);
        QCOMPARE(m_panes->names().at(1), u"Ben"_s);
    }

    void escapePutsBackTheNameThoughASaveTookTheNewOne()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Bea"_s);
        m_panes->list->commitEditing();
        QCOMPARE(m_panes->names().at(1), u"Bea"_s);
        QTest::keyClick(editor, Qt::Key_Escape);
        QCOMPARE(m_panes->names().at(1), u"Ben"_s);
    }

    void tabEndsTheTypingAndKeepsTheName_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("Tab") << Qt::Key_Tab;
        QTest::newRow("Shift+Tab") << Qt::Key_Backtab;
    }

    void tabEndsTheTypingAndKeepsTheName()
    {
        QFETCH(const Qt::Key, key);
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Bea"_s);
        QTest::keyClick(editor, key);
        QCOMPARE(m_panes->names().at(1), u"Bea"_s);
        QTRY_VERIFY(!m_panes->nameEditor());
        QVERIFY(m_panes->view->hasFocus());
    }

    void anEmptiedNameIsMissing()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(0);
        QTest::keyClick(editor, Qt::Key_Delete);
        QTest::keyClick(editor, Qt::Key_Return);
        const auto ana = m_panes->list->counterparts().first();
        QTRY_VERIFY(ana->name().isNull());
        QVERIFY(!m_panes->sheet());
    }

    void leavingTheFieldKeepsTheName()
    {
        addThree();
        show();
        QTest::keyClicks(startRenaming(1), u"Bea"_s);
        m_panes->clickRow(0);
        QCOMPARE(m_panes->names().at(1), u"Bea"_s);
        QTRY_VERIFY(!m_panes->nameEditor());
    }

    void oddNamesAreStoredAsTyped_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("markup") << u"<b>Bo</b> &amp; co"_s;
        QTest::newRow("right to left") << u"אנה כהן"_s;
        QTest::newRow("combining") << u"Zoe\u0308"_s;
        QTest::newRow("emoji") << u"Ana 👩‍🚀⚡️"_s;
        QTest::newRow("sixty characters")
            << u"Wolfeschlegelsteinhausenbergerdorff-Donaudampfschifffahrt, K"_s;
    }

    void oddNamesAreStoredAsTyped()
    {
        QFETCH(const QString, name);
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        editor->insert(name);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(m_panes->names().at(1), name);
        m_panes->view->grab();
    }

    // Half-typed names.

    void aSaveTakesAHalfTypedNameAndLetsTheTypingGoOn()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Beatric"_s);
        editor->setCursorPosition(3);
        QVERIFY(m_panes->list->commitEditing());
        QCOMPARE(m_panes->names().at(1), u"Beatric"_s);
        QCOMPARE(m_panes->nameEditor(), editor);
        QVERIFY(editor->hasFocus());
        QCOMPARE(editor->cursorPosition(), 3);
        QTest::keyClicks(editor, u"x"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(m_panes->names().at(1), u"Beaxtric"_s);
    }

    void nothingIsTakenWhileAnInputMethodIsComposing()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Be"_s);
        QInputMethodEvent composing(u"あ"_s, {});
        QApplication::sendEvent(editor, &composing);
        QVERIFY(m_panes->list->commitEditing());
        QTest::qWait(700);
        QCOMPARE(m_panes->names().at(1), u"Ben"_s);
        QCOMPARE(editor->text(), u"Be"_s);

        QInputMethodEvent composed;
        composed.setCommitString(u"亜"_s);
        QApplication::sendEvent(editor, &composed);
        m_panes->list->commitEditing();
        QCOMPARE(m_panes->names().at(1), u"Be亜"_s);
    }

    void whatIsTypedIsHandedOnWithinASecond()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QTest::keyClicks(editor, u"Bea"_s);
        QCOMPARE(m_panes->names().at(1), u"Ben"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_panes->names().at(1), u"Bea"_s, 900);
        QCOMPARE(m_panes->nameEditor(), editor);
    }

    void theFieldMovesWithItsRow()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(0);
        QTest::keyClicks(editor, u"Zoe"_s);
        const QPoint before = editor->pos();
        m_journal->addSessionDaysAgo(m_panes->list->counterparts().at(2), 9);
        m_journal->context().processPendingChanges();
        m_panes->controller().rearrangeObjects();
        QCOMPARE(m_panes->names(), (QStringList{u"Chidi"_s, u"Ana"_s, u"Ben"_s}));
        QCOMPARE(m_panes->nameEditor(), editor);
        QTRY_VERIFY(editor->y() > before.y());
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(m_panes->names(), (QStringList{u"Chidi"_s, u"Zoe"_s, u"Ben"_s}));
    }

    void anIncomingTeammateLeavesTheNameInEdit()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(0);
        QTest::keyClicks(editor, u"Zo"_s);
        m_journal->addCounterpart(u"New"_s);
        QTRY_COMPARE(m_panes->controller().rowCount(), 4);
        QCOMPARE(m_panes->nameEditor(), editor);
        QVERIFY(editor->hasFocus());
        QCOMPARE(editor->text(), u"Zo"_s);
        QTest::keyClicks(editor, u"e"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(m_panes->names().contains(u"Zoe"_s));
        QVERIFY(!m_panes->names().contains(u"Ana"_s));
    }

    void lineBreaksAndTabsOfTheClipboardBecomeBlanks_data()
    {
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("name");
        QTest::newRow("line break") << u"Ana\nMaria"_s << u"Ana Maria"_s;
        QTest::newRow("line break of another system") << u"Ana\r\nMaria"_s << u"Ana Maria"_s;
        QTest::newRow("tab") << u"Ana\tMaria"_s << u"Ana Maria"_s;
        QTest::newRow("line separator") << u"Ana\u2028Maria"_s << u"Ana Maria"_s;
        QTest::newRow("a cell of a table") << u"Ana Maria\n"_s << u"Ana Maria "_s;
    }

    void lineBreaksAndTabsOfTheClipboardBecomeBlanks()
    {
        QFETCH(const QString, pasted);
        QFETCH(const QString, name);
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        QApplication::clipboard()->setText(pasted);
        QTest::keyClick(editor, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(editor->text(), name);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(m_panes->names().at(1), name);
    }

    void aChangeFromElsewhereShowsInAnUntouchedField()
    {
        addThree();
        show();
        QLineEdit *editor = startRenaming(1);
        m_panes->list->counterparts().at(1)->setName(u"Benedict"_s);
        QCOMPARE(editor->text(), u"Benedict"_s);
        QTest::keyClicks(editor, u"!"_s);
        m_panes->list->counterparts().at(1)->setName(u"Other"_s);
        QCOMPARE(editor->text(), u"Benedict!"_s);
    }
};

QTEST_MAIN(tst_CounterpartNaming)
#include "tst_CounterpartNaming.moc"
