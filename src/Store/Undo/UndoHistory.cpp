#include "Store/Undo/UndoHistory.h"

#include "Foundation/Time/Clock.h"
#include "Store/Rows/RecordArchive.h"

#include <numeric>

namespace tembra {

namespace {

size_t byteSizeOf(const RecordedChange &change)
{
    size_t size = sizeof change;
    if (const auto *edit = std::get_if<ValueEdit>(&change)) {
        if (const auto *text = std::get_if<QString>(&edit->before))
            size += size_t(text->size()) * sizeof(QChar);
    } else if (const auto *inserted = std::get_if<InsertedRecords>(&change)) {
        size += inserted->ids.size() * sizeof(ObjectID);
    } else if (const auto *deleted = std::get_if<DeletedRecords>(&change)) {
        size += deleted->archive->byteSize();
    }
    return size;
}

bool isText(const Value &value)
{
    return isMissing(value) || std::holds_alternative<QString>(value);
}

QString textOf(const Value &value)
{
    const auto *text = std::get_if<QString>(&value);
    return text ? *text : QString();
}

} // namespace

size_t UndoStep::byteSize() const
{
    return std::accumulate(changes.begin(), changes.end(), sizeof *this,
                           [](size_t sum, const RecordedChange &change) {
                               return sum + byteSizeOf(change);
                           });
}

UndoHistory::UndoHistory(const Clock &clock) : m_clock(clock) {}

void UndoHistory::recordInserted(std::vector<ObjectID> ids)
{
    if (ids.empty() || m_suspensions > 0)
        return;
    m_insertedInOpen.reserve(m_insertedInOpen.size() + qsizetype(ids.size()));
    for (const ObjectID id : ids)
        m_insertedInOpen.insert(id);
    auto *last = m_open.changes.empty() ? nullptr
                                        : std::get_if<InsertedRecords>(&m_open.changes.back());
    if (last)
        last->ids.insert(last->ids.end(), ids.begin(), ids.end());
    else
        recordOther(InsertedRecords{std::move(ids)});
}

void UndoHistory::recordValue(ObjectID id, int property, const Value &before, const Value &after)
{
    if (m_insertedInOpen.contains(id) || m_suspensions > 0)
        return;
    if (!isText(before) || !isText(after) || m_depth > 0) {
        recordOther(ValueEdit{id, property, before});
        return;
    }
    const bool continues = m_typing.extend(id, property, textOf(before), textOf(after),
                                           m_clock.now());
    if (m_open.changes.empty()) {
        m_openContinuesTyping = continues;
        m_open.changes.push_back(ValueEdit{id, property, before});
        return;
    }
    m_openContinuesTyping = m_openContinuesTyping && continues;
    const auto *last = std::get_if<ValueEdit>(&m_open.changes.back());
    if (!last || last->id != id || last->property != property)
        m_open.changes.push_back(ValueEdit{id, property, before});
}

void UndoHistory::recordLink(ObjectID owner, int property, ObjectID other, bool added)
{
    if (m_suspensions == 0 && !m_insertedInOpen.contains(owner)
        && !m_insertedInOpen.contains(other))
        recordOther(LinkEdit{owner, property, other, added});
}

void UndoHistory::recordDeleted(std::shared_ptr<const RecordArchive> archive)
{
    if (m_suspensions == 0 && !archive->isEmpty())
        recordOther(DeletedRecords{std::move(archive)});
}

void UndoHistory::recordOther(RecordedChange change)
{
    m_typing.end();
    m_open.changes.push_back(std::move(change));
}

void UndoHistory::beginGroup()
{
    if (m_depth == 0)
        closeStep();
    ++m_depth;
}

void UndoHistory::endGroup()
{
    if (m_depth > 0 && --m_depth == 0)
        closeStep();
}

bool UndoHistory::continuesTyping() const
{
    return m_openContinuesTyping && m_newestIsTyping && m_open.changes.size() == 1
           && !m_undo.empty();
}

bool UndoHistory::closeStep()
{
    if (m_open.changes.empty())
        return false;
    m_redo.clear();
    const bool continues = continuesTyping();
    UndoStep step = takeOpen();
    if (!continues) {
        const bool oneEdit = step.changes.size() == 1
                             && std::holds_alternative<ValueEdit>(step.changes.front());
        pushUndo(std::move(step));
        m_newestIsTyping = oneEdit;
    }
    return true;
}

UndoStep UndoHistory::takeOpen()
{
    m_insertedInOpen.clear();
    m_openContinuesTyping = false;
    return std::exchange(m_open, {});
}

std::optional<UndoStep> UndoHistory::take(Stack &stack)
{
    m_typing.end();
    m_newestIsTyping = false;
    if (stack.empty())
        return std::nullopt;
    UndoStep step = std::move(stack.back());
    stack.pop_back();
    return step;
}

void UndoHistory::push(Stack &stack, UndoStep step)
{
    if (step.changes.empty())
        return;
    stack.push_back(std::move(step));
    size_t bytes = 0;
    for (const UndoStep &kept : stack)
        bytes += kept.byteSize();
    while (stack.size() > maximumSteps || (bytes > maximumBytes && stack.size() > 1)) {
        bytes -= stack.front().byteSize();
        stack.pop_front();
    }
}

} // namespace tembra
