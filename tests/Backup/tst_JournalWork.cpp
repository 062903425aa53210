#include "Backup/JournalWork.h"

#include "Model/JournalQueries.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "support/JournalFixture.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_JournalWork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_journal = std::make_unique<JournalFixture>(); }
    void cleanup() { m_journal.reset(); }

    void worksBesideTheMainThread()
    {
        std::atomic<QThread *> worker = nullptr;
        const auto work = start([&](ManagedObjectContext &context, const auto &) {
            worker = QThread::currentThread();
            context.insert<Counterpart>()->setName(u"Ana"_s);
            return context.save();
        });
        QVERIFY(finish(*work));
        QVERIFY(work->outcome());
        QVERIFY(worker && worker != QThread::currentThread());
        // When it is told to have ended, everybody has what it saved.
        QCOMPARE(m_journal->counterparts().size(), 1);
    }

    void tellsAFailure()
    {
        const auto work = start([](ManagedObjectContext &, const auto &) -> Result<void> {
            return failure(u"It rains."_s);
        });
        QVERIFY(finish(*work));
        QCOMPARE(work->outcome().error().message, u"It rains."_s);
        QVERIFY(!work->isCancelled());
    }

    void tellsHowFarItIs()
    {
        const auto work = start([](ManagedObjectContext &, const auto &mayGoOn) -> Result<void> {
            for (int step = 0; step <= 1000; ++step)
                (void)mayGoOn(step / 1000.0);
            return {};
        });
        QSignalSpy progress(work.get(), &JournalWork::progressed);
        QVERIFY(finish(*work));
        QCOMPARE(progress.size(), 100);
        QCOMPARE(progress.last().first().toDouble(), 1.0);
    }

    void canBeCancelled()
    {
        const auto work = start([](ManagedObjectContext &context, const auto &mayGoOn) {
            context.insert<Counterpart>();
            while (mayGoOn(0.5))
                QThread::msleep(1);
            return Result<void>(failure(u"Cancelled."_s));
        });
        QSignalSpy finished(work.get(), &JournalWork::finished);
        work->cancel();
        QVERIFY(finished.wait());
        QVERIFY(work->isCancelled());
        QVERIFY(m_journal->counterparts().isEmpty());
    }

    void endsWithItsObject()
    {
        std::atomic<bool> ended = false;
        {
            const auto work = start([&](ManagedObjectContext &, const auto &mayGoOn) {
                while (mayGoOn(0))
                    QThread::msleep(1);
                ended = true;
                return Result<void>();
            });
        }
        QVERIFY(ended);
    }

private:
    std::unique_ptr<JournalWork> start(JournalWork::Work work)
    {
        auto started = JournalWork::start(m_journal->coreData().persistentContainer(),
                                          std::move(work));
        return started ? std::move(*started) : nullptr;
    }

    static bool finish(JournalWork &work)
    {
        QSignalSpy finished(&work, &JournalWork::finished);
        return finished.wait();
    }

    std::unique_ptr<JournalFixture> m_journal;
};

QTEST_GUILESS_MAIN(tst_JournalWork)

#include "tst_JournalWork.moc"
