#include "PackageDialogTest.h"

#include <QToolButton>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Choosing where a package is saved.
class tst_PackageDialogSaving : public QObject, protected PackageDialogTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void theSuggestedNameIsSaved()
    {
        save(u"Sunday"_s);
        QCOMPARE(nameEdit()->text(), u"Sunday.box"_s);
        QVERIFY(nameEdit()->hasFocus());
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"Sunday.box"_s));
        QVERIFY(!QFile::exists(chosen()));
    }

    void typingReplacesTheNameAndLeavesTheSuffix_data()
    {
        QTest::addColumn<QString>("suggested");
        QTest::newRow("new") << u"Sunday"_s;
        QTest::newRow("there already") << u"Monday"_s;
    }

    void typingReplacesTheNameAndLeavesTheSuffix()
    {
        QFETCH(QString, suggested);
        save(suggested);
        QCOMPARE(nameEdit()->selectedText(), suggested);
        QTest::keyClicks(nameEdit(), u"Sabbath"_s);
        QCOMPARE(nameEdit()->text(), u"Sabbath.box"_s);
        QTest::mouseClick(button(), Qt::LeftButton);
        QCOMPARE(chosen(), m_folder->path(u"Sabbath.box"_s));
    }

    void whereItIsSaved_data()
    {
        QTest::addColumn<QString>("typed"); // %1 is the folder.
        QTest::addColumn<QString>("path");
        QTest::newRow("suffix is missing") << u"Sabbath"_s << u"Sabbath.box"_s;
        QTest::newRow("suffix is there") << u"Sabbath.box"_s << u"Sabbath.box"_s;
        QTest::newRow("blanks") << u"my last day"_s << u"my last day.box"_s;
        QTest::newRow("right to left") << u"שבת"_s << u"שבת.box"_s;
        QTest::newRow("200 characters") << u"y"_s.repeated(200) << u"y"_s.repeated(200) + u".box"_s;
        QTest::newRow("relative") << u"Plain/Sabbath"_s << u"Plain/Sabbath.box"_s;
        QTest::newRow("absolute") << u"%1/Plain/Sabbath"_s << u"Plain/Sabbath.box"_s;
    }

    void whereItIsSaved()
    {
        QFETCH(QString, typed);
        QFETCH(QString, path);
        save(u"Sunday"_s);
        type(typed.contains(u'%') ? typed.arg(m_folder->path()) : typed);
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(path));
    }

    void replacingIsAsked_data()
    {
        QTest::addColumn<int>("key"); // 0 for a click on Replace.
        QTest::addColumn<bool>("replaces");
        QTest::newRow("click on Replace") << 0 << true;
        QTest::newRow("Return") << int(Qt::Key_Return) << false;
        QTest::newRow("Escape") << int(Qt::Key_Escape) << false;
    }

    void replacingIsAsked()
    {
        QFETCH(int, key);
        QFETCH(bool, replaces);
        save(u"Monday"_s);
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        Alert *alert = question();
        QVERIFY(alert);
        const QString text = alert->findChild<QLabel *>(u"messageText"_s)->text();
        QVERIFY(text.contains(u"Monday.box"_s) && text.contains(u"already exists"_s));
        QVERIFY(m_dialog->isVisible());
        if (key == 0)
            QTest::mouseClick(alert->buttons().at(0), Qt::LeftButton);
        else
            QTest::keyClick(QApplication::focusWidget(), Qt::Key(key));
        QCOMPARE(chosen(), replaces ? m_folder->path(u"Monday.box"_s) : QString());
        QCOMPARE(m_dialog->isVisible(), !replaces);
        QVERIFY(QFile::exists(m_folder->path(u"Monday.box/content.json"_s)));
    }

    void afterKeepingAPackageAnotherNameMayBeTyped()
    {
        save(u"Monday"_s);
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QVERIFY(question());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_COMPARE(QApplication::activeWindow(), m_dialog.get());
        type(u"Sunday"_s);
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"Sunday.box"_s));
    }

    void aPackageInTheListIsTheOneToReplace_data() { bothViews(); }
    void aPackageInTheListIsTheOneToReplace()
    {
        QFETCH(QFileDialog::ViewMode, mode);
        save(u"Sunday"_s, mode);
        click(u"two words.box"_s);
        QCOMPARE(nameEdit()->text(), u"two words.box"_s);
        QCOMPARE(buttonText(), u"Save"_s);
        doubleClick(u"Monday.box"_s);
        QVERIFY(question());
        QTest::mouseClick(question()->buttons().at(0), Qt::LeftButton);
        QCOMPARE(chosen(), m_folder->path(u"Monday.box"_s));
        QCOMPARE(m_dialog->directory().absolutePath(), m_folder->path());
    }

    void whereItCannotBeSaved_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        QTest::newRow("plain file") << u"file"_s << u"file.box"_s << u"in the way"_s;
        QTest::newRow("in a package") << u"Monday.box/x"_s << u"Monday.box"_s << u"inside"_s;
        QTest::newRow("no such folder") << u"None/x"_s << u"None"_s << u"no folder"_s;
        QTest::newRow("too long") << u"x"_s.repeated(252) << QString() << u"too long"_s;
    }

    void whereItCannotBeSaved()
    {
        QFETCH(QString, typed);
        QFETCH(QString, name);
        QFETCH(QString, reason);
        save(u"Sunday"_s);
        type(typed);
        QVERIFY(button()->isEnabled());
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QVERIFY(m_dialog->isVisible());
        QVERIFY(!question());
        QVERIFY2(message()->text().contains(name), qPrintable(message()->text()));
        QVERIFY2(message()->text().contains(reason), qPrintable(message()->text()));
    }

    void theNameGoesAlongIntoAFolder()
    {
        save(u"Sunday"_s);
        type(u"Sabbath"_s);
        click(u"Plain"_s);
        QCOMPARE(nameEdit()->text(), u"Sabbath"_s);
        doubleClick(u"Plain"_s);
        QTRY_COMPARE(listed(), QStringList{u"Tuesday.box"_s});
        QCOMPARE(nameEdit()->text(), u"Sabbath"_s);
        QTest::mouseClick(button(), Qt::LeftButton);
        QCOMPARE(chosen(), m_folder->path(u"Plain/Sabbath.box"_s));
    }

    void aTypedFolderIsEnteredWithTheSuggestedName()
    {
        save(u"Sunday"_s);
        type(u"Plain"_s);
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QTRY_COMPARE(listed(), QStringList{u"Tuesday.box"_s});
        QCOMPARE(nameEdit()->text(), u"Sunday.box"_s);
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"Plain/Sunday.box"_s));
    }

    void theButtonAlwaysSaysSave()
    {
        save(u"Sunday"_s);
        QCOMPARE(buttonText(), u"Save"_s);
        for (const QString &name :
             {u"Monday.box"_s, u"Plain"_s, u".."_s, m_folder->path(), u"None"_s}) {
            type(name);
            QCOMPARE(buttonText(), u"Save"_s);
            QVERIFY(button()->isEnabled());
        }
        doubleClick(u"Plain"_s);
        QTRY_COMPARE(listed(), QStringList{u"Tuesday.box"_s});
        QCOMPARE(buttonText(), u"Save"_s);
        QTest::mouseClick(m_dialog->findChild<QToolButton *>(u"backButton"_s), Qt::LeftButton);
        QTRY_VERIFY(listed().contains(u"Monday.box"_s));
        QCOMPARE(buttonText(), u"Save"_s);
    }

    void aNewFolderCanBeMade()
    {
        save(u"Sunday"_s);
        auto *newFolder = m_dialog->findChild<QToolButton *>(u"newFolderButton"_s);
        QVERIFY(newFolder->isVisible());
        QTest::mouseClick(newFolder, Qt::LeftButton);
        QTRY_VERIFY(view()->findChild<QLineEdit *>());
        auto *editor = view()->findChild<QLineEdit *>();
        editor->selectAll();
        QTest::keyClicks(editor, u"Fresh"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_VERIFY(QFileInfo(m_folder->path(u"Fresh"_s)).isDir());
        QVERIFY(m_dialog->isVisible());
        QTRY_VERIFY(listed().contains(u"Fresh"_s));
        doubleClick(u"Fresh"_s);
        QTest::mouseClick(button(), Qt::LeftButton);
        QCOMPARE(chosen(), m_folder->path(u"Fresh/Sunday.box"_s));
    }

    void theSavePanelDeletesAndRenamesNoPackages()
    {
        save(u"Sunday"_s);
        verifyDeletingIsImpossible();
        QTest::keyClick(view(), Qt::Key_F2);
        QVERIFY(!view()->findChild<QLineEdit *>());
    }
};

QTEST_MAIN(tst_PackageDialogSaving)
#include "tst_PackageDialogSaving.moc"
