#include "Toolkit/Token/TokenField.h"

#include "TokenFieldTest.h"

#include <QElapsedTimer>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QScrollBar>
#include <QToolTip>

using namespace tembra;
using namespace Qt::StringLiterals;

/// What the field does when it is told: its content, its size and how it looks.
class TestTokenField : public TokenFieldTest
{
    Q_OBJECT

private Q_SLOTS:
    void showsObjects()
    {
        m_field->show({u"Planning"_s, u"Plans 🚀"_s});
        QCOMPARE(m_field->words(), QStringList({u"Planning"_s, u"Plans 🚀"_s}));
        QCOMPARE(m_field->picture(), u"[Planning][Plans 🚀]|"_s);
        QVERIFY(m_field->tokenRect(0).isValid());
        QVERIFY(m_field->tokenRect(0).right() < m_field->tokenRect(1).right());
        QVERIFY(m_field->tokenRect(2).isNull());
        m_field->setObjectValue({});
        QCOMPARE(m_field->picture(), u"|"_s);
        m_field->setObjectValue({nullptr});
        QVERIFY(m_field->objectValue().isEmpty());
    }

    void replacesHalfTypedText()
    {
        QTest::keyClicks(m_field, u"half"_s);
        QCOMPARE(m_field->editedSubstring(), u"half"_s);
        m_field->show({u"One"_s});
        QCOMPARE(m_field->picture(), u"[One]|"_s);
        QCOMPARE(m_field->editedSubstring(), QString());
        QTest::keyClicks(m_field, u"more"_s);
        m_field->setObjectValue(m_field->objectValue());
        QCOMPARE(m_field->picture(), u"[One]|"_s);
        QVERIFY(m_field->proposed.isEmpty());
    }

    void keepsTheCaretWhereNothingChanges()
    {
        m_field->show({u"One"_s, u"Two"_s});
        m_field->moveCaret(1);
        const QSignalSpy changes(m_field, &TokenField::tokensChanged);
        m_field->setObjectValue(m_field->objectValue());
        QCOMPARE(m_field->picture(), u"[One]|[Two]"_s);
        QCOMPARE(changes.count(), 0);
    }

    void appends_data()
    {
        QTest::addColumn<QStringList>("tokens");
        QTest::addColumn<int>("caret");
        QTest::addColumn<int>("anchor");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("after");
        const QStringList two{u"One"_s, u"Two"_s};
        QTest::newRow("to nothing") << QStringList() << 0 << 0 << QString() << u"[New]|"_s;
        QTest::newRow("behind all") << two << 2 << 2 << QString() << u"[One][Two][New]|"_s;
        QTest::newRow("caret before") << two << 1 << 1 << QString() << u"[One]|[Two][New]"_s;
        QTest::newRow("before half-typed text")
            << two << 2 << 2 << u"ab"_s << u"[One][Two][New]ab|"_s;
        QTest::newRow("behind half-typed text")
            << two << 1 << 1 << u"ab"_s << u"[One]ab|[Two][New]"_s;
        QTest::newRow("half-typed text alone")
            << QStringList() << 0 << 0 << u"ab"_s << u"[New]ab|"_s;
        QTest::newRow("selected forward") << two << 2 << 1 << QString() << u"[One]|[Two]|[New]"_s;
        QTest::newRow("selected backward") << two << 1 << 2 << QString() << u"[One]|[Two]|[New]"_s;
        QTest::newRow("all selected") << two << 2 << 0 << QString() << u"|[One][Two]|[New]"_s;
    }

    void appends()
    {
        QFETCH(QStringList, tokens);
        QFETCH(int, caret);
        QFETCH(int, anchor);
        QFETCH(QString, typed);
        m_field->show(tokens);
        m_field->moveCaret(caret, anchor);
        QTest::keyClicks(m_field, typed);
        const QSignalSpy changes(m_field, &TokenField::tokensChanged);
        m_field->appendObject(m_field->known(u"New"_s));
        QTEST(m_field->picture(), "after");
        QCOMPARE(changes.count(), 1);
        QVERIFY(m_field->proposed.isEmpty());
        m_field->appendObject(nullptr);
        QTEST(m_field->picture(), "after");
    }

    void appendsWhileComposing()
    {
        m_field->show({u"One"_s});
        QInputMethodEvent composing(u"か"_s, {});
        QCoreApplication::sendEvent(m_field, &composing);
        m_field->appendObject(m_field->known(u"New"_s));
        const QRect before = m_field->tokenRect(1);
        QVERIFY(before.left() >= m_field->tokenRect(0).right());
        QInputMethodEvent commit;
        commit.setCommitString(u"蚊"_s);
        QCoreApplication::sendEvent(m_field, &commit);
        QCOMPARE(m_field->picture(), u"[One][New]蚊|"_s);
        QCOMPARE(m_field->tokenRect(1), before);
    }

