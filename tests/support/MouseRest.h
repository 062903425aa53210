#pragma once

#include <QApplication>
#include <QHelpEvent>
#include <QSet>
#include <QTextDocument>
#include <QToolTip>

namespace tembra {

/// Rests the mouse on every part of a window, as densely as its smallest controls need, and returns
/// the tooltips that came, as Qt was given them.
inline QSet<QString> toolTipsOf(QWidget *window)
{
    constexpr int step = 8;
    QSet<QString> shown;
    for (int y = 0; y < window->height(); y += step) {
        for (int x = 0; x < window->width(); x += step) {
            QWidget *widget = window->childAt(x, y);
            if (!widget)
                continue;
            const QPoint global = window->mapToGlobal(QPoint(x, y));
            QHelpEvent rest(QEvent::ToolTip, widget->mapFromGlobal(global), global);
            QApplication::sendEvent(widget, &rest);
            if (QToolTip::isVisible() && !QToolTip::text().isEmpty())
                shown.insert(QToolTip::text());
            QToolTip::hideText();
        }
    }
    return shown;
}

/// What the user reads in a tooltip.
inline QString readText(const QString &text)
{
    QTextDocument document;
    if (!Qt::mightBeRichText(text))
        return text;
    document.setHtml(text);
    return document.toPlainText();
}

} // namespace tembra
