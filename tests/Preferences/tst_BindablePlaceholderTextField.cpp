#include "Preferences/InputControls/BindablePlaceholderTextField.h"

#include "BoundNote.h"
#include "support/GuiTest.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <QVBoxLayout>

#include <algorithm>

using namespace tembra;
using namespace Qt::StringLiterals;
using Field = BindablePlaceholderTextField;

namespace {

/// The text with every kind of character that a text document would change by itself.
QString everyTrickyCharacter()
{
    return QString(u"nbsp\u00A0 line\u2028paragraph\u2029 cr\r crlf\r\n lf\n nul"_s + QChar(0)
                   + u" \uFDD0\uFDD1 end"_s);
}

void compose(QWidget *field, const QString &preedit, const QString &commit = {})
{
    QInputMethodEvent event(preedit, {});
    event.setCommitString(commit);
    QApplication::sendEvent(field, &event);
}

} // namespace

class TestBindablePlaceholderTextField : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void writesEveryKeystroke();
    void returnAddsALine_data();
    void returnAddsALine();
    void storesAClearedTextAsMissing();
    void leavesAnEmptyTextAloneUntilItIsEdited();
    void showsChangesFromElsewhere();
    void keepsTheCaretWhenTheTextChangesElsewhere();
    void changesOnlyWhatDiffers();
    void takesTheTextThatTheObjectKept();
    void editsTheNewlyBoundObjectOnly();
    void survivesTheBoundObject();
    void unbinds();
    void bindsItsPlaceholder();
    void showsTheNullPlaceholder();

    void caretGoesToTheEndOnFocus_data();
    void caretGoesToTheEndOnFocus();
    void caretGoesWhereItIsClicked();
    void caretStaysWhenTheWindowComesBack();
    void scrollsItsRowIntoView();
    void tabGoesToTheNeighbours();
    void tabFollowsTheWindowWithoutNeighbours();

    void leavesUndoToTheWindow_data();
    void leavesUndoToTheWindow();
    void menuOffersNoUndo();
    void keepsNoRichText();

    void keepsTheCompositionOutOfTheObject();
    void commitsWithoutBreakingTheComposition();
    void waitsWithForeignChangesForTheComposition();

    void carriesEveryCharacter_data();
    void carriesEveryCharacter();
    void pastesEveryCharacter();
    void copiesEveryCharacter();
    void keepsTrickyCharactersWhileTypingAround();
    void alignsRightToLeftTexts();
    void typesQuicklyInLongTexts_data();
    void typesQuicklyInLongTexts();

private:
    void type(const QString &text) { QTest::keyClicks(m_field, text); }

    std::unique_ptr<QWidget> m_window;
    QLineEdit *m_other = nullptr;
    Field *m_field = nullptr;
    std::unique_ptr<BoundNote> m_note;
};

void TestBindablePlaceholderTextField::init()
{
    m_window = std::make_unique<QWidget>();
    m_other = new QLineEdit;
    m_field = new Field;
    auto *layout = new QVBoxLayout(m_window.get());
    layout->addWidget(m_other);
    layout->addWidget(m_field);
    m_window->resize(400, 300);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_other->setFocus();
    m_note = std::make_unique<BoundNote>(u"bound"_s);
    m_field->bind(Field::Binding::Text, m_note.get(), "contentString");
}

void TestBindablePlaceholderTextField::cleanup()
{
    m_window.reset();
    m_note.reset();
}

void TestBindablePlaceholderTextField::writesEveryKeystroke()
{
    m_field->setFocus();
    const QSignalSpy edits(m_field, &Field::edited);
    QTest::keyClick(m_field, Qt::Key_Exclam, Qt::NoModifier);
    QCOMPARE(m_note->contentString(), u"bound!"_s);
    type(u"xy"_s);
    QCOMPARE(m_note->contentString(), u"bound!xy"_s);
    QTest::keyClick(m_field, Qt::Key_Backspace);
    QCOMPARE(m_note->contentString(), u"bound!x"_s);
    QCOMPARE(m_note->writes, 4);
    QCOMPARE(edits.count(), 4);
    QTest::keyClick(m_field, Qt::Key_Left);
    QCOMPARE(m_note->writes, 4);
}

void TestBindablePlaceholderTextField::returnAddsALine_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("Return") << int(Qt::Key_Return) << Qt::KeyboardModifiers();
    QTest::newRow("Shift+Return") << int(Qt::Key_Return)
                                  << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("Enter") << int(Qt::Key_Enter) << Qt::KeyboardModifiers(Qt::KeypadModifier);
}

