#include "Application/AppDelegate.h"

#include "Model/JournalQueries.h"
#include "ProgramInProcess.h"

#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>

#include <csignal>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr int goesOn = ProgramInProcess::goesOn;

const QString savingFailed = u"Your changes could not be saved."_s;
const QString quitAnyway = u"Could not save changes while quitting. Quit anyway?"_s;

} // namespace

class tst_Quit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void withoutChangesNothingIsAsked_data() { addWays(); }
    void withoutChangesNothingIsAsked();
    void changesAreSaved_data() { addWays(); }
    void changesAreSaved();
    void typingIsSaved_data() { addWays(); }
    void typingIsSaved();
    void refusedCommitGoesOn_data() { addWays(); }
    void refusedCommitGoesOn();
    void failedSaveCanBeCancelled_data() { addWays(); }
    void failedSaveCanBeCancelled();
    void failedSaveCanQuitAnyway_data() { addWays(); }
    void failedSaveCanQuitAnyway();
    void afterQuitAnywayTheLastSaveIsThere_data();
    void afterQuitAnywayTheLastSaveIsThere();
    void keysOnTheQuestionCancel_data();
    void keysOnTheQuestionCancel();
    void buttonsStandInTheirOrder();
    void resolvedErrorGoesOnWithoutQuestion();
    void quittingWhileBeingAskedDoesNothing_data() { addWays(); }
    void quittingWhileBeingAskedDoesNothing();
    void afterCancellingASaveThatWorksQuits();
    void aMinimisedWindowShowsItsQuestion();
    void anOpenMenuMakesWayForTheQuestion();
    void quitsUnderASheet();
    void quitsUnderTheAlertOfAFailedSave();
    void logOutWithoutQuestionsSaves();
    void logOutWithoutQuestionsLogsAFailure();
    void logOutAsksOnce();

private:
    static void addWays();
    void quitBy(const QString &way);
    void changeThenBreakDisk();
    QStringList savedNames();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ProgramInProcess> m_program;
};

void tst_Quit::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_program = std::make_unique<ProgramInProcess>(m_folder->path());
    QVERIFY(QTest::qWaitForWindowActive(m_program->window));
}

void tst_Quit::cleanup()
{
    m_program.reset();
    m_folder.reset();
}

void tst_Quit::addWays()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"menu", "window", "SIGTERM", "SIGINT", "QApplication::quit", "log-out"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void tst_Quit::quitBy(const QString &way)
{
    if (way == u"menu") {
        QTest::keyClick(QApplication::activeWindow(), Qt::Key_Q, Qt::ControlModifier);
    } else if (way == u"window") {
        m_program->window->close();
    } else if (way == u"SIGTERM") {
        std::raise(SIGTERM);
    } else if (way == u"SIGINT") {
        std::raise(SIGINT);
    } else if (way == u"QApplication::quit") {
        QApplication::quit();
    } else if (m_program->delegate->prepareForLogout(true)) {
        QApplication::quit();
    }
}

void tst_Quit::changeThenBreakDisk()
{
    m_program->addTeammate(u"Ana"_s);
    m_program->breakDisk();
}

QStringList tst_Quit::savedNames()
{
    m_program.reset();
    ProgramInProcess again(m_folder->path());
    QStringList names;
    const auto teammates = again.services.coreData.viewContext().fetch<Counterpart>(
        JournalQueries::counterparts());
    for (const auto &teammate : *teammates)
        names.append(teammate->name());
    return names;
}

void tst_Quit::withoutChangesNothingIsAsked()
{
    QFETCH(QString, way);
    m_program->breakDisk(); // Nothing has to be written, so nobody notices.
    QCOMPARE(m_program->run([&] { quitBy(way); }), 0);
    QCOMPARE(m_program->alerts->messages, QStringList());
}

void tst_Quit::changesAreSaved()
{
    QFETCH(QString, way);
    m_program->addTeammate(u"Ana"_s);
    QCOMPARE(m_program->run([&] { quitBy(way); }), 0);
    QCOMPARE(m_program->alerts->messages, QStringList());
    QVERIFY(!m_program->hasChanges());
    QCOMPARE(savedNames(), QStringList{u"Ana"_s});
}

void tst_Quit::typingIsSaved()
{
    QFETCH(QString, way);
    const auto typeAndQuit = [&] {
        m_program->find<QAction>(u"newTeammateAction"_s)->trigger();
        QTRY_VERIFY(qobject_cast<QLineEdit *>(QApplication::focusWidget()));
        QTest::keyClicks(QApplication::focusWidget(), u"Ben"_s);
        quitBy(way); // The name is still being typed.
    };
    QCOMPARE(m_program->run(typeAndQuit), 0);
    QCOMPARE(savedNames(), QStringList{u"Ben"_s});
}

void tst_Quit::refusedCommitGoesOn()
{
    QFETCH(QString, way);
    m_program->addTeammate(u"Ana"_s);
    m_program->services.coreData.setCommitEditing([] { return false; });
    QTest::ignoreMessage(QtWarningMsg, "AppDelegate unable to commit editing to terminate");
    QCOMPARE(m_program->run([&] { quitBy(way); }), goesOn);
    QCOMPARE(m_program->alerts->messages, QStringList());
    QVERIFY(m_program->window->isVisible());
    QVERIFY(m_program->hasChanges());
}

