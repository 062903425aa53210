#include "Backup/BackgroundTask.h"

#include "Model/JournalQueries.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "support/JournalFixture.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_BackgroundTask : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_journal = std::make_unique<JournalFixture>(); }
    void cleanup() { m_journal.reset(); }

    void worksBesideTheMainThread()
    {
        std::atomic<QThread *> worker = nullptr;
        const auto task = start([&](ManagedObjectContext &context, const auto &) {
            worker = QThread::currentThread();
            context.insert<Counterpart>()->setName(u"Ana"_s);
            return context.save();
        });
        QVERIFY(finish(*task));
        QVERIFY(task->outcome());
        QVERIFY(worker && worker != QThread::currentThread());
        // When it is told to have ended, everybody has what it saved.
        QCOMPARE(m_journal->counterparts().size(), 1);
    }

    void tellsAFailure()
    {
        const auto task = start([](ManagedObjectContext &, const auto &) -> Result<void> {
            return failure(u"It rains."_s);
        });
        QVERIFY(finish(*task));
        QCOMPARE(task->outcome().error().message, u"It rains."_s);
        QVERIFY(!task->isCancelled());
    }

    void tellsHowFarItIs()
    {
        const auto task = start(
            [](ManagedObjectContext &, const auto &progressHandler) -> Result<void> {
                for (int step = 0; step <= 1000; ++step)
                    (void)progressHandler(step / 1000.0);
                return {};
            });
        QSignalSpy progress(task.get(), &BackgroundTask::progressed);
        QVERIFY(finish(*task));
        QCOMPARE(progress.size(), 100);
        QCOMPARE(progress.last().first().toDouble(), 1.0);
    }

    void canBeCancelled()
    {
        const auto task = start([](ManagedObjectContext &context, const auto &progressHandler) {
            context.insert<Counterpart>();
            while (progressHandler(0.5))
                QThread::msleep(1);
            return Result<void>(failure(u"Cancelled."_s));
        });
        QSignalSpy finished(task.get(), &BackgroundTask::finished);
        task->cancel();
        QVERIFY(finished.wait());
        QVERIFY(task->isCancelled());
        QVERIFY(m_journal->counterparts().isEmpty());
    }

    void endsWithItsObject()
    {
        std::atomic<bool> ended = false;
        {
            const auto task = start([&](ManagedObjectContext &, const auto &progressHandler) {
                while (progressHandler(0))
                    QThread::msleep(1);
                ended = true;
                return Result<void>();
            });
        }
        QVERIFY(ended);
    }

private:
    std::unique_ptr<BackgroundTask> start(BackgroundTask::Work work)
    {
        auto started = BackgroundTask::start(m_journal->coreData().persistentContainer(),
                                             std::move(work));
        return started ? std::move(*started) : nullptr;
    }

    static bool finish(BackgroundTask &task)
    {
        QSignalSpy finished(&task, &BackgroundTask::finished);
        return finished.wait();
    }

    std::unique_ptr<JournalFixture> m_journal;
};

QTEST_GUILESS_MAIN(tst_BackgroundTask)

#include "tst_BackgroundTask.moc"
