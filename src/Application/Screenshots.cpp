#include "Application/Screenshots.h"

#include "Application/AppDelegate.h"
#include "Application/WindowManager.h"
#include "Foundation/Logging.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "MainWindow/Session/SessionWindowController.h"
#include "Preferences/InputControls/AutoEditArrayController.h"
#include "Tags/TagWindowController.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTimer>
#include <QWindow>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// Calm dark colours, as a dark desktop would give them.
QPalette darkPalette()
{
    QPalette palette(QColor(0x2b, 0x2d, 0x30), QColor(0x23, 0x25, 0x28));
    palette.setColor(QPalette::Base, QColor(0x1c, 0x1e, 0x20));
    palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x28, 0x2b));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xdb));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xa8, 0xf2));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9d, 0xa2));
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x7d, 0x80, 0x85));
    return palette;
}

} // namespace

Screenshots::Screenshots(QString directory, QObject *parent)
    : QObject(parent)
    , m_directory(std::move(directory))
{
}

void Screenshots::takeThenQuit(AppDelegate &delegate)
{
    // A turn of the event loop with nothing left to do has laid everything out.
    QTimer::singleShot(0, this, [this, &delegate] {
        take(delegate);
        delegate.terminate();
    });
}

void Screenshots::take(AppDelegate &delegate)
{
    if (!QDir().mkpath(m_directory)) {
        m_failed = true;
        qCWarning(applicationLog, "Could not make the folder for the screenshots.");
        return;
    }
    const QList<Picture> pictures = openWindows(delegate);
    const QPalette usual = QApplication::palette();
    for (const Picture &picture : pictures)
        take(*picture.window, picture.name + u"-light.png"_s);
    QApplication::setPalette(darkPalette());
    for (const Picture &picture : pictures)
        take(*picture.window, picture.name + u"-dark.png"_s);
    QApplication::setPalette(usual);
}

/// Each window the program has, showing as much as the journal has for it.
QList<Screenshots::Picture> Screenshots::openWindows(AppDelegate &delegate)
{
    delegate.counterpartsViewController()->counterpartsArrayController().setSelectionIndex(0);
    TagWindowController &tags = delegate.tagsWindowController();
    tags.show();
    if (tags.tagsArrayController->rowCount() > 0)
        tags.tagsArrayController->setSelectionIndex(0);
    QList<Picture> pictures{{delegate.window(), u"main-window"_s}, {&tags, u"tags-window"_s}};
    const auto session = delegate.window()->detailPaneViewController().selectedSession();
    if (session) {
        delegate.windowManager().open(session);
        pictures.append({&delegate.windowManager().windowController(session), u"meeting-window"_s});
    }
    return pictures;
}

void Screenshots::take(QWidget &window, const QString &fileName)
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    const QString file = QDir(m_directory).filePath(fileName);
    if (window.grab().save(file))
        return;
    m_failed = true;
    qCWarning(applicationLog, "Could not write the screenshot %s.", qUtf8Printable(fileName));
}

} // namespace tembra
