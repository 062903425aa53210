#include "Toolkit/Token/TokenField.h"

#include "TokenFieldTest.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QShortcut>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Typing, moving, deleting, pasting and the focus.
class TestTokenFieldKeys : public TokenFieldTest
{
    Q_OBJECT

private Q_SLOTS:
    void endsTextsWith_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("Return") << int(Qt::Key_Return);
        QTest::newRow("Enter") << int(Qt::Key_Enter);
        QTest::newRow("comma") << int(Qt::Key_Comma);
    }

    void endsTextsWith()
    {
        QFETCH(int, code);
        QTest::keyClicks(m_field, u"One"_s);
        key(Qt::Key(code));
        QTest::keyClicks(m_field, u" Two"_s);
        QCOMPARE(m_field->picture(), u"[One] Two|"_s);
        key(Qt::Key(code));
        QCOMPARE(m_field->picture(), u"[One][Two]|"_s);
        QCOMPARE(m_field->proposed, QStringList({u"One at 0"_s, u"Two at 1"_s}));
        QVERIFY(m_field->isEditing());
    }

    void knowsObjectsByTheirText()
    {
        const auto known = m_field->known(u"Known"_s);
        m_field->makesWords = false;
        QTest::keyClicks(m_field, u"Known"_s);
        key(Qt::Key_Return);
        QCOMPARE(m_field->objectValue(), QList{known});
    }

    void dropsBlankText()
    {
        QTest::keyClicks(m_field, u"  "_s);
        key(Qt::Key_Return);
        QCOMPARE(m_field->picture(), u"|"_s);
        QTest::keyClicks(m_field, u", ,"_s);
        QCOMPARE(m_field->picture(), u"|"_s);
        gui::typeText(*m_field, u"\u00a0"_s);
        m_field->endEditing();
        QCOMPARE(m_field->picture(), u"|"_s);
        QVERIFY(m_field->proposed.isEmpty());
    }

    void dropsTextsThatBecomeNothing()
    {
        m_field->makesWords = false;
        m_field->show({u"One"_s});
        QTest::keyClicks(m_field, u"nothing"_s);
        key(Qt::Key_Return);
        QCOMPARE(m_field->picture(), u"[One]|"_s);
        QCOMPARE(m_field->proposed, QStringList(u"nothing at 1"_s));
    }

    void splitsTextAtAComma()
    {
        QTest::keyClicks(m_field, u"OneTwo"_s);
        m_field->moveCaret(3);
        key(Qt::Key_Comma);
        QCOMPARE(m_field->picture(), u"[One]|Two"_s);
        m_field->moveCaret(2);
        gui::typeText(*m_field, u",,x"_s);
        QCOMPARE(m_field->picture(), u"[One][T]x|wo"_s);
    }

    void tellsTheIndexOfNewTokens()
    {
        m_field->show({u"A"_s, u"B"_s, u"C"_s});
        m_field->moveCaret(2);
        QTest::keyClicks(m_field, u"x"_s);
        m_field->moveCaret(0);
        QTest::keyClicks(m_field, u"y"_s);
        key(Qt::Key_Return);
        QCOMPARE(m_field->words(), QStringList({u"y"_s, u"A"_s, u"B"_s, u"x"_s, u"C"_s}));
        QCOMPARE(m_field->proposed, QStringList({u"y at 0"_s, u"x at 3"_s}));
    }

    void movesOverTokens()
    {
        m_field->show({u"One"_s, u"Two"_s});
        QTest::keyClicks(m_field, u"ab"_s);
        const QStringList backwards{u"[One][Two]a|b"_s, u"[One][Two]|ab"_s, u"[One]|[Two]ab"_s,
                                    u"|[One][Two]ab"_s, u"|[One][Two]ab"_s};
        for (const QString &picture : backwards) {
            key(Qt::Key_Left);
            QCOMPARE(m_field->picture(), picture);
        }
        key(Qt::Key_Right);
        QCOMPARE(m_field->picture(), u"[One]|[Two]ab"_s);
        key(Qt::Key_End);
        QCOMPARE(m_field->picture(), u"[One][Two]ab|"_s);
        key(Qt::Key_Home);
        QCOMPARE(m_field->picture(), u"|[One][Two]ab"_s);
        QCOMPARE(m_field->words(), QStringList({u"One"_s, u"Two"_s}));
    }

    void selectsByKey()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        key(Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(m_field->picture(), u"[One][Two]|[Three]|"_s);
        key(Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(m_field->picture(), u"[One]|[Two][Three]|"_s);
        key(Qt::Key_Home, Qt::ShiftModifier);
        QCOMPARE(m_field->picture(), u"|[One][Two][Three]|"_s);
        key(Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(m_field->picture(), u"[One]|[Two][Three]|"_s);
        m_field->moveCaret(1);
        key(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(m_field->picture(), u"|[One][Two][Three]|"_s);
    }

    void leavesSelectionsAtTheirEnds()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        m_field->moveCaret(2, 1);
        key(Qt::Key_Left);
        QCOMPARE(m_field->picture(), u"[One]|[Two][Three]"_s);
        m_field->moveCaret(0, 2);
        key(Qt::Key_Right);
        QCOMPARE(m_field->picture(), u"[One][Two]|[Three]"_s);
    }

    void deletes_data()
    {
        QTest::addColumn<int>("caret");
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("after");
        const int back = Qt::Key_Backspace, forward = Qt::Key_Delete;
        QTest::newRow("selects the token before first") << 1 << QList{back} << u"|[One]|ab[Two]"_s;
        QTest::newRow("then removes it") << 1 << QList{back, back} << u"|ab[Two]"_s;
        QTest::newRow("text before") << 2 << QList{back} << u"[One]|b[Two]"_s;
        QTest::newRow("text, then token") << 3 << QList{back, back, back, back} << u"|[Two]"_s;
        QTest::newRow("nothing before") << 0 << QList{back} << u"|[One]ab[Two]"_s;
        QTest::newRow("selects the token behind first")
            << 3 << QList{forward} << u"[One]ab|[Two]|"_s;
        QTest::newRow("then removes that") << 3 << QList{forward, forward} << u"[One]ab|"_s;
        QTest::newRow("selected forward, removed backward")
            << 3 << QList{forward, back} << u"[One]ab|"_s;
        QTest::newRow("text behind") << 1 << QList{forward} << u"[One]|b[Two]"_s;
        QTest::newRow("nothing behind") << 4 << QList{forward} << u"[One]ab[Two]|"_s;
    }

    void deletes()
    {
        QFETCH(int, caret);
        QFETCH(QList<int>, keys);
        m_field->show({u"One"_s, u"Two"_s});
        m_field->moveCaret(1);
        QTest::keyClicks(m_field, u"ab"_s);
        m_field->moveCaret(caret);
        for (const int code : keys)
            key(Qt::Key(code));
        QTEST(m_field->picture(), "after");
    }

    void typesOverSelections()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        m_field->moveCaret(2, 0);
        const QSignalSpy changes(m_field, &TokenField::tokensChanged);
        QTest::keyClicks(m_field, u"x"_s);
        QCOMPARE(m_field->picture(), u"x|[Three]"_s);
        QCOMPARE(changes.count(), 1);
        key(Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(m_field, u"y,"_s);
        QCOMPARE(m_field->picture(), u"[y]|"_s);
    }

    void editsTokens()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Two"_s});
        const auto second = m_field->objectValue().at(2);
        QTest::keyClicks(m_field, u"half"_s);
        m_field->moveCaret(2, 3);
        key(Qt::Key_F2);
        QCOMPARE(m_field->picture(), u"[One][Two]|Two|[half]"_s);
        // Left as it was it is the same object, also where another one has the same text.
        key(Qt::Key_Return);
        QCOMPARE(m_field->picture(), u"[One][Two][Two]|[half]"_s);
        QCOMPARE(m_field->objectValue().at(2), second);
        QCOMPARE(m_field->proposed, QStringList(u"half at 3"_s));
        m_field->moveCaret(0, 1);
        key(Qt::Key_F2);
        QCOMPARE(m_field->picture(), u"|One|[Two][Two][half]"_s);
        key(Qt::Key_End);
        m_field->moveCaret(3);
        QTest::keyClicks(m_field, u"s"_s);
        key(Qt::Key_Return);
        QCOMPARE(m_field->words().at(0), u"Ones"_s);
        QCOMPARE(m_field->proposed.last(), u"Ones at 0"_s);
    }

    void givesUpEditingATokenByEscape()
    {
        m_field->show({u"One"_s, u"Two"_s});
        const auto before = m_field->objectValue();
        m_field->moveCaret(0, 1);
        key(Qt::Key_F2);
        QTest::keyClicks(m_field, u"changed"_s);
        QCOMPARE(m_field->picture(), u"changed|[Two]"_s);
        QCOMPARE(m_field->words(), QStringList(u"Two"_s));
        key(Qt::Key_Escape);
        QCOMPARE(m_field->picture(), u"[One]|[Two]"_s);
        QCOMPARE(m_field->objectValue(), before);
        QVERIFY(m_field->proposed.isEmpty());
        m_field->moveCaret(0, 1);
        key(Qt::Key_F2);
        key(Qt::Key_Delete);
        QCOMPARE(m_field->picture(), u"|[Two]"_s);
        key(Qt::Key_Escape);
        QCOMPARE(m_field->objectValue(), before);
        m_field->moveCaret(0, 1);
        key(Qt::Key_F2);
        m_other->setFocus();
        QCOMPARE(m_field->objectValue(), before);
    }

    void keepsReservedCharacters()
    {
        const QString reserved = u"a\ufffcb\n\u2029c\ufdd0 d"_s + QChar(u'\0') + u"e\u00a0f"_s;
        m_field->show({reserved});
        m_field->moveCaret(0, 1);
        key(Qt::Key_F2);
        QCOMPARE(m_field->editedSubstring(), reserved);
        QVERIFY(m_field->objectValue().isEmpty());
        QCOMPARE(m_field->document()->blockCount(), 1);
        m_field->moveCaret(1);
        QTest::keyClicks(m_field, u"x"_s);
        key(Qt::Key_Return);
        QCOMPARE(m_field->words(), QStringList(u"ax"_s + reserved.mid(1)));
        m_field->setObjectValue({});
        gui::typeText(*m_field, u"p\ufffcq"_s);
        QVERIFY(m_field->objectValue().isEmpty());
        QCOMPARE(m_field->editedSubstring(), u"p\ufffcq"_s);
        gui::pasteText(*m_field, u"\ufffc"_s);
        key(Qt::Key_Return);
        QCOMPARE(m_field->words(), QStringList(u"p\ufffcq\ufffc"_s));
    }

    void endsEditing()
    {
        m_other->setFocus();
        const QSignalSpy begins(m_field, &TokenField::didBeginEditing);
        const QSignalSpy ends(m_field, &TokenField::didEndEditing);
        QVERIFY(!m_field->isEditing());
        m_field->setFocus();
        QVERIFY(m_field->isEditing());
        QCOMPARE(begins.count(), 1);
        QTest::keyClicks(m_field, u"One"_s);
        m_other->setFocus();
        QCOMPARE(m_field->words(), QStringList(u"One"_s));
        QVERIFY(!m_field->isEditing());
        QCOMPARE(ends.count(), 1);
        m_field->setFocus();
        QTest::keyClicks(m_field, u"Two"_s);
        m_field->endEditing();
        QVERIFY(m_field->hasFocus());
        QCOMPARE(m_field->words(), QStringList({u"One"_s, u"Two"_s}));
        QCOMPARE(ends.count(), 2);
        QTest::keyClicks(m_field, u"x"_s);
        QVERIFY(m_field->isEditing());
        QCOMPARE(begins.count(), 3);
        m_window->hide();
        QCOMPARE(m_field->words().last(), u"x"_s);
        QCOMPARE(ends.count(), 3);
    }

    void endsEditingOnceOnly()
    {
        const QSignalSpy ends(m_field, &TokenField::didEndEditing);
        QTest::keyClicks(m_field, u"One"_s);
        key(Qt::Key_Return);
        QCOMPARE(ends.count(), 0);
        key(Qt::Key_Return);
        QCOMPARE(ends.count(), 1);
        QVERIFY(m_field->hasFocus());
        key(Qt::Key_Return);
        m_field->endEditing();
        m_other->setFocus();
        QCOMPARE(ends.count(), 1);
    }

    void keepsEditingWhileAwayForAWhile()
    {
        const QSignalSpy ends(m_field, &TokenField::didEndEditing);
        QTest::keyClicks(m_field, u"half"_s);
        QWidget another;
        another.show();
        another.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&another));
        QTRY_VERIFY(!m_field->hasFocus());
        QCOMPARE(m_field->picture(), u"half|"_s);
        another.hide();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTRY_VERIFY(m_field->hasFocus());
        QTest::keyClicks(m_field, u"-typed"_s);
        QCOMPARE(m_field->picture(), u"half-typed|"_s);
        QCOMPARE(ends.count(), 0);
    }

    void leavesByTab()
    {
        QTest::keyClicks(m_field, u"One"_s);
        key(Qt::Key_Tab);
        QVERIFY(m_other->hasFocus());
        QCOMPARE(m_field->words(), QStringList(u"One"_s));
        QTest::keyClick(m_other, Qt::Key_Backtab);
        QVERIFY(m_field->hasFocus());
        key(Qt::Key_Backtab);
        QVERIFY(m_other->hasFocus());
    }

    void leavesUndoToTheWindow_data() { gui::addUndoKeys(); }

    void leavesUndoToTheWindow()
    {
        QFETCH(QKeySequence, keys);
        QTest::keyClicks(m_field, u"One"_s);
        QVERIFY(gui::reachesTheWindow(*m_field, keys));
        QCOMPARE(m_field->picture(), u"One|"_s);
        QVERIFY(!m_field->document()->isUndoAvailable());
    }

    void leavesEscapeToTheParent()
    {
        QShortcut escape(QKeySequence(Qt::Key_Escape), m_window.get());
        const QSignalSpy escapes(&escape, &QShortcut::activated);
        m_field->show({u"One"_s});
        m_field->moveCaret(0, 1);
        key(Qt::Key_F2);
        key(Qt::Key_Escape);
        QCOMPARE(escapes.count(), 0);
        QCOMPARE(m_field->picture(), u"[One]|"_s);
        key(Qt::Key_Escape);
        QCOMPARE(escapes.count(), 1);
    }

    void composes()
    {
        m_field->offered = QStringList{u"かき"_s};
        m_field->show({u"One"_s});
        const QSignalSpy edits(m_field, &TokenField::textDidChange);
        for (const QString &text : {u"か"_s, u"か,"_s}) {
            QInputMethodEvent composing(text, {});
            QCoreApplication::sendEvent(m_field, &composing);
        }
        QCOMPARE(m_field->picture(), u"[One]|"_s);
        QCOMPARE(edits.count(), 0);
        QVERIFY(m_field->asked.isEmpty());
        QInputMethodEvent commit;
        commit.setCommitString(u"か"_s);
        QCoreApplication::sendEvent(m_field, &commit);
        QCOMPARE(m_field->picture(), u"[One]か|"_s);
        QCOMPARE(m_field->asked, QStringList(u"か at 1"_s));
        QVERIFY(m_field->isCompletionListShown());
        QInputMethodEvent next(u"き"_s, {});
        QCoreApplication::sendEvent(m_field, &next);
        QVERIFY(!m_field->isCompletionListShown());
        QInputMethodEvent replacing;
        replacing.setCommitString(u"柿,"_s, -1, 1);
        QCoreApplication::sendEvent(m_field, &replacing);
        QCOMPARE(m_field->picture(), u"[One][柿]|"_s);
    }

    void pastesText_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("after");
        QTest::newRow("one") << QString() << u"One"_s << u"[One]|"_s;
        QTest::newRow("blanks around") << QString() << u"  One \n"_s << u"[One]|"_s;
        QTest::newRow("commas") << QString() << u"One, Two,,Three, "_s << u"[One][Two][Three]|"_s;
        QTest::newRow("lines and columns") << QString() << u"One\r\nTwo\tThree\nFour\u2029Five"_s
                                           << u"[One][Two][Three][Four][Five]|"_s;
        QTest::newRow("into a text") << u"a"_s << u"b"_s << u"ab|"_s;
        QTest::newRow("list onto a text") << u"a"_s << u"b,c"_s << u"[ab][c]|"_s;
        QTest::newRow("nothing but blanks") << QString() << u" , \n"_s << u"|"_s;
        QTest::newRow("emoji") << QString() << u"Hiring 🚀, 👩‍👩‍👧"_s
                               << u"[Hiring 🚀][👩‍👩‍👧]|"_s;
    }

    void pastesText()
    {
        QFETCH(QString, typed);
        QFETCH(QString, pasted);
        QTest::keyClicks(m_field, typed);
        gui::pasteText(*m_field, pasted);
        QTEST(m_field->picture(), "after");
    }

    void pastesLongTextsQuickly()
    {
        QElapsedTimer timer;
        timer.start();
        gui::pasteText(*m_field, QString(10'000, u'x'));
        QCOMPARE(m_field->words(), QStringList(QString(10'000, u'x')));
        gui::pasteText(*m_field, u"a,"_s.repeated(5'000));
        QCOMPARE(m_field->words().size(), 5'001);
        QTest::keyClicks(m_field, u"b"_s);
        gui::pasteText(*m_field, u"🚀 "_s.repeated(3'300));
        QCoreApplication::processEvents();
        QVERIFY2(timer.elapsed() < 5'000, qPrintable(QString::number(timer.elapsed())));
    }

    void takesNoRichText()
    {
        auto *rich = new QMimeData;
        rich->setHtml(u"<b>One</b><img src='file:///etc/hostname'><p>Two"_s);
        rich->setText(u"One\nTwo"_s);
        QGuiApplication::clipboard()->setMimeData(rich);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_field->picture(), u"[One][Two]|"_s);
        auto *onlyRich = new QMimeData;
        onlyRich->setHtml(u"<b>Three</b>"_s);
        QGuiApplication::clipboard()->setMimeData(onlyRich);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_field->picture(), u"[One][Two]|"_s);
        auto *files = new QMimeData;
        files->setUrls({QUrl(u"file:///etc/hostname"_s)});
        QGuiApplication::clipboard()->setMimeData(files);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_field->picture(), u"[One][Two]|"_s);
        QTest::keyClicks(m_field, u"<i>x"_s);
        QCOMPARE(m_field->editedSubstring(), u"<i>x"_s);
    }

    void copiesAndCuts()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        m_field->moveCaret(1, 3);
        key(Qt::Key_C, Qt::ControlModifier);
        const QMimeData *copied = QGuiApplication::clipboard()->mimeData();
        QCOMPARE(copied->text(), u"Two, Three"_s);
        QCOMPARE(copied->data(QString::fromLatin1(WordField::mimeType)), QByteArray("Two|Three"));
        QVERIFY(!copied->hasHtml());
        const QSignalSpy changes(m_field, &TokenField::tokensChanged);
        key(Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(m_field->picture(), u"[One]|"_s);
        QCOMPARE(changes.count(), 1);
        QTest::keyClicks(m_field, u"half"_s);
        m_field->moveCaret(2, 4);
        key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"al"_s);
        QVERIFY(!QGuiApplication::clipboard()->mimeData()->hasFormat(
            QString::fromLatin1(WordField::mimeType)));
        QTest::keyClick(m_other, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_other->text(), u"al"_s);
    }

    void pastesObjects()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        m_field->moveCaret(0, 2);
        key(Qt::Key_C, Qt::ControlModifier);
        // All there already: nothing comes, and what is selected stays.
        m_field->moveCaret(2, 3);
        const QSignalSpy changes(m_field, &TokenField::tokensChanged);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_field->picture(), u"[One][Two]|[Three]|"_s);
        QCOMPARE(changes.count(), 0);
        // What is pasted over may be among what is pasted.
        m_field->moveCaret(1, 2);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_field->picture(), u"[One][Two]|[Three]"_s);
        m_field->setObjectValue({});
        QTest::keyClicks(m_field, u"ab"_s);
        m_field->moveCaret(1);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(m_field->picture(), u"a[One][Two]|b"_s);
    }

    void changesNothingWhenReadOnly()
    {
        m_field->show({u"One"_s, u"Two"_s});
        m_field->setReadOnly(true);
        m_field->moveCaret(1, 2);
        QTest::keyClicks(m_field, u"x,"_s);
        for (const Qt::Key code : {Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Return, Qt::Key_F2})
            key(code);
        gui::pasteText(*m_field, u"Three"_s);
        key(Qt::Key_X, Qt::ControlModifier);
        QInputMethodEvent commit;
        commit.setCommitString(u"か"_s);
        QCoreApplication::sendEvent(m_field, &commit);
        QCOMPARE(m_field->words(), QStringList({u"One"_s, u"Two"_s}));
        key(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Two"_s);
    }

    /// What is told may be answered by other content, in the middle of everything.
    void survivesChangesFromWithin()
    {
        connect(m_field, &TokenField::textDidChange, m_field, [this] {
            m_field->refreshTokens();
            if (m_field->words().size() == 2)
                m_field->show({u"Other"_s});
        });
        QTest::keyClicks(m_field, u"One,Two,Three"_s);
        QCOMPARE(m_field->picture(), u"[Other]Three|"_s);
        key(Qt::Key_Return);
        QCOMPARE(m_field->picture(), u"[Other]|"_s);
        m_field->appendObject(m_field->known(u"New"_s));
        key(Qt::Key_Backspace);
        key(Qt::Key_Backspace);
        QCOMPARE(m_field->picture(), u"[Other]|"_s);
    }
};

QTEST_MAIN(TestTokenFieldKeys)
#include "tst_TokenFieldKeys.moc"