void TestBindablePlaceholderTextField::returnAddsALine()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key(key), modifiers);
    type(u"x"_s);
    QCOMPARE(m_note->contentString(), u"bound\nx"_s);
    QVERIFY(m_field->hasFocus());
}

void TestBindablePlaceholderTextField::storesAClearedTextAsMissing()
{
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(m_field, Qt::Key_Delete);
    QVERIFY(m_note->contentString().isNull());
    QVERIFY(m_field->text().isNull());
}

void TestBindablePlaceholderTextField::leavesAnEmptyTextAloneUntilItIsEdited()
{
    BoundNote empty(u""_s);
    m_field->bind(Field::Binding::Text, &empty, "contentString");
    m_field->setFocus();
    m_field->commitEditing();
    QCOMPARE(empty.writes, 0);
    QVERIFY(!empty.contentString().isNull());
    type(u"a"_s);
    QTest::keyClick(m_field, Qt::Key_Backspace);
    QVERIFY(empty.contentString().isNull());
}

void TestBindablePlaceholderTextField::showsChangesFromElsewhere()
{
    const QSignalSpy edits(m_field, &Field::edited);
    m_note->setContentString(u"from elsewhere\ntwo"_s);
    QCOMPARE(m_field->text(), u"from elsewhere\ntwo"_s);
    m_note->setContentString({});
    QVERIFY(m_field->text().isNull());
    QCOMPARE(m_note->writes, 2); // Nothing was written back.
    QCOMPARE(edits.count(), 0);
}

void TestBindablePlaceholderTextField::keepsTheCaretWhenTheTextChangesElsewhere()
{
    m_note->setContentString(u"first line\nsecond line"_s);
    QTextCursor caret = m_field->textCursor();
    caret.setPosition(14);
    caret.setPosition(17, QTextCursor::KeepAnchor);
    m_field->setTextCursor(caret);
    QCOMPARE(m_field->textCursor().selectedText(), u"ond"_s);
    m_note->setContentString(u"the very first line\nsecond line"_s);
    QCOMPARE(m_field->textCursor().selectedText(), u"ond"_s);
    m_note->setContentString(u"the very first line\nsecond line, longer"_s);
    QCOMPARE(m_field->textCursor().selectedText(), u"ond"_s);
    m_note->setContentString(u"second line, longer"_s);
    QCOMPARE(m_field->textCursor().selectedText(), u"ond"_s);
}

void TestBindablePlaceholderTextField::changesOnlyWhatDiffers()
{
    m_note->setContentString(u"one\ntwo 😀 three"_s);
    const QSignalSpy changes(m_field->document(), &QTextDocument::contentsChange);
    m_note->setContentString(u"one\ntwo 😁 three"_s);
    QCOMPARE(m_field->text(), u"one\ntwo 😁 three"_s);
    QVERIFY(!changes.isEmpty());
    QCOMPARE(changes.first().at(0).toInt(), 8); // The pair is replaced whole, never split.
    QCOMPARE(changes.first().at(1).toInt(), 2);
    QCOMPARE(changes.first().at(2).toInt(), 2);
}

void TestBindablePlaceholderTextField::takesTheTextThatTheObjectKept()
{
    m_note->limit = 7;
    m_field->setFocus();
    type(u"abcd"_s);
    QCOMPARE(m_note->contentString(), u"boundab"_s);
    QCOMPARE(m_field->text(), u"boundab"_s);
}

void TestBindablePlaceholderTextField::editsTheNewlyBoundObjectOnly()
{
    BoundNote second(u"second"_s);
    m_field->setFocus();
    type(u"1"_s);
    m_field->bind(Field::Binding::Text, &second, "contentString");
    QCOMPARE(m_field->text(), u"second"_s);
    type(u"2"_s);
    QCOMPARE(m_note->contentString(), u"bound1"_s);
    QCOMPARE(second.contentString(), u"second2"_s);
    m_note->setContentString(u"no longer shown"_s);
    QCOMPARE(m_field->text(), u"second2"_s);
    QCOMPARE(m_field->boundObject(), &second);
}

void TestBindablePlaceholderTextField::survivesTheBoundObject()
{
    m_note.reset();
    QVERIFY(m_field->text().isNull());
    QVERIFY(!m_field->boundObject());
    m_field->setFocus();
    type(u"typed"_s);
    QCOMPARE(m_field->text(), u"typed"_s);
}

