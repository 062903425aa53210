#include "Preferences/InputControls/BindablePlaceholderTextField.h"

#include "Preferences/InputControls/RawText.h"
#include "Toolkit/Emoji/EmojiHighlighter.h"
#include "Toolkit/FieldEvents.h"
#include "Toolkit/List/PropertyObservation.h"
#include "Toolkit/Theme.h"

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>
#include <memory>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// How far into the text its direction is looked for.
constexpr qsizetype directionProbe = 1000;

} // namespace

BindablePlaceholderTextField::BindablePlaceholderTextField(QWidget *parent)
    : QPlainTextEdit(parent)
    , m_raw(std::make_unique<RawText>())
{
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    new EmojiHighlighter(document());
    connect(document(), &QTextDocument::contentsChange, this,
            &BindablePlaceholderTextField::documentChanged);
    // Writing the property waits for the end of the change: what listens to it may look at the field.
    connect(document(), &QTextDocument::contentsChanged, this,
            &BindablePlaceholderTextField::textEdited);
    applyTheme();
}

BindablePlaceholderTextField::~BindablePlaceholderTextField() = default;

void BindablePlaceholderTextField::bind(Binding binding, QObject *object, const QByteArray &keyPath,
                                        const BindingOptions &options)
{
    if (binding == Binding::Text)
        bindText(object, keyPath, options);
    else
        bindPlaceholder(object, keyPath);
}

void BindablePlaceholderTextField::bind(Binding binding, QObject *object, const QByteArray &keyPath)
{
    bind(binding, object, keyPath, {});
}

void BindablePlaceholderTextField::bindText(QObject *object, const QByteArray &keyPath,
                                            const BindingOptions &options)
{
    commitEditing();
    if (m_object)
        disconnect(m_object, &QObject::destroyed, this, nullptr);
    m_object = object;
    m_key = keyPath;
    m_valueObservation = std::make_unique<PropertyObservation>(object, keyPath,
                                                               [this] { loadFromObject(); });
    connect(object, &QObject::destroyed, this, [this] { unbind(Binding::Text); });
    if (!m_observation)
        setPlaceholderText(options.nullPlaceholder);
    setText(object->property(keyPath.constData()).toString());
    if (hasFocus())
        moveCursor(QTextCursor::End);
}

void BindablePlaceholderTextField::bindPlaceholder(QObject *object, const QByteArray &keyPath)
{
    const auto show = [this, object, keyPath] {
        setPlaceholderText(object->property(keyPath.constData()).toString());
    };
    m_observation = std::make_unique<PropertyObservation>(object, keyPath, show);
    show();
}

void BindablePlaceholderTextField::unbind(Binding binding)
{
    if (binding == Binding::Placeholder) {
        m_observation.reset();
        setPlaceholderText({});
        return;
    }
    if (m_object)
        disconnect(m_object, &QObject::destroyed, this, nullptr);
    m_object.clear();
    m_valueObservation.reset();
    setText({});
}

QString BindablePlaceholderTextField::text() const
{
    return m_raw->text();
}

void BindablePlaceholderTextField::setText(const QString &text)
{
    const QScopedValueRollback loading(m_loading, true);
    m_changedWhileComposing = false;
    setPlainText(RawText::encoded(text));
}

/// Copies one change of the document. The counts may include the end of the last paragraph.
void BindablePlaceholderTextField::documentChanged(int position, int removed, int added)
{
    const qsizetype end = document()->characterCount() - 1;
    QTextCursor insertion(document());
    insertion.setPosition(position);
    insertion.setPosition(int(std::min<qsizetype>(position + added, end)), QTextCursor::KeepAnchor);
    QString text = insertion.selectedText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    const qsizetype removable = std::min<qsizetype>(removed, m_raw->raw().size() - position);
    if (m_raw->replace(position, removable, text) && !m_loading)
        m_uncommitted = true;
}

/// Aligns right-to-left notes at the right, which a plain text document does not do by itself.
void BindablePlaceholderTextField::alignToDirection()
{
    const bool rightToLeft = QStringView(m_raw->raw()).left(directionProbe).isRightToLeft();
    QTextOption option = document()->defaultTextOption();
    const Qt::Alignment alignment = rightToLeft ? Qt::AlignRight : Qt::AlignLeft;
    if (option.alignment() == alignment)
        return;
    option.setAlignment(alignment);
    document()->setDefaultTextOption(option);
}

void BindablePlaceholderTextField::textEdited()
{
    alignToDirection();
    if (m_loading || !m_uncommitted)
        return;
    commitEditing();
    Q_EMIT edited();
}

void BindablePlaceholderTextField::commitEditing()
{
    if (!m_uncommitted)
        return;
    m_uncommitted = false;
    if (!m_object || m_committing)
        return;
    {
        const QScopedValueRollback committing(m_committing, true);
        m_object->setProperty(m_key.constData(), text());
    }
    // The object may have stored another text.
    loadFromObject();
}

void BindablePlaceholderTextField::loadFromObject()
{
    if (!m_object || m_committing)
        return;
    const QString value = m_object->property(m_key.constData()).toString();
    if (value == text())
        return;
    if (isComposing())
        m_changedWhileComposing = true;
    else
        replaceDifference(value);
}