void tst_Quit::failedSaveCanBeCancelled()
{
    QFETCH(QString, way);
    changeThenBreakDisk();
    QCOMPARE(m_program->run([&] { quitBy(way); }, {AlertReader::press(0), AlertReader::press(1)}),
             goesOn);
    QCOMPARE(m_program->alerts->messages, (QStringList{savingFailed, quitAnyway}));
    QVERIFY2(m_program->alerts->informativeTexts.first().startsWith(u"The disk is full"),
             qPrintable(m_program->alerts->informativeTexts.first()));
    QCOMPARE(m_program->alerts->informativeTexts.last(),
             u"Quitting now will lose any changes you have made since the last successful save"_s);
    QVERIFY(m_program->window->isVisible());
    QVERIFY(m_program->hasChanges());
    // The window goes on saying so.
    QVERIFY(m_program->services.coreData.isSaveFailing());
    m_program->disk.failNothing();
}

void tst_Quit::failedSaveCanQuitAnyway()
{
    QFETCH(QString, way);
    changeThenBreakDisk();
    QCOMPARE(m_program->run([&] { quitBy(way); }, {AlertReader::press(0), AlertReader::press(0)}),
             0);
    QCOMPARE(m_program->alerts->messages, (QStringList{savingFailed, quitAnyway}));
    // Taken down while the disk still fails.
    m_program.reset();
    m_program = std::make_unique<ProgramInProcess>(m_folder->path());
}

void tst_Quit::afterQuitAnywayTheLastSaveIsThere_data()
{
    QTest::addColumn<bool>("draftReachedTheDisk");
    QTest::newRow("edit after the disk was full") << false;
    QTest::newRow("edit that had been written before") << true;
}

/// Whatever was never written is lost, as the question says; the rest stays, and nothing by halves.
void tst_Quit::afterQuitAnywayTheLastSaveIsThere()
{
    QFETCH(bool, draftReachedTheDisk);
    ManagedObjectContext &context = m_program->services.coreData.viewContext();
    {
        const auto saved = context.insert<Counterpart>();
        saved->setName(u"Ana"_s);
        m_program->services.coreData.save();
        QVERIFY(!m_program->hasChanges());
        saved->setName(u"Anna"_s);
    }
    m_program->addTeammate(u"Ben"_s);
    if (draftReachedTheDisk)
        QVERIFY(context.writeDrafts());
    m_program->breakDisk();
    m_program->addTeammate(u"Cem"_s);
    QCOMPARE(m_program->run([&] { quitBy(u"menu"_s); },
                            {AlertReader::press(0), AlertReader::press(0)}),
             0);
    QCOMPARE(savedNames(),
             draftReachedTheDisk ? (QStringList{u"Anna"_s, u"Ben"_s}) : QStringList{u"Ana"_s});
}

void tst_Quit::keysOnTheQuestionCancel_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
    QTest::newRow("Escape") << Qt::Key_Escape;
}

void tst_Quit::keysOnTheQuestionCancel()
{
    QFETCH(Qt::Key, key);
    changeThenBreakDisk();
    QCOMPARE(m_program->run([&] { quitBy(u"menu"_s); },
                            {AlertReader::pressKey(key), AlertReader::pressKey(key)}),
             goesOn);
    QCOMPARE(m_program->alerts->messages, (QStringList{savingFailed, quitAnyway}));
    m_program->disk.failNothing();
}

void tst_Quit::buttonsStandInTheirOrder()
{
    changeThenBreakDisk();
    QStringList titles;
    const auto readThenCancel = [&](Alert &alert) {
        for (const QPushButton *button : alert.buttons())
            titles.append(button->text());
        alert.reject();
    };
    QCOMPARE(m_program->run([&] { quitBy(u"menu"_s); }, {readThenCancel, readThenCancel}), goesOn);
    QCOMPARE(titles, (QStringList{u"OK"_s, u"Quit anyway"_s, u"Cancel"_s}));
    m_program->disk.failNothing();
}

void tst_Quit::resolvedErrorGoesOnWithoutQuestion()
{
    changeThenBreakDisk();
    int presented = 0;
    m_program->delegate->setPresentError([&](const Error &error) {
        ++presented;
        return error.message.startsWith(u"The disk is full");
    });
    QCOMPARE(m_program->run([&] { quitBy(u"menu"_s); }), goesOn);
    QCOMPARE(presented, 1);
    QCOMPARE(m_program->alerts->messages, QStringList());
    m_program->disk.failNothing();
}