    void removes()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        m_field->moveCaret(3);
        QTest::keyClicks(m_field, u"ab"_s);
        const QSignalSpy changes(m_field, &TokenField::tokensChanged);
        m_field->removeObject(m_field->vocabulary.at(1));
        QCOMPARE(m_field->picture(), u"[One][Three]ab|"_s);
        QCOMPARE(changes.count(), 1);
        m_field->removeObject(m_field->vocabulary.at(1));
        m_field->removeObject(nullptr);
        QCOMPARE(m_field->picture(), u"[One][Three]ab|"_s);
        QCOMPARE(changes.count(), 1);
    }

    void refreshesTitles()
    {
        m_field->show({u"One"_s, u"Two"_s});
        QTest::keyClicks(m_field, u"abc"_s);
        m_field->moveCaret(2, 4);
        const QSignalSpy edits(m_field, &TokenField::textDidChange);
        const int width = m_field->tokenRect(0).width();
        const int second = m_field->tokenRect(1).left();
        WordField::wordOf(m_field->vocabulary.at(0))->text = u"One and only"_s;
        m_field->refreshTokens();
        QVERIFY(m_field->tokenRect(0).width() > width);
        QVERIFY(m_field->tokenRect(1).left() > second);
        QCOMPARE(m_field->picture(), u"[One and only][Two]|ab|c"_s);
        QCOMPARE(edits.count(), 0);
        QCOMPARE(m_field->editedSubstring(), u"abc"_s);
    }

    void letsGoOfRemovedObjects()
    {
        m_field->show({u"One"_s, u"Two"_s});
        m_field->vocabulary.clear();
        const std::weak_ptr<QObject> second = m_field->objectValue().at(1);
        key(Qt::Key_Backspace);
        QVERIFY(!second.expired());
        key(Qt::Key_Backspace);
        QVERIFY(second.expired());
        const std::weak_ptr<QObject> first = m_field->objectValue().at(0);
        m_field->setObjectValue({});
        QVERIFY(first.expired());
    }

    void tellsOfTokensOnly()
    {
        const QSignalSpy tokens(m_field, &TokenField::tokensChanged);
        const QSignalSpy edits(m_field, &TokenField::textDidChange);
        m_field->show({u"One"_s});
        QCOMPARE(tokens.count(), 1);
        QCOMPARE(edits.count(), 0);
        QTest::keyClicks(m_field, u"ab"_s);
        QCOMPARE(tokens.count(), 1);
        QCOMPARE(edits.count(), 2);
        key(Qt::Key_Return);
        QCOMPARE(tokens.count(), 2);
        QCOMPARE(edits.count(), 3);
        key(Qt::Key_Left);
        QCOMPARE(edits.count(), 3);
    }

    void growsWithItsTokens()
    {
        const int oneLine = m_field->height();
        QStringList many;
        for (int i = 0; i < 20; ++i)
            many.append(u"token %1"_s.arg(i));
        m_field->show(many);
        QTRY_VERIFY(m_field->height() > oneLine);
        QTRY_COMPARE(m_field->height(), m_field->sizeHint().height());
        QTRY_VERIFY(!m_field->verticalScrollBar()->isVisible());
        const int lines = linesOf(m_field->height());
        QVERIFY(lines > 2);
        QVERIFY(m_field->viewport()->rect().contains(m_field->tokenRect(0)));
        QVERIFY(m_field->viewport()->rect().contains(m_field->tokenRect(19)));
        m_window->resize(250, 500);
        QTRY_VERIFY(linesOf(m_field->height()) > lines);
        m_field->setObjectValue({});
        QTRY_COMPARE(m_field->height(), oneLine);
    }

    void neverNeedsMoreThanItsMaximum()
    {
        QStringList many;
        for (int i = 0; i < 600; ++i)
            many.append(u"token %1"_s.arg(i));
        m_field->show(many);
        QCOMPARE(m_field->sizeHint().height(), 750);
        QVERIFY(m_field->minimumSizeHint().height() < 150);
        QTRY_VERIFY(m_field->height() <= 750);
        QTRY_VERIFY(m_field->verticalScrollBar()->isVisible());
        m_field->moveCaret(600);
        m_field->ensureCursorVisible();
        QVERIFY(m_field->viewport()->rect().intersects(m_field->tokenRect(599)));
    }

    void staysOneLineWithoutWrapping()
    {
        const int oneLine = m_field->height();
        m_field->setWraps(false);
        QVERIFY(!m_field->wraps());
        QStringList many;
        for (int i = 0; i < 20; ++i)
            many.append(u"token %1"_s.arg(i));
        m_field->show(many);
        QCOMPARE(m_field->sizeHint().height(), oneLine);
        QCoreApplication::processEvents();
        QCOMPARE(m_field->height(), oneLine);
        QCOMPARE(m_field->tokenRect(0).top(), m_field->tokenRect(19).top());
        m_field->setWraps(true);
        QTRY_VERIFY(m_field->height() > oneLine);
    }

    void scrollsOneLineToTheCaret()
    {
        m_field->setWraps(false);
        QStringList many;
        for (int i = 0; i < 20; ++i)
            many.append(u"token %1"_s.arg(i));
        for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            m_window->setLayoutDirection(direction);
            m_field->setObjectValue({});
            m_field->show(many);
            key(Qt::Key_End);
            QTRY_VERIFY(m_field->viewport()->rect().contains(m_field->tokenRect(19)));
            QVERIFY(!m_field->viewport()->rect().intersects(m_field->tokenRect(0)));
            QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {},
                              m_field->tokenRect(19).center());
            QVERIFY(m_field->picture().endsWith(u"|[token 19]|"_s));
            key(Qt::Key_Home);
            QTRY_VERIFY(m_field->viewport()->rect().contains(m_field->tokenRect(0)));
        }
    }

    void isAsHighEmptyAsWithAToken()
    {
        const int empty = m_field->sizeHint().height();
        QTest::keyClicks(m_field, u"Word"_s);
        const int caret = m_field->cursorRect().center().y();
        QCOMPARE(m_field->sizeHint().height(), empty);
        key(Qt::Key_Return);
        QCOMPARE(m_field->sizeHint().height(), empty);
        QVERIFY(qAbs(m_field->cursorRect().center().y() - caret) <= 1);
        QVERIFY(qAbs(m_field->tokenRect(0).center().y() - m_field->viewport()->rect().center().y())
                <= 1);
        QVERIFY(qAbs(m_field->cursorRect().center().y() - m_field->tokenRect(0).center().y()) <= 1);
    }

    void showsEmptyTitles()
    {
        m_field->show({QString(), u"One"_s});
        const QRect rect = m_field->tokenRect(0);
        QVERIFY(rect.width() >= 16);
        QVERIFY(picture().pixelColor(rect.center()) != m_field->palette().color(QPalette::Base));
        QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {}, rect.center());
        QCOMPARE(m_field->picture(), u"|[]|[One]"_s);
    }

    void elidesLongTitlesWithToolTip()
    {
        const QString longTitle = u"A title that goes on and on "_s.repeated(4) + u"and ends"_s;
        m_field->show({longTitle, u"Short"_s});
        QVERIFY(m_field->tokenRect(0).width() <= 320);
        QHelpEvent ask(QEvent::ToolTip, m_field->tokenRect(0).center(), QPoint(400, 300));
        QCoreApplication::sendEvent(m_field->viewport(), &ask);
        QTRY_COMPARE(gui::shownToolTip(), longTitle);
        QToolTip::hideText();
        QTRY_VERIFY(!QToolTip::isVisible());
        QHelpEvent askShort(QEvent::ToolTip, m_field->tokenRect(1).center(), QPoint(400, 300));
        QCoreApplication::sendEvent(m_field->viewport(), &askShort);
        gui::handlePendingEvents();
        QVERIFY(!QToolTip::isVisible());
        m_window->resize(150, 300);
        QTRY_VERIFY(m_field->viewport()->rect().contains(m_field->tokenRect(0)));
    }

    void showsMarkupAsItIs()
    {
        const QString markup = u"<b>bold</b> <img src='file:///etc/hostname'> "_s.repeated(3);
        m_field->show({markup});
        QCOMPARE(m_field->words(), QStringList(markup));
        QHelpEvent ask(QEvent::ToolTip, m_field->tokenRect(0).center(), QPoint(400, 300));
        QCoreApplication::sendEvent(m_field->viewport(), &ask);
        QTRY_VERIFY(QToolTip::text().contains(u"&lt;b&gt;bold"_s));
        QToolTip::hideText();
    }

    void drawsEmojiInColour()
    {
        const auto colourfulPixels = [this](const QString &title) {
            m_field->show({title});
            const QRect rect = m_field->tokenRect(0).adjusted(6, 2, -6, -2);
            const QImage image = m_field->viewport()->grab(rect).toImage();
            int count = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x)
                    count += image.pixelColor(x, y).hsvSaturationF() > 0.5F;
            }
            return count;
        };
        QFont font(u"DejaVu Sans"_s, 11);
        m_field->setFont(font);
        QVERIFY(colourfulPixels(u"Risk"_s) < 5);
        QVERIFY(colourfulPixels(u"Risk ⚡️"_s) > 20);
        QVERIFY(colourfulPixels(u"⚠️"_s) > 20);
        QCOMPARE(m_field->words(), QStringList(u"⚠️"_s));
    }

    void showsSelectionHoverAndDisabledDifferently()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        QTest::mouseMove(m_field->viewport(), QPoint(400, 10));
        m_field->moveCaret(1, 0);
        const QColor plain = fillOf(1), selected = fillOf(0);
        QCOMPARE(selected, m_field->palette().color(QPalette::Highlight));
        QVERIFY(plain != selected);
        QTest::mouseMove(m_field->viewport(), m_field->tokenRect(1).center());
        QTRY_VERIFY(fillOf(1) != plain);
        QCOMPARE(m_field->viewport()->cursor().shape(), Qt::ArrowCursor);
        QTest::mouseMove(m_field->viewport(), QPoint(400, 10));
        QTRY_COMPARE(fillOf(1), plain);
        QCOMPARE(m_field->viewport()->cursor().shape(), Qt::IBeamCursor);
        m_other->setFocus();
        QVERIFY(fillOf(0) != selected);
        QVERIFY(fillOf(0) != plain);
        m_field->setEnabled(false);
        QVERIFY(fillOf(1) != plain);
    }

    void standsFromTheRightInRightToLeft()
    {
        m_window->setLayoutDirection(Qt::RightToLeft);
        m_field->show({u"One"_s, u"תכנון"_s, u"Three"_s});
        QTRY_VERIFY(m_field->tokenRect(0).right() > m_field->viewport()->width() - 12);
        for (int i : {0, 1}) {
            QVERIFY(m_field->tokenRect(i).left() >= m_field->tokenRect(i + 1).right());
            QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {},
                              m_field->tokenRect(i).center());
            QCOMPARE(m_field->textCursor().selectionStart(), i);
            QCOMPARE(m_field->textCursor().selectionEnd(), i + 1);
            QCOMPARE(fillOf(i), m_field->palette().color(QPalette::Highlight));
        }
        key(Qt::Key_Left);
        QCOMPARE(m_field->picture(), u"[One][תכנון]|[Three]"_s);
        key(Qt::Key_Left);
        QCOMPARE(m_field->picture(), u"[One][תכנון][Three]|"_s);
        key(Qt::Key_Right);
        QCOMPARE(m_field->picture(), u"[One][תכנון]|[Three]"_s);
    }

    void findsTokensAmongRightToLeftText()
    {
        for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            m_window->setLayoutDirection(direction);
            for (const QString &text : {u"שלום"_s, u"ab"_s}) {
                m_field->setObjectValue({});
                m_field->show({u"One"_s, u"Number two"_s});
                for (int position : {2, 1, 0}) {
                    m_field->moveCaret(position);
                    gui::typeText(*m_field, text);
                }
                QCOMPARE(m_field->picture(), text + u"|[One]"_s + text + u"[Number two]"_s + text);
                for (int i : {0, 1}) {
                    const QRect rect = m_field->tokenRect(i);
                    QVERIFY(m_field->viewport()->rect().contains(rect));
                    QVERIFY(fillOf(i) != m_field->palette().color(QPalette::Base));
                    QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {},
                                      QPoint(rect.left() + 6, rect.center().y()));
                    QCOMPARE(m_field->textCursor().selectionStart(), (i + 1) * text.size() + i);
                    QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {},
                                      QPoint(rect.right() - 6, rect.center().y()));
                    QCOMPARE(m_field->textCursor().selectionStart(), (i + 1) * text.size() + i);
                }
            }
        }
    }

    void takesManyTokensQuickly()
    {
        QStringList many;
        for (int i = 0; i < 5000; ++i)
            many.append(u"token %1"_s.arg(i));
        QElapsedTimer timer;
        timer.start();
        m_field->show(many);
        QCoreApplication::processEvents();
        // A tenth of a second or two; quadratic growth would take a minute.
        QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(m_field->words(), many);
    }

private:
    QImage picture() const { return m_field->viewport()->grab().toImage(); }
    QColor fillOf(int index) const
    {
        const QRect rect = m_field->tokenRect(index);
        return picture().pixelColor(rect.left() + 7, rect.center().y());
    }
    int linesOf(int height) const
    {
        const WordField empty;
        const int frame = 2 * 3;
        return (height - frame) / (empty.sizeHint().height() - frame);
    }
};

QTEST_MAIN(TestTokenField)
#include "tst_TokenField.moc"
