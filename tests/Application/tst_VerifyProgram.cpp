#include "RunningProgram.h"

#include "support/FolderContents.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <sys/stat.h>

using namespace tembra;
using namespace Qt::StringLiterals;

/// `tembra --verify` as a shell sees it.
class tst_VerifyProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_account.reset(); }

    void tellsAndEnds_data();
    void tellsAndEnds();
    void readsAPackageNamedFromWhereItIsStarted();

private:
    /// Without a screen, and without any folder of a user's.
    void start(const QString &package)
    {
        QProcessEnvironment environment = m_account->environment();
        for (const QString &name :
             {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"XDG_RUNTIME_DIR"_s})
            environment.remove(name);
        environment.insert(u"XDG_CACHE_HOME"_s, m_account->path(u"home/.cache"_s));
        m_program.setProcessEnvironment(environment);
        QElapsedTimer timer;
        timer.start();
        m_program.start(RunningProgram::file(), {u"--verify"_s, package});
        QVERIFY(m_program.waitForFinished(20'000));
        QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(m_program.exitStatus(), QProcess::NormalExit);
    }

    std::unique_ptr<FreshAccount> m_account;
    QProcess m_program;
};

void tst_VerifyProgram::init()
{
    m_account = std::make_unique<FreshAccount>();
    const auto put = [&](const QString &name, const QByteArray &json) {
        QVERIFY(QDir().mkpath(m_account->path(name)));
        writeFile(m_account->path(name + u"/teammates.json"_s), json);
    };
    put(u"good"_s, R"([{"name":"Ana","sessions":[{},{"notes":[{"contentString":"é"}]}]}])");
    put(u"empty list"_s, "[]");
    put(u"broken"_s, R"([{"sessions":[{},{"date":"x"}]}])");
    put(u"link/elsewhere"_s, "[]");
    QVERIFY(QFile::link(u"elsewhere/teammates.json"_s, m_account->path(u"link/teammates.json"_s)));
    QVERIFY(QDir().mkdir(m_account->path(u"nothing in it"_s)));
    QVERIFY(QDir().mkdir(m_account->path(u"pipe"_s)));
    const QByteArray pipe = QFile::encodeName(m_account->path(u"pipe/teammates.json"_s));
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
}

void tst_VerifyProgram::tellsAndEnds_data()
{
    QTest::addColumn<QString>("output"); // The rows are named by the package; %1 is its path.
    QTest::addColumn<QString>("errors");
    const auto good = [](const char *package, const QString &amounts) {
        QTest::newRow(package) << u"%1: "_s + amounts << QString();
    };
    const auto bad = [](const char *package, const QString &reason) {
        QTest::newRow(package) << QString() << u"tembra: %1: "_s + reason;
    };
    good("good", u"1 teammate, 2 meetings, 1 note, 0 tags\n"_s);
    good("empty list", u"0 teammates, 0 meetings, 0 notes, 0 tags\n"_s);
    bad("broken", u"teammate 1, session 2, date: expected a number (at byte 25)\n"_s);
    bad("nothing in it", u"No teammate data found.\n"_s);
    bad("not there", u"Could not load file: There is no “%1”. Choose another file, or connect the "
                     "disk it lies on, and try again. (No such file or directory)\n"_s);
    for (const char *package : {"link", "pipe"})
        bad(package, u"Could not load file: “%1/teammates.json” is not a file. Choose another "
                     "one. (not a regular file)\n"_s);
}

void tst_VerifyProgram::tellsAndEnds()
{
    QFETCH(QString, output);
    QFETCH(QString, errors);
    const QString package = m_account->path(QString::fromLatin1(QTest::currentDataTag()));
    const auto before = snapshot(m_account->path(QString()));
    start(package);
    QCOMPARE(QString::fromUtf8(m_program.readAllStandardOutput()),
             output.replace(u"%1"_s, package));
    QCOMPARE(QString::fromUtf8(m_program.readAllStandardError()), errors.replace(u"%1"_s, package));
    QCOMPARE(m_program.exitCode(), errors.isEmpty() ? 0 : 1);
    // No journal was made, nor anything else.
    QCOMPARE(snapshot(m_account->path(QString())), before);
}

void tst_VerifyProgram::readsAPackageNamedFromWhereItIsStarted()
{
    m_program.setWorkingDirectory(m_account->path(u"home"_s));
    start(u"../good/"_s);
    m_program.setWorkingDirectory({});
    QCOMPARE(m_program.readAllStandardError(), QByteArray());
    QCOMPARE(m_program.readAllStandardOutput(),
             "../good/: 1 teammate, 2 meetings, 1 note, 0 tags\n");
    QCOMPARE(m_program.exitCode(), 0);
}

QTEST_GUILESS_MAIN(tst_VerifyProgram)
#include "tst_VerifyProgram.moc"
