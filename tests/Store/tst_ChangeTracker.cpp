#include "Store/Objects/ChangeTracker.h"

#include "Store/Objects/TurnNotifier.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;

/// What is told at the end of a turn, and what at a save.
class tst_ChangeTracker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsATurnOnceAtItsEnd()
    {
        QSignalSpy willEnd(&m_turns, &TurnNotifier::turnWillEnd);
        QSignalSpy changed(&m_turns, &TurnNotifier::changed);
        m_tracker.addUpdated(record, 1);
        m_tracker.addUpdated(record, 4);
        QCOMPARE(changed.size(), 0);
        QCoreApplication::processEvents();
        QCOMPARE(willEnd.size(), 1);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.first().first().value<ChangeSet>().updated.front().properties,
                 PropertyMask(5));
        QCoreApplication::processEvents();
        QCOMPARE(willEnd.size(), 1);
    }

    void tellsEarlierOnDemand()
    {
        QSignalSpy changed(&m_turns, &TurnNotifier::changed);
        m_tracker.addUpdated(record, 1);
        m_turns.notify();
        QCOMPARE(changed.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(changed.size(), 1);
    }

    void tellsNothingOfARecordThatCameAndWent()
    {
        QSignalSpy changed(&m_turns, &TurnNotifier::changed);
        m_tracker.addInserted({record, allProperties, {}});
        m_tracker.addDeleted({record, allProperties, {}});
        QCoreApplication::processEvents();
        QCOMPARE(changed.size(), 0);
    }

    void keepsChangesUntilTheyAreSaved()
    {
        (void)m_tracker.takeSaved();
        QSignalSpy hasChanges(&m_tracker, &ChangeTracker::hasChangesChanged);
        m_tracker.addUpdated(record, 1);
        m_tracker.didEdit();
        m_tracker.didEdit();
        QCoreApplication::processEvents();
        m_tracker.addToOne(record, {2, 5, 6});
        QVERIFY(m_tracker.hasChanges());
        const ChangeSet saved = m_tracker.takeSaved();
        QCOMPARE(saved.updated.size(), size_t(1));
        QCOMPARE(saved.updated.front().properties, PropertyMask(5));
        QVERIFY(!m_tracker.hasChanges());
        QVERIFY(m_tracker.takeSaved().isEmpty());
        QCOMPARE(hasChanges.size(), 2);
        QCOMPARE(hasChanges.first().first().toBool(), true);
        QCOMPARE(hasChanges.last().first().toBool(), false);
    }

private:
    static constexpr ObjectID record{2, 7};

    TurnNotifier m_turns;
    ChangeTracker m_tracker{&m_turns};
};

QTEST_GUILESS_MAIN(tst_ChangeTracker)

#include "tst_ChangeTracker.moc"