void TestBindablePlaceholderTextField::unbinds()
{
    m_field->unbind(Field::Binding::Text);
    QVERIFY(m_field->text().isNull());
    m_field->setFocus();
    type(u"typed"_s);
    QCOMPARE(m_note->contentString(), u"bound"_s);
    QCOMPARE(m_note->writes, 0);
}

void TestBindablePlaceholderTextField::bindsItsPlaceholder()
{
    BoundNote second;
    m_note->setPrompt(u"What is in the way?"_s);
    m_field->bind(Field::Binding::Placeholder, m_note.get(), "prompt");
    QCOMPARE(m_field->placeholderText(), u"What is in the way?"_s);
    m_note->setPrompt(u"Blockers?"_s);
    QCOMPARE(m_field->placeholderText(), u"Blockers?"_s);
    QCOMPARE(m_field->text(), u"bound"_s);
    m_field->bind(Field::Binding::Text, &second, "contentString");
    QCOMPARE(m_field->placeholderText(), u"Blockers?"_s);
    m_field->unbind(Field::Binding::Placeholder);
    m_note->setPrompt(u"ignored"_s);
    QCOMPARE(m_field->placeholderText(), QString());
}

void TestBindablePlaceholderTextField::showsTheNullPlaceholder()
{
    m_field->bind(Field::Binding::Text, m_note.get(), "contentString",
                  {.nullPlaceholder = u"Prompt"_s});
    QCOMPARE(m_field->placeholderText(), u"Prompt"_s);
    m_field->bind(Field::Binding::Text, m_note.get(), "contentString");
    QCOMPARE(m_field->placeholderText(), QString());
}

void TestBindablePlaceholderTextField::caretGoesToTheEndOnFocus_data()
{
    QTest::addColumn<Qt::FocusReason>("reason");
    QTest::newRow("Tab") << Qt::TabFocusReason;
    QTest::newRow("Shift+Tab") << Qt::BacktabFocusReason;
    QTest::newRow("mnemonic") << Qt::ShortcutFocusReason;
    QTest::newRow("by the program") << Qt::OtherFocusReason;
}

void TestBindablePlaceholderTextField::caretGoesToTheEndOnFocus()
{
    QFETCH(Qt::FocusReason, reason);
    m_note->setContentString(u"first\nsecond"_s);
    m_field->selectAll();
    m_field->setFocus(reason);
    QCOMPARE(m_field->textCursor().position(), 12);
    QVERIFY(!m_field->textCursor().hasSelection());
}

void TestBindablePlaceholderTextField::caretGoesWhereItIsClicked()
{
    m_note->setContentString(u"line\n"_s.repeated(200));
    m_field->moveCursor(QTextCursor::Start);
    QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {}, QPoint(2, 8));
    QVERIFY(m_field->hasFocus());
    QCOMPARE(m_field->textCursor().blockNumber(), 0);
}

void TestBindablePlaceholderTextField::caretStaysWhenTheWindowComesBack()
{
    m_field->setFocus();
    m_field->moveCursor(QTextCursor::Start);
    QWidget second;
    second.show();
    QVERIFY(QTest::qWaitForWindowActive(&second));
    m_window->activateWindow();
    QTRY_VERIFY(m_field->hasFocus());
    QCOMPARE(m_field->textCursor().position(), 0);
}

void TestBindablePlaceholderTextField::scrollsItsRowIntoView()
{
    QListWidget list(m_window.get());
    for (int row = 0; row < 100; ++row)
        list.addItem(QString::number(row));
    list.resize(100, 100);
    list.show();
    m_field->setTableView(&list);
    m_field->setRowIndex(80);
    QCOMPARE(m_field->rowIndex(), 80);
    m_field->setFocus(Qt::TabFocusReason);
    QVERIFY(list.viewport()->rect().contains(list.visualItemRect(list.item(80))));
    m_other->setFocus();
    m_field->setRowIndex(3);
    QTest::mouseClick(m_field->viewport(), Qt::LeftButton);
    QVERIFY(list.viewport()->rect().contains(list.visualItemRect(list.item(3))));
}

