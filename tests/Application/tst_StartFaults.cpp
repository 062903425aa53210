#include "Application/AppDelegate.h"
#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "MainWindow/MainWindow.h"
#include "MainWindow/StatusLine.h"
#include "RunningProgram.h"
#include "Store/Objects/PersistentContainer.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <sqlite3.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Every file below a folder with its content; folders and links have what they are.
QMap<QString, QByteArray> snapshot(const QString &directory)
{
    QMap<QString, QByteArray> files;
    QDirIterator iterator(directory,
                          QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        const QFileInfo info(iterator.next());
        QFile file(info.filePath());
        if (info.isSymLink())
            files.insert(info.filePath(), "link to " + info.symLinkTarget().toUtf8());
        else if (info.isDir())
            files.insert(info.filePath(), "folder");
        else if (file.open(QIODevice::ReadOnly))
            files.insert(info.filePath(), file.readAll());
    }
    return files;
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

/// A good store at this place, as the program makes one.
void makeStore(const QString &directory)
{
    const auto folder = DataFolder::forOptions({.dataDirectory = directory});
    ProgramServices services(*folder);
    services.coreData.viewContext();
}

void setSchemaVersion(const QString &file, int version)
{
    sqlite3 *database = nullptr;
    QCOMPARE(sqlite3_open(QFile::encodeName(file).constData(), &database), SQLITE_OK);
    const QByteArray statement = "PRAGMA user_version=" + QByteArray::number(version);
    QCOMPARE(sqlite3_exec(database, statement.constData(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

} // namespace

class tst_StartFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStoreThatCannotBeOpened_data();
    void aStoreThatCannotBeOpened();
    void aSignalEndsTheAlert();
    void aDamagedStoreIsSetAsideOnRequest();
    void aLimitOnTheSizeOfFilesIsAFullDisk();
    void aMissingJournalIsTold_data();
    void aMissingJournalIsTold();
    void aLogOutEndsTheAlert_data();
    void aLogOutEndsTheAlert();

private:
    static void prepare(const QString &fault, const QString &directory);
};

void tst_StartFaults::prepare(const QString &fault, const QString &directory)
{
    const QString store = directory + u"/Vum.sqlite"_s;
    QDir().mkpath(directory);
    if (fault == u"folder") {
        QDir().mkpath(store);
    } else if (fault == u"link") {
        makeStore(directory + u"/elsewhere"_s);
        QVERIFY(QFile::link(directory + u"/elsewhere/Vum.sqlite"_s, store));
    } else if (fault == u"dangling link") {
        QVERIFY(QFile::link(directory + u"/nowhere"_s, store));
    } else if (fault == u"newer") {
        makeStore(directory);
        setSchemaVersion(store, 9999);
    } else if (fault == u"garbage") {
        writeFile(store, QByteArray(40'000, 'x'));
        writeFile(store + u"-wal"_s, "a log that belongs to it");
        writeFile(store + u"-shm"_s, "and its index");
    } else if (fault == u"cut short") {
        makeStore(directory);
        QVERIFY(QFile::resize(store, 5000));
    } else if (fault == u"another database") {
        writeFile(store, {});
        sqlite3 *database = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(store).constData(), &database), SQLITE_OK);
        QCOMPARE(sqlite3_exec(database, "CREATE TABLE recipes(name)", nullptr, nullptr, nullptr),
                 SQLITE_OK);
        sqlite3_close(database);
    } else {
        // The folder itself is the trouble.
        QVERIFY(QDir().rmdir(directory));
        writeFile(directory, "not a folder");
    }
}

void tst_StartFaults::aStoreThatCannotBeOpened_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("subfolder");
    for (const char *fault : {"folder", "link", "dangling link", "newer", "garbage", "cut short",
                              "another database", "a file in place of the folder"})
        QTest::newRow(fault) << QString::fromLatin1(fault) << QString();
    QTest::newRow("a folder that cannot be made") << u"file"_s << u"/below"_s;
}

void tst_StartFaults::aStoreThatCannotBeOpened()
{
    QFETCH(QString, fault);
    QFETCH(QString, subfolder);
    const FreshAccount account;
    const QString directory = account.path(u"journal"_s);
    prepare(fault, directory);
    const auto before = snapshot(account.path(QString()));

    RunningProgram program(account, {u"--data-dir"_s, QString(directory + subfolder)});
    QVERIFY(program.waitForWindow());
    RunningProgram::press({u"Return"_s});
    QCOMPARE(program.waitForEnd(), 1);
    const QString said = program.errors();
    QVERIFY2(said.contains(u"tembra: Unresolved error "), qPrintable(said));
    QVERIFY2(said.contains(directory), qPrintable(said));
    QVERIFY2(said.endsWith(u'\n'), qPrintable(said));
    QCOMPARE(snapshot(account.path(QString())), before);
}

void tst_StartFaults::aSignalEndsTheAlert()
{
    const FreshAccount account;
    prepare(u"folder"_s, account.path(u"journal"_s));
    RunningProgram program(account, {u"--data-dir"_s, account.path(u"journal"_s)});
    QVERIFY(program.waitForWindow());
    program.sendSignal(SIGTERM);
    QCOMPARE(program.waitForEnd(), 1);
}

void tst_StartFaults::aDamagedStoreIsSetAsideOnRequest()
{
    const FreshAccount account;
    const QString directory = account.path(u"journal"_s);
    prepare(u"garbage"_s, directory);
    const auto before = snapshot(directory);
    RunningProgram program(account, {u"--data-dir"_s, directory});
    QVERIFY(program.waitForWindow());
    RunningProgram::press({u"Tab"_s, u"space"_s});
    QVERIFY(program.waitForWindow());
    RunningProgram::press({u"Return"_s});
    QCOMPARE(program.waitForEnd(), 1);
    const auto after = snapshot(directory);
    QCOMPARE(after.size(), before.size());
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        QVERIFY(!after.contains(it.key()));
        QVERIFY(after.values().contains(it.value()));
    }
    for (const QString &file : after.keys())
        QVERIFY2(file.startsWith(directory + u"/Vum-set-aside-"_s), qPrintable(file));
    QVERIFY2(program.errors().contains(u"Vum-set-aside-"_s), qPrintable(program.errors()));
}

void tst_StartFaults::aLimitOnTheSizeOfFilesIsAFullDisk()
{
    const FreshAccount account;
    RunningProgram program(account,
                           {u"--fsize=20000"_s, RunningProgram::file(), u"--data-dir"_s,
                            account.path(u"journal"_s)},
                           {}, u"prlimit"_s);
    QVERIFY(program.waitForWindow());
    RunningProgram::press({u"Return"_s});
    QCOMPARE(program.waitForEnd(), 1);
    QVERIFY2(program.errors().contains(u"The disk is full"_s), qPrintable(program.errors()));
}

void tst_StartFaults::aMissingJournalIsTold_data()
{
    QTest::addColumn<bool>("hasRunBefore");
    QTest::addColumn<bool>("isEmpty");
    QTest::newRow("first start") << false << false;
    QTest::newRow("no file") << true << false;
    QTest::newRow("empty file") << false << true;
}

void tst_StartFaults::aMissingJournalIsTold()
{
    QFETCH(bool, hasRunBefore);
    QFETCH(bool, isEmpty);
    const FreshAccount account;
    const QString directory = account.path(u"journal"_s);
    QVERIFY(QDir().mkpath(directory));
    if (isEmpty)
        writeFile(directory + u"/Vum.sqlite"_s, {});
    if (hasRunBefore)
        writeFile(directory + u"/windows.ini"_s, "[window]\n");
    const auto folder = DataFolder::forOptions({.dataDirectory = directory});
    ProgramServices services(*folder);
    AppDelegate delegate(services, *folder);
    delegate.applicationDidFinishLaunching();
    const auto *line = &delegate.window()->statusLine();
    QCOMPARE(line->isVisible(), hasRunBefore || isEmpty);
    QStringList texts;
    for (const auto *label : line->findChildren<QLabel *>())
        texts.append(label->text());
    QCOMPARE(texts.join(u' ').contains(directory), hasRunBefore || isEmpty);
    const auto buttons = line->findChildren<QPushButton *>();
    const bool offersImport = std::any_of(buttons.begin(), buttons.end(), [](const auto *button) {
        return button->isVisible() && button->text().contains(u"Import"_s);
    });
    QCOMPARE(offersImport, hasRunBefore || isEmpty);
}

void tst_StartFaults::aLogOutEndsTheAlert_data()
{
    QTest::addColumn<bool>("mayAsk");
    QTest::newRow("with questions") << true;
    QTest::newRow("without questions") << false;
}

void tst_StartFaults::aLogOutEndsTheAlert()
{
    QFETCH(bool, mayAsk);
    const FreshAccount account;
    prepare(u"folder"_s, account.path(u"journal"_s));
    const auto folder = DataFolder::forOptions({.dataDirectory = account.path(u"journal"_s)});
    ProgramServices services(*folder);
    struct Stop
    {
    };
    int stops = 0;
    services.coreData.setStopProgram([&](const QString &, const PersistentContainer &) {
        ++stops;
        throw Stop();
    });
    AppDelegate delegate(services, *folder);
    QVERIFY_THROWS_EXCEPTION(Stop, delegate.applicationDidFinishLaunching());
    // The alert is up now; nobody tries to open the store once more.
    services.coreData.handleTimer();
    QVERIFY(delegate.prepareForLogout(mayAsk));
    QCOMPARE(stops, 1);
}

QTEST_MAIN(tst_StartFaults)
#include "tst_StartFaults.moc"
