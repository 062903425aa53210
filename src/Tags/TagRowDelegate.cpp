#include "Tags/TagRowDelegate.h"

#include "Preferences/InputControls/RowNameEditor.h"
#include "Tags/TagsArrayController.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Theme.h"

#include <QApplication>
#include <QFocusEvent>
#include <QPainter>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

bool isEmojiCell(const QModelIndex &index)
{
    return index.column() == TagsArrayController::EmojiColumn;
}

} // namespace

TagRowDelegate::TagRowDelegate(EmojiTextField::CharacterPalette characterPalette, QObject *parent)
    : BrowserRowDelegate(parent)
    , m_characterPalette(std::move(characterPalette))
{
}

void TagRowDelegate::commitOpenEditor()
{
    if (m_nameEditor)
        static_cast<RowNameEditor *>(m_nameEditor.data())->commit();
}

bool TagRowDelegate::isRenaming() const
{
    return m_nameEditor != nullptr;
}

QString TagRowDelegate::cellText(const QModelIndex &index) const
{
    const QString text = BrowserRowDelegate::cellText(index);
    return text.isEmpty() && !isEmojiCell(index) ? TagsArrayController::unnamedTitle() : text;
}

bool TagRowDelegate::isDimmed(const QModelIndex &index) const
{
    return !isEmojiCell(index) && BrowserRowDelegate::cellText(index).isEmpty();
}

Qt::Alignment TagRowDelegate::cellAlignment(const QModelIndex &index) const
{
    return isEmojiCell(index) ? Qt::AlignCenter : BrowserRowDelegate::cellAlignment(index);
}

QString TagRowDelegate::toolTipFor(const QModelIndex &index) const
{
    return isEmojiCell(index) ? tr("Change Emoji", "Tooltip of a tag's emoji") : QString();
}

/// Draws a frame around the emoji under the pointer, since a click changes it.
void TagRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                           const QModelIndex &index) const
{
    if (isEmojiCell(index) && (option.state & QStyle::State_MouseOver)) {
        const QRectF frame = QRectF(textRect(option, index)).adjusted(-5.5, 2.5, 5.5, -2.5);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(option.state & QStyle::State_Selected
                            ? theme::secondaryHighlightedText(option.palette)
                            : theme::secondaryText(option.palette));
        painter->drawRoundedRect(frame, theme::gridUnit, theme::gridUnit);
        painter->restore();
    }
    BrowserRowDelegate::paint(painter, option, index);
}

QWidget *TagRowDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                      const QModelIndex &index) const
{
    auto *self = const_cast<TagRowDelegate *>(this);
    return isEmojiCell(index) ? self->createEmojiEditor(parent) : self->createNameEditor(parent);
}

QWidget *TagRowDelegate::createNameEditor(QWidget *parent)
{
    auto *editor = new RowNameEditor(this, parent);
    editor->setAccessibleName(tr("Name", "Accessible name of the field for a tag's name"));
    editor->setPlaceholderText(TagsArrayController::unnamedTitle());
    connect(editor, &QObject::destroyed, this, &TagRowDelegate::nameEditorDestroyed);
    m_nameEditor = editor;
    return editor;
}

void TagRowDelegate::nameEditorDestroyed(const QObject *editor)
{
    if (m_nameEditor == editor)
        m_nameEditor.clear();
    Q_EMIT renamingEnded();
}

QWidget *TagRowDelegate::createEmojiEditor(QWidget *parent)
{
    auto *editor = new EmojiTextField(parent);
    editor->setObjectName(u"emojiEditor"_s);
    editor->setAccessibleName(tr("Emoji", "Accessible name of the field for a tag's emoji"));
    editor->setCharacterPalette(m_characterPalette);
    connect(editor, &EmojiTextField::emojiCommitted, this,
            [this, editor] { Q_EMIT commitData(editor); });
    return editor;
}

/// Closes the editor and gives the keyboard back to the list; the emoji field only gives it up.
void TagRowDelegate::closeEmojiEditor(EmojiTextField *editor)
{
    // The list may have closed it already.
    if (!editor || editor->isHidden())
        return;
    QWidget *list = editor->parentWidget()->parentWidget();
    const QWidget *focused = list->window()->focusWidget();
    Q_EMIT closeEditor(editor, NoHint);
    if (!focused || focused == editor)
        list->setFocus();
}

void TagRowDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const QString text = index.data(Qt::EditRole).toString();
    if (auto *emojiField = qobject_cast<EmojiTextField *>(editor))
        emojiField->setEmoji(text);
    else
        static_cast<RowNameEditor *>(editor)->setName(text);
}

void TagRowDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                  const QModelIndex &index) const
{
    if (const auto *emojiField = qobject_cast<EmojiTextField *>(editor)) {
        if (emojiField->emoji() != index.data(Qt::EditRole).toString())
            model->setData(index, emojiField->emoji());
        return;
    }
    static_cast<RowNameEditor *>(editor)->writeTo(model, index);
}

void TagRowDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                          const QModelIndex &index) const
{
    if (isEmojiCell(index)) {
        QRect field({}, editor->sizeHint());
        field.setHeight(std::min(field.height(), option.rect.height()));
        field.moveCenter(option.rect.center());
        editor->setGeometry(field);
        return;
    }
    // Wider than the name by the field's own frame, so that the text does not jump.
    const int frame = theme::gridUnit;
    editor->setGeometry(textRect(option, index).adjusted(-frame, 1, frame, -1));
}

bool TagRowDelegate::eventFilter(QObject *object, QEvent *event)
{
    if (auto *emojiField = qobject_cast<EmojiTextField *>(object))
        return filterEmojiEditor(emojiField, event);
    auto *editor = static_cast<RowNameEditor *>(object);
    return editor->handleEvent(event) || BrowserRowDelegate::eventFilter(object, event);
}

bool TagRowDelegate::filterEmojiEditor(EmojiTextField *editor, QEvent *event)
{
    // A popup such as the palette takes the keyboard only for a while.
    const bool ofFocus = event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    if (!ofFocus)
        return BrowserRowDelegate::eventFilter(editor, event);
    const bool ofPopup = static_cast<QFocusEvent *>(event)->reason() == Qt::PopupFocusReason;
    const bool leaves = event->type() == QEvent::FocusOut && !ofPopup
                        && !QApplication::activePopupWidget();
    const bool paletteCloses = event->type() == QEvent::FocusIn && ofPopup;
    // Queued, for the emoji chosen in the palette is committed later in this turn.
    if (leaves || paletteCloses)
        QMetaObject::invokeMethod(
            this, [this, guard = QPointer(editor)] { closeEmojiEditor(guard); },
            Qt::QueuedConnection);
    return false;
}

} // namespace tembra
