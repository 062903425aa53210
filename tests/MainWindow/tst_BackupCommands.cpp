#include "Backup/BackupDocument.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "MainWindow/StatusLine.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Package/PackageDialog.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QUrl>

using namespace tembra;
using namespace Qt::StringLiterals;

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

    void aLongImportShowsHowFarItIsAndCanBeCancelled()
    {
        QByteArray json = R"([{"name":"Ana","sessions":[{})";
        for (int i = 0; i < 40'000; ++i)
            json += ",{}";
        m_window->openPackages({package(u"Long"_s, json + "]}]")});
        answerSheet(Qt::Key_Return);
        auto *cancel = m_window->statusLine().findChild<QPushButton *>(u"statusCancelButton"_s);
        QVERIFY(cancel && !cancel->isVisible()); // Not yet.
        QVERIFY(!action("importBackupAction")->isEnabled());
        QVERIFY(!action("createBackupAction")->isEnabled());
        QTRY_VERIFY(cancel->isVisible());
        QTest::mouseClick(cancel, Qt::LeftButton);
        QTRY_COMPARE(message(), u"Cancelled; nothing was changed."_s);
        QVERIFY(action("importBackupAction")->isEnabled());
        QVERIFY(m_window->counterpartsViewController().counterparts().isEmpty());
        QCOMPARE(*m_journal->context().count({.entityName = "Session"}), 0);
    }

    void closingTheWindowEndsAnImport()
    {
        QByteArray json = R"([{"name":"Ana","sessions":[{})";
        for (int i = 0; i < 20'000; ++i)
            json += ",{}";
        m_window->openPackages({package(u"Long"_s, json + "]}]")});
        answerSheet(Qt::Key_Return);
        m_window.reset();
        QCOMPARE(*m_journal->context().count({.entityName = "Session"}), 0);
    }

private:
    QString package(const QString &name,
                    const QByteArray &json = R"([{"name":"Ana","sessions":[{}]}])") const
    {
        const QString path = m_journal->filePath(name + u".tembrabackup"_s);
        return BackupDocument{json}.write(path) ? path : QString();
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
