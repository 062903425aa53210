#include "Bindings/FetchedContent.h"

#include "Model/JournalQueries.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "Store/Undo/UndoManager.h"
#include "support/FaultVfs.h"
#include "support/JournalFixture.h"
#include "Toolkit/List/ArrayController.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// A list of the journal's teammates, who stand by name in the result.
struct TeammateList
{
    explicit TeammateList(JournalFixture &journal)
        : results(journal.context(), JournalQueries::counterparts())
        , content(results, list)
    {
        list.setColumns({"name"});
        content.fetch();
    }

    QStringList names() const
    {
        QStringList names;
        for (int row = 0; row < list.rowCount(); ++row)
            names.append(list.index(row, 0).data().toString());
        return names;
    }

    ArrayController list;
    FetchedResultsController results;
    FetchedContent content;
    QAbstractItemModelTester tester{&list, QAbstractItemModelTester::FailureReportingMode::QtTest};
};

} // namespace

class tst_FetchedContent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        for (const QString &name : {u"Chidi"_s, u"Ana"_s, u"Ben"_s})
            m_journal->addCounterpart(name);
        m_journal->settle();
        m_teammates = std::make_unique<TeammateList>(*m_journal);
        QVERIFY(!m_teammates->content.readError());
    }

    void cleanup()
    {
        m_teammates.reset();
        m_journal.reset();
    }

    void theListHoldsTheResult()
    {
        QCOMPARE(m_teammates->names(), (QStringList{u"Ana"_s, u"Ben"_s, u"Chidi"_s}));
    }

    void whatCannotBeReadIsNotAnEmptyList()
    {
        FaultVfs vfs;
        JournalFixture journal(utc(2026, 11, 20), vfs.name());
        journal.addCounterpart(u"Ana"_s);
        journal.settle();
        journal.reopen();
        vfs.failAt(1, FaultVfs::Fault::InputOutput, FaultVfs::Lasting::ForGood, FaultVfs::Read);
        TeammateList teammates(journal);
        QVERIFY(vfs.failures() > 0);
        QVERIFY(teammates.content.readError());
        QVERIFY(!teammates.content.readError()->message.isEmpty());

        const QSignalSpy changed(&teammates.content, &FetchedContent::readErrorChanged);
        teammates.content.retry();
        QVERIFY(teammates.content.readError());
        QCOMPARE(changed.size(), 0);

        vfs.failNothing();
        QTRY_COMPARE(teammates.names(), QStringList{u"Ana"_s}); // Without being asked to.
        QVERIFY(!teammates.content.readError());
        QCOMPARE(changed.size(), 1);

        journal.addCounterpart(u"Ben"_s);
        journal.context().processPendingChanges();
        QCOMPARE(teammates.names(), (QStringList{u"Ana"_s, u"Ben"_s}));
    }

    void whatIsInsertedIsAppendedAndStandsInTheResultsOrderOnceArranged()
    {
        const QSignalSpy reset(&m_teammates->list, &QAbstractItemModel::modelReset);
        const QSignalSpy changed(&m_teammates->content, &FetchedContent::contentChanged);
        m_journal->addCounterpart(u"Amy"_s);
        m_journal->context().processPendingChanges();
        QCOMPARE(m_teammates->names(), (QStringList{u"Ana"_s, u"Ben"_s, u"Chidi"_s, u"Amy"_s}));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.first().first().toBool(), true);
        m_teammates->list.rearrangeObjects();
        QCOMPARE(m_teammates->names(), (QStringList{u"Amy"_s, u"Ana"_s, u"Ben"_s, u"Chidi"_s}));
        QCOMPARE(reset.size(), 0);
    }

    void whatIsDeletedLeavesTheListAndTheSelection()
    {
        m_teammates->list.setSelectedObjects(
            {m_teammates->list.objectAt(0), m_teammates->list.objectAt(1)});
        QVERIFY(m_journal->context().deleteObject(record(0)).has_value());
        m_journal->context().processPendingChanges();
        QCOMPARE(m_teammates->names(), (QStringList{u"Ben"_s, u"Chidi"_s}));
        QCOMPARE(m_teammates->list.selectionIndexes(), QList<int>{0});
    }

    void recordsThatAnUndoBringsBackAreSelected()
    {
        const QList<ObjectID> ids{record(0)->objectID(), record(2)->objectID()};
        QVERIFY(m_journal->context().deleteObjects({record(0), record(2)}).has_value());
        m_journal->context().processPendingChanges();
        QCOMPARE(m_teammates->content.rowOf(ids.first()), -1);
        for (const ObjectID &id : ids)
            m_teammates->content.selectWhenListed(id);
        const QSignalSpy selected(&m_teammates->content, &FetchedContent::pendingRecordsSelected);
        m_journal->context().undoManager()->undo();
        m_journal->context().processPendingChanges();
        QCOMPARE(selected.size(), 1);
        QList<int> rows;
        for (const ObjectID &id : ids)
            rows.append(m_teammates->content.rowOf(id));
        QList<int> selection = m_teammates->list.selectionIndexes();
        std::sort(rows.begin(), rows.end());
        std::sort(selection.begin(), selection.end());
        QCOMPARE(selection, rows);
        QVERIFY(!rows.contains(-1));
    }

private:
    std::shared_ptr<ManagedObject> record(int row) const
    {
        return m_teammates->results.objectAt(row);
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<TeammateList> m_teammates;
};

QTEST_MAIN(tst_FetchedContent)
#include "tst_FetchedContent.moc"
