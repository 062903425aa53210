#include "Preferences/InputControls/EmojiTextField.h"
#include "support/GuiTest.h"
#include "Toolkit/Emoji/EmojiPalette.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Emoji/RecentEmoji.h"
#include "Toolkit/Popover.h"

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestEmojiTextField : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsItsEmojiInColour();
    void showsWithoutVariationSelectorWhatItStores();
    void isAProperty();
    void focusEmptiesItAndOpensThePalette_data();
    void focusEmptiesItAndOpensThePalette();
    void theFirstAcceptedChangeCommits_data();
    void theFirstAcceptedChangeCommits();
    void refusedTextDoesNothing_data();
    void refusedTextDoesNothing();
    void anInputMethodCommits();
    void leavingWithoutAChoiceShowsTheOldEmoji_data();
    void leavingWithoutAChoiceShowsTheOldEmoji();
    void anotherWindowIsNoLeaving();
    void leavesUndoToTheWindow_data();
    void leavesUndoToTheWindow();
    void aNewValueWhileEditing();
    void tabGoesOnFromWhereItWas_data();
    void tabGoesOnFromWhereItWas();
    void aTextSetWholeIsCommitted();
    void takesAnEmojiFromThePalette();
    void isFilledByKeyboardAlone();
    void escapeLeavesThePaletteThenTheField();
    void aClickOpensThePaletteAnew();
    void aRefusedChoiceLeavesTheOldEmoji();

private:
    void usePalette();
    QWidget *palette() const { return QApplication::activePopupWidget(); }
    QWidget *inPalette(const QString &name) const { return palette()->findChild<QWidget *>(name); }

    QTemporaryDir m_folder;
    std::unique_ptr<RecentEmoji> m_recent;
    std::unique_ptr<QWidget> m_window;
    QLineEdit *m_before = nullptr;
    EmojiTextField *m_field = nullptr;
    QLineEdit *m_after = nullptr;
    std::unique_ptr<QSignalSpy> m_commits;
    QStringList m_calls; ///< What the field showed as it asked for the palette.
    std::function<void(const QString &)> m_insert;
};

void TestEmojiTextField::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->setGeometry(300, 200, 400, 100);
    m_before = new QLineEdit(m_window.get());
    m_before->setGeometry(10, 10, 60, 30);
    m_field = new EmojiTextField(m_window.get());
    m_field->setGeometry(QRect(QPoint(100, 10), m_field->sizeHint()));
    m_after = new QLineEdit(m_window.get());
    m_after->setGeometry(200, 10, 60, 30);
    m_field->setEmoji(u"⚠\uFE0F"_s);
    m_calls.clear();
    m_field->setCharacterPalette([this](QWidget *sender, auto insert) {
        QCOMPARE(sender, m_field);
        QVERIFY(m_field->hasFocus());
        m_calls.append(m_field->text());
        m_insert = insert;
    });
    m_commits = std::make_unique<QSignalSpy>(m_field, &EmojiTextField::emojiCommitted);
    m_before->setFocus();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QCOMPARE(m_calls, QStringList());
}

void TestEmojiTextField::cleanup()
{
    m_commits.reset();
    m_window.reset();
    m_insert = nullptr;
}

/// The real one.
void TestEmojiTextField::usePalette()
{
    m_recent = std::make_unique<RecentEmoji>(m_folder.filePath(u"windows.ini"_s));
    m_field->setCharacterPalette([this](QWidget *sender, auto insert) {
        EmojiPalette::orderFrontCharacterPalette(sender, *m_recent, insert);
    });
}

void TestEmojiTextField::showsItsEmojiInColour()
{
    m_field->setEmoji(u"❤\uFE0F"_s);
    const QImage image = m_field->grab().toImage();
    int red = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            red += color.red() > 180 && color.green() < 100 && color.blue() < 100;
        }
    }
    QVERIFY2(red > 30, qPrintable(QString::number(red)));
    // It is 1.2 times as high as the text, and fits.
    QVERIFY(m_field->sizeHint().height() >= QFontMetricsF(emojiFont(m_field->font())).height());
}

void TestEmojiTextField::showsWithoutVariationSelectorWhatItStores()
{
    QCOMPARE(m_field->emoji(), u"⚠\uFE0F"_s);
    QCOMPARE(m_field->text(), u"⚠"_s);
}

