#include "Backup/BackupWriter.h"

#include "support/FaultFileSystem.h"
#include "support/FolderContents.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Backups that replace others.
class tst_BackupWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_fileSystem = std::make_unique<FaultFileSystem>();
    }

    void aPackageThatHoldsMoreIsKept_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::addColumn<bool>("isKept");
        const auto row = [](const char *name, const char *before, const char *after, bool isKept) {
            QTest::newRow(name) << QByteArray(before) << QByteArray(after) << isKept;
        };
        row("as many", R"([{"sessions":[{}]}])", R"([{"name":"x","sessions":[{}]}])", false);
        row("more", R"([{"sessions":[{}]}])", R"([{"sessions":[{},{}]},{}])", false);
        row("fewer teammates", R"([{},{}])", R"([{"sessions":[{}]}])", true);
        row("fewer meetings", R"([{"sessions":[{},{}]}])", R"([{"sessions":[{}]},{},{}])", true);
        row("none", "[{}]", "[]", true);
        row("no backup", "Hello", "[]", false);
    }
    void aPackageThatHoldsMoreIsKept()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        QFETCH(bool, isKept);
        write(before);
        setModified({{2026, 11, 3}, {15, 4, 5}});
        const auto written = write(after);
        QVERIFY(written);
        QCOMPARE(content(u"Mine"_s), after);
        const QString copy = u"Mine 2026-11-03 15.04.05"_s;
        QCOMPARE(*written, isKept ? copy + u".tembrabackup"_s : QString());
        QCOMPARE(listed().size(), isKept ? 2 : 1);
        QCOMPARE(content(copy), isKept ? before : QByteArray());
    }

    void theFirstBackupReplacesNothing()
    {
        QCOMPARE(*write("[]"), QString());
        QCOMPARE(listed(), QStringList(u"Mine.tembrabackup"_s));
    }

    void tenCopiesAreKeptTheNewestAndTheLargestAmongThem()
    {
        const QByteArray large = "[{\"name\":\"" + QByteArray("x").repeated(500) + "\"}]";
        for (int day = 1; day <= 14; ++day) {
            write(day == 2 ? large : QByteArray("[{}]"));
            setModified({{2026, 11, day}, {12, 0}});
            QVERIFY(write("[]"));
        }
        const QStringList copies = listed().filter(u"2026"_s);
        QCOMPARE(copies.size(), BackupWriter::mostCopies);
        QCOMPARE(copies.first(), u"Mine 2026-11-02 12.00.00.tembrabackup"_s);
        QCOMPARE(content(u"Mine 2026-11-02 12.00.00"_s), large);
        QCOMPARE(copies.at(1), u"Mine 2026-11-06 12.00.00.tembrabackup"_s);
        QCOMPARE(copies.last(), u"Mine 2026-11-14 12.00.00.tembrabackup"_s);
    }

    void otherPackagesAreNoCopies()
    {
        for (int i = 0; i < 12; ++i)
            QVERIFY(BackupDocument{"[]"}.write(path(u"Mine of 2026 %1"_s.arg(i))));
        write("[{}]");
        write("[]");
        QCOMPARE(listed().size(), 14);
    }

    void whereNoCopyCanBeMadeNothingIsReplaced()
    {
        write("[{}]");
        const auto before = snapshot(m_folder->path());
        m_fileSystem->fail({.call = FaultFileSystem::Call::Write,
                            .systemError = ENOSPC,
                            .lasting = FaultFileSystem::Lasting::ForGood});
        const auto written = write("[]");
        QVERIFY(!written);
        QVERIFY2(written.error().message.startsWith(u"The disk is full"),
                 qPrintable(written.error().message));
        QCOMPARE(snapshot(m_folder->path()), before);
    }

    void aCancelledOneReplacesNothing()
    {
        write("[{}]");
        const auto before = snapshot(m_folder->path());
        m_fileSystem = std::make_unique<FaultFileSystem>();
        std::stop_source cancellation;
        // At the last moment: everything is written and compared.
        m_fileSystem->before(FaultFileSystem::Call::Sync, 1, [&] { cancellation.request_stop(); });
        const auto written = write("[{},{}]", cancellation.get_token());
        QVERIFY(!written);
        QVERIFY2(written.error().message.contains(u"cancelled"),
                 qPrintable(written.error().message));
        QCOMPARE(snapshot(m_folder->path()), before);
    }

private:
    QString path(const QString &name) const
    {
        return m_folder->filePath(name + u".tembrabackup"_s);
    }
    Result<QString> write(const QByteArray &json, const std::stop_token &cancellation = {})
    {
        BackupWriter writer(path(u"Mine"_s), *m_fileSystem);
        writer.inspectReplaced();
        return writer.write({json}, cancellation);
    }
    void setModified(const QDateTime &modified) const
    {
        QFile file(path(u"Mine"_s) + u"/teammates.json"_s);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(modified, QFileDevice::FileModificationTime));
    }
    QStringList listed() const
    {
        return QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
    QByteArray content(const QString &name) const
    {
        return readFile(path(name) + u"/teammates.json"_s);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FaultFileSystem> m_fileSystem;
};

QTEST_GUILESS_MAIN(tst_BackupWriter)

#include "tst_BackupWriter.moc"
