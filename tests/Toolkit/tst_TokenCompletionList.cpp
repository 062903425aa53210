#include "Toolkit/Token/TokenCompletionList.h"

#include "TokenFieldTest.h"

#include <QElapsedTimer>
#include <QListView>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Notes when something was painted.
class PaintWatch : public QObject
{
public:
    using QObject::QObject;

    bool painted = false;

    bool eventFilter(QObject *, QEvent *event) override
    {
        painted = painted || event->type() == QEvent::Paint;
        return false;
    }
};

} // namespace

/// The completions that a token field offers while one types.
class TestTokenCompletionList : public TokenFieldTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TokenFieldTest::init();
        m_field->offered = QStringList{u"Plans 🚀"_s, u"Planning"_s, u"plus"_s, u"Risk ⚡️"_s};
    }

    void followsTheKeys()
    {
        QVERIFY(!m_field->isCompletionListShown());
        QTest::keyClicks(m_field, u"p"_s);
        QVERIFY(m_field->isCompletionListShown());
        QCOMPARE(rows(), 3);
        QTest::keyClicks(m_field, u"la"_s);
        QCOMPARE(rows(), 2);
        key(Qt::Key_Backspace);
        QCOMPARE(rows(), 3);
        QTest::keyClicks(m_field, u"x"_s);
        QVERIFY(!m_field->isCompletionListShown());
        key(Qt::Key_Backspace);
        QVERIFY(m_field->isCompletionListShown());
        key(Qt::Key_Backspace);
        key(Qt::Key_Backspace);
        QVERIFY(!m_field->isCompletionListShown());
    }

    void asksForTheTextAndItsIndex()
    {
        m_field->show({u"One"_s, u"Two"_s});
        m_field->moveCaret(1);
        QTest::keyClicks(m_field, u" p l"_s);
        QCOMPARE(m_field->asked, QStringList({u"p at 1"_s, u"p  at 1"_s, u"p l at 1"_s}));
    }

    void highlightsNothingUnasked()
    {
        QTest::keyClicks(m_field, u"plan"_s);
        QCOMPARE(highlighted(), QString());
        key(Qt::Key_Return);
        QCOMPARE(m_field->words(), QStringList(u"plan"_s));
        QVERIFY(!m_field->isCompletionListShown());
        QTest::keyClicks(m_field, u"p"_s);
        key(Qt::Key_Down);
        QTest::keyClicks(m_field, u"l"_s);
        QCOMPARE(highlighted(), QString());
    }

    void movesTheHighlight()
    {
        m_field->offered.clear();
        for (int i = 0; i < 30; ++i)
            m_field->offered.append(u"p%1"_s.arg(i));
        QTest::keyClicks(m_field, u"p"_s);
        const QList<std::pair<Qt::Key, int>> steps{{Qt::Key_Down, 0}, {Qt::Key_Down, 1},
                                                   {Qt::Key_Up, 0},   {Qt::Key_Up, 29},
                                                   {Qt::Key_Down, 0}, {Qt::Key_PageDown, 7},
                                                   {Qt::Key_End, 29}, {Qt::Key_PageDown, 29},
                                                   {Qt::Key_Home, 0}, {Qt::Key_PageUp, 0},
                                                   {Qt::Key_Down, 1}};
        for (const auto &[code, row] : steps) {
            key(code);
            QCOMPARE(highlighted(), u"p%1"_s.arg(row));
            QVERIFY(
                view()->viewport()->rect().contains(view()->visualRect(view()->currentIndex())));
        }
        QCOMPARE(m_field->picture(), u"p|"_s);
    }

    void movesTheCaretWithoutHighlight()
    {
        QTest::keyClicks(m_field, u"pl"_s);
        key(Qt::Key_Home);
        QCOMPARE(m_field->picture(), u"|pl"_s);
        key(Qt::Key_End);
        QCOMPARE(m_field->picture(), u"pl|"_s);
        key(Qt::Key_Left);
        QCOMPARE(m_field->picture(), u"p|l"_s);
        QVERIFY(m_field->isCompletionListShown());
    }

    void takesTheHighlighted_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("Return") << int(Qt::Key_Return);
        QTest::newRow("Enter") << int(Qt::Key_Enter);
        QTest::newRow("Tab") << int(Qt::Key_Tab);
    }

    void takesTheHighlighted()
    {
        QFETCH(int, code);
        QTest::keyClicks(m_field, u"pl"_s);
        key(Qt::Key_Down);
        key(Qt::Key_Down);
        key(Qt::Key(code));
        QCOMPARE(m_field->picture(), u"[Planning]|"_s);
        QCOMPARE(m_field->proposed, QStringList(u"Planning at 0"_s));
        QVERIFY(!m_field->isCompletionListShown());
        QVERIFY(m_field->hasFocus());
        // Without a highlight Tab leaves, with what was typed.
        QTest::keyClicks(m_field, u"pl"_s);
        key(Qt::Key_Tab);
        QVERIFY(!m_field->hasFocus());
        QCOMPARE(m_field->words(), QStringList({u"Planning"_s, u"pl"_s}));
    }

    void endingTheTextTakesAWholeName_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("end");
        QTest::addColumn<QString>("word");
        QTest::newRow("comma") << u"planning"_s << u"comma"_s << u"Planning"_s;
        QTest::newRow("leaving") << u" planning"_s << u"leaving"_s << u"Planning"_s;
        QTest::newRow("by the program") << u"planning"_s << u"program"_s << u"Planning"_s;
        QTest::newRow("part of a name") << u"planni"_s << u"comma"_s << u"planni"_s;
        QTest::newRow("leaving a part") << u"planni"_s << u"leaving"_s << u"planni"_s;
        QTest::newRow("closed by Escape") << u"planning"_s << u"Escape, comma"_s << u"planning"_s;
    }

    void endingTheTextTakesAWholeName()
    {
        QFETCH(QString, typed);
        QFETCH(QString, end);
        m_field->setHighlightsFirstCompletion(true);
        m_field->offered = QStringList{u"Planning"_s};
        QTest::keyClicks(m_field, typed);
        QVERIFY(m_field->isCompletionListShown());
        if (end.startsWith(u"Escape"_s))
            key(Qt::Key_Escape);
        if (end == u"leaving"_s)
            m_other->setFocus();
        else if (end == u"program"_s)
            m_field->endEditing();
        else
            key(Qt::Key_Comma);
        QCOMPARE(m_field->words().size(), 1);
        QTEST(m_field->words().first(), "word");
        QVERIFY(!m_field->isCompletionListShown());
    }

    void aCommaInsideAWholeNameSplitsIt()
    {
        m_field->setHighlightsFirstCompletion(true);
        m_field->offered = QStringList{u"Planning"_s};
        QTest::keyClicks(m_field, u"planning"_s);
        key(Qt::Key_Left);
        key(Qt::Key_Comma);
        QCOMPARE(m_field->picture(), u"[plannin]|g"_s);
    }

    void takesAClick()
    {
        QTest::keyClicks(m_field, u"pl"_s);
        QVERIFY(QTest::qWaitForWindowExposed(list()));
        const QModelIndex second = view()->model()->index(1, 0);
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {},
                          view()->visualRect(second).center());
        QCOMPARE(m_field->picture(), u"[Planning]|"_s);
        QVERIFY(m_field->hasFocus());
        QVERIFY(m_field->isEditing());
        QVERIFY(!m_field->isCompletionListShown());
    }

    void takesTheTextAroundTheCaret()
    {
        m_field->show({u"One"_s, u"Two"_s});
        m_field->moveCaret(1);
        QTest::keyClicks(m_field, u"pl"_s);
        key(Qt::Key_Left);
        key(Qt::Key_Down);
        key(Qt::Key_Return);
        QCOMPARE(m_field->picture(), u"[One][Plans 🚀]|[Two]"_s);
        QCOMPARE(m_field->proposed, QStringList(u"Plans 🚀 at 1"_s));
    }

    void takesTheTextBehindAnAppendedToken()
    {
        m_field->show({u"One"_s});
        QTest::keyClicks(m_field, u"pl"_s);
        m_field->appendObject(m_field->known(u"Two"_s));
        QVERIFY(m_field->isCompletionListShown());
        QCOMPARE(m_field->asked.last(), u"pl at 2"_s);
        key(Qt::Key_Down);
        key(Qt::Key_Return);
        QCOMPARE(m_field->picture(), u"[One][Two][Plans 🚀]|"_s);
    }

    void takesWhatIsOfferedAsItIs()
    {
        m_field->offered = QStringList{u"plan (Create, New Tag) "_s};
        QTest::keyClicks(m_field, u"pl"_s);
        key(Qt::Key_Down);
        key(Qt::Key_Return);
        QCOMPARE(m_field->words(), m_field->offered);
    }

    void closesOnEscapeFirst()
    {
        QShortcut escape(QKeySequence(Qt::Key_Escape), m_window.get());
        const QSignalSpy escapes(&escape, &QShortcut::activated);
        QTest::keyClicks(m_field, u"pl"_s);
        key(Qt::Key_Escape);
        QVERIFY(!m_field->isCompletionListShown());
        QCOMPARE(m_field->picture(), u"pl|"_s);
        QCOMPARE(escapes.count(), 0);
        key(Qt::Key_Escape);
        QCOMPARE(escapes.count(), 1);
        QTest::keyClicks(m_field, u"a"_s);
        QVERIFY(m_field->isCompletionListShown());
    }

    void hides_data()
    {
        QTest::addColumn<QString>("cause");
        for (const char *cause : {"focus", "window moves", "window hides", "caret leaves",
                                  "selection", "new content", "click in the field", "editing ends"})
            QTest::newRow(cause) << QString::fromLatin1(cause);
    }

    void hides()
    {
        QFETCH(QString, cause);
        m_field->show({u"One"_s});
        QTest::keyClicks(m_field, u"pl"_s);
        QVERIFY(m_field->isCompletionListShown());
        if (cause == u"focus")
            m_other->setFocus();
        else if (cause == u"window moves")
            m_window->move(m_window->pos() + QPoint(30, 30));
        else if (cause == u"window hides")
            m_window->hide();
        else if (cause == u"caret leaves")
            m_field->moveCaret(0);
        else if (cause == u"selection")
            key(Qt::Key_A, Qt::ControlModifier);
        else if (cause == u"new content")
            m_field->show({u"Two"_s});
        else if (cause == u"click in the field")
            QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {},
                              m_field->tokenRect(0).center());
        else
            m_field->endEditing();
        QTRY_VERIFY(!m_field->isCompletionListShown());
        QVERIFY(!list()->isVisible());
    }

    void tellsWhenItIsShown()
    {
        const QSignalSpy shown(m_field, &TokenField::completionListShown);
        QTest::keyClicks(m_field, u"pl"_s);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(shown.at(0).at(0).toBool(), true);
        key(Qt::Key_Escape);
        QCOMPARE(shown.count(), 2);
        QCOMPARE(shown.at(1).at(0).toBool(), false);
    }

    void standsBelowTheText()
    {
        m_field->show({u"One"_s});
        const QRect caret = m_field->cursorRect();
        const QPoint start = m_field->viewport()->mapToGlobal(caret.bottomLeft());
        QTest::keyClicks(m_field, u"pl"_s);
        QVERIFY(QTest::qWaitForWindowExposed(list()));
        const QRect place = list()->geometry();
        QVERIFY(place.top() > start.y() && place.top() < start.y() + 12);
        QVERIFY(place.left() <= start.x() && place.left() > start.x() - 24);
        QCOMPARE(view()->viewport()->height() / view()->sizeHintForRow(0), 3);
        for (int i = 0; i < 30; ++i)
            m_field->offered.append(u"pla%1"_s.arg(i));
        QTest::keyClicks(m_field, u"a"_s);
        QTRY_COMPARE(view()->viewport()->height() / view()->sizeHintForRow(0), 8);
    }

    void flipsAboveAndStaysOnTheScreen()
    {
        const QRect screen = m_window->screen()->availableGeometry();
        m_window->move(screen.right() - 500, screen.bottom() - 60);
        QTRY_VERIFY(m_window->mapToGlobal(QPoint()).y() > screen.bottom() - 70);
        QStringList many;
        for (int i = 0; i < 5; ++i)
            many.append(u"number %1"_s.arg(i));
        m_field->show(many);
        QTest::keyClicks(m_field, u"pl"_s);
        QVERIFY(QTest::qWaitForWindowExposed(list()));
        const QRect caret = m_field->cursorRect();
        QVERIFY(screen.contains(list()->geometry()));
        QVERIFY(list()->geometry().bottom()
                <= m_field->viewport()->mapToGlobal(caret.topLeft()).y());
    }

    void standsAtTheRightInRightToLeft()
    {
        m_window->setLayoutDirection(Qt::RightToLeft);
        m_field->show({u"One"_s});
        const QPoint start = m_field->viewport()->mapToGlobal(m_field->cursorRect().bottomLeft());
        QTest::keyClicks(m_field, u"pl"_s);
        QVERIFY(QTest::qWaitForWindowExposed(list()));
        QCOMPARE(list()->layoutDirection(), Qt::RightToLeft);
        QVERIFY(qAbs(list()->geometry().right() - start.x()) < 24);
    }

    void scrollsByWheel()
    {
        for (int i = 0; i < 30; ++i)
            m_field->offered.append(u"pl%1"_s.arg(i));
        QTest::keyClicks(m_field, u"pl"_s);
        QVERIFY(QTest::qWaitForWindowExposed(list()));
        const QPointF middle = view()->viewport()->rect().center();
        QWheelEvent wheel(middle, view()->viewport()->mapToGlobal(middle), {}, QPoint(0, -240), {},
                          {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view()->viewport(), &wheel);
        QVERIFY(view()->verticalScrollBar()->value() > 0);
        QVERIFY(m_field->isCompletionListShown());
        QCOMPARE(highlighted(), QString());
    }

    void leavesTheKeyboardAlone()
    {
        QTest::keyClicks(m_field, u"pl"_s);
        QVERIFY(QTest::qWaitForWindowExposed(list()));
        gui::handlePendingEvents();
        QVERIFY(m_window->isActiveWindow());
        QVERIFY(m_field->hasFocus());
        QTest::mouseClick(list(), Qt::LeftButton, {}, QPoint(1, 1));
        QVERIFY(m_field->hasFocus());
        QVERIFY(m_field->isCompletionListShown());
    }

    /// The quickest of some keystrokes, so that other programs do not count.
    void paintsThousandsAtOnce()
    {
        m_field->offered.clear();
        for (int i = 0; i < 5'000; ++i)
            m_field->offered.append(u"pppppppppp %1 %2"_s.arg(i).arg(i % 2 ? u"🚀"_s : QString()));
        QTest::keyClicks(m_field, u"p"_s);
        QVERIFY(QTest::qWaitForWindowExposed(list()));
        PaintWatch watch;
        view()->viewport()->installEventFilter(&watch);
        double quickest = 1000;
        for (int i = 0; i < 8; ++i) {
            watch.painted = false;
            QElapsedTimer timer;
            timer.start();
            QTest::keyClicks(m_field, u"p"_s);
            while (!watch.painted && timer.elapsed() < 1000)
                QCoreApplication::processEvents();
            quickest = std::min(quickest, double(timer.nsecsElapsed()) / 1e6);
        }
        qInfo("key to painted list: %.1f ms", quickest);
        QCOMPARE(rows(), 5'000);
        QVERIFY(quickest < 16);
    }

private:
    TokenCompletionList *list() const { return m_field->findChild<TokenCompletionList *>(); }
    QListView *view() const { return list()->findChild<QListView *>(); }
    int rows() const { return view()->model()->rowCount(); }
    QString highlighted() const { return view()->currentIndex().data().toString(); }
};

QTEST_MAIN(TestTokenCompletionList)
#include "tst_TokenCompletionList.moc"