void TestEmojiTextField::isAProperty()
{
    const QSignalSpy changes(m_field, &EmojiTextField::emojiChanged);
    QVERIFY(m_field->setProperty("emoji", u"🚀"_s));
    QCOMPARE(m_field->property("emoji").toString(), u"🚀"_s);
    QCOMPARE(m_field->text(), u"🚀"_s);
    QCOMPARE(changes.count(), 1);
    m_field->setEmoji(u"🚀"_s);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(m_commits->count(), 0);
}

void TestEmojiTextField::focusEmptiesItAndOpensThePalette_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"click", "Tab", "Shift+Tab", "code"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void TestEmojiTextField::focusEmptiesItAndOpensThePalette()
{
    QFETCH(QString, way);
    if (way == u"click"_s) {
        QTest::mouseClick(m_field, Qt::LeftButton);
    } else if (way == u"Tab"_s) {
        QTest::keyClick(m_before, Qt::Key_Tab);
    } else if (way == u"Shift+Tab"_s) {
        m_after->setFocus();
        QTest::keyClick(m_after, Qt::Key_Tab, Qt::ShiftModifier);
    } else {
        m_field->setFocus();
    }
    QVERIFY(m_field->hasFocus());
    QCOMPARE(m_field->text(), QString());
    QCOMPARE(m_field->emoji(), u"⚠\uFE0F"_s);
    // Once the field has the keyboard, before it is emptied. A press anew opens it anew.
    QCOMPARE(m_calls.constFirst(), u"⚠"_s);
    QCOMPARE(m_commits->count(), 0);
}

void TestEmojiTextField::theFirstAcceptedChangeCommits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("way");
    for (const char *way : {"palette", "pasted", "typed"}) {
        const QString name = QString::fromLatin1(way);
        QTest::addRow("an emoji, %s", way) << u"😀"_s << name;
        QTest::addRow("with variation selector, %s", way) << u"❤\uFE0F"_s << name;
        QTest::addRow("of many characters, %s", way) << u"👩🏽‍💻"_s << name;
        QTest::addRow("the old one, %s", way) << u"⚠\uFE0F"_s << name;
    }
    QTest::newRow("a letter and an emoji, pasted") << u"a😀"_s << u"pasted"_s;
    QTest::newRow("a letter and an exclamation mark, pasted") << u"a!"_s << u"pasted"_s;
    QTest::newRow("a blank, typed") << u" "_s << u"typed"_s;
}

void TestEmojiTextField::theFirstAcceptedChangeCommits()
{
    QFETCH(QString, text);
    QFETCH(QString, way);
    QTest::keyClick(m_before, Qt::Key_Tab);
    if (way == u"palette"_s) {
        m_insert(text);
    } else if (way == u"pasted"_s) {
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    } else {
        QTest::sendKeyEvent(QTest::Click, m_field, Qt::Key_unknown, text, Qt::NoModifier);
    }
    QCOMPARE(m_commits->count(), 1);
    QCOMPARE(m_commits->constFirst().constFirst().toString(), text);
    QCOMPARE(m_field->emoji(), text);
    QCOMPARE(m_field->text(), displayText(text));
    QVERIFY(!m_field->hasFocus());
    QCOMPARE(m_window->focusWidget(), nullptr);
    QVERIFY(m_window->isActiveWindow());
    // It is over: what is typed now goes nowhere.
    QTest::keyClicks(m_window.get(), u"+"_s);
    QCOMPARE(m_field->emoji(), text);
    QCOMPARE(m_commits->count(), 1);
}

void TestEmojiTextField::refusedTextDoesNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("letters") << u"abc"_s;
    QTest::newRow("digits") << u"12"_s;
    QTest::newRow("punctuation") << u"!?"_s;
}

void TestEmojiTextField::refusedTextDoesNothing()
{
    QFETCH(QString, text);
    QTest::keyClick(m_before, Qt::Key_Tab);
    QTest::keyClicks(m_field, text);
    QCOMPARE(m_field->text(), QString());
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), QString());
    QVERIFY(m_field->hasFocus());
    QCOMPARE(m_commits->count(), 0);
    QTest::keyClick(m_field, Qt::Key_Tab);
    QCOMPARE(m_field->emoji(), u"⚠\uFE0F"_s);
    QCOMPARE(m_field->text(), u"⚠"_s);
    QCOMPARE(m_commits->count(), 0);
}

