#include "StoreFixture.h"

#include "Store/File/StoreLock.h"

#include <QTest>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// A process that holds the lock until it is killed.
class HoldingProcess
{
public:
    explicit HoldingProcess(const QString &file)
    {
        int ready[2];
        if (::pipe(ready) != 0)
            return;
        m_process = ::fork();
        if (m_process == 0) {
            const auto lock = StoreLock::acquire(file);
            (void)!::write(ready[1], lock ? "y" : "n", 1);
            for (;;)
                ::pause();
        }
        char answer = 'n';
        (void)!::read(ready[0], &answer, 1);
        m_holds = answer == 'y';
        ::close(ready[0]);
        ::close(ready[1]);
    }
    ~HoldingProcess() { killNow(); }
    Q_DISABLE_COPY_MOVE(HoldingProcess)

    bool holds() const { return m_holds; }
    void killNow()
    {
        if (m_process <= 0)
            return;
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        m_process = 0;
    }

private:
    pid_t m_process = 0;
    bool m_holds = false;
};

} // namespace

class tst_StoreLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_file = m_folder->filePath(u"Vum.lock"_s);
    }

    void keepsOthersOutWhileItLives();
    void keepsASecondProcessOut();
    void endsWithItsProcess();
    void leavesAForeignFileAsItWas();
    void isNotTakenOnAnythingButAFile_data();
    void isNotTakenOnAnythingButAFile();
    void reportsAFolderThatIsNotThere();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

void tst_StoreLock::keepsOthersOutWhileItLives()
{
    {
        const auto lock = StoreLock::acquire(m_file);
        QVERIFY(lock.has_value());
        const auto second = StoreLock::acquire(m_file);
        QVERIFY(!second);
        QVERIFY(second.error().message.contains(u"Tembra is already running"_s));
        QVERIFY(second.error().message.contains(m_file));
        QVERIFY2(QFile::exists(m_file), "a vain try takes nothing away");
    }
    QVERIFY(!QFile::exists(m_file));
    QVERIFY(StoreLock::acquire(m_file).has_value());
}

void tst_StoreLock::keepsASecondProcessOut()
{
    const HoldingProcess other(m_file);
    QVERIFY(other.holds());
    QVERIFY(!StoreLock::acquire(m_file));
}

void tst_StoreLock::endsWithItsProcess()
{
    HoldingProcess other(m_file);
    QVERIFY(other.holds());
    other.killNow();
    QVERIFY2(QFile::exists(m_file), "a killed process tidies nothing");
    QVERIFY(StoreLock::acquire(m_file).has_value());
}

void tst_StoreLock::leavesAForeignFileAsItWas()
{
    writeFile(m_file, "left by a killed process");
    const auto before = snapshot(m_folder->path());
    {
        const auto lock = StoreLock::acquire(m_file);
        QVERIFY(lock.has_value());
    }
    QVERIFY(snapshot(m_folder->path()) == before);
}

void tst_StoreLock::isNotTakenOnAnythingButAFile_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("folder") << 0;
    QTest::newRow("link") << 1;
    QTest::newRow("pipe") << 2;
}

void tst_StoreLock::isNotTakenOnAnythingButAFile()
{
    QFETCH(int, kind);
    if (kind == 0)
        QVERIFY(QDir().mkdir(m_file));
    if (kind == 1)
        QVERIFY(QFile::link(m_folder->filePath(u"elsewhere"_s), m_file));
    if (kind == 2)
        QCOMPARE(::mkfifo(QFile::encodeName(m_file).constData(), 0600), 0);
    const auto before = snapshot(m_folder->path());
    QVERIFY(!StoreLock::acquire(m_file));
    QVERIFY(snapshot(m_folder->path()) == before);
}

void tst_StoreLock::reportsAFolderThatIsNotThere()
{
    const auto lock = StoreLock::acquire(m_folder->filePath(u"nowhere/Vum.lock"_s));
    QVERIFY(!lock);
    QVERIFY(!lock.error().detail.isEmpty());
}

QTEST_GUILESS_MAIN(tst_StoreLock)
#include "tst_StoreLock.moc"
