#include "support/GuiTest.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTextDocumentFragment>
#include <QToolTip>

#include <algorithm>

namespace tembra::gui {

bool waitUntilActive(const QWidget &window)
{
    return QTest::qWaitFor([&window] { return QApplication::activeWindow() == &window; });
}

Alert *sheetOf(const QWidget &window)
{
    const QList<Alert *> alerts = window.findChildren<Alert *>();
    const auto shown = std::ranges::find_if(alerts, &QWidget::isVisible);
    if (shown == alerts.end() || !waitUntilActive(**shown))
        return nullptr;
    return *shown;
}

void pressAlertButton(const Alert &alert, int index)
{
    QTest::mouseClick(alert.buttons().at(index), Qt::LeftButton);
}

void typeText(QWidget &widget, const QString &text)
{
    for (const char32_t character : text.toStdU32String()) {
        const QString key = QString::fromUcs4(&character, 1);
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, 0, Qt::NoModifier, key);
            QCoreApplication::sendEvent(&widget, &event);
        }
    }
}

void commitText(QWidget &widget, const QString &text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(&widget, &event);
}

void pasteText(QWidget &widget, const QString &text)
{
    QApplication::clipboard()->setText(text);
    QTest::keyClick(&widget, Qt::Key_V, Qt::ControlModifier);
}

void addUndoKeys()
{
    QTest::addColumn<QKeySequence>("keys");
    QTest::newRow("Ctrl+Z") << QKeySequence(Qt::CTRL | Qt::Key_Z);
    QTest::newRow("Ctrl+Shift+Z") << QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    QTest::newRow("Ctrl+Y") << QKeySequence(Qt::CTRL | Qt::Key_Y);
}

bool reachesTheWindow(QWidget &field, const QKeySequence &keys)
{
    const QShortcut shortcut(keys, field.window());
    const QSignalSpy activated(&shortcut, &QShortcut::activated);
    QTest::keyClick(&field, keys[0].key(), keys[0].keyboardModifiers());
    return activated.count() == 1;
}

QStringList contextMenuOf(QWidget &field)
{
    const QPoint corner(5, 5);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, corner, field.mapToGlobal(corner));
    QCoreApplication::sendEvent(&field, &event);
    auto *menu = waitForPopup<QMenu>();
    QStringList names;
    if (menu) {
        for (const QAction *action : menu->actions())
            names.append(action->objectName());
        menu->close();
    }
    return names;
}

void handlePendingEvents()
{
    // Handling an event may post others; a few rounds reach what these lead to.
    for (int round = 0; round < 5; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

QString shownToolTip()
{
    if (!QToolTip::isVisible())
        return {};
    const QString text = QToolTip::text();
    // A long text is wrapped, for which it has to be rich text.
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

} // namespace tembra::gui
