#include "OpenFilesTest.h"

#include <csignal>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Backups that the program is asked to open.
class tst_OpenFiles : public OpenFilesTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { start(); }
    void cleanup() { stop(); }

    void asksThenImports();
    void cancelImportsNothing();
    void severalAreAskedAboutOneAfterTheOther();
    void oneThatCannotBeReadIsToldOf_data();
    void oneThatCannotBeReadIsToldOf();
    void bringsTheWindowForward();
    void quitsUnderThePrompt();
};

void tst_OpenFiles::asksThenImports()
{
    QStringList buttons;
    QStringList namesBefore{u"?"_s};
    const auto readThenImport = [&](Alert &alert) {
        for (const QPushButton *button : alert.buttons())
            buttons.append(button->text());
        namesBefore = names();
        AlertReader::press(0)(alert);
    };
    const QString path = package(u"Ana"_s);
    QCOMPARE(m_program->run([&] { open({path}); }, {readThenImport}), ProgramInProcess::goesOn);
    QCOMPARE(m_program->alerts->messages, QStringList(prompt));
    QCOMPARE(buttons, (QStringList{u"Import"_s, u"Cancel"_s}));
    QCOMPARE(namesBefore, QStringList());
    const QString details = m_program->alerts->informativeTexts.first();
    QVERIFY2(details.startsWith(u"Last modified: "_s)
                 && details.endsWith(u"\nAna.tembrabackup, 32 bytes"_s),
             qPrintable(details));
    QTRY_COMPARE(names(), QStringList(u"Ana"_s));
    QVERIFY(!m_program->hasChanges()); // What came in is saved.
}

void tst_OpenFiles::cancelImportsNothing()
{
    QCOMPARE(m_program->run([&] { open({package(u"Ana"_s)}); },
                            {AlertReader::pressKey(Qt::Key_Escape)}),
             ProgramInProcess::goesOn);
    QCOMPARE(m_program->alerts->messages, QStringList(prompt));
    QCOMPARE(names(), QStringList());
}

void tst_OpenFiles::severalAreAskedAboutOneAfterTheOther()
{
    QList<int> together;
    const auto importAlone = [&](Alert &alert) {
        together.append(visibleAlerts());
        AlertReader::press(0)(alert);
    };
    const QStringList paths{package(u"Cem"_s), package(u"Ana"_s), package(u"Ben"_s)};
    QCOMPARE(m_program->run([&] { open(paths); },
                            {importAlone, AlertReader::pressKey(Qt::Key_Escape), importAlone}),
             ProgramInProcess::goesOn);
    QCOMPARE(askedAbout(), (QStringList{u"Cem"_s, u"Ana"_s, u"Ben"_s}));
    QCOMPARE(together, (QList{1, 1}));
    // Those nobody has met stand in the order in which they came.
    QTRY_COMPARE(names(), (QStringList{u"Cem"_s, u"Ben"_s}));
}

void tst_OpenFiles::oneThatCannotBeReadIsToldOf_data()
{
    QTest::addColumn<bool>("isAskedAbout"); // The rows are named by what is wrong.
    QTest::addColumn<QString>("reason"); // %1 is the package.
    QTest::newRow("not there")
        << false
        << u"Could not load file: There is no “%1”. Choose another file, or connect the disk it "
           "lies on, and try again. (No such file or directory)"_s;
    QTest::newRow("a file") << false
                            << u"Could not load file: “%1” is not a folder. Choose another one. "
                               "(Not a directory)"_s;
    QTest::newRow("without data") << false << u"No teammate data found."_s;
    QTest::newRow("a link")
        << false
        << u"Could not load file: “%1/teammates.json” is not a file. Choose another "
           "one. (not a regular file)"_s;
    QTest::newRow("not JSON") << true << u"teammate 1, name: expected a text (at byte 9)"_s;
}

void tst_OpenFiles::oneThatCannotBeReadIsToldOf()
{
    QFETCH(bool, isAskedAbout);
    QFETCH(QString, reason);
    const QString path = badPackage(QString::fromLatin1(QTest::currentDataTag()));
    QStringList buttons;
    const auto readThenClose = [&](Alert &alert) {
        buttons.clear();
        for (const QPushButton *button : alert.buttons())
            buttons.append(button->text());
        AlertReader::press(0)(alert);
    };
    // One that can be read comes after it all the same.
    QCOMPARE(m_program->run(
                 [&] {
                     open({path, package(u"Ana"_s)});
                 },
                 isAskedAbout ? QList<AlertReader::Answer>{AlertReader::press(0), readThenClose,
                                                           AlertReader::press(0)}
                              : QList<AlertReader::Answer>{readThenClose, AlertReader::press(0)}),
             ProgramInProcess::goesOn);
    QStringList expected{couldNotLoad, prompt};
    if (isAskedAbout)
        expected.prepend(prompt);
    QCOMPARE(m_program->alerts->messages, expected);
    QCOMPARE(buttons, QStringList(u"Okay"_s));
    QCOMPARE(m_program->alerts->informativeTexts.at(isAskedAbout ? 1 : 0),
             reason.replace(u"%1"_s, path));
    QTRY_COMPARE(names(), QStringList(u"Ana"_s));
}

void tst_OpenFiles::bringsTheWindowForward()
{
    m_program->window->showMinimized();
    QTRY_VERIFY(!m_program->window->isActiveWindow());
    bool isVisible = false;
    const auto cancelVisible = [&](Alert &alert) {
        isVisible = QTest::qWaitForWindowExposed(&alert) && !m_program->window->isMinimized();
        alert.reject();
    };
    QCOMPARE(m_program->run([&] { open({package(u"Ana"_s)}); }, {cancelVisible}),
             ProgramInProcess::goesOn);
    QCOMPARE(m_program->alerts->messages, QStringList(prompt));
    QVERIFY(isVisible);
}

void tst_OpenFiles::quitsUnderThePrompt()
{
    const auto quitUnderIt = [](Alert &) { std::raise(SIGTERM); };
    QCOMPARE(m_program->run(
                 [&] {
                     open({package(u"Ana"_s), package(u"Ben"_s)});
                 },
                 {quitUnderIt}),
             0);
    QCOMPARE(m_program->alerts->messages, QStringList(prompt));
    QCOMPARE(names(), QStringList());
}

QTEST_MAIN(tst_OpenFiles)
#include "tst_OpenFiles.moc"
