#include "Toolkit/Token/TokenField.h"

#include "TokenFieldTest.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProcess>
#include <QTimer>

#include <functional>
#include <utility>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Clicks, menus, and dragging with a real pointer.
class TestTokenFieldMouse : public TokenFieldTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TokenFieldTest::init();
        m_second = new WordField;
        m_notes = new QPlainTextEdit;
        m_window->layout()->addWidget(m_second);
        m_window->layout()->addWidget(m_notes);
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        gui::handlePendingEvents();
    }

    void selectsByClick()
    {
        click(1);
        QCOMPARE(m_field->picture(), u"[One]|[Two]|[Three]"_s);
        click(0);
        QCOMPARE(m_field->picture(), u"|[One]|[Two][Three]"_s);
        key(Qt::Key_Delete);
        QCOMPARE(m_field->picture(), u"|[Two][Three]"_s);
    }

    void extendsByShiftClick()
    {
        click(1);
        click(2, Qt::ShiftModifier);
        QCOMPARE(m_field->picture(), u"[One]|[Two][Three]|"_s);
        click(1);
        click(0, Qt::ShiftModifier);
        QCOMPARE(m_field->picture(), u"|[One][Two]|[Three]"_s);
        click(2, Qt::ShiftModifier);
        QCOMPARE(m_field->words(), QStringList({u"One"_s, u"Two"_s, u"Three"_s}));
        QVERIFY(m_field->textCursor().selectionEnd() == 3);
    }

    void keepsTheSelectionForADrag()
    {
        key(Qt::Key_A, Qt::ControlModifier);
        QTest::mousePress(m_field->viewport(), Qt::LeftButton, {}, middleOf(1));
        QCOMPARE(m_field->picture(), u"|[One][Two][Three]|"_s);
        QTest::mouseRelease(m_field->viewport(), Qt::LeftButton, {}, middleOf(1));
        QCOMPARE(m_field->picture(), u"[One]|[Two]|[Three]"_s);
    }

    void placesTheCaretBetweenTokens()
    {
        const QRect last = m_field->tokenRect(2);
        QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {},
                          QPoint(last.right() + 60, last.center().y()));
        QCOMPARE(m_field->picture(), u"[One][Two][Three]|"_s);
        QTest::keyClicks(m_field, u"half typed"_s);
        QTest::mouseClick(m_field->viewport(), Qt::LeftButton, {},
                          QPoint(last.right() + 2, last.center().y()));
        QCOMPARE(m_field->picture(), u"[One][Two][Three]|half typed"_s);
    }

    void selectsByDraggingOverThem()
    {
        const QRect last = m_field->tokenRect(2);
        const QPoint start(last.right() + 30, last.center().y());
        QTest::mousePress(m_field->viewport(), Qt::LeftButton, {}, start);
        QMouseEvent move(QEvent::MouseMove, QPoint(m_field->tokenRect(1).left() + 4, start.y()),
                         onScreen(start), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_field->viewport(), &move);
        QTest::mouseRelease(m_field->viewport(), Qt::LeftButton, {}, middleOf(1));
        QCOMPARE(m_field->picture(), u"[One]|[Two][Three]|"_s);
    }

    void editsByDoubleClick()
    {
        const auto before = m_field->objectValue();
        QTest::mouseDClick(m_field->viewport(), Qt::LeftButton, {}, middleOf(1));
        QCOMPARE(m_field->picture(), u"[One]|Two|[Three]"_s);
        QVERIFY(!m_field->isCompletionListShown());
        key(Qt::Key_Return);
        QCOMPARE(m_field->objectValue(), before);
        m_field->setReadOnly(true);
        QTest::mouseDClick(m_field->viewport(), Qt::LeftButton, {}, middleOf(1));
        QCOMPARE(m_field->objectValue(), before);
    }

    void showsTheMenuOfAToken()
    {
        QMenu menu;
        const QAction *edit = menu.addAction(u"Edit"_s);
        m_field->menu = &menu;
        QTest::keyClicks(m_field, u"half"_s);
        QContextMenuEvent event(QContextMenuEvent::Mouse, middleOf(1), onScreen(middleOf(1)));
        QApplication::sendEvent(m_field->viewport(), &event);
        QTRY_VERIFY(menu.isVisible());
        QCOMPARE(menu.actions().size(), 1);
        // The menu takes the keyboard for a while; that ends nothing.
        QCOMPARE(m_field->words().size(), 3);
        QCOMPARE(m_field->picture(), u"[One]|[Two]|[Three]half"_s);
        const QSignalSpy chosen(edit, &QAction::triggered);
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Return);
        QCOMPARE(chosen.count(), 1);
        QTRY_VERIFY(!menu.isVisible());
        QVERIFY(m_field->isEditing());
    }

    void showsTheMenuByKey()
    {
        QMenu menu;
        menu.addAction(u"Edit"_s);
        m_field->menu = &menu;
        click(1);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(0, 0), onScreen(QPoint(0, 0)));
        QApplication::sendEvent(m_field, &event);
        QTRY_VERIFY(menu.isVisible());
        const int left = onScreen(m_field->tokenRect(1).bottomLeft()).x();
        QVERIFY(qAbs(menu.x() - left) < 8);
        menu.hide();
    }

    void showsTheUsualMenuElsewhere()
    {
        QMenu ofToken;
        m_field->menu = &ofToken;
        const QPoint beside(m_field->tokenRect(2).right() + 60, 10);
        key(Qt::Key_A, Qt::ControlModifier);
        QContextMenuEvent event(QContextMenuEvent::Mouse, beside, onScreen(beside));
        QApplication::sendEvent(m_field->viewport(), &event);
        auto *menu = gui::waitForPopup<QMenu>();
        QVERIFY(menu && menu != &ofToken);
        QVERIFY(!menu->actions().constFirst()->isSeparator());
        QStringList names;
        for (const QAction *action : menu->actions())
            names.append(action->objectName());
        QVERIFY(!names.contains(u"edit-undo"_s) && !names.contains(u"edit-redo"_s));
        QVERIFY(names.contains(u"edit-paste"_s));
        menu->actions().at(names.indexOf(u"edit-cut"_s))->trigger();
        QCOMPARE(m_field->picture(), u"|"_s);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"One, Two, Three"_s);
        menu->close();
    }

    void pastesTheSelectionByMiddleClick()
    {
        QGuiApplication::clipboard()->setText(u"Four, Five"_s, QClipboard::Selection);
        QTest::mouseClick(m_field->viewport(), Qt::MiddleButton, {},
                          QPoint(m_field->tokenRect(2).right() + 40, 10));
        QCOMPARE(m_field->picture(), u"[One][Two][Three][Four][Five]|"_s);
    }

    void dragsWithinTheField()
    {
        const auto before = m_field->objectValue();
        const QSignalSpy changes(m_field, &TokenField::tokensChanged);
        drag(onScreen(middleOf(2)), onScreen(m_field->tokenRect(0).topLeft() + QPoint(2, 8)));
        QCOMPARE(m_field->picture(), u"|[Three]|[One][Two]"_s);
        QCOMPARE(m_field->objectValue().at(0), before.at(2));
        QCOMPARE(changes.count(), 1);
        QVERIFY(m_field->proposed.isEmpty());
        // Onto its own place.
        drag(onScreen(middleOf(0)), onScreen(m_field->tokenRect(0).center() + QPoint(12, 0)));
        QCOMPARE(m_field->words(), QStringList({u"Three"_s, u"One"_s, u"Two"_s}));
    }

    void dragsSeveral()
    {
        m_field->moveCaret(0, 2);
        drag(onScreen(middleOf(0)), onScreen(m_field->tokenRect(2).center() + QPoint(80, 0)));
        QCOMPARE(m_field->picture(), u"[Three]|[One][Two]|"_s);
    }

    void dragsToAnotherField()
    {
        m_second->show({u"Other"_s});
        drag(onScreen(middleOf(1)),
             m_second->viewport()->mapToGlobal(m_second->tokenRect(0).center() + QPoint(60, 0)));
        QCOMPARE(m_second->words(), QStringList({u"Other"_s, u"Two"_s}));
        QCOMPARE(m_second->proposed, QStringList(u"Two at 1"_s));
        QCOMPARE(m_field->words(), QStringList({u"One"_s, u"Two"_s, u"Three"_s}));
        QVERIFY(!m_second->isEditing() || m_second->hasFocus());
    }

    void dragsOutAsText()
    {
        m_field->moveCaret(0, 2);
        drag(onScreen(middleOf(0)), m_notes->mapToGlobal(m_notes->rect().center()));
        QCOMPARE(m_notes->toPlainText(), u"One, Two"_s);
        QCOMPARE(m_field->words().size(), 3);
    }

    void takesADroppedText()
    {
        m_other->setFocus();
        const QSignalSpy ends(m_field, &TokenField::didEndEditing);
        auto *text = new QMimeData;
        text->setText(u"Four, Five"_s);
        QVERIFY(drop(text, m_field->tokenRect(1).topLeft() + QPoint(2, 8)));
        QCOMPARE(m_field->words(),
                 QStringList({u"One"_s, u"Four"_s, u"Five"_s, u"Two"_s, u"Three"_s}));
        // Nobody would end it later: the keyboard is elsewhere.
        QCOMPARE(ends.count(), 1);
        QVERIFY(!m_field->isEditing());
    }

    void ignoresForeignDrops_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind : {"files", "picture", "unknown", "rich text alone"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    void ignoresForeignDrops()
    {
        QFETCH(QString, kind);
        auto *mimeData = new QMimeData;
        if (kind == u"files") {
            mimeData->setUrls({QUrl(u"file:///etc/hostname"_s)});
            mimeData->setText(u"file:///etc/hostname"_s);
        } else if (kind == u"picture") {
            mimeData->setImageData(QImage(4, 4, QImage::Format_RGB32));
            mimeData->setText(u"picture.png"_s);
        } else if (kind == u"rich text alone") {
            mimeData->setHtml(u"<b>bold</b>"_s);
        } else {
            mimeData->setData(u"application/x-unknown"_s, "data");
        }
        QVERIFY(!drop(mimeData, middleOf(1)));
        QCOMPARE(m_field->words(), QStringList({u"One"_s, u"Two"_s, u"Three"_s}));
    }

    void survivesNewContentWhileDragging()
    {
        bool changed = false;
        drag(onScreen(middleOf(1)), onScreen(m_field->tokenRect(0).topLeft() + QPoint(2, 8)), [&] {
            changed = true;
            m_field->vocabulary.clear();
            m_field->show({u"Four"_s});
        });
        QVERIFY(changed);
        QCOMPARE(m_field->words(), QStringList(u"Four"_s));
    }

    void survivesItsEndWhileDragging()
    {
        const QPoint from = onScreen(middleOf(1));
        const QPoint to = m_notes->mapToGlobal(m_notes->rect().center());
        drag(from, to, [this] { delete std::exchange(m_field, nullptr); });
        QCOMPARE(m_field, nullptr);
    }

    void dropsNothingWhenReadOnly()
    {
        m_field->setReadOnly(true);
        auto *text = new QMimeData;
        text->setText(u"Four"_s);
        QVERIFY(!drop(text, middleOf(1)));
        QCOMPARE(m_field->words().size(), 3);
        drag(onScreen(middleOf(2)), onScreen(m_field->tokenRect(0).topLeft() + QPoint(2, 8)));
        QCOMPARE(m_field->words(), QStringList({u"One"_s, u"Two"_s, u"Three"_s}));
    }

private:
    QPoint middleOf(int token) const { return m_field->tokenRect(token).center(); }
    void click(int token, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(m_field->viewport(), Qt::LeftButton, modifiers, middleOf(token));
    }
    QPoint onScreen(const QPoint &point) const { return m_field->viewport()->mapToGlobal(point); }
    /// With the pointer of the display, from and to places on the screen, as a user would.
    void drag(const QPoint &from, const QPoint &to, const std::function<void()> &underWay = {})
    {
        const auto moveTo = [](const QPoint &point) {
            return QStringList{u"mousemove"_s, QString::number(point.x()),
                               QString::number(point.y()), u"sleep"_s, u"0.02"_s};
        };
        QStringList script = moveTo(from)
                             + QStringList{u"mousedown"_s, u"1"_s, u"sleep"_s, u"0.05"_s};
        constexpr int steps = 15;
        for (int i = 1; i <= steps; ++i)
            script += moveTo(from + (to - from) * i / steps);
        script += {u"sleep"_s, underWay ? u"0.6"_s : u"0.2"_s, u"mouseup"_s, u"1"_s};
        if (underWay)
            QTimer::singleShot(700, m_window.get(), underWay);
        QProcess pointer;
        bool ended = false;
        connect(&pointer, &QProcess::finished, &pointer, [&ended] { ended = true; });
        pointer.start(u"xdotool"_s, script);
        QTRY_VERIFY_WITH_TIMEOUT(ended, 10'000);
        QCOMPARE(pointer.exitCode(), 0);
        QTRY_VERIFY(!QCoreApplication::instance()->findChild<QDrag *>());
        gui::handlePendingEvents();
    }

    /// As the display would deliver it from another program; true if it was taken.
    bool drop(QMimeData *mimeData, const QPoint &point)
    {
        const std::unique_ptr<QMimeData> owned(mimeData);
        QDragEnterEvent enter(point, Qt::CopyAction, mimeData, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_field->viewport(), &enter);
        if (!enter.isAccepted())
            return false;
        QDragMoveEvent move(point, Qt::CopyAction, mimeData, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_field->viewport(), &move);
        QDropEvent event(point, Qt::CopyAction, mimeData, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_field->viewport(), &event);
        return event.isAccepted();
    }

    WordField *m_second = nullptr;
    QPlainTextEdit *m_notes = nullptr;
};

QTEST_MAIN(TestTokenFieldMouse)
#include "tst_TokenFieldMouse.moc"
