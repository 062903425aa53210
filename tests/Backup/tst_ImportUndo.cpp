#include "ImportTest.h"

#include "Store/Undo/UndoManager.h"

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_ImportUndo : public ImportTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        start();
        m_completed = {};
        connect(m_import.get(), &Import::imported, this,
                [this](const CompletedImport &import) { m_completed = import; });
    }
    void cleanup() { stop(); }

    void removesExactlyWhatCameIn()
    {
        m_journal->addTag(m_journal->addSessionDaysAgo(m_journal->addCounterpart(u"Ben"_s), 1),
                          u"mine"_s, u"🎯"_s);
        m_journal->settle();
        QVERIFY(importAndWait(package(u"Mine"_s, json)));
        QCOMPARE(m_journal->counterparts().size(), 2);
        const auto ana = m_journal->counterparts().first();
        QSignalSpy deleted(ana.get(), &ManagedObject::deleted);
        QVERIFY(undoAndWait());
        QCOMPARE(m_journal->counterparts().size(), 1);
        QCOMPARE(m_journal->counterparts().first()->name(), u"Ben"_s);
        QCOMPARE(sessionCount(), 1);
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Note"}), 9);
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Tag"}), 1);
        QCOMPARE(deleted.size(), 1);
        QVERIFY(ana->isDeleted());
    }

    void asksFirst()
    {
        QVERIFY(importAndWait(package(u"Mine"_s, json)));
        m_import->undo(m_completed);
        QVERIFY(sheet());
        QCOMPARE(textOf(*sheet(), "messageText"), u"Do you want to undo this import?"_s);
        QVERIFY(textOf(*sheet(), "informativeText")
                    .startsWith(u"1 teammate and 2 meetings that came with “Mine” are removed"_s));
        QTest::keyClick(sheet(), Qt::Key_Return); // It destroys: so this cancels.
        QTRY_VERIFY(!sheet());
        QVERIFY(!m_import->isRunning());
        QCOMPARE(sessionCount(), 2);
    }

    void isNoPartOfTheOtherUndo()
    {
        QVERIFY(importAndWait(package(u"Mine"_s, json)));
        QVERIFY(!m_journal->context().undoManager()->canUndo());
        QVERIFY(undoAndWait());
        QVERIFY(!m_journal->context().undoManager()->canUndo());
    }

    void whatTheUserAddedStays()
    {
        QVERIFY(importAndWait(package(u"Mine"_s, json)));
        const auto ana = m_journal->counterparts().first();
        const auto mine = m_journal->addSessionDaysAgo(ana, 1);
        m_journal->write(mine, NoteIdentifier(0), u"my own words"_s);
        m_journal->settle();
        QVERIFY(undoAndWait());
        QVERIFY(!ana->isDeleted());
        QVERIFY(!mine->isDeleted());
        QCOMPARE(sessionCount(), 1);
        QCOMPARE(ana->mostRecentSession(), mine);
        QCOMPARE(m_journal->note(mine, NoteIdentifier(0))->contentString(), u"my own words"_s);
    }

    void stepsOnWhatIsGoneDoNothing()
    {
        QVERIFY(importAndWait(package(u"Mine"_s, json)));
        const auto ana = m_journal->counterparts().first();
        ana->setName(u"Anna"_s);
        m_journal->context().processPendingChanges();
        QVERIFY(m_journal->context().undoManager()->canUndo());
        QVERIFY(undoAndWait());
        m_journal->context().undoManager()->undo();
        QVERIFY(m_journal->counterparts().isEmpty());
        QVERIFY(m_journal->context().save());
    }

    void canBeDoneOnceMore()
    {
        const QString path = package(u"Mine"_s, json);
        for (int round = 0; round < 2; ++round) {
            QVERIFY(importAndWait(path));
            QCOMPARE(sessionCount(), 2);
            QVERIFY(undoAndWait());
            QCOMPARE(sessionCount(), 0);
        }
    }

private:
    bool undoAndWait()
    {
        QSignalSpy undone(m_import.get(), &Import::undone);
        m_import->undo(m_completed);
        if (!sheet())
            return false;
        QTest::mouseClick(sheet()->buttons().first(), Qt::LeftButton);
        return undone.wait();
    }

    const QByteArray json =
        R"([{"name":"Ana","sessions":[{"tags":[{"emoji":"🎯","name":"mine"},)"
        R"({"emoji":"🚀","name":"theirs"}],"notes":[{"identifier":0,"contentString":"x"}]},{}]}])";
    CompletedImport m_completed;
};

QTEST_MAIN(tst_ImportUndo)

#include "tst_ImportUndo.moc"