void BindablePlaceholderTextField::replaceDifference(const QString &text)
{
    const QScopedValueRollback loading(m_loading, true);
    const QString after = RawText::encoded(text);
    const QString &before = m_raw->raw();
    const qsizetype shorter = std::min(before.size(), after.size());
    qsizetype prefix = std::mismatch(before.begin(), before.begin() + shorter, after.begin()).first
                       - before.begin();
    if (prefix > 0 && before.at(prefix - 1).isHighSurrogate())
        --prefix;
    const auto tail = before.rbegin() + (shorter - prefix);
    qsizetype suffix = std::mismatch(before.rbegin(), tail, after.rbegin()).first - before.rbegin();
    if (suffix > 0 && before.at(before.size() - suffix).isLowSurrogate())
        --suffix;
    QTextCursor cursor(document());
    cursor.setPosition(int(prefix));
    cursor.setPosition(int(before.size() - suffix), QTextCursor::KeepAnchor);
    cursor.insertText(after.mid(prefix, after.size() - prefix - suffix));
}

bool BindablePlaceholderTextField::isComposing() const
{
    const QTextLayout *layout = textCursor().block().layout();
    return layout && !layout->preeditAreaText().isEmpty();
}

void BindablePlaceholderTextField::setTableView(QAbstractItemView *tableView)
{
    m_tableView = tableView;
}

QAbstractItemView *BindablePlaceholderTextField::tableView() const
{
    return m_tableView;
}

void BindablePlaceholderTextField::setNextField(QWidget *field)
{
    m_nextField = field;
}

void BindablePlaceholderTextField::setPreviousField(QWidget *field)
{
    m_previousField = field;
}

QWidget *BindablePlaceholderTextField::nextKeyView() const
{
    return m_nextField;
}

QWidget *BindablePlaceholderTextField::previousKeyView() const
{
    return m_previousField;
}

void BindablePlaceholderTextField::applyTheme()
{
    const QColor color = theme::secondaryText(palette(), QPalette::Base);
    if (palette().color(QPalette::PlaceholderText) == color)
        return;
    QPalette dimmed = palette();
    dimmed.setColor(QPalette::PlaceholderText, color);
    setPalette(dimmed);
}

bool BindablePlaceholderTextField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride
        && isUndoOrRedo(*static_cast<QKeyEvent *>(event))) {
        event->ignore();
        return false;
    }
    return QPlainTextEdit::event(event);
}

void BindablePlaceholderTextField::focusInEvent(QFocusEvent *event)
{
    QPlainTextEdit::focusInEvent(event);
    if (!isTemporaryFocusChange(event->reason()))
        becomeFirstResponder(event->reason());
}

void BindablePlaceholderTextField::becomeFirstResponder(Qt::FocusReason reason)
{
    if (m_tableView && m_tableView->model())
        m_tableView->scrollTo(m_tableView->model()->index(m_rowIndex, 0));
    // A click decides itself where the insertion point goes; scrolling to the end would mislead it.
    if (reason != Qt::MouseFocusReason)
        moveCursor(QTextCursor::End);
}

bool BindablePlaceholderTextField::focusNextPrevChild(bool next)
{
    QWidget *neighbour = next ? nextKeyView() : previousKeyView();
    if (!neighbour)
        return QPlainTextEdit::focusNextPrevChild(next);
    neighbour->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void BindablePlaceholderTextField::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && (event->modifiers() & ~Qt::KeypadModifier) == Qt::ShiftModifier) {
        // By default this would be a line separator (U+2028); a line break is one character here.
        QKeyEvent plain(event->type(), event->key(), Qt::NoModifier, event->text(),
                        event->isAutoRepeat());
        QPlainTextEdit::keyPressEvent(&plain);
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void BindablePlaceholderTextField::inputMethodEvent(QInputMethodEvent *event)
{
    const bool endsComposition = event->preeditString().isEmpty()
                                 || !event->commitString().isEmpty();
    if (m_changedWhileComposing && endsComposition) {
        // First what came from elsewhere, then what was composed, at the same place.
        QInputMethodEvent nothing;
        QPlainTextEdit::inputMethodEvent(&nothing);
        m_changedWhileComposing = false;
        loadFromObject();
    }
    QPlainTextEdit::inputMethodEvent(event);
}

void BindablePlaceholderTextField::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = createStandardContextMenu(event->pos());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // Undo and Redo are the window's; the field's own would never do anything.
    for (QAction *action : menu->actions()) {
        if (action->objectName() == "edit-undo"_L1 || action->objectName() == "edit-redo"_L1)
            menu->removeAction(action);
    }
    if (!menu->isEmpty() && menu->actions().constFirst()->isSeparator())
        menu->removeAction(menu->actions().constFirst());
    menu->popup(event->globalPos());
}

void BindablePlaceholderTextField::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyTheme();
}

QMimeData *BindablePlaceholderTextField::createMimeDataFromSelection() const
{
    QString raw = textCursor().selectedText();
    raw.replace(QChar::ParagraphSeparator, u'\n');
    auto *mimeData = new QMimeData;
    mimeData->setText(RawText::decoded(raw));
    return mimeData;
}

void BindablePlaceholderTextField::insertFromMimeData(const QMimeData *source)
{
    if (isReadOnly() || !source->hasText())
        return;
    // Line ends of other systems are line ends; all else comes in as it is.
    QString text = source->text();
    text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
    textCursor().insertText(RawText::encoded(text));
    ensureCursorVisible();
}

} // namespace tembra
