#include "Application/Screenshots.h"

#include "Application/AppDelegate.h"
#include "Foundation/Logging.h"
#include "MainWindow/CounterpartsPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "Preferences/InputControls/AutoEditArrayController.h"

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
    delegate.counterpartsViewController()->counterpartsArrayController().setSelectionIndex(0);
    const QPalette usual = QApplication::palette();
    picture(*delegate.window(), u"main-window-light.png"_s);
    QApplication::setPalette(darkPalette());
    picture(*delegate.window(), u"main-window-dark.png"_s);
    QApplication::setPalette(usual);
}

void Screenshots::picture(QWidget &window, const QString &fileName)
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