void TestBindablePlaceholderTextField::tabGoesToTheNeighbours()
{
    QLineEdit before(m_window.get()), after(m_window.get());
    before.show();
    after.show();
    m_field->setPreviousField(&before);
    m_field->setNextField(&after);
    QCOMPARE(m_field->previousKeyView(), &before);
    QCOMPARE(m_field->nextKeyView(), &after);
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_Tab);
    QVERIFY(after.hasFocus());
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_Tab, Qt::ShiftModifier);
    QVERIFY(before.hasFocus());
    QCOMPARE(m_note->contentString(), u"bound"_s);
}

void TestBindablePlaceholderTextField::tabFollowsTheWindowWithoutNeighbours()
{
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_Tab);
    QVERIFY(m_other->hasFocus());
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_Tab, Qt::ShiftModifier);
    QVERIFY(m_other->hasFocus());
    QCOMPARE(m_note->contentString(), u"bound"_s);
}

void TestBindablePlaceholderTextField::leavesUndoToTheWindow_data()
{
    gui::addUndoKeys();
}

void TestBindablePlaceholderTextField::leavesUndoToTheWindow()
{
    QFETCH(QKeySequence, keys);
    m_field->setFocus();
    type(u"x"_s);
    QVERIFY(gui::reachesTheWindow(*m_field, keys));
    QCOMPARE(m_note->contentString(), u"boundx"_s);
}

void TestBindablePlaceholderTextField::menuOffersNoUndo()
{
    m_field->setFocus();
    const QStringList names = gui::contextMenuOf(*m_field->viewport());
    QVERIFY(names.contains(u"edit-paste"_s));
    QVERIFY(!names.contains(u"edit-undo"_s));
    QVERIFY(!names.contains(u"edit-redo"_s));
    QVERIFY(!names.first().isEmpty());
}

void TestBindablePlaceholderTextField::keepsNoRichText()
{
    auto *rich = new QMimeData;
    rich->setHtml(u"<b>bold</b>"_s);
    rich->setText(u"<b>as typed</b>"_s);
    QGuiApplication::clipboard()->setMimeData(rich);
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_note->contentString(), u"bound<b>as typed</b>"_s);
}

void TestBindablePlaceholderTextField::keepsTheCompositionOutOfTheObject()
{
    m_field->setFocus();
    compose(m_field, u"に"_s);
    compose(m_field, u"にほ"_s);
    QCOMPARE(m_note->contentString(), u"bound"_s);
    QCOMPARE(m_note->writes, 0);
    compose(m_field, {}, u"日本"_s);
    QCOMPARE(m_note->contentString(), u"bound日本"_s);
    QCOMPARE(m_note->writes, 1);
}

void TestBindablePlaceholderTextField::commitsWithoutBreakingTheComposition()
{
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_Left);
    compose(m_field, u"にほ"_s);
    m_field->commitEditing();
    QCOMPARE(m_note->contentString(), u"bound"_s);
    QCOMPARE(m_field->textCursor().block().layout()->preeditAreaText(), u"にほ"_s);
    QCOMPARE(m_field->textCursor().position(), 4);
    QVERIFY(m_field->hasFocus());
    compose(m_field, {}, u"日本"_s);
    QCOMPARE(m_note->contentString(), u"boun日本d"_s);
}

void TestBindablePlaceholderTextField::waitsWithForeignChangesForTheComposition()
{
    m_field->setFocus();
    compose(m_field, u"にほ"_s);
    m_note->setContentString(u"re-bound"_s);
    QCOMPARE(m_field->textCursor().block().layout()->preeditAreaText(), u"にほ"_s);
    compose(m_field, {}, u"日本"_s);
    QCOMPARE(m_note->contentString(), u"re-bound日本"_s);
    QCOMPARE(m_field->text(), u"re-bound日本"_s);
    compose(m_field, u"に"_s);
    m_note->setContentString(u"again"_s);
    compose(m_field, {});
    QCOMPARE(m_field->text(), u"again"_s);
    QCOMPARE(m_note->contentString(), u"again"_s);
}

void TestBindablePlaceholderTextField::carriesEveryCharacter_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("tricky") << everyTrickyCharacter();
    QTest::newRow("right to left and combining") << u"שָׁלוֹם עולם e\u0301\u0323 نص"_s;
    QTest::newRow("emoji") << u"❤️‍🔥 1️⃣ 🇩🇪 👩🏽‍💻"_s;
    QTest::newRow("a megabyte") << u"Grüße, 😀 and more of it.\n"_s.repeated(40'000);
}

