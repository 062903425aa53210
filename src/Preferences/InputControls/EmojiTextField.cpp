#include "Preferences/InputControls/EmojiTextField.h"

#include "Preferences/InputControls/OnlyEmojiValueFormatter.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/FieldEvents.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QScopedValueRollback>
#include <QStyleOptionFrame>
#include <QStylePainter>

#include <algorithm>
#include <cmath>

namespace tembra {

namespace {

/// Whether the editing goes on although the keyboard leaves; the palette is a popup, too.
bool isInterruption(Qt::FocusReason reason)
{
    return isTemporaryFocusChange(reason) || QApplication::activePopupWidget();
}

bool opensPalette(const QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_F4:
        return true;
    default:
        return false;
    }
}

} // namespace

EmojiTextField::EmojiTextField(QWidget *parent) : QLineEdit(parent)
{
    setAlignment(Qt::AlignCenter);
    setAcceptDrops(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QLineEdit::textChanged, this, &EmojiTextField::textDidChange);
    awakeFromNib();
}

void EmojiTextField::awakeFromNib()
{
    setValidator(new OnlyEmojiValueFormatter(this));
}

void EmojiTextField::setCharacterPalette(CharacterPalette palette)
{
    m_palette = std::move(palette);
}

void EmojiTextField::setEmoji(const QString &emoji)
{
    if (emoji == m_emoji)
        return;
    m_emoji = emoji;
    if (!m_editing)
        display(emoji);
    Q_EMIT emojiChanged(emoji);
}

void EmojiTextField::display(const QString &text)
{
    const QScopedValueRollback showing(m_showing, true);
    setText(tembra::displayText(text));
    update();
}

void EmojiTextField::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    if (!m_editing)
        becomeFirstResponder();
}

void EmojiTextField::becomeFirstResponder()
{
    m_editing = true;
    orderFrontCharacterPalette();
    // Not `clear()`, which could be undone.
    if (m_editing)
        display({});
}

void EmojiTextField::orderFrontCharacterPalette()
{
    if (!m_palette || QApplication::activePopupWidget())
        return;
    m_palette(this, [field = QPointer(this)](const QString &emoji) {
        if (field)
            field->insertFromPalette(emoji);
    });
}

/// Inserts an emoji as if it were typed: the validator may refuse it.
void EmojiTextField::insertFromPalette(const QString &emoji)
{
    if (!OnlyEmojiValueFormatter::isPartialStringValid(emoji)) {
        showPlainToolTip(mapToGlobal(rect().bottomLeft()),
                         tr("This one counts as a letter or a number.",
                            "Why a character was not taken into a field for emoji"),
                         this);
        return;
    }
    m_editing = true;
    textDidChange(emoji);
}

void EmojiTextField::textDidChange(const QString &text)
{
    if (m_showing || text.isEmpty())
        return;
    if (!OnlyEmojiValueFormatter::isPartialStringValid(text)) {
        display(m_editing ? QString() : m_emoji);
        return;
    }
    const QPointer<EmojiTextField> guard(this);
    setEmoji(text);
    endEditing();
    window()->activateWindow();
    if (guard)
        Q_EMIT emojiCommitted(m_emoji);
}

/// Ends the editing and gives up the keyboard.
void EmojiTextField::endEditing()
{
    m_editing = false;
    display(m_emoji);
    if (!hasFocus())
        return;
    clearFocus();
    // Tab would begin anew at the window's first field.
    m_window = window();
    m_window->installEventFilter(this);
}

void EmojiTextField::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    if (!m_editing || isInterruption(event->reason()))
        return;
    m_editing = false;
    display(m_emoji);
}

bool EmojiTextField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (isUndoOrRedo(*key)) {
            event->ignore();
            return false;
        }
        if (key->key() == Qt::Key_Escape && m_editing) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void EmojiTextField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_editing)
        endEditing();
    else if (opensPalette(event) && m_palette)
        orderFrontCharacterPalette();
    else if (isUndoOrRedo(*event))
        event->ignore();
    else
        QLineEdit::keyPressEvent(event);
}

void EmojiTextField::mousePressEvent(QMouseEvent *event)
{
    QLineEdit::mousePressEvent(event);
    if (m_editing)
        orderFrontCharacterPalette();
}

void EmojiTextField::contextMenuEvent(QContextMenuEvent *event)
{
    if (!QApplication::activePopupWidget())
        QLineEdit::contextMenuEvent(event);
}

bool EmojiTextField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_window || event->type() != QEvent::KeyPress)
        return QLineEdit::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (m_window->focusWidget() || key == Qt::Key_Tab || key == Qt::Key_Backtab)
        m_window->removeEventFilter(this);
    if (m_window->focusWidget() || (key != Qt::Key_Tab && key != Qt::Key_Backtab))
        return false;
    return focusNeighbour(key == Qt::Key_Tab);
}

bool EmojiTextField::focusNeighbour(bool next)
{
    const auto follow = [next](const QWidget *widget) {
        return next ? widget->nextInFocusChain() : widget->previousInFocusChain();
    };
    for (QWidget *widget = follow(this); widget != this; widget = follow(widget)) {
        const bool isStop = (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy();
        if (!isStop || !widget->isVisible() || !widget->isEnabled() || widget->isWindow())
            continue;
        widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    return false;
}

QSize EmojiTextField::sizeHint() const
{
    QStyleOptionFrame option;
    initStyleOption(&option);
    const int emoji = int(std::ceil(QFontMetricsF(emojiFont(font())).height()));
    const QSize content(2 * emoji, std::max(emoji, fontMetrics().height()) + theme::gridUnit);
    return style()->sizeFromContents(QStyle::CT_LineEdit, &option, content, this);
}

QSize EmojiTextField::minimumSizeHint() const
{
    return sizeHint();
}

void EmojiTextField::paintEvent(QPaintEvent *event)
{
    if (m_editing) {
        QLineEdit::paintEvent(event);
        return;
    }
    QStylePainter painter(this);
    QStyleOptionFrame option;
    initStyleOption(&option);
    painter.drawPrimitive(QStyle::PE_PanelLineEdit, option);
    const QRect content = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    drawEmojiText(&painter, content, text(), font(), palette().color(group, QPalette::Text),
                  Qt::AlignCenter);
}

} // namespace tembra
