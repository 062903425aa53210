#include "MainWindow/CounterpartNameEditor.h"

#include "MainWindow/CounterpartRowViewModel.h"
#include "Toolkit/EmojiText.h"

#include <QInputMethodEvent>

#include <chrono>

namespace tembra {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// The store keeps what it is given within another second.
constexpr auto commitDelay = 500ms;

} // namespace

CounterpartNameEditor::CounterpartNameEditor(QWidget *parent) : QLineEdit(parent)
{
    setObjectName(u"nameEditor"_s);
    setAccessibleName(tr("Name", "Accessible name of the field for a teammate's name"));
    setPlaceholderText(CounterpartRowViewModel::unnamedTitle());
    setFont(emojiSafeFont(font()));
    m_commitTimer.setSingleShot(true);
    m_commitTimer.setInterval(commitDelay);
    connect(&m_commitTimer, &QTimer::timeout, this, &CounterpartNameEditor::commit);
    connect(this, &QLineEdit::textEdited, this, &CounterpartNameEditor::scheduleCommit);
}

void CounterpartNameEditor::setName(const QString &name)
{
    if (!m_hasName)
        m_nameBefore = name;
    else if (name == text() || isUncommitted() || m_isComposing)
        return;
    m_hasName = true;
    setText(name);
    m_committed = text();
}

void CounterpartNameEditor::setCommitted()
{
    m_committed = text();
}

void CounterpartNameEditor::commit()
{
    if (!m_isComposing && isUncommitted())
        Q_EMIT commitRequested();
}

void CounterpartNameEditor::revert()
{
    m_commitTimer.stop();
    setText(m_nameBefore);
    if (isUncommitted())
        Q_EMIT commitRequested();
}

void CounterpartNameEditor::inputMethodEvent(QInputMethodEvent *event)
{
    m_isComposing = !event->preeditString().isEmpty();
    QLineEdit::inputMethodEvent(event);
    // What was typed before a composition that came to nothing has waited for it.
    if (!m_isComposing && isUncommitted())
        scheduleCommit();
}

void CounterpartNameEditor::scheduleCommit()
{
    if (!m_commitTimer.isActive())
        m_commitTimer.start();
}

} // namespace tembra
