#include "Toolkit/Emoji/EmojiGroupBar.h"

#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/PlainToolTip.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QToolButton>

namespace tembra {

EmojiGroupBar::EmojiGroupBar(QWidget *parent)
    : QWidget(parent)
    , m_layout(new QHBoxLayout(this))
    , m_buttons(new QButtonGroup(this))
{
    m_layout->setContentsMargins({});
    m_layout->setSpacing(0);
    m_buttons->setExclusive(false);
    connect(m_buttons, &QButtonGroup::idClicked, this, [this](int group) {
        setCurrent(group);
        Q_EMIT groupChosen(group);
    });
}

void EmojiGroupBar::addGroup(const QString &emoji, const QString &title)
{
    const int group = int(m_buttons->buttons().size());
    auto *button = new QToolButton;
    button->setCheckable(true);
    button->setAutoRaise(true);
    button->setFont(emojiFont(font()));
    button->setText(displayText(emoji));
    setPlainToolTip(button, title);
    button->setAccessibleName(title);
    button->setFocusPolicy(group == 0 ? Qt::TabFocus : Qt::NoFocus);
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    button->installEventFilter(this);
    m_buttons->addButton(button, group);
    m_layout->addWidget(button, 1);
}

void EmojiGroupBar::setCurrent(int group)
{
    for (QAbstractButton *button : m_buttons->buttons()) {
        const int id = m_buttons->id(button);
        button->setChecked(id == group);
        if (!button->hasFocus())
            button->setFocusPolicy(id == qMax(group, 0) ? Qt::TabFocus : Qt::NoFocus);
    }
}

int EmojiGroupBar::current() const
{
    for (QAbstractButton *button : m_buttons->buttons()) {
        if (button->isChecked())
            return m_buttons->id(button);
    }
    return -1;
}

bool EmojiGroupBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        auto *button = static_cast<QAbstractButton *>(watched);
        if (step(m_buttons->id(button), static_cast<QKeyEvent *>(event)->key()))
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool EmojiGroupBar::step(int from, int key)
{
    const int last = int(m_buttons->buttons().size()) - 1;
    const int forward = isRightToLeft() ? -1 : 1;
    int to = from;
    if (key == Qt::Key_Left || key == Qt::Key_Right)
        to += key == Qt::Key_Right ? forward : -forward;
    else if (key == Qt::Key_Home || key == Qt::Key_End)
        to = key == Qt::Key_Home ? 0 : last;
    else
        return false;
    to = qBound(0, to, last);
    m_buttons->button(to)->setFocus(Qt::TabFocusReason);
    m_buttons->button(to)->click();
    return true;
}

} // namespace tembra
