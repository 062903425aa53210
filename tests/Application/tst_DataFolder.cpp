#include "Application/DataFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// A file's permissions; -1 when it is not there.
int modeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 07777)
                                                                     : -1;
}

} // namespace

class tst_DataFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_temporary.isValid()); }
    void init();
    void theUsualPlacesHaveTheProgramsName();
    void aGivenFolderHoldsEverything();
    void aRelativeFolderIsMadeAbsolute();
    void newFoldersAreClosedToOthers();
    void anExistingFolderStaysAsItIs();
    void aFolderThatCannotBeMadeIsLeftToTheStore();
    void theSampleHasAFolderOfItsOwnThatGoesAway();
    void theSampleFolderOfEachStartIsAnother();
    void aSampleWithoutPlaceFails();

private:
    QString path(const QString &name) const { return m_home->filePath(name); }

    QTemporaryDir m_temporary;
    std::unique_ptr<QTemporaryDir> m_home;
};

void tst_DataFolder::init()
{
    m_home = std::make_unique<QTemporaryDir>(m_temporary.filePath(u"XXXXXX"_s));
    QCoreApplication::setApplicationName(u"Tembra"_s);
    QCoreApplication::setOrganizationName({});
    qputenv("XDG_DATA_HOME", path(u"data"_s).toUtf8());
    qputenv("XDG_CONFIG_HOME", path(u"config"_s).toUtf8());
    qputenv("TMPDIR", m_home->path().toUtf8());
}

void tst_DataFolder::theUsualPlacesHaveTheProgramsName()
{
    const auto folder = DataFolder::forOptions({});
    QVERIFY(folder);
    QCOMPARE(folder->journalDirectory(), path(u"data/Tembra"_s));
    QCOMPARE(folder->settingsFile(), path(u"config/Tembra/settings.ini"_s));
    QCOMPARE(folder->windowStateFile(), path(u"config/Tembra/windows.ini"_s));
    QCOMPARE(DataFolder::usualJournalDirectory(), path(u"data/Tembra"_s));
}

void tst_DataFolder::aGivenFolderHoldsEverything()
{
    const auto folder = DataFolder::forOptions({.dataDirectory = path(u"mine"_s)});
    QVERIFY(folder);
    QCOMPARE(folder->journalDirectory(), path(u"mine"_s));
    QCOMPARE(folder->settingsFile(), path(u"mine/settings.ini"_s));
    QCOMPARE(folder->windowStateFile(), path(u"mine/windows.ini"_s));
    QVERIFY(!QFileInfo::exists(path(u"data"_s)));
    QVERIFY(!QFileInfo::exists(path(u"config"_s)));
}

void tst_DataFolder::aRelativeFolderIsMadeAbsolute()
{
    const QString before = QDir::currentPath();
    QDir::setCurrent(m_home->path());
    const auto folder = DataFolder::forOptions({.dataDirectory = u"a/../b"_s});
    QDir::setCurrent(before);
    QVERIFY(folder);
    QVERIFY(QDir::isAbsolutePath(folder->journalDirectory()));
    QCOMPARE(QDir::cleanPath(folder->journalDirectory()), path(u"b"_s));
}

void tst_DataFolder::newFoldersAreClosedToOthers()
{
    QVERIFY(DataFolder::forOptions({}));
    QCOMPARE(modeOf(path(u"data/Tembra"_s)), 0700);
    QCOMPARE(modeOf(path(u"config/Tembra"_s)), 0700);
}

void tst_DataFolder::anExistingFolderStaysAsItIs()
{
    QVERIFY(QDir().mkpath(path(u"shared"_s)));
    QCOMPARE(::chmod(path(u"shared"_s).toUtf8().constData(), 0755), 0);
    QVERIFY(DataFolder::forOptions({.dataDirectory = path(u"shared"_s)}));
    QCOMPARE(modeOf(path(u"shared"_s)), 0755);
}

void tst_DataFolder::aFolderThatCannotBeMadeIsLeftToTheStore()
{
    QFile file(path(u"file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const auto folder = DataFolder::forOptions({.dataDirectory = path(u"file/below"_s)});
    QVERIFY(folder);
    QCOMPARE(folder->journalDirectory(), path(u"file/below"_s));
}

void tst_DataFolder::theSampleHasAFolderOfItsOwnThatGoesAway()
{
    QString place;
    {
        const auto folder = DataFolder::forOptions({.sample = true});
        QVERIFY(folder);
        place = folder->journalDirectory();
        QVERIFY(place.startsWith(m_home->path()));
        QCOMPARE(modeOf(place), 0700);
        QCOMPARE(QFileInfo(folder->settingsFile()).path(), place);
        QCOMPARE(QFileInfo(folder->windowStateFile()).path(), place);
        QFile left(folder->settingsFile());
        QVERIFY(left.open(QIODevice::WriteOnly));
    }
    QVERIFY(!QFileInfo::exists(place));
    QVERIFY(QDir(m_home->path()).isEmpty());
}

void tst_DataFolder::theSampleFolderOfEachStartIsAnother()
{
    const auto first = DataFolder::forOptions({.sample = true});
    const auto second = DataFolder::forOptions({.sample = true});
    QVERIFY(first && second);
    QVERIFY(first->journalDirectory() != second->journalDirectory());
}

void tst_DataFolder::aSampleWithoutPlaceFails()
{
    QFile file(path(u"file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    qputenv("TMPDIR", path(u"file"_s).toUtf8());
    const auto folder = DataFolder::forOptions({.sample = true});
    QVERIFY(!folder);
    QVERIFY2(folder.error().message.contains(path(u"file"_s)), qPrintable(folder.error().message));
}

QTEST_GUILESS_MAIN(tst_DataFolder)
#include "tst_DataFolder.moc"
