#include "Toolkit/Package/PackageListModel.h"

#include "PackageFolder.h"
#include "Toolkit/Package/PackageIconProvider.h"

#include <QAbstractItemModelTester>
#include <QFileSystemModel>
#include <QTest>

#include <filesystem>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Keeps the model tester, which looks into every folder, within the test's own.
class ConfinedFiles : public QFileSystemModel
{
    Q_OBJECT

public:
    explicit ConfinedFiles(const QString &folder) : m_folder(folder) {}

    bool canFetchMore(const QModelIndex &parent) const override
    {
        return filePath(parent).startsWith(m_folder) && QFileSystemModel::canFetchMore(parent);
    }

private:
    QString m_folder;
};

} // namespace

class tst_PackageListModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<PackageFolder>();
        m_files = std::make_unique<ConfinedFiles>(m_folder->path());
        m_list = std::make_unique<PackageListModel>(m_folder->type);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_list.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_list->setSourceModel(m_files.get());
    }

    void cleanup()
    {
        m_tester.reset();
        m_list.reset();
        m_files.reset();
        m_folder.reset();
    }

    void foldersComeFirstThenPackagesByName()
    {
        addSome();
        QCOMPARE(shownNames(), (QStringList{u"Attic"_s, u"Zoo"_s, u"a 9.box"_s, u"a 10.box"_s,
                                            u"B.box"_s, u"file.box"_s}));
    }

    void foldersComeFirstInTheOtherOrderToo()
    {
        addSome();
        m_list->sort(0, Qt::DescendingOrder);
        QCOMPARE(shownNames(), (QStringList{u"Zoo"_s, u"Attic"_s, u"file.box"_s, u"B.box"_s,
                                            u"a 10.box"_s, u"a 9.box"_s}));
    }

    void datesAreSortedAsDates()
    {
        // Ten months in a row: as texts, with the month first, they would be in disorder.
        QStringList names;
        for (int i = 0; i < 10; ++i) {
            addDated(u"%1.box"_s.arg(i), 30 * i);
            names.prepend(u"%1.box"_s.arg(i));
        }
        m_list->sort(3);
        QCOMPARE(shownNames(), names);
    }

    void packagesHaveNothingInThem()
    {
        addSome();
        shownNames();
        const QModelIndex package = indexOf(u"B.box"_s);
        QVERIFY(m_list->isPackage(package));
        QVERIFY(!m_list->hasChildren(package));
        QVERIFY(!m_list->canFetchMore(package));
        QCOMPARE(m_list->rowCount(package), 0);
        // Also when the files in it are known.
        m_files->fetchMore(m_list->mapToSource(package));
        QTRY_VERIFY(m_files->rowCount(m_list->mapToSource(package)) > 0);
        QCOMPARE(m_list->rowCount(package), 0);
        const QModelIndex folder = indexOf(u"Zoo"_s);
        QVERIFY(!m_list->isPackage(folder));
        QVERIFY(m_list->hasChildren(folder));
        QVERIFY(!m_list->isPackage(indexOf(u"file.box"_s)));
        QVERIFY(!m_list->isPackage({}));
    }

    void packagesLookLikeFiles()
    {
        addSome();
        PackageIconProvider provider(m_folder->type, nullptr);
        m_files->setIconProvider(&provider);
        shownNames();
        const QModelIndex package = indexOf(u"B.box"_s);
        const QModelIndex folder = indexOf(u"Zoo"_s);
        QTRY_COMPARE(package.siblingAtColumn(2).data().toString(), u"Cardboard box"_s);
        QVERIFY(folder.siblingAtColumn(2).data().toString() != u"Cardboard box"_s);
        QVERIFY(image(package) != image(folder));
        QVERIFY(!image(package).isNull());
        m_list->setSourceModel(nullptr);
        m_files.reset(); // Before the provider.
    }

    void whatCanBeDoneWithThem()
    {
        addSome();
        m_files->setReadOnly(false);
        shownNames();
        const Qt::ItemFlags package = indexOf(u"B.box"_s).flags();
        QVERIFY(package.testFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled));
        QVERIFY(!package.testAnyFlags(Qt::ItemIsEditable | Qt::ItemIsDragEnabled
                                      | Qt::ItemIsDropEnabled));
        QVERIFY(indexOf(u"Zoo"_s).flags().testFlags(Qt::ItemIsEditable | Qt::ItemIsEnabled));
        QCOMPARE(indexOf(u"file.box"_s).flags(), Qt::NoItemFlags);
    }

    void whatAppearsLaterIsListed()
    {
        addSome();
        QCOMPARE(shownNames().size(), 6);
        m_folder->addPackage(u"new.box"_s);
        m_folder->addFile(u"new.txt"_s);
        QTRY_COMPARE(m_list->rowCount(root()), 7);
        QVERIFY(indexOf(u"new.box"_s).isValid());
    }

    void theWholeNameIsTheTooltip()
    {
        addSome();
        shownNames();
        QCOMPARE(indexOf(u"a 10.box"_s).data(Qt::ToolTipRole).toString(), u"a 10.box"_s);
        QCOMPARE(PackageListModel::path(indexOf(u"a 10.box"_s)), m_folder->path(u"a 10.box"_s));
    }

private:
    void addSome()
    {
        for (const QString &name : {u"B.box"_s, u"a 10.box"_s, u"a 9.box"_s})
            m_folder->addPackage(name);
        m_folder->addFolder(u"Zoo/cage"_s);
        m_folder->addFolder(u"Attic"_s);
        m_folder->addFile(u"file.box"_s);
        m_folder->addFile(u"notes.txt"_s);
    }

    void addDated(const QString &name, int daysAgo) const
    {
        m_folder->addFolder(name);
        std::filesystem::last_write_time(QFile::encodeName(m_folder->path(name)).toStdString(),
                                         std::filesystem::file_time_type::clock::now()
                                             - std::chrono::hours(24 * daysAgo));
    }

    QModelIndex root() const { return m_list->mapFromSource(m_files->index(m_folder->path())); }

    QModelIndex indexOf(const QString &name) const
    {
        return m_list->mapFromSource(m_files->index(m_folder->path(name)));
    }

    /// What is listed once everything is.
    QStringList shownNames()
    {
        m_files->setRootPath(m_folder->path());
        const int expected = int(
            QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size());
        [[maybe_unused]] const bool all = QTest::qWaitFor([this, expected] {
            return m_files->rowCount(m_files->index(m_folder->path())) == expected;
        });
        QTest::qWait(250);
        QStringList names;
        for (int row = 0; row < m_list->rowCount(root()); ++row)
            names.append(m_list->index(row, 0, root()).data().toString());
        return names;
    }

    static QImage image(const QModelIndex &index)
    {
        return index.data(Qt::DecorationRole).value<QIcon>().pixmap(32).toImage();
    }

    std::unique_ptr<PackageFolder> m_folder;
    std::unique_ptr<QFileSystemModel> m_files;
    std::unique_ptr<PackageListModel> m_list;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

QTEST_MAIN(tst_PackageListModel)
#include "tst_PackageListModel.moc"
