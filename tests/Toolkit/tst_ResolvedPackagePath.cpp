#include "Toolkit/Package/ResolvedPackagePath.h"

#include "PackageFolder.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

using Kind = ResolvedPackagePath::Kind;

class tst_ResolvedPackagePath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<PackageFolder>();
        m_folder->addPackage(u"Monday.box"_s);
        m_folder->addPackage(u"two words.box"_s);
        m_folder->addPackage(u"קופסה.box"_s);
        m_folder->addFolder(u"Plain"_s);
        m_folder->addPackage(u"Plain/Tuesday.box"_s);
        m_folder->addFile(u"notes.txt"_s);
        m_folder->addFile(u"file.box"_s);
        QVERIFY(QFile::link(m_folder->path(u"Monday.box"_s), m_folder->path(u"link.box"_s)));
        QVERIFY(QFile::link(m_folder->path(u"gone"_s), m_folder->path(u"broken.box"_s)));
        m_homeBefore = qgetenv("HOME");
        qputenv("HOME", QFile::encodeName(m_folder->path()));
    }

    void cleanup() { qputenv("HOME", m_homeBefore); }

    void packagesAreKnownByTheirSuffix_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("has");
        QTest::newRow("suffix") << u"a.box"_s << true;
        QTest::newRow("suffix in capitals") << u"A.BOX"_s << true;
        QTest::newRow("two suffixes") << u"a.tar.box"_s << true;
        QTest::newRow("other suffix") << u"a.boxes"_s << false;
        QTest::newRow("without a stop") << u"abox"_s << false;
        QTest::newRow("suffix alone") << u".box"_s << false;
        QTest::newRow("nothing") << QString() << false;
    }

    void packagesAreKnownByTheirSuffix()
    {
        QFETCH(QString, name);
        QFETCH(bool, has);
        QCOMPARE(m_folder->type.hasSuffix(name), has);
        const QString path = u"/some.where/"_s + name;
        QCOMPARE(m_folder->type.withSuffix(path), has ? path : path + u".box"_s);
    }

    void thePackageAroundAPath_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("package");
        QTest::newRow("a package itself") << u"Monday.box"_s << QString();
        QTest::newRow("in a package") << u"Monday.box/content.json"_s << u"Monday.box"_s;
        QTest::newRow("deep in a package") << u"Monday.box/inner/x/y.box/z"_s << u"Monday.box"_s;
        QTest::newRow("in a folder") << u"Plain/Tuesday.box"_s << QString();
        QTest::newRow("in a package in a folder")
            << u"Plain/Tuesday.box/inner"_s << u"Plain/Tuesday.box"_s;
        QTest::newRow("below a file of the suffix") << u"file.box/x"_s << QString();
    }

    void thePackageAroundAPath()
    {
        QFETCH(QString, path);
        QFETCH(QString, package);
        QCOMPARE(m_folder->type.packageAround(m_folder->path(path)),
                 package.isEmpty() ? package : m_folder->path(package));
    }

    void whatCanBeOpened_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("path");
        QTest::newRow("name") << u"Monday.box"_s << u"Monday.box"_s;
        QTest::newRow("without the suffix") << u"Monday"_s << u"Monday.box"_s;
        QTest::newRow("with a slash at the end") << u"Monday.box/"_s << u"Monday.box"_s;
        QTest::newRow("blank in the name") << u"two words.box"_s << u"two words.box"_s;
        QTest::newRow("right to left") << u"קופסה.box"_s << u"קופסה.box"_s;
        QTest::newRow("relative") << u"Plain/Tuesday.box"_s << u"Plain/Tuesday.box"_s;
        QTest::newRow("up and down") << u"Plain/../Monday.box"_s << u"Monday.box"_s;
        QTest::newRow("from home") << u"~/Plain/Tuesday"_s << u"Plain/Tuesday.box"_s;
        QTest::newRow("through a link") << u"link.box"_s << u"link.box"_s;
    }

    void whatCanBeOpened()
    {
        QFETCH(QString, typed);
        QFETCH(QString, path);
        const ResolvedPackagePath choice = toOpen(typed);
        QCOMPARE(choice.kind, Kind::Package);
        QCOMPARE(choice.path, m_folder->path(path));
    }

    void absolutePathsAreTakenFromAnywhere()
    {
        const QString path = m_folder->path(u"Monday.box"_s);
        const ResolvedPackagePath choice = ResolvedPackagePath::toOpen(m_folder->type, QDir::root(),
                                                                       path);
        QCOMPARE(choice.kind, Kind::Package);
        QCOMPARE(choice.path, path);
    }

    void foldersAreShown_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("path");
        QTest::newRow("name") << u"Plain"_s << u"/Plain"_s;
        QTest::newRow("this one") << u"."_s << u""_s;
        QTest::newRow("home") << u"~"_s << u""_s;
        QTest::newRow("up and down") << u"Plain/.."_s << u""_s;
    }

    void foldersAreShown()
    {
        QFETCH(QString, typed);
        QFETCH(QString, path);
        for (const ResolvedPackagePath &choice : {toOpen(typed), toSave(typed)}) {
            QCOMPARE(choice.kind, Kind::Folder);
            QCOMPARE(choice.path, m_folder->path() + path);
        }
    }

    void whatCannotBeOpened_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        QTest::newRow("another file") << u"notes.txt"_s << u"notes.txt"_s << u"“Cardboard box”"_s;
        QTest::newRow("file of the suffix") << u"file.box"_s << u"file.box"_s << u"a plain file"_s;
        QTest::newRow("file of the suffix, left out")
            << u"file"_s << u"file"_s << u"was not found"_s;
        QTest::newRow("nothing") << u"Sunday.box"_s << u"Sunday.box"_s << u"was not found"_s;
        QTest::newRow("in no folder") << u"/no/where/x.box"_s << u"x.box"_s << u"was not found"_s;
        QTest::newRow("link to nowhere")
            << u"broken.box"_s << u"broken.box"_s << u"was not found"_s;
        QTest::newRow("file in a package")
            << u"Monday.box/content.json"_s << u"Monday.box"_s << u"Nothing inside"_s;
        QTest::newRow("folder in a package")
            << u"Monday.box/inner"_s << u"Monday.box"_s << u"Nothing inside"_s;
    }

    void whatCannotBeOpened()
    {
        QFETCH(QString, typed);
        QFETCH(QString, name);
        QFETCH(QString, reason);
        verifyRefusal(toOpen(typed), name, reason);
    }

    void whereCanBeSaved_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("path");
        QTest::newRow("name") << u"Sunday.box"_s << u"Sunday.box"_s;
        QTest::newRow("without the suffix") << u"Sunday"_s << u"Sunday.box"_s;
        QTest::newRow("other suffix") << u"Sunday.zip"_s << u"Sunday.zip.box"_s;
        QTest::newRow("suffix in capitals") << u"Sunday.BOX"_s << u"Sunday.BOX"_s;
        QTest::newRow("suffix alone") << u".box"_s << u".box.box"_s;
        QTest::newRow("blank in the name") << u"Sun day"_s << u"Sun day.box"_s;
        QTest::newRow("right to left") << u"שבת"_s << u"שבת.box"_s;
        QTest::newRow("relative") << u"Plain/Sunday"_s << u"Plain/Sunday.box"_s;
        QTest::newRow("from home") << u"~/Plain/Sunday"_s << u"Plain/Sunday.box"_s;
        QTest::newRow("200 characters") << u"x"_s.repeated(200) << u"x"_s.repeated(200) + u".box"_s;
        QTest::newRow("as long as may be")
            << u"x"_s.repeated(251) << u"x"_s.repeated(251) + u".box"_s;
        QTest::newRow("beside a file without the suffix") << u"notes.txt"_s << u"notes.txt.box"_s;
    }

    void whereCanBeSaved()
    {
        QFETCH(QString, typed);
        QFETCH(QString, path);
        const ResolvedPackagePath choice = toSave(typed);
        QCOMPARE(choice.kind, Kind::Package);
        QCOMPARE(choice.path, m_folder->path(path));
        addPackageAndVerifyReplacement(choice.path, typed);
    }

    void whereCannotBeSaved_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        QTest::newRow("plain file") << u"file.box"_s << u"file.box"_s << u"in the way"_s;
        QTest::newRow("plain file, suffix left out")
            << u"file"_s << u"file.box"_s << u"in the way"_s;
        QTest::newRow("link to nowhere") << u"broken"_s << u"broken.box"_s << u"in the way"_s;
        QTest::newRow("no such folder") << u"No/Sunday"_s << u"No"_s << u"There is no folder"_s;
        QTest::newRow("in a file") << u"notes.txt/x"_s << u"notes.txt"_s << u"no folder"_s;
        QTest::newRow("in a package")
            << u"Monday.box/inner/Sunday"_s << u"Monday.box"_s << u"Nothing inside"_s;
        QTest::newRow("too long") << u"x"_s.repeated(252) << QString() << u"too long"_s;
        QTest::newRow("too long in bytes") << u"ש"_s.repeated(126) << QString() << u"too long"_s;
    }

    void whereCannotBeSaved()
    {
        QFETCH(QString, typed);
        QFETCH(QString, name);
        QFETCH(QString, reason);
        verifyRefusal(toSave(typed), name, reason);
    }

    void longNamesAreShortenedInSentences()
    {
        const QString name = u"start "_s + u"x"_s.repeated(200) + u" end.box"_s;
        const QString quoted = ResolvedPackagePath::quotedName(u"/folder/"_s + name);
        QVERIFY(quoted.size() < 60);
        QVERIFY(quoted.contains(u"start"_s));
        QVERIFY(quoted.contains(u"end.box"_s));
    }

