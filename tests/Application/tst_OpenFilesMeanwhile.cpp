#include "OpenFilesTest.h"

using namespace tembra;
using namespace Qt::StringLiterals;

/// Backups that the program is asked to open while it is still busy with others.
class tst_OpenFilesMeanwhile : public OpenFilesTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { start(); }
    void cleanup() { stop(); }

    void anotherComesWhileOneIsAskedAbout();
    void anotherComesWhileOneIsImported();
    void anotherComesWhileAnAlertIsRead_data();
    void anotherComesWhileAnAlertIsRead();
};

void tst_OpenFilesMeanwhile::anotherComesWhileOneIsAskedAbout()
{
    const QString second = package(u"Ben"_s);
    int together = 0;
    bool isInFront = false;
    const auto openAnotherThenImport = [&](Alert &alert) {
        open({second});
        QTest::qWait(200);
        together = visibleAlerts();
        isInFront = alert.isActiveWindow();
        AlertReader::press(0)(alert);
    };
    QCOMPARE(m_program->run([&] { open({package(u"Ana"_s)}); },
                            {openAnotherThenImport, AlertReader::press(0)}),
             ProgramInProcess::goesOn);
    QCOMPARE(together, 1);
    QVERIFY(isInFront);
    QCOMPARE(askedAbout(), (QStringList{u"Ana"_s, u"Ben"_s}));
    QTRY_COMPARE(names(), (QStringList{u"Ana"_s, u"Ben"_s}));
}

void tst_OpenFilesMeanwhile::anotherComesWhileOneIsImported()
{
    const QString large = package(u"Ana"_s, "[{\"name\":\"Ana\",\"sessions\":[{}"
                                                + QByteArray(",{}").repeated(10'000) + "]}]");
    const QString small = package(u"Ben"_s);
    int openDuringImport = -1;
    const auto importThenOpenAnother = [&](Alert &alert) {
        AlertReader::press(0)(alert);
        open({small});
        openDuringImport = visibleAlerts();
    };
    bool isFirstThere = false;
    const auto importAfterTheOther = [&](Alert &alert) {
        isFirstThere = QTest::qWaitFor([&] { return names() == QStringList(u"Ana"_s); }, 1000);
        AlertReader::press(0)(alert);
    };
    bool bothAreThere = false;
    const auto openFirst = [&] {
        open({large});
        bothAreThere = QTest::qWaitFor([&] { return names().size() == 2; }, 20'000);
    };
    QCOMPARE(m_program->run(openFirst, {importThenOpenAnother, importAfterTheOther}),
             ProgramInProcess::goesOn);
    QVERIFY(bothAreThere);
    QCOMPARE(openDuringImport, 0); // Its turn comes.
    QVERIFY(isFirstThere);
    QCOMPARE(askedAbout(), (QStringList{u"Ana"_s, u"Ben"_s}));
}

void tst_OpenFilesMeanwhile::anotherComesWhileAnAlertIsRead_data()
{
    QTest::addColumn<QStringList>(
        "messages"); // The rows are named by what is wrong with the first.
    QTest::newRow("not there") << QStringList{couldNotLoad, prompt};
    QTest::newRow("without data") << QStringList{couldNotLoad, prompt};
    QTest::newRow("not JSON") << QStringList{prompt, couldNotLoad, prompt};
}

void tst_OpenFilesMeanwhile::anotherComesWhileAnAlertIsRead()
{
    QFETCH(QStringList, messages);
    const QString bad = badPackage(QString::fromLatin1(QTest::currentDataTag()));
    const QString good = package(u"Ben"_s);
    int together = 0;
    const auto openAnotherThenClose = [&](Alert &alert) {
        open({good});
        QTest::qWait(200);
        together = visibleAlerts();
        AlertReader::press(0)(alert);
    };
    QList<AlertReader::Answer> answers{openAnotherThenClose, AlertReader::press(0)};
    if (messages.first() == prompt)
        answers.prepend(AlertReader::press(0));
    QCOMPARE(m_program->run([&] { open({bad}); }, answers), ProgramInProcess::goesOn);
    QCOMPARE(together, 1);
    QCOMPARE(m_program->alerts->messages, messages);
    QTRY_COMPARE(names(), QStringList(u"Ben"_s));
}

QTEST_MAIN(tst_OpenFilesMeanwhile)
#include "tst_OpenFilesMeanwhile.moc"
