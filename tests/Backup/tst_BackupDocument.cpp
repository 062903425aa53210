#include "Backup/BackupDocument.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_BackupDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_package = m_folder->filePath(u"Mine.tembrabackup"_s);
    }

    void comesBackAsItWasWritten()
    {
        QVERIFY(BackupDocument{"[]"}.write(m_package));
        QVERIFY(QFileInfo(m_package).isDir());
        QCOMPARE(QDir(m_package).entryList(QDir::Files | QDir::Hidden),
                 QStringList(u"teammates.json"_s));
        const auto read = BackupDocument::read(m_package);
        QVERIFY(read);
        QCOMPARE(read->teammatesJsonData, std::optional(QByteArray("[]")));
    }

    void withoutDataAnEmptyFileIsWritten()
    {
        QVERIFY(BackupDocument().write(m_package));
        QFile file(m_package + u"/teammates.json"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.size(), 0);
        const auto read = BackupDocument::read(m_package);
        QVERIFY(read);
        QCOMPARE(read->teammatesJsonData, std::optional(QByteArray()));
    }

    void withoutTheFileThereIsNoData()
    {
        QVERIFY(QDir().mkdir(m_package));
        const auto read = BackupDocument::read(m_package);
        QVERIFY(read);
        QVERIFY(!read->teammatesJsonData);
    }

    void otherFilesAreIgnored()
    {
        QVERIFY(BackupDocument{"[]"}.write(m_package));
        QFile other(m_package + u"/other.txt"_s);
        QVERIFY(other.open(QIODevice::WriteOnly));
        other.write("x");
        other.close();
        QCOMPARE(BackupDocument::read(m_package)->teammatesJsonData.value(), "[]");
        QVERIFY(BackupDocument{"[ ]"}.write(m_package));
        QVERIFY(other.exists());
    }

    void whatIsNoPackageIsRefused()
    {
        QVERIFY(!BackupDocument::read(m_package));
        QFile file(m_package);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QVERIFY(!BackupDocument::read(m_package));
        QVERIFY(!BackupDocument{"[]"}.write(m_package));
        QCOMPARE(QFileInfo(m_package).size(), 0);
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_package;
};

QTEST_GUILESS_MAIN(tst_BackupDocument)

#include "tst_BackupDocument.moc"
