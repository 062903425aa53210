#include "WriterLog.h"

#include "Foundation/Precondition.h"

namespace tembra {

namespace {

constexpr qint64 twoSeconds = 2'000'000'000;

} // namespace

WriterLog::WriterLog(JournalContents before, const QByteArray &log) : m_before(std::move(before))
{
    const QByteArray wholeLines = log.left(log.lastIndexOf('\n') + 1);
    Step step;
    bool isUnderWay = false;
    for (const QByteArray &line : wholeLines.split('\n')) {
        const QByteArrayList words = line.split(' ');
        if (line.isEmpty())
            continue;
        if (words.first() == "S") {
            m_savedSteps = m_steps.size();
            continue;
        }
        isUnderWay = words.first() != "D";
        if (words.first() == "U")
            step.isOutcomeUnknown = true;
        else if (words.first() == "W")
            step.values.append({words.at(1), words.at(2)});
        else
            step.doneAt = words.at(1).toLongLong();
        if (!isUnderWay)
            m_steps.push_back(std::exchange(step, {}));
    }
    if (isUnderWay)
        m_steps.push_back(step);
}

size_t WriterLog::stepsThatMustLast(qint64 killTime) const
{
    size_t lasting = m_savedSteps;
    for (size_t i = lasting; i < m_steps.size(); ++i) {
        if (m_steps[i].doneAt != 0 && m_steps[i].doneAt <= killTime - twoSeconds)
            lasting = i + 1;
    }
    return lasting;
}

QSet<QByteArray> WriterLog::allowedValues(const QByteArray &key, size_t lastingSteps) const
{
    QByteArray current = m_before.value(key, absent);
    QSet<QByteArray> everTrue{current};
    QSet<QByteArray> allowed;
    for (size_t i = 0; i < m_steps.size(); ++i) {
        if (i == lastingSteps)
            allowed.insert(current);
        for (const auto &[changed, value] : m_steps[i].values) {
            if (changed == key)
                current = value;
        }
        everTrue.insert(current);
        if (i >= lastingSteps)
            allowed.insert(current);
    }
    allowed.insert(current);
    // What was undone just before the kill reads as it once did.
    const bool isOutcomeOpen = !m_steps.empty() && m_steps.back().doneAt == 0
                               && m_steps.back().isOutcomeUnknown;
    return isOutcomeOpen ? allowed + everTrue : allowed;
}

QByteArrayList WriterLog::differences(const JournalContents &after, qint64 killTime) const
{
    const size_t lasting = stepsThatMustLast(killTime);
    const bool isOutcomeOpen = !m_steps.empty() && m_steps.back().doneAt == 0
                               && m_steps.back().isOutcomeUnknown;
    QSet<QByteArray> keys(m_before.keyBegin(), m_before.keyEnd());
    for (const Step &step : m_steps) {
        for (const auto &[key, value] : step.values)
            keys.insert(key);
    }
    QByteArrayList wrong;
    for (const QByteArray &key : std::as_const(keys)) {
        const QByteArray found = after.value(key, absent);
        const QSet<QByteArray> allowed = allowedValues(key, lasting);
        if (!allowed.contains(found) && !(isOutcomeOpen && found == absent))
            wrong.append(key + " reads " + found + ", expected one of "
                         + allowed.values().join(", "));
    }
    for (const QByteArray &key : after.keys()) {
        if (!keys.contains(key) && !isOutcomeOpen)
            wrong.append(key + " was never written, but reads " + after.value(key));
    }
    return wrong;
}

} // namespace tembra
