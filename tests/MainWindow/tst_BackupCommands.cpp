#include "Backup/BackupDocument.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "MainWindow/StatusLine.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"
#include "support/RecordCount.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Package/PackageDialog.h"
#include "Toolkit/ProgressSheet.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QUrl>

#include <atomic>
#include <cstdarg>
#include <fcntl.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

std::atomic<bool> folderHangs = false;
std::atomic<int> folderGeneration = 0;

} // namespace

/// Stands in for the system's: a folder that does not answer keeps whoever opened a file in it
/// waiting.
extern "C" int openat(int folder, const char *name, int flags, ...)
{
    const bool waits = folderHangs && (flags & O_DIRECTORY) == 0;
    for (const int generation = folderGeneration; waits && generation == folderGeneration;)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    va_list arguments;
    va_start(arguments, flags);
    const int mode = va_arg(arguments, int);
    va_end(arguments);
    return int(::syscall(SYS_openat, folder, name, flags, mode));
}

/// Backing up, importing and undoing an import in the main window, as the user does it.
class tst_BackupCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_window = std::make_unique<MainWindow>(m_journal->coreData(), m_journal->services,
                                                m_journal->notifications,
                                                m_journal->filePath(u"windows.ini"_s), [] {});
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void cleanup()
    {
        m_window.reset();
        m_journal.reset();
    }

    void backsUpDeletesAllImportsAndSeesItAgain()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        const auto session = m_journal->addSessionDaysAgo(ana, 3);
        m_journal->write(session, NoteIdentifier(2), u"Wants to lead the next release"_s);
        m_journal->addTag(session, u"launch"_s, u"🚀"_s);
        m_journal->addCounterpart(u"Ben"_s);
        m_journal->settle();
        const QString path = m_journal->filePath(u"Mine.tembrabackup"_s);

        answerPanel(path);
        action("createBackupAction")->trigger();
        QTRY_VERIFY(message().startsWith(u"The backup “Mine” is complete: read back"_s));

        for (const auto &counterpart : m_journal->counterparts())
            QVERIFY(m_journal->context().deleteObject(counterpart));
        m_journal->settle();
        QVERIFY(m_window->counterpartsViewController().counterparts().isEmpty());

        answerPanel(path);
        action("importBackupAction")->trigger();
        QTRY_COMPARE(message(), u"“Mine” is imported: 2 teammates and 1 meeting."_s);
        const auto listed = m_window->counterpartsViewController().counterparts();
        QCOMPARE(listed.size(), 2);
        QCOMPARE(listed.first()->name(), u"Ana"_s);
        const auto again = listed.first()->mostRecentSession();
        QCOMPARE(m_journal->note(again, NoteIdentifier(2))->contentString(),
                 u"Wants to lead the next release"_s);
        QCOMPARE(again->tagEmojiSummary(), u"🚀"_s);
    }

    void theMessageOffersToUndo()
    {
        drop({package(u"Mine"_s)});
        answerSheet(Qt::Key_Return);
        QTRY_COMPARE(message(), u"“Mine” is imported: 1 teammate and 1 meeting."_s);
        auto *undo = m_window->statusLine().findChild<QPushButton *>(u"statusActionButton"_s);
        QVERIFY(undo && undo->isVisible());
        QCOMPARE(undo->text(), u"Undo Import…"_s);
        QTest::mouseClick(undo, Qt::LeftButton);
        QTRY_VERIFY(sheet());
        QTest::mouseClick(sheet()->buttons().first(), Qt::LeftButton);
        QTRY_COMPARE(message(), u"The import of “Mine” was undone."_s);
        QVERIFY(m_window->counterpartsViewController().counterparts().isEmpty());
    }

    void droppedPackagesAreAskedAbout()
    {
        const QStringList paths{package(u"First"_s), package(u"Second"_s)};
        drop(paths);
        answerSheet(Qt::Key_Escape);
        QTRY_VERIFY(sheet()); // The other one.
        answerSheet(Qt::Key_Escape);
        QTRY_VERIFY(!sheet());
    }

    void otherFilesAreNotTaken()
    {
        QMimeData files;
        files.setUrls({QUrl::fromLocalFile(m_journal->filePath(u"windows.ini"_s)),
                       QUrl(u"https://example.org/x.tembrabackup"_s)});
        QVERIFY(!accepts(files));
        QMimeData nothing;
        QVERIFY(!accepts(nothing));
        QMimeData packages;
        packages.setUrls({QUrl::fromLocalFile(package(u"Mine"_s) + u'/')});
        QVERIFY(accepts(packages));
    }

    void anImportShowsInTheOpenViewsAtOnce()
    {
        const auto ben = m_journal->addCounterpart(u"Ben"_s);
        const auto session = m_journal->addSessionDaysAgo(ben, 1);
        m_journal->settle();
        m_window->detailPaneViewController().setSelectedCounterpart(ben);
        m_window->openPackages({package(u"Mine"_s)});
        answerSheet(Qt::Key_Return);
        QTRY_COMPARE(m_window->counterpartsViewController().counterparts().size(), 2);
        // What was open stays open.
        QCOMPARE(m_window->detailPaneViewController().selectedCounterpart(), ben);
        QCOMPARE(m_window->detailPaneViewController().selectedSession(), session);
    }

    void anEmptyBackupSaysSo()
    {
        m_window->openPackages({package(u"Mine"_s, "[]")});
        answerSheet(Qt::Key_Return);
        QTRY_COMPARE(message(), u"“Mine” holds no teammates."_s);
    }

    void theOfferToUndoStaysUntilItIsUsed()
    {
        const auto undoButton = [this] {
            auto *button = m_window->statusLine().findChild<QPushButton *>(u"statusActionButton"_s);
            return button && button->isVisible() ? button : nullptr;
        };
        const auto pressUndo = [&](int answer) {
            QVERIFY(undoButton());
            QTest::mouseClick(undoButton(), Qt::LeftButton);
            QTRY_VERIFY(sheet());
            QTest::mouseClick(sheet()->buttons().at(answer), Qt::LeftButton);
        };
        for (const QString &name : {u"First"_s, u"Second"_s}) {
            drop({package(name)});
            answerSheet(Qt::Key_Return);
            QTRY_COMPARE(message(), u"“%1” is imported: 1 teammate and 1 meeting."_s.arg(name));
        }
        pressUndo(1); // Cancel.
        QTRY_COMPARE(message(), u"“Second” is imported: 1 teammate and 1 meeting."_s);
        answerPanel(m_journal->filePath(u"Backup.tembrabackup"_s));
        action("createBackupAction")->trigger();
        QTRY_VERIFY(message().startsWith(u"The backup “Backup” is complete"_s));
        pressUndo(0);
        QTRY_COMPARE(message(), u"The import of “Second” was undone."_s);
        QCOMPARE(m_window->counterpartsViewController().counterparts().size(), 1);
        pressUndo(0);
        QTRY_COMPARE(message(), u"The import of “First” was undone."_s);
        QVERIFY(!undoButton());
        QVERIFY(m_window->counterpartsViewController().counterparts().isEmpty());
    }

    void dismissingAMessageTakesTheOfferAway()
    {
        drop({package(u"Mine"_s)});
        answerSheet(Qt::Key_Return);
        QTRY_COMPARE(message(), u"“Mine” is imported: 1 teammate and 1 meeting."_s);
        QTest::mouseClick(m_window->statusLine().findChild<QToolButton *>(u"statusDismissButton"_s),
                          Qt::LeftButton);
        m_window->openPackages({package(u"Empty"_s, "[]")});
        answerSheet(Qt::Key_Return);
        QTRY_COMPARE(message(), u"“Empty” holds no teammates."_s);
        QVERIFY(
            !m_window->statusLine().findChild<QPushButton *>(u"statusActionButton"_s)->isVisible());
    }

    void aLongImportShowsHowFarItIsAndCanBeCancelled()
    {
        m_window->openPackages({endlessPackage(200'000)});
        answerSheet(Qt::Key_Return);
        QVERIFY(!progressSheet()); // Not yet.
        QTRY_VERIFY(progressSheet());
        auto *bar = progressSheet()->findChild<QProgressBar *>(u"progressBar"_s);
        QTRY_VERIFY(bar->value() > 0);
        QTest::mouseClick(progressSheet()->findChild<QPushButton *>(u"progressCancelButton"_s),
                          Qt::LeftButton);
        QTRY_COMPARE(message(), u"Cancelled; nothing was changed."_s);
        QVERIFY(!progressSheet());
        QVERIFY(m_window->counterpartsViewController().counterparts().isEmpty());
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Session"}), 0);
    }

    void destroyingTheWindowCancelsAnImport()
    {
        m_window->openPackages({endlessPackage()});
        answerSheet(Qt::Key_Return);
        m_window.reset();
        QCOMPARE(recordCount(m_journal->context(), {.entityName = "Session"}), 0);
    }

    void aPackageInAFolderThatDoesNotAnswerCanBeLeft()
    {
        const QString stuck = package(u"Stuck"_s);
        const QString good = package(u"Good"_s);
        folderHangs = true;
        m_window->openPackages({stuck});
        auto *cancel = m_window->statusLine().findChild<QPushButton *>(u"statusCancelButton"_s);
        QTRY_VERIFY(cancel->isVisible());
        QCOMPARE(m_window->statusLine().findChild<EmojiLabel *>(u"statusTask"_s)->text(),
                 u"Looking at “Stuck” …"_s);
        m_window->openPackages({good});
        QVERIFY(!sheet());
        folderHangs = false; // For those that are asked from now on.
        const auto again = qScopeGuard([] { ++folderGeneration; });
        QTest::mouseClick(cancel, Qt::LeftButton);
        QTRY_VERIFY(sheet());
        QVERIFY(sheet()->accessibleDescription().contains(u"Good"_s));
        answerSheet(Qt::Key_Escape);
    }

private:
    QString package(const QString &name,
                    const QByteArray &json = R"([{"name":"Ana","sessions":[{}]}])") const
    {
        const QString path = m_journal->filePath(name + u".tembrabackup"_s);
        return BackupDocument{json}.write(path) ? path : QString();
    }

    /// A backup that takes much longer to import than any test waits.
    QString endlessPackage(int sessions = 3'000'000) const
    {
        return package(u"Long"_s, R"([{"name":"Ana","sessions":[{})"
                                      + QByteArray(",{}").repeated(sessions) + "]}]");
    }
    ProgressSheet *progressSheet() const
    {
        auto *found = m_window->findChild<ProgressSheet *>();
        return found && found->isVisible() ? found : nullptr;
    }

    QAction *action(const char *name) const
    {
        return m_window->findChild<QAction *>(QLatin1StringView(name));
    }
    QString message() const
    {
        const auto *label = m_window->statusLine().findChild<EmojiLabel *>(u"statusMessage"_s);
        return label && label->isVisible() ? label->text() : QString();
    }
    Alert *sheet() const
    {
        for (Alert *alert : m_window->findChildren<Alert *>()) {
            if (alert->isVisible())
                return alert;
        }
        return nullptr;
    }

    /// Types a path into the panel that is about to open.
    void answerPanel(const QString &path)
    {
        auto *timer = new QTimer(m_window.get());
        connect(timer, &QTimer::timeout, this, [timer, path] {
            auto *dialog = qobject_cast<PackageDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
            if (name->text() != path) {
                name->selectAll();
                QTest::keyClicks(name, path);
            }
            // The first time it may only close the list of completions.
            QTest::keyClick(name, Qt::Key_Return);
            if (!dialog->isVisible())
                timer->stop();
        });
        timer->start(50);
    }

    void answerSheet(Qt::Key key)
    {
        QTRY_VERIFY(sheet() && sheet()->isActiveWindow());
        QTest::keyClick(sheet(), key);
    }

    bool accepts(const QMimeData &files)
    {
        QDragEnterEvent enter(QPoint(200, 200), Qt::CopyAction, &files, Qt::LeftButton,
                              Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(m_window.get(), &enter);
        return enter.isAccepted();
    }
    void drop(const QStringList &paths)
    {
        QMimeData files;
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        files.setUrls(urls);
        QVERIFY(accepts(files));
        QDropEvent event(QPointF(200, 200), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_window.get(), &event);
        QVERIFY(event.isAccepted());
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<MainWindow> m_window;
};

QTEST_MAIN(tst_BackupCommands)

#include "tst_BackupCommands.moc"
