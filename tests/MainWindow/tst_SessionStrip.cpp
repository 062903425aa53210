#include "MainWindow/Detail/SessionTimelineModel.h"
#include "MainWindow/Detail/SummaryCollectionView.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyledItemDelegate>
#include <QTest>
#include <QWheelEvent>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The strip of tiles over the live meetings of a teammate.
class tst_SessionStrip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_counterpart = m_journal->addCounterpart(u"Ana"_s);
    }

    void cleanup()
    {
        m_strip.reset();
        m_model.reset();
        m_results.reset();
        m_sessions.clear();
        m_counterpart.reset();
        m_journal.reset();
    }

    void tilesHaveTheirSizeGapAndInsets()
    {
        show(40);
        QCOMPARE(tile(0).size(), QSize(46, 124));
        QCOMPARE(tile(1).left() - tile(0).right() - 1, 4);
        QCOMPARE(m_strip->viewport()->mapTo(m_strip.get(), tile(0).topLeft()).x(), 8);
        QTest::keyClick(m_strip.get(), Qt::Key_End);
        const QPoint right = m_strip->viewport()->mapTo(m_strip.get(), tile(39).topRight());
        m_strip->horizontalScrollBar()->setValue(m_strip->horizontalScrollBar()->maximum());
        QCOMPARE(m_strip->width() - right.x() - 1, 8);
        QCOMPARE(tile(0).top(), tile(39).top());
    }

    void theNewestIsLeftmost()
    {
        show(3);
        QVERIFY(tile(0).left() < tile(1).left());
        QCOMPARE(m_model->sessionAt(0), m_sessions.at(0));
        QVERIFY(*m_model->sessionAt(0)->date() > *m_model->sessionAt(2)->date());
    }

    void rightToLeftTheNewestIsRightmost()
    {
        show(3, Qt::RightToLeft);
        QVERIFY(tile(0).left() > tile(1).left());
        const QPoint right = m_strip->viewport()->mapTo(m_strip.get(), tile(0).topRight());
        QCOMPARE(m_strip->width() - right.x() - 1, 8);
    }

    void keysMoveTheSelection_data()
    {
        QTest::addColumn<int>("direction");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("expected");
        const int leftToRight = Qt::LeftToRight;
        const int rightToLeft = Qt::RightToLeft;
        QTest::newRow("right is older") << leftToRight << int(Qt::Key_Right) << 11;
        QTest::newRow("left is newer") << leftToRight << int(Qt::Key_Left) << 9;
        QTest::newRow("right to left: right is newer") << rightToLeft << int(Qt::Key_Right) << 9;
        QTest::newRow("right to left: left is older") << rightToLeft << int(Qt::Key_Left) << 11;
        QTest::newRow("home is the newest") << leftToRight << int(Qt::Key_Home) << 0;
        QTest::newRow("end is the oldest") << leftToRight << int(Qt::Key_End) << 99;
        // 600 wide: 11 whole tiles, of which one stays in view.
        QTest::newRow("a page on") << leftToRight << int(Qt::Key_PageDown) << 20;
        QTest::newRow("a page back") << leftToRight << int(Qt::Key_PageUp) << 0;
        QTest::newRow("up does nothing") << leftToRight << int(Qt::Key_Up) << 10;
    }

    void keysMoveTheSelection()
    {
        QFETCH(int, direction);
        QFETCH(int, key);
        QFETCH(int, expected);
        show(100, Qt::LayoutDirection(direction));
        m_strip->selectAndShow(10);
        QTest::keyClick(m_strip.get(), Qt::Key(key));
        QCOMPARE(m_strip->selectedRow(), expected);
        QVERIFY(m_strip->viewport()->rect().contains(tile(expected)));
    }

    void aClickSelectsAndTells()
    {
        show(5);
        const QSignalSpy told(m_strip.get(), &SummaryCollectionView::selectedRowChanged);
        click(3);
        QCOMPARE(m_strip->selectedRow(), 3);
        QCOMPARE(told.count(), 1);
        QCOMPARE(told.first().first().toInt(), 3);
    }

    void takingTheSelectionAwayTells()
    {
        show(5);
        m_strip->selectAndShow(2);
        const QSignalSpy told(m_strip.get(), &SummaryCollectionView::selectedRowChanged);
        QTest::mouseClick(m_strip->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          tile(2).center());
        QCOMPARE(m_strip->selectedRow(), -1);
        QCOMPARE(told.count(), 1);
        QCOMPARE(told.first().first().toInt(), -1);
    }

    void selectingByProgramDoesNotTell()
    {
        show(100);
        const QSignalSpy told(m_strip.get(), &SummaryCollectionView::selectedRowChanged);
        m_strip->selectAndShow(80);
        QCOMPARE(m_strip->selectedRow(), 80);
        QVERIFY(m_strip->viewport()->rect().contains(tile(80)));
        m_strip->selectAndShow(2);
        QCOMPARE(m_strip->selectionModel()->selectedIndexes().size(), 1);
        m_strip->deselectAll();
        QCOMPARE(m_strip->selectedRow(), -1);
        QCOMPARE(told.count(), 0);
    }

    void commands_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("deletions");
        QTest::addColumn<int>("edits");
        QTest::newRow("delete") << int(Qt::Key_Delete) << 1 << 0;
        QTest::newRow("backspace") << int(Qt::Key_Backspace) << 1 << 0;
        QTest::newRow("return") << int(Qt::Key_Return) << 0 << 1;
        QTest::newRow("enter") << int(Qt::Key_Enter) << 0 << 1;
        QTest::newRow("a letter") << int(Qt::Key_A) << 0 << 0;
    }

    void commands()
    {
        QFETCH(int, key);
        QFETCH(int, deletions);
        QFETCH(int, edits);
        show(3);
        m_strip->selectAndShow(0);
        const QSignalSpy deleteRequests(m_strip.get(), &SummaryCollectionView::deleteRequested);
        const QSignalSpy editRequests(m_strip.get(), &SummaryCollectionView::editRequested);
        QTest::keyClick(m_strip.get(), Qt::Key(key));
        QCOMPARE(deleteRequests.count(), deletions);
        QCOMPARE(editRequests.count(), edits);
    }

    void theTilesMenuDeletes()
    {
        show(3);
        QCOMPARE(m_strip->contextMenuPolicy(), Qt::ActionsContextMenu);
        const QSignalSpy deleteRequests(m_strip.get(), &SummaryCollectionView::deleteRequested);
        m_strip->actions().first()->trigger();
        QCOMPARE(deleteRequests.count(), 1);
    }

    void theWheelScrollsSideways()
    {
        show(100);
        const QPoint middle = m_strip->viewport()->rect().center();
        QWheelEvent wheel(middle, m_strip->viewport()->mapToGlobal(middle), {}, {0, -240},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_strip->viewport(), &wheel);
        QVERIFY(m_strip->horizontalScrollBar()->value() > 0);
    }

    void tilesSpeakInWords()
    {
        const auto session = m_journal->addSession(m_counterpart, utc(2026, 3, 7));
        session->setPersonalSentiment(1);
        session->setMeetingSentiment(2);
        session->setCounterpartSentiment(42);
        show(0);
        const QModelIndex first = m_model->index(0);
        QCOMPARE(first.data(Qt::AccessibleTextRole).toString(),
                 u"Mar 7, 2026, Me: Satisfied, Meeting: Passionate"_s);
        QCOMPARE(first.data(Qt::ToolTipRole).toString(),
                 u"Mar 7, 2026\nMe: Satisfied\nMeeting: Passionate"_s);
        session->setDate({});
        QVERIFY(first.data(Qt::ToolTipRole).toString().startsWith(u"No date\n"_s));
    }

    void rowsFollowTheStore()
    {
        show(6);
        const QAbstractItemModelTester tester(
            m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        const auto added = m_journal->addSessionDaysAgo(m_counterpart, 2.5);
        m_journal->context().processPendingChanges();
        QCOMPARE(m_model->rowCount(), 7);
        QCOMPARE(m_model->sessionAt(3), added);

        added->setDate(m_journal->clock.now().adding(1));
        m_journal->context().processPendingChanges();
        QCOMPARE(m_model->sessionAt(0), added);
        added->setDate(m_journal->clock.now().adding(-100 * secondsPerDay));
        m_journal->context().processPendingChanges();
        QCOMPARE(m_model->sessionAt(6), added);
        added->setDate({});
        m_journal->context().processPendingChanges();
        QCOMPARE(m_model->sessionAt(6), added);

        QVERIFY(
            m_journal->context().deleteObjects({m_sessions.at(0), m_sessions.at(3)}).has_value());
        m_journal->context().processPendingChanges();
        QCOMPARE(shown(),
                 (QList<std::shared_ptr<Session>>{m_sessions.at(1), m_sessions.at(2),
                                                  m_sessions.at(4), m_sessions.at(5), added}));
    }

    void severalChangesInOneTurn()
    {
        show(8);
        const QAbstractItemModelTester tester(
            m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        const auto now = m_journal->clock.now();
        m_sessions.at(6)->setDate(now.adding(10));
        m_sessions.at(1)->setDate(now.adding(-50 * secondsPerDay));
        QVERIFY(m_journal->context().deleteObject(m_sessions.at(3)).has_value());
        const auto added = m_journal->addSession(m_counterpart, now.adding(5));
        m_journal->context().processPendingChanges();
        QCOMPARE(shown(), (QList<std::shared_ptr<Session>>{m_sessions.at(6), added,
                                                           m_sessions.at(0), m_sessions.at(2),
                                                           m_sessions.at(4), m_sessions.at(5),
                                                           m_sessions.at(7), m_sessions.at(1)}));
    }

    void aChangedRatingRepaintsItsTile()
    {
        show(6);
        const QSignalSpy repainted(m_model.get(), &QAbstractItemModel::dataChanged);
        m_sessions.at(2)->setMeetingSentiment(3);
        m_journal->context().processPendingChanges();
        QCOMPARE(repainted.count(), 1);
        QCOMPARE(repainted.first().first().toModelIndex().row(), 2);
    }

    void aFloodOfChangesComesAtOnceAndKeepsTheSelection()
    {
        show(5);
        const QAbstractItemModelTester tester(
            m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QPersistentModelIndex selected = m_model->index(2);
        const std::shared_ptr<Session> session = m_model->sessionAt(2);
        const QSignalSpy rearranged(m_model.get(), &QAbstractItemModel::layoutChanged);
        for (int count = 0; count < 600; ++count)
            m_journal->addSessionDaysAgo(m_counterpart, 0.001 * count);
        m_journal->context().processPendingChanges();
        QCOMPARE(rearranged.count(), 1);
        QCOMPARE(m_model->rowCount(), 605);
        QCOMPARE(m_model->sessionAt(selected.row()), session);
    }

    void withoutResultsThereAreNoTiles()
    {
        show(5);
        m_model->setResultsController(nullptr);
        QCOMPARE(m_model->rowCount(), 0);
        m_journal->addSessionDaysAgo(m_counterpart, 0);
        m_journal->context().processPendingChanges();
        QCOMPARE(m_model->rowCount(), 0);
    }

    /// What is not on the screen costs nothing: painting asks for the visible meetings only.
    void onlyVisibleTilesAreLookedAt()
    {
        show(1000);
        m_sessions.clear();
        m_journal->settle();
        QSet<int> asked;
        m_strip->setItemDelegate(new RecordingDelegate(asked, m_strip.get()));
        m_strip->horizontalScrollBar()->setValue(20000);
        m_strip->viewport()->repaint();
        QVERIFY(!asked.isEmpty());
        QVERIFY2(asked.size() <= 14, qPrintable(QString::number(asked.size())));
    }

private:
    class RecordingDelegate final : public QStyledItemDelegate
    {
    public:
        RecordingDelegate(QSet<int> &asked, QObject *parent)
            : QStyledItemDelegate(parent)
            , m_asked(asked)
        {
        }
        void paint(QPainter *, const QStyleOptionViewItem &,
                   const QModelIndex &index) const override
        {
            m_asked.insert(index.row());
        }
        QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
        {
            return SummaryCollectionView::itemSize;
        }

    private:
        QSet<int> &m_asked;
    };

    /// A strip 600 wide with that many meetings, a day apart, the newest now.
    void show(int count, Qt::LayoutDirection direction = Qt::LeftToRight)
    {
        for (int day = 0; day < count; ++day)
            m_sessions.append(m_journal->addSessionDaysAgo(m_counterpart, day));
        m_journal->settle();
        m_results = m_counterpart->sessionsResultController();
        QVERIFY(m_results->performFetch().has_value());
        m_model = std::make_unique<SessionTimelineModel>();
        m_model->setResultsController(m_results.get());
        m_strip = std::make_unique<SummaryCollectionView>(m_journal->dates);
        m_strip->setLayoutDirection(direction);
        m_strip->setTimeline(m_model.get());
        m_strip->resize(600, m_strip->height());
        m_strip->show();
        QVERIFY(QTest::qWaitForWindowActive(m_strip.get()));
        m_strip->setFocus();
    }

    QRect tile(int row) const { return m_strip->visualRect(m_model->index(row)); }

    void click(int row) const
    {
        QTest::mouseClick(m_strip->viewport(), Qt::LeftButton, {}, tile(row).center());
    }

    QList<std::shared_ptr<Session>> shown() const
    {
        QList<std::shared_ptr<Session>> sessions;
        for (int row = 0; row < m_model->rowCount(); ++row)
            sessions.append(m_model->sessionAt(row));
        return sessions;
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::shared_ptr<Counterpart> m_counterpart;
    QList<std::shared_ptr<Session>> m_sessions; ///< The newest first.
    std::unique_ptr<FetchedResultsController> m_results;
    std::unique_ptr<SessionTimelineModel> m_model;
    std::unique_ptr<SummaryCollectionView> m_strip;
};

QTEST_MAIN(tst_SessionStrip)
#include "tst_SessionStrip.moc"