void TestEmojiTextField::anInputMethodCommits()
{
    m_field->setFocus();
    QInputMethodEvent composing(u"smi"_s, {});
    QApplication::sendEvent(m_field, &composing);
    QVERIFY(m_field->hasFocus());
    QCOMPARE(m_commits->count(), 0);
    QInputMethodEvent composed;
    composed.setCommitString(u"👍🏽"_s);
    QApplication::sendEvent(m_field, &composed);
    QCOMPARE(m_field->emoji(), u"👍🏽"_s);
    QCOMPARE(m_commits->count(), 1);
    QVERIFY(!m_field->hasFocus());
}

void TestEmojiTextField::leavingWithoutAChoiceShowsTheOldEmoji_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"click", "Tab", "Shift+Tab", "Escape", "code"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void TestEmojiTextField::leavingWithoutAChoiceShowsTheOldEmoji()
{
    QFETCH(QString, way);
    m_field->setFocus();
    QCOMPARE(m_field->text(), QString());
    if (way == u"click"_s)
        QTest::mouseClick(m_after, Qt::LeftButton);
    else if (way == u"Tab"_s)
        QTest::keyClick(m_field, Qt::Key_Tab);
    else if (way == u"Shift+Tab"_s)
        QTest::keyClick(m_field, Qt::Key_Tab, Qt::ShiftModifier);
    else if (way == u"Escape"_s)
        QTest::keyClick(m_field, Qt::Key_Escape);
    else
        m_field->clearFocus();
    QVERIFY(!m_field->hasFocus());
    QCOMPARE(m_field->text(), u"⚠"_s);
    QCOMPARE(m_field->emoji(), u"⚠\uFE0F"_s);
    QCOMPARE(m_commits->count(), 0);
    // The next time it starts from nothing again.
    m_field->setFocus();
    QCOMPARE(m_field->text(), QString());
    QCOMPARE(m_calls.size(), 2);
}

void TestEmojiTextField::anotherWindowIsNoLeaving()
{
    m_field->setFocus();
    QWidget other;
    other.setGeometry(800, 400, 100, 100);
    other.show();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    other.hide();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_VERIFY(m_field->hasFocus());
    QCOMPARE(m_field->text(), QString());
    QCOMPARE(m_calls.size(), 1);
}

void TestEmojiTextField::leavesUndoToTheWindow_data()
{
    gui::addUndoKeys();
}

void TestEmojiTextField::leavesUndoToTheWindow()
{
    QFETCH(QKeySequence, keys);
    m_field->setFocus();
    QVERIFY(gui::reachesTheWindow(*m_field, keys));
    QCOMPARE(m_field->text(), QString());
    QCOMPARE(m_commits->count(), 0);
}

void TestEmojiTextField::aNewValueWhileEditing()
{
    m_field->setFocus();
    m_field->setEmoji(u"🚀"_s);
    QCOMPARE(m_field->text(), QString());
    QVERIFY(m_field->hasFocus());
    QTest::keyClick(m_field, Qt::Key_Tab);
    QCOMPARE(m_field->text(), u"🚀"_s);
    QCOMPARE(m_commits->count(), 0);
}

void TestEmojiTextField::tabGoesOnFromWhereItWas_data()
{
    QTest::addColumn<bool>("committed");
    QTest::addColumn<bool>("backwards");
    QTest::newRow("after a choice") << true << false;
    QTest::newRow("after a choice, backwards") << true << true;
    QTest::newRow("given up") << false << false;
    QTest::newRow("given up, backwards") << false << true;
}

void TestEmojiTextField::tabGoesOnFromWhereItWas()
{
    QFETCH(bool, committed);
    QFETCH(bool, backwards);
    m_field->setFocus();
    if (committed)
        m_insert(u"😀"_s);
    else
        QTest::keyClick(m_field, Qt::Key_Escape);
    QCOMPARE(m_window->focusWidget(), nullptr);
    QTest::keyClick(m_window.get(), backwards ? Qt::Key_Backtab : Qt::Key_Tab);
    QCOMPARE(m_window->focusWidget(), backwards ? m_before : m_after);
    // Only once.
    m_window->focusWidget()->clearFocus();
    QTest::keyClick(m_window.get(), Qt::Key_Tab);
    QCOMPARE(m_window->focusWidget(), m_before);
}

void TestEmojiTextField::aTextSetWholeIsCommitted()
{
    // As assistive tools fill in a field.
    m_field->setText(u"abc"_s);
    QCOMPARE(m_field->text(), u"⚠"_s);
    QCOMPARE(m_commits->count(), 0);
    m_field->setText(u"🎯"_s);
    QCOMPARE(m_field->emoji(), u"🎯"_s);
    QCOMPARE(m_commits->count(), 1);
}