void tst_Quit::quittingWhileBeingAskedDoesNothing()
{
    QFETCH(QString, way);
    changeThenBreakDisk();
    int open = 0;
    const auto quitAgainThenCancel = [&](Alert &alert) {
        const QPointer<Alert> first = &alert;
        quitBy(way);
        QTest::qWait(150);
        QVERIFY(first && first->isVisible());
        for (QWidget *widget : QApplication::topLevelWidgets())
            open += qobject_cast<Alert *>(widget) && widget->isVisible();
        first->reject();
    };
    QCOMPARE(m_program->run([&] { quitBy(u"menu"_s); }, {quitAgainThenCancel, quitAgainThenCancel}),
             goesOn);
    QCOMPARE(open, 2); // Each of the two was alone.
    QCOMPARE(m_program->alerts->messages, (QStringList{savingFailed, quitAnyway}));
    m_program->disk.failNothing();
}

void tst_Quit::afterCancellingASaveThatWorksQuits()
{
    changeThenBreakDisk();
    QCOMPARE(m_program->run([&] { quitBy(u"menu"_s); },
                            {AlertReader::press(0), AlertReader::press(1)}),
             goesOn);
    m_program->disk.failNothing();
    QCOMPARE(m_program->run([&] { quitBy(u"menu"_s); }), 0);
    QCOMPARE(savedNames(), QStringList{u"Ana"_s});
}

void tst_Quit::aMinimisedWindowShowsItsQuestion()
{
    changeThenBreakDisk();
    m_program->window->showMinimized();
    QTRY_VERIFY(!m_program->window->isActiveWindow());
    const auto cancelVisible = [&](Alert &alert) {
        QVERIFY(QTest::qWaitForWindowExposed(&alert));
        QVERIFY(!m_program->window->isMinimized());
        alert.reject();
    };
    QCOMPARE(m_program->run([&] { quitBy(u"SIGTERM"_s); }, {cancelVisible, cancelVisible}), goesOn);
    QCOMPARE(m_program->alerts->messages.size(), 2);
    m_program->disk.failNothing();
}

void tst_Quit::anOpenMenuMakesWayForTheQuestion()
{
    changeThenBreakDisk();
    const auto openMenuThenQuit = [&] {
        QMenuBar *bar = m_program->window->menuBar();
        QTest::mouseClick(bar, Qt::LeftButton, {},
                          bar->actionGeometry(bar->actions().first()).center());
        QVERIFY(QApplication::activePopupWidget());
        quitBy(u"SIGTERM"_s);
    };
    const auto cancelAlone = [&](Alert &alert) {
        QVERIFY(!QApplication::activePopupWidget());
        alert.reject();
    };
    QCOMPARE(m_program->run(openMenuThenQuit, {cancelAlone, cancelAlone}), goesOn);
    QCOMPARE(m_program->alerts->messages.size(), 2);
    m_program->disk.failNothing();
}

void tst_Quit::quitsUnderASheet()
{
    m_program->addTeammate(u"Ana"_s);
    const auto openSheetThenQuit = [&] {
        Alert::beginSheet({.messageText = u"Delete?"_s,
                           .informativeText = u"One will be removed."_s,
                           .buttons = {u"Delete"_s, u"Cancel"_s}},
                          m_program->window, [](int) {});
    };
    const auto quitUnderIt = [&](Alert &) { quitBy(u"SIGTERM"_s); };
    QCOMPARE(m_program->run(openSheetThenQuit, {quitUnderIt}), 0);
    QCOMPARE(m_program->alerts->messages, QStringList{u"Delete?"_s});
    QCOMPARE(savedNames(), QStringList{u"Ana"_s});
}

void tst_Quit::quitsUnderTheAlertOfAFailedSave()
{
    changeThenBreakDisk();
    // The alert of the autosave says already what the quit would say first.
    const auto quitUnderIt = [&](Alert &) { quitBy(u"SIGTERM"_s); };
    QCOMPARE(m_program->run([&] { m_program->services.coreData.handleTimer(); },
                            {quitUnderIt, AlertReader::press(0)}),
             0);
    QCOMPARE(m_program->alerts->messages, (QStringList{savingFailed, quitAnyway}));
    m_program->disk.failNothing();
}

void tst_Quit::logOutWithoutQuestionsSaves()
{
    m_program->addTeammate(u"Ana"_s);
    QVERIFY(m_program->delegate->prepareForLogout(false));
    QVERIFY(!m_program->hasChanges());
    QCOMPARE(m_program->run([] { QApplication::quit(); }), 0);
    QCOMPARE(savedNames(), QStringList{u"Ana"_s});
}

void tst_Quit::logOutWithoutQuestionsLogsAFailure()
{
    changeThenBreakDisk();
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(u"^Could not save at log-out: The disk is full"_s));
    QVERIFY(m_program->delegate->prepareForLogout(false));
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(m_program->hasChanges());
    m_program->disk.failNothing();
}

void tst_Quit::logOutAsksOnce()
{
    changeThenBreakDisk();
    const auto logOut = [&] {
        QVERIFY(m_program->delegate->prepareForLogout(true));
        QApplication::quit(); // Once everybody agreed, the desktop ends the program.
    };
    QCOMPARE(m_program->run(logOut, {AlertReader::press(0), AlertReader::press(0)}), 0);
    QCOMPARE(m_program->alerts->messages, (QStringList{savingFailed, quitAnyway}));
    m_program->disk.failNothing();
}

QTEST_MAIN(tst_Quit)
#include "tst_Quit.moc"
