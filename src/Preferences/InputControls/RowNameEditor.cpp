#include "Preferences/InputControls/RowNameEditor.h"

#include "Toolkit/Emoji/EmojiText.h"

#include <QInputMethodEvent>

#include <chrono>

namespace tembra {

using namespace std::chrono_literals;

namespace {

// The store keeps what it is given within another second.
constexpr auto handOverDelay = 500ms;

} // namespace

RowNameEditor::RowNameEditor(QWidget *parent) : QLineEdit(parent)
{
    setFont(emojiSafeFont(font()));
    m_commitTimer.setSingleShot(true);
    m_commitTimer.setInterval(handOverDelay);
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

void RowNameEditor::setCommitted()
{
    m_committed = text();
}

void RowNameEditor::commit()
{
    if (!m_isComposing && isUncommitted())
        Q_EMIT commitRequested();
}

void RowNameEditor::revert()
{
    m_commitTimer.stop();
    setText(m_nameBefore);
    if (isUncommitted())
        Q_EMIT commitRequested();
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

} // namespace tembra