void TestEmojiTextField::takesAnEmojiFromThePalette()
{
    usePalette();
    QTest::mouseClick(m_field, Qt::LeftButton);
    QVERIFY(palette());
    QVERIFY(QTest::qWaitForWindowExposed(palette()));
    QCOMPARE(m_field->text(), QString());
    QTest::keyClicks(inPalette(u"emojiSearch"_s), u"red heart"_s);
    QTest::keyClick(inPalette(u"emojiSearch"_s), Qt::Key_Return);
    QCOMPARE(palette(), nullptr);
    QCOMPARE(m_field->emoji(), u"❤\uFE0F"_s);
    QCOMPARE(m_field->text(), u"❤"_s);
    QCOMPARE(m_commits->count(), 1);
    QVERIFY(!m_field->hasFocus());
    QVERIFY(m_window->isActiveWindow());
    QCOMPARE(m_recent->emoji().constFirst(), u"❤\uFE0F"_s);
    QTest::qWait(50);
    QCOMPARE(m_window->focusWidget(), nullptr);
}

void TestEmojiTextField::isFilledByKeyboardAlone()
{
    usePalette();
    // Typed as into the display: to whatever has the keyboard.
    const auto type = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    type(Qt::Key_Tab);
    QVERIFY(palette());
    QTRY_COMPARE(QApplication::focusWidget(), inPalette(u"emojiSearch"_s));
    QTest::keyClicks(QApplication::focusWidget(), u"rocket"_s);
    type(Qt::Key_Down);
    QCOMPARE(QApplication::focusWidget(), inPalette(u"emojiGrid"_s));
    type(Qt::Key_Return);
    QCOMPARE(m_field->emoji(), u"🚀"_s);
    QTest::keyClick(m_window.get(), Qt::Key_Tab);
    QVERIFY(m_after->hasFocus());
}

void TestEmojiTextField::escapeLeavesThePaletteThenTheField()
{
    usePalette();
    QTest::keyClick(m_before, Qt::Key_Tab);
    QTest::keyClick(inPalette(u"emojiSearch"_s), Qt::Key_Escape);
    QCOMPARE(palette(), nullptr);
    QTRY_VERIFY(m_field->hasFocus());
    QCOMPARE(m_field->text(), QString());
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Down, Qt::Key_Up, Qt::Key_F4}) {
        QTest::keyClick(m_field, key);
        QVERIFY(palette());
        QTest::keyClick(inPalette(u"emojiSearch"_s), Qt::Key_Escape);
        QTRY_VERIFY(m_field->hasFocus());
    }
    QTest::keyClick(m_field, Qt::Key_Escape);
    QVERIFY(!m_field->hasFocus());
    QCOMPARE(m_field->text(), u"⚠"_s);
    QCOMPARE(m_commits->count(), 0);
}

void TestEmojiTextField::aClickOpensThePaletteAnew()
{
    usePalette();
    QTest::mouseClick(m_field, Qt::LeftButton);
    const QPointer<QWidget> first = palette();
    QVERIFY(first);
    // A click elsewhere closes it.
    QTest::mouseClick(first, Qt::LeftButton, {}, QPoint(-50, -50));
    QCOMPARE(palette(), nullptr);
    QTRY_VERIFY(!first);
    QTest::mouseClick(m_field, Qt::LeftButton);
    QVERIFY(palette());
    QTest::keyClick(inPalette(u"emojiSearch"_s), Qt::Key_Escape);
}

void TestEmojiTextField::aRefusedChoiceLeavesTheOldEmoji()
{
    usePalette();
    QTest::keyClick(m_before, Qt::Key_Tab);
    QTest::keyClicks(inPalette(u"emojiSearch"_s), u"keycap: 1"_s);
    QTest::keyClick(inPalette(u"emojiSearch"_s), Qt::Key_Return);
    QCOMPARE(palette(), nullptr);
    QCOMPARE(m_commits->count(), 0);
    QTRY_VERIFY(m_field->hasFocus());
    QTest::keyClick(m_field, Qt::Key_Tab);
    QCOMPARE(m_field->text(), u"⚠"_s);
}

QTEST_MAIN(TestEmojiTextField)
#include "tst_EmojiTextField.moc"
