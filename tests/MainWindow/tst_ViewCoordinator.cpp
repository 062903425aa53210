#include "TwoPanes.h"

#include <QRegularExpression>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_ViewCoordinator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void syncIsNotSuspendedAtTheStart()
    {
        const ViewCoordinator coordinator;
        QVERIFY(!coordinator.suspendSync);
    }

    void wakingUpLeavesALineInTheLog()
    {
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(u"awake from nib$"_s));
        ViewCoordinator coordinator;
        coordinator.awakeFromNib();
    }

    void itDoesNotKeepWhatItRefersTo()
    {
        JournalFixture journal;
        auto panes = std::make_unique<TwoPanes>(journal);
        ViewCoordinator other;
        other.counterpartsArrayController = panes->coordinator.counterpartsArrayController;
        other.detailPaneViewController = panes->detail;
        other.masterViewController = panes->list;
        QVERIFY(other.counterpartsArrayController);
        panes.reset();
        QVERIFY(!other.counterpartsArrayController);
        QVERIFY(!other.detailPaneViewController);
        QVERIFY(!other.masterViewController);
    }

    void whileSuspendedTheMeetingsStayWithTheTeammateBefore()
    {
        JournalFixture journal;
        journal.addCounterpart(u"Ana"_s);
        journal.addCounterpart(u"Ben"_s);
        TwoPanes panes(journal);
        panes.show();
        panes.clickRow(0);
        panes.coordinator.suspendSync = true;
        panes.clickRow(1);
        QCOMPARE(panes.selectedName(), u"Ana"_s);
    }

    void theMeetingPaneLeavesTheSyncOn()
    {
        JournalFixture journal;
        const auto ana = journal.addCounterpart(u"Ana"_s);
        const auto ben = journal.addCounterpart(u"Ben"_s);
        journal.addSessionDaysAgo(ana, 9);
        journal.addSessionDaysAgo(ben, 5);
        TwoPanes panes(journal);
        panes.show();
        panes.clickRow(0);
        QCOMPARE(panes.selectedName(), u"Ana"_s);
        // A meeting of today moves the teammate to the end; the selection goes along.
        panes.detail->addSession();
        QTRY_COMPARE(panes.names(), (QStringList{u"Ben"_s, u"Ana"_s}));
        QCOMPARE(panes.selectedName(), u"Ana"_s);
        QCOMPARE(panes.controller().selectionIndexes(), QList<int>{1});
        QVERIFY(!panes.coordinator.suspendSync);
        panes.clickRow(0);
        QCOMPARE(panes.selectedName(), u"Ben"_s);
    }
};

QTEST_MAIN(tst_ViewCoordinator)
#include "tst_ViewCoordinator.moc"
