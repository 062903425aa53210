#include "Toolkit/PlainToolTip.h"

#include "Foundation/Text/Abbreviation.h"
#include "Toolkit/Emoji/EmojiText.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

namespace tembra {

namespace {

constexpr qsizetype longestToolTip = 2 * longestShownLine;
constexpr qsizetype longestUnwrappedLine = 100;

bool hasLongLine(const QString &text)
{
    qsizetype start = 0;
    while (start <= text.size()) {
        qsizetype end = text.indexOf(u'\n', start);
        if (end < 0)
            end = text.size();
        if (end - start > longestUnwrappedLine)
            return true;
        start = end + 1;
    }
    return false;
}

class ViewToolTips final : public QObject
{
public:
    explicit ViewToolTips(QAbstractItemView *view) : QObject(view), m_view(view)
    {
        view->viewport()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::ToolTip)
            return false;
        const auto *help = static_cast<QHelpEvent *>(event);
        const QModelIndex index = m_view->indexAt(help->pos());
        showPlainToolTip(help->globalPos(), index.data(Qt::ToolTipRole).toString(),
                         m_view->viewport(), m_view->visualRect(index));
        return true;
    }

private:
    QAbstractItemView *m_view;
};

} // namespace

QString plainToolTip(const QString &text)
{
    const QString shown = displayText(abbreviated(text, longestToolTip));
    // Only rich text is wrapped; escaped, it shows the same characters.
    if (Qt::mightBeRichText(shown) || hasLongLine(shown))
        return Qt::convertFromPlainText(shown, Qt::WhiteSpaceNormal);
    return shown;
}

void setPlainToolTip(QWidget *widget, const QString &text)
{
    widget->setToolTip(plainToolTip(text));
}

void showPlainToolTip(const QPoint &globalPosition, const QString &text, QWidget *widget,
                      const QRect &rect)
{
    QToolTip::showText(globalPosition, plainToolTip(text), widget, rect);
}

void showPlainToolTipsIn(QAbstractItemView *view)
{
    new ViewToolTips(view);
}

} // namespace tembra
