#include "Preferences/InputControls/RowNameEditor.h"

#include "Toolkit/Emoji/EmojiText.h"

#include <QAbstractItemDelegate>
#include <QAbstractItemModel>
#include <QAbstractItemView>
#include <QInputMethodEvent>
#include <QRegularExpression>
#include <QValidator>

#include <chrono>

namespace tembra {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// The store writes a draft within another second.
constexpr auto commitDelay = 500ms;

/// Turns line breaks and tabs into blanks, however they come in.
class OneLineValidator final : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString &text, int &) const override
    {
        static const QRegularExpression breaks(
            u"\\r\\n|[\\t\\n\\v\\f\\r\\x{85}\\x{2028}\\x{2029}]"_s);
        text.replace(breaks, u" "_s);
        return Acceptable;
    }
};

} // namespace

RowNameEditor::RowNameEditor(QAbstractItemDelegate *delegate, QWidget *parent)
    : QLineEdit(parent)
    , m_delegate(delegate)
{
    setObjectName(u"nameEditor"_s);
    setValidator(new OneLineValidator(this));
    setFont(emojiSafeFont(font()));
    m_commitTimer.setSingleShot(true);
    m_commitTimer.setInterval(commitDelay);
    connect(&m_commitTimer, &QTimer::timeout, this, &RowNameEditor::commit);
    connect(this, &QLineEdit::textEdited, this, &RowNameEditor::scheduleCommit);
}

void RowNameEditor::setName(const QString &name)
{
    if (!m_hasName)
        m_nameBefore = name;
    else if (name == text() || isUncommitted() || m_isComposing)
        return;
    m_hasName = true;
    setText(name);
    m_committed = text();
}

void RowNameEditor::writeTo(QAbstractItemModel *model, const QModelIndex &index)
{
    if (!isUncommitted())
        return;
    m_committed = text();
    model->setData(index, text());
}

void RowNameEditor::commit()
{
    if (!m_isComposing && isUncommitted())
        Q_EMIT m_delegate->commitData(this);
}

void RowNameEditor::revert()
{
    m_commitTimer.stop();
    setText(m_nameBefore);
    if (isUncommitted())
        Q_EMIT m_delegate->commitData(this);
}

bool RowNameEditor::handleEvent(QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Escape:
        revert();
        return false;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        Q_EMIT m_delegate->commitData(this);
        Q_EMIT m_delegate->closeEditor(this, QAbstractItemDelegate::NoHint);
        return true;
    default:
        return false;
    }
}

void RowNameEditor::inputMethodEvent(QInputMethodEvent *event)
{
    m_isComposing = !event->preeditString().isEmpty();
    QLineEdit::inputMethodEvent(event);
    // What was typed before a composition that came to nothing has waited for it.
    if (!m_isComposing && isUncommitted())
        scheduleCommit();
}

void RowNameEditor::scheduleCommit()
{
    if (!m_commitTimer.isActive())
        m_commitTimer.start();
}

void editInPlace(QAbstractItemView &view, const QModelIndex &index)
{
    if (!index.isValid() || view.isPersistentEditorOpen(index))
        return;
    view.scrollTo(index);
    // Takes the keyboard from another editor, which so commits.
    view.setFocus();
    view.edit(index);
}

} // namespace tembra
