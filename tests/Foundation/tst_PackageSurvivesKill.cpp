#include "Foundation/Files/PackageWriter.h"
#include "PackageFixture.h"
#include "PackageVersions.h"

#include <QFileInfo>
#include <QProcess>
#include <QTest>
#include <QThread>

#include <random>
#include <signal.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr unsigned seed = 20261121;
constexpr int kills = 200;
constexpr unsigned latestKill = 20'000; // Microseconds after the first confirmed version.

} // namespace

class tst_PackageSurvivesKill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsOneCompleteVersion_data();
    void keepsOneCompleteVersion();
    void knowsACompleteVersion();
};

void tst_PackageSurvivesKill::keepsOneCompleteVersion_data()
{
    QTest::addColumn<bool>("makes");
    QTest::newRow("replacing") << false;
    QTest::newRow("making anew") << true;
}

void tst_PackageSurvivesKill::keepsOneCompleteVersion()
{
    QFETCH(bool, makes);
    qInfo("Seed %u", seed);
    std::mt19937 random(seed);
    const PackageFolder folder;
    int nextVersion = 1;
    int withTemporaries = 0;
    int withoutPackage = 0;
    for (int kill = 0; kill < kills; ++kill) {
        QProcess writer;
        writer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        writer.start(QStringLiteral(PACKAGE_WRITER), {folder.package, QString::number(nextVersion),
                                                      makes ? u"makes"_s : u"replaces"_s});
        QVERIFY(writer.waitForReadyRead());
        QThread::usleep(random() % latestKill);
        writer.kill();
        QVERIFY(writer.waitForFinished());
        QCOMPARE(writer.exitStatus(), QProcess::CrashExit);
        QCOMPARE(writer.exitCode(), SIGKILL);

        const QByteArrayList lines = writer.readAllStandardOutput().split('\n');
        const int confirmed = lines.at(lines.size() - 2).toInt();
        QVERIFY(confirmed >= nextVersion);
        withTemporaries += !folder.temporaries().isEmpty();
        nextVersion = confirmed + 1;
        const QString away = folder.package + u" away/"_s + folder.fileName;
        QVERIFY(!QFileInfo::exists(away) || versionOf(readFile(away)));
        if (makes && !QFileInfo::exists(folder.package)) {
            ++withoutPackage;
            continue;
        }
        const auto found = versionOf(readFile(folder.file));
        QVERIFY2(found, QByteArray("after version " + QByteArray::number(confirmed)).constData());
        QVERIFY(*found == confirmed || *found == confirmed + 1);
        nextVersion = *found + 1;
    }
    qInfo("%d kills, %d with an unfinished version, %d without a package, %d versions", kills,
          withTemporaries, withoutPackage, nextVersion);
    // Otherwise the above has shown little.
    QVERIFY(withTemporaries > 0);
    QVERIFY(PackageWriter().write(folder.package, folder.fileName, packageVersion(nextVersion)));
    QCOMPARE(versionOf(readFile(folder.file)), nextVersion);
    QCOMPARE(folder.temporaries(), QStringList());
}

void tst_PackageSurvivesKill::knowsACompleteVersion()
{
    const QByteArray whole = packageVersion(7);
    QCOMPARE(versionOf(whole), 7);
    QVERIFY(!versionOf(whole.chopped(1)));
    QVERIFY(!versionOf(whole.left(whole.size() / 2)));
    QVERIFY(!versionOf({}));
    QVERIFY(!versionOf(whole.left(whole.size() / 2) + packageVersion(8).mid(whole.size() / 2)));
    QByteArray zeros = whole;
    zeros.replace(whole.size() / 2, 4, QByteArray(4, '\0'));
    QVERIFY(!versionOf(zeros));
}

QTEST_GUILESS_MAIN(tst_PackageSurvivesKill)
#include "tst_PackageSurvivesKill.moc"
