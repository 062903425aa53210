#pragma once

#include "JournalContents.h"

#include <QByteArray>
#include <QList>
#include <QSet>

#include <vector>

namespace tembra {

/// What a JournalWriter said until it was killed, and what the journal may say after that.
class WriterLog
{
public:
    /// @p before is the journal the writer began with. A last line that was cut short is left out.
    WriterLog(JournalContents before, const QByteArray &log);

    /// Compares with the journal found after a kill at @p killTime (nanoseconds of the steady clock):
    /// each record must read as at some moment between the last one that may not be lost (the last
    /// confirmed save, or all that was done more than two seconds before) and the kill. Returns what
    /// is wrong, one line each.
    QByteArrayList differences(const JournalContents &after, qint64 killTime) const;

    bool hasConfirmedSave() const { return m_savedSteps > 0; }
    /// Whether something happened after the last save and more than two seconds before the kill.
    bool hasOldDrafts(qint64 killTime) const { return stepsThatMustLast(killTime) > m_savedSteps; }

private:
    struct Step
    {
        QList<QPair<QByteArray, QByteArray>> values;
        qint64 doneAt = 0; ///< 0: cut short.
        bool isOutcomeUnknown = false;
    };

    size_t stepsThatMustLast(qint64 killTime) const;
    QSet<QByteArray> allowedValues(const QByteArray &key, size_t lastingSteps) const;

    JournalContents m_before;
    std::vector<Step> m_steps;
    size_t m_savedSteps = 0;
};

} // namespace tembra
