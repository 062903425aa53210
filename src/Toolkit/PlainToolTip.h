#pragma once

#include <QRect>
#include <QString>

class QAbstractItemView;
class QPoint;
class QWidget;

namespace tembra {

// Tooltips that show text as it is. Qt itself takes a tooltip that looks like HTML for rich text,
// and loads the files that such a text names; so no other code sets a tooltip.

/// @p text as the value of `Qt::ToolTipRole`: Qt shows it as it is, with its line breaks. A line that
/// is too long for the screen is wrapped, a text that is too long for a tooltip is abbreviated.
QString plainToolTip(const QString &text);

void setPlainToolTip(QWidget *widget, const QString &text);

/// Shows the tooltip now, and hides it when the mouse leaves @p rect of @p widget (by default all of
/// it). An empty text hides the one that is shown.
void showPlainToolTip(const QPoint &globalPosition, const QString &text, QWidget *widget,
                      const QRect &rect = {});

/// Makes a view show the tooltips of a model that is not Tembra's own as plain text.
void showPlainToolTipsIn(QAbstractItemView *view);

} // namespace tembra
