#include "Backup/BackupPanel.h"

#include "Backup/BackupDocument.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"
#include "Toolkit/Package/PackageDialog.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_BackupPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_window = std::make_unique<QWidget>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_panel = std::make_unique<BackupPanel>(m_journal->coreData(), m_journal->clock,
                                                m_window.get());
    }
    void cleanup()
    {
        m_panel.reset();
        m_window.reset();
        m_journal.reset();
    }

    void asksWhereWithANameForToday()
    {
        m_journal->addCounterpart(u"Ana"_s);
        QString suggested;
        const QString path = m_journal->filePath(u"Chosen.tembrabackup"_s);
        answerPanel([&](PackageDialog &dialog) {
            auto *name = dialog.findChild<QLineEdit *>(u"fileNameEdit"_s);
            suggested = name->text();
            name->selectAll();
            QTest::keyClicks(name, path);
            QTest::keyClick(name, Qt::Key_Return);
        });
        QSignalSpy wrote(m_panel.get(), &BackupPanel::wrote);
        m_panel->createBackup(ids());
        QCOMPARE(suggested, u"Tembra_Backup_2026-11-20.tembrabackup"_s);
        QVERIFY(wrote.size() == 1 || wrote.wait());
        const auto backup = wrote.first().first().value<WrittenBackup>();
        QCOMPARE(backup.packagePath, path);
        QCOMPARE(backup.replacedCopy, QString());
        const auto document = BackupDocument::read(path);
        QVERIFY(document);
        QVERIFY(document->teammatesJsonData->contains("Ana"));
        QCOMPARE(backup.size, document->teammatesJsonData->size());
        // What was typed until then is saved too.
        QVERIFY(!m_journal->context().hasChanges());
    }

    void cancellingWritesNothing()
    {
        answerPanel([](PackageDialog &dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
        QSignalSpy began(m_panel.get(), &BackupPanel::began);
        m_panel->createBackup(ids());
        QCOMPARE(began.size(), 0);
        QVERIFY(!m_panel->isRunning());
    }

    void keepsTheOrderOfTheList()
    {
        m_journal->addCounterpart(u"Ana"_s);
        m_journal->addCounterpart(u"Ben"_s);
        QList<ObjectID> reversed = ids();
        std::reverse(reversed.begin(), reversed.end());
        const QByteArray json = written(reversed);
        QVERIFY(json.indexOf("Ben") >= 0);
        QVERIFY(json.indexOf("Ben") < json.indexOf("Ana"));
    }

    void editsOfThisMomentAreInIt()
    {
        const auto ana = m_journal->addCounterpart(u"Ana"_s);
        m_journal->settle();
        ana->setName(u"Anna"_s);
        QVERIFY(written(ids()).contains("Anna"));
    }

    void aFailureIsLoggedAndNothingElse()
    {
        m_journal->addCounterpart(u"Ana"_s);
        QSignalSpy ended(m_panel.get(), &BackupPanel::ended);
        QSignalSpy wrote(m_panel.get(), &BackupPanel::wrote);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Could not write backup: .+"_s));
        m_panel->writeBackup(ids(), u"/no/such/folder/Mine.tembrabackup"_s);
        QVERIFY(ended.wait());
        QTest::qWait(20);
        QCOMPARE(wrote.size(), 0);
        QVERIFY(!QApplication::activeModalWidget());
    }

private:
    QList<ObjectID> ids() const
    {
        QList<ObjectID> all;
        for (const auto &counterpart : m_journal->counterparts())
            all.append(counterpart->objectID());
        return all;
    }

    QByteArray written(const QList<ObjectID> &teammates)
    {
        const QString path = m_journal->filePath(u"Mine.tembrabackup"_s);
        QSignalSpy wrote(m_panel.get(), &BackupPanel::wrote);
        m_panel->writeBackup(teammates, path);
        if (!wrote.wait())
            return {};
        return BackupDocument::read(path)->teammatesJsonData.value_or(QByteArray());
    }

    void answerPanel(const std::function<void(PackageDialog &)> &answer)
    {
        auto *timer = new QTimer(m_window.get());
        connect(timer, &QTimer::timeout, this, [timer, answer] {
            auto *dialog = qobject_cast<PackageDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            timer->stop();
            answer(*dialog);
        });
        timer->start(50);
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<BackupPanel> m_panel;
};

QTEST_MAIN(tst_BackupPanel)

#include "tst_BackupPanel.moc"