void TestBindablePlaceholderTextField::carriesEveryCharacter()
{
    QFETCH(QString, text);
    m_note->setContentString(text);
    QVERIFY(m_field->text() == text);
    m_field->setFocus();
    type(u"x"_s);
    QVERIFY(m_note->contentString() == QString(text + u'x'));
    QTest::keyClick(m_field, Qt::Key_Backspace);
    QVERIFY(m_note->contentString() == text);
}

void TestBindablePlaceholderTextField::pastesEveryCharacter()
{
    const QString text = u"nbsp\u00A0 \u2028 \u2029 nul"_s + QChar(0) + u" tab\t \uFDD0"_s;
    m_field->setFocus();
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_note->contentString(), QString(u"bound"_s + text));
    m_note->setContentString({});
    QGuiApplication::clipboard()->setText(u"a\r\nb\rc"_s);
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_note->contentString(), u"a\nb\nc"_s);
}

void TestBindablePlaceholderTextField::copiesEveryCharacter()
{
    m_note->setContentString(everyTrickyCharacter());
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(m_field, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), everyTrickyCharacter());
}

void TestBindablePlaceholderTextField::keepsTrickyCharactersWhileTypingAround()
{
    m_note->setContentString(u"one\u2029two\r\nthree\rfour"_s);
    m_field->setFocus();
    type(u"!"_s);
    QTest::keyClick(m_field, Qt::Key_Home, Qt::ControlModifier);
    type(u">"_s);
    QTest::keyClick(m_field, Qt::Key_Down);
    QTest::keyClick(m_field, Qt::Key_Home);
    type(u"-"_s);
    QCOMPARE(m_note->contentString(), u">one\u2029-two\r\nthree\rfour!"_s);
    QTest::keyClick(m_field, Qt::Key_Backspace);
    QTest::keyClick(m_field, Qt::Key_Backspace);
    QCOMPARE(m_note->contentString(), u">onetwo\r\nthree\rfour!"_s);
}

void TestBindablePlaceholderTextField::alignsRightToLeftTexts()
{
    const auto caretX = [this] {
        m_field->moveCursor(QTextCursor::Start);
        return m_field->cursorRect().center().x();
    };
    QVERIFY(caretX() < m_field->viewport()->width() / 2);
    m_note->setContentString(u"שלום"_s);
    QVERIFY(caretX() > m_field->viewport()->width() / 2);
    m_note->setContentString(u"hello"_s);
    QVERIFY(caretX() < m_field->viewport()->width() / 2);
}

void TestBindablePlaceholderTextField::typesQuicklyInLongTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("key");
    const QString lines = u"A line of a note that someone has written.\n"_s.repeated(24'000);
    QTest::newRow("at the end of 1 MB of lines") << lines << int(Qt::Key_End);
    QTest::newRow("at the beginning of 1 MB of lines") << lines << int(Qt::Key_Home);
    QTest::newRow("1 MB in one paragraph") << u"word "_s.repeated(200'000) << int(Qt::Key_Home);
    QTest::newRow("1 MB without a blank") << u"x"_s.repeated(1'000'000) << int(Qt::Key_End);
    QTest::newRow("1 MB of lines with paragraph separators")
        << QString(lines).replace(u'\n', QChar::ParagraphSeparator) << int(Qt::Key_Home);
}

void TestBindablePlaceholderTextField::typesQuicklyInLongTexts()
{
    QFETCH(QString, text);
    QFETCH(int, key);
    QElapsedTimer clock;
    clock.start();
    m_note->setContentString(text);
    const qint64 shown = clock.elapsed();
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key(key), Qt::ControlModifier);
    QApplication::processEvents();
    QList<double> times;
    for (int i = 0; i < 30; ++i) {
        clock.restart();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_X, {}, u"x"_s);
        QApplication::sendEvent(m_field, &press);
        QApplication::processEvents();
        times.append(double(clock.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    qInfo("shown in %lld ms; a keystroke with painting: median %.2f ms, worst %.2f ms", shown,
          times.at(15), times.last());
    QCOMPARE(m_note->contentString().size(), text.size() + 30);
    // Generous enough for a busy machine and an unoptimised build, far below what one paragraph of
    // a megabyte costs without care (700 ms).
    QVERIFY(times.at(15) < 50);
}

QTEST_MAIN(TestBindablePlaceholderTextField)
#include "tst_BindablePlaceholderTextField.moc"
