#include "StoreFixture.h"

#include "Store/File/Checkpointer.h"
#include "Store/File/SchemaMigrator.h"

#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {
constexpr Checkpointer::Limits limits = {200, 20000};
}

class tst_Checkpointer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<StoreFolder>();
        QDir().mkpath(m_folder->directory);
        QVERIFY(createStore(m_folder->file(), itemModel(1), {}));
        m_connection = std::move(*Connection::open(m_folder->file(), Connection::Mode::ReadWrite));
        m_isAlone = true;
        m_checkpointer = std::make_unique<Checkpointer>(
            *m_connection, [this] { return m_isAlone; }, limits);
    }
    void cleanup()
    {
        m_checkpointer.reset();
        m_connection.reset();
    }

    void emptiesALongLogWhenIdle();
    void leavesAShortLog();
    void waitsWhileEditsGoOn();
    void waitsWhileTheUserTypes();
    void waitsForOtherConnections();
    void failsQuietlyAndTriesAgain();

private:
    qint64 logSize() const { return QFileInfo(m_folder->beside("-wal")).size(); }
    bool addLongItem()
    {
        return addItem(*m_connection, ++m_key, QString(30000, u'x'), Transaction::Durability::Draft)
            .has_value();
    }

    std::unique_ptr<StoreFolder> m_folder;
    std::unique_ptr<Connection> m_connection;
    std::unique_ptr<Checkpointer> m_checkpointer;
    bool m_isAlone = true;
    qint64 m_key = 0;
};

void tst_Checkpointer::emptiesALongLogWhenIdle()
{
    const qint64 fileSize = QFileInfo(m_folder->file()).size();
    QVERIFY(addLongItem());
    QVERIFY(logSize() > limits.logBytes);
    QTRY_COMPARE(logSize(), 0);
    QVERIFY(QFileInfo(m_folder->file()).size() > fileSize);
}

void tst_Checkpointer::leavesAShortLog()
{
    QVERIFY(addItem(*m_connection, 1, u"short"_s, Transaction::Durability::Draft));
    const qint64 size = logSize();
    QTest::qWait(3 * limits.idleMilliseconds);
    QCOMPARE(logSize(), size);
    QVERIFY(size > 0);
}

void tst_Checkpointer::waitsWhileEditsGoOn()
{
    for (int edit = 0; edit < 8; ++edit) {
        QVERIFY(addLongItem());
        QTest::qWait(limits.idleMilliseconds / 3);
        QVERIFY(logSize() > 0);
    }
    QTRY_COMPARE(logSize(), 0);
}

void tst_Checkpointer::waitsWhileTheUserTypes()
{
    QVERIFY(addLongItem());
    QObject field;
    for (int key = 0; key < 8; ++key) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
        QCoreApplication::sendEvent(&field, &press);
        QTest::qWait(limits.idleMilliseconds / 3);
        QVERIFY(logSize() > 0);
    }
    QTRY_COMPARE(logSize(), 0);
}

void tst_Checkpointer::waitsForOtherConnections()
{
    m_isAlone = false;
    QVERIFY(addLongItem());
    QTest::qWait(3 * limits.idleMilliseconds);
    QVERIFY(logSize() > 0);
    m_isAlone = true;
    m_checkpointer->logMayHaveGrown();
    QTRY_COMPARE(logSize(), 0);
}

void tst_Checkpointer::failsQuietlyAndTriesAgain()
{
    auto reader = std::move(*Connection::open(m_folder->file(), Connection::Mode::ReadWrite));
    Statement *cursor = *reader->prepare("SELECT * FROM store_meta");
    QVERIFY(*cursor->step());
    QVERIFY(addLongItem());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"could not be copied into the store"_s));
    QTest::qWait(3 * limits.idleMilliseconds);
    QVERIFY(logSize() > 0);
    reader.reset();
    QVERIFY(addLongItem());
    QTRY_COMPARE(logSize(), 0);
}

QTEST_GUILESS_MAIN(tst_Checkpointer)
#include "tst_Checkpointer.moc"