private:
    ResolvedPackagePath toOpen(const QString &typed) const
    {
        return ResolvedPackagePath::toOpen(m_folder->type, QDir(m_folder->path()), typed);
    }

    ResolvedPackagePath toSave(const QString &typed) const
    {
        return ResolvedPackagePath::toSave(m_folder->type, QDir(m_folder->path()), typed);
    }

    /// Once there is a package, saving there means to replace it.
    void addPackageAndVerifyReplacement(const QString &path, const QString &typed) const
    {
        QVERIFY(QDir().mkpath(path));
        const ResolvedPackagePath choice = toSave(typed);
        QCOMPARE(choice.kind, Kind::Replacement);
        QCOMPARE(choice.path, path);
    }

    static void verifyRefusal(const ResolvedPackagePath &choice, const QString &name,
                              const QString &reason)
    {
        QCOMPARE(choice.kind, Kind::Refusal);
        QVERIFY(choice.path.isEmpty());
        QVERIFY2(choice.sentence.contains(name), qPrintable(choice.sentence));
        QVERIFY2(choice.sentence.contains(reason), qPrintable(choice.sentence));
    }

    std::unique_ptr<PackageFolder> m_folder;
    QByteArray m_homeBefore;
};

QTEST_MAIN(tst_ResolvedPackagePath)
#include "tst_ResolvedPackagePath.moc"
