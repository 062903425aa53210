#include "Toolkit/PackageDialog.h"

#include "PackageFolder.h"
#include "Toolkit/Alert.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <algorithm>

using namespace tembra;
using namespace Qt::StringLiterals;

using Panel = PackageDialog::Panel;

class tst_PackageDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<PackageFolder>();
        m_folder->addPackage(u"Monday.box"_s);
        m_folder->addPackage(u"two words.box"_s);
        m_folder->addPackage(u"קופסה.box"_s);
        m_folder->addPackage(longName());
        m_folder->addFolder(u"Plain"_s);
        m_folder->addPackage(u"Plain/Tuesday.box"_s);
        m_folder->addFile(u"notes.txt"_s);
        m_folder->addFile(u"file.box"_s);
    }

    void cleanup()
    {
        m_dialog.reset();
        m_folder.reset();
    }

    // What is shown.

    void foldersAndPackagesAreListed()
    {
        open();
        QCOMPARE(m_dialog->windowTitle(), u"Choose"_s);
        QTRY_COMPARE(listed(), (QStringList{u"Plain"_s, u"file.box"_s, u"Monday.box"_s,
                                            u"two words.box"_s, longName(), u"קופסה.box"_s}));
        QVERIFY(chosen().isEmpty());
    }

    void everyControlHasAName()
    {
        open();
        for (const QWidget *control : m_dialog->findChildren<QWidget *>()) {
            if (control->focusPolicy() == Qt::NoFocus || !control->isVisible()
                || control->objectName().startsWith(u"qt_"_s))
                continue;
            const QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(
                const_cast<QWidget *>(control));
            QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(),
                     qPrintable(control->objectName()));
        }
        QCOMPARE(m_dialog->objectName(), u"packageDialog"_s);
    }

    void whereItStarts_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("shown"); // Empty for the home folder.
        QTest::newRow("folder") << u"/Plain"_s << u"/Plain"_s;
        QTest::newRow("package") << u"/Plain/Tuesday.box"_s << u"/Plain"_s;
        QTest::newRow("in a package") << u"/Plain/Tuesday.box/inner"_s << u"/Plain"_s;
        QTest::newRow("nowhere") << u"/none/at/all"_s << QString();
    }

    void whereItStarts()
    {
        QFETCH(QString, start);
        QFETCH(QString, shown);
        const QString expected = shown.isEmpty() ? QDir::homePath() : m_folder->path() + shown;
        show(Panel::Open, m_folder->path() + start);
        QCOMPARE(m_dialog->directory().absolutePath(), expected);
        show(Panel::Save, m_folder->path() + start + u"/Sunday.box"_s);
        QCOMPARE(m_dialog->directory().absolutePath(), expected);
        QCOMPARE(nameEdit()->text(), u"Sunday.box"_s);
    }

    // Opening with mouse and keys.

    void aClickFillsInTheName_data() { bothViews(); }
    void aClickFillsInTheName()
    {
        QFETCH(QFileDialog::ViewMode, mode);
        open(mode);
        QVERIFY(!button()->isEnabled());
        for (const QString &name : packages()) {
            click(name);
            QCOMPARE(nameEdit()->text(), name);
            QVERIFY(button()->isEnabled());
            QVERIFY(m_dialog->isVisible());
        }
        QTest::mouseClick(button(), Qt::LeftButton);
        QCOMPARE(chosen(), m_folder->path(packages().last()));
    }

    void aDoubleClickChooses_data() { bothViews(); }
    void aDoubleClickChooses()
    {
        QFETCH(QFileDialog::ViewMode, mode);
        for (const QString &name : packages()) {
            open(mode);
            doubleClick(name);
            QCOMPARE(chosen(), m_folder->path(name));
            QCOMPARE(m_dialog->directory().absolutePath(), m_folder->path());
        }
    }

    void returnInTheListChooses_data() { bothViews(); }
    void returnInTheListChooses()
    {
        QFETCH(QFileDialog::ViewMode, mode);
        open(mode);
        view()->setFocus();
        QTest::keyClicks(view(), u"tw"_s);
        QCOMPARE(nameEdit()->text(), u"two words.box"_s);
        QTest::keyClick(view(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"two words.box"_s));
    }

    void arrowsWalkThroughTheList()
    {
        open();
        view()->setFocus();
        QTest::keyClick(view(), Qt::Key_Down);
        // The plain file is passed over.
        QCOMPARE(nameEdit()->text(), u"Monday.box"_s);
        QTest::keyClick(view(), Qt::Key_Down);
        QCOMPARE(nameEdit()->text(), u"two words.box"_s);
        QTest::keyClick(view(), Qt::Key_Home);
        QVERIFY(nameEdit()->text().isEmpty());
        QTest::keyClick(view(), Qt::Key_Return);
        QTRY_COMPARE(listed(), QStringList{u"Tuesday.box"_s});
    }

    void completionsHelpToType()
    {
        open();
        nameEdit()->setFocus();
        QTest::keyClicks(nameEdit(), u"two"_s);
        QWidget *completions = nullptr;
        QTRY_VERIFY(completions = QApplication::activePopupWidget());
        QTest::keyClick(completions, Qt::Key_Down);
        QCOMPARE(nameEdit()->text(), u"two words.box"_s);
        QTest::keyClick(completions, Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"two words.box"_s));
    }

    void completionsAreNotInTheWay()
    {
        open();
        nameEdit()->setFocus();
        QTest::keyClicks(nameEdit(), u"Mon"_s);
        QTRY_VERIFY(QApplication::activePopupWidget());
        QTest::keyClicks(QApplication::activePopupWidget(), u"day"_s);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"Monday.box"_s));
    }

    void aPlainFileCannotBeSelected_data() { bothViews(); }
    void aPlainFileCannotBeSelected()
    {
        QFETCH(QFileDialog::ViewMode, mode);
        open(mode);
        click(u"file.box"_s);
        doubleClick(u"file.box"_s);
        QVERIFY(nameEdit()->text().isEmpty());
        QVERIFY(m_dialog->isVisible());
    }

    void aFolderIsEntered_data() { bothViews(); }
    void aFolderIsEntered()
    {
        QFETCH(QFileDialog::ViewMode, mode);
        open(mode);
        click(u"Monday.box"_s);
        click(u"Plain"_s);
        QVERIFY(nameEdit()->text().isEmpty());
        doubleClick(u"Plain"_s);
        QTRY_COMPARE(listed(), QStringList{u"Tuesday.box"_s});
        QVERIFY(chosen().isEmpty());
        doubleClick(u"Tuesday.box"_s);
        QCOMPARE(chosen(), m_folder->path(u"Plain/Tuesday.box"_s));
    }

    void theOpenButtonEntersASelectedFolder()
    {
        open();
        click(u"Plain"_s);
        QVERIFY(button()->isEnabled());
        QTest::mouseClick(button(), Qt::LeftButton);
        QTRY_COMPARE(listed(), QStringList{u"Tuesday.box"_s});
        QVERIFY(chosen().isEmpty());
        QVERIFY(m_dialog->isVisible());
    }

    void theParentFolderIsEntered()
    {
        show(Panel::Open, m_folder->path(u"Plain"_s));
        QTest::mouseClick(m_dialog->findChild<QToolButton *>(u"toParentButton"_s), Qt::LeftButton);
        QTRY_VERIFY(listed().contains(u"Monday.box"_s));
        QCOMPARE(m_dialog->directory().absolutePath(), m_folder->path());
    }

    void theHistoryDoesNotLeadIntoAPackage()
    {
        // As another program's dialog may have left it.
        show(Panel::Open, m_folder->path(u"Plain"_s));
        m_dialog->setHistory({m_folder->path(u"Monday.box"_s)});
        auto *places = m_dialog->findChild<QComboBox *>(u"lookInCombo"_s);
        places->setFocus();
        places->showPopup();
        const int row = places->findText(u"Monday.box"_s, Qt::MatchEndsWith);
        QVERIFY(row >= 0);
        places->view()->setCurrentIndex(places->model()->index(row, 0));
        QTest::keyClick(places->view(), Qt::Key_Return);
        QTRY_VERIFY(listed().contains(u"Monday.box"_s));
        QCOMPARE(m_dialog->directory().absolutePath(), m_folder->path());
    }

    void longNamesLeaveTheOthersInSight_data()
    {
        QTest::addColumn<Qt::LayoutDirection>("direction");
        QTest::newRow("left to right") << Qt::LeftToRight;
        QTest::newRow("right to left") << Qt::RightToLeft;
    }

    void longNamesLeaveTheOthersInSight()
    {
        QFETCH(Qt::LayoutDirection, direction);
        open(QFileDialog::List);
        m_dialog->setLayoutDirection(direction);
        QTest::qWait(50);
        const QRect row = view()->visualRect(view()->model()->index(0, 0, view()->rootIndex()));
        QVERIFY(view()->viewport()->rect().contains(row));
    }

    // Opening by name.

    void aTypedNameIsChosen_data()
    {
        QTest::addColumn<QString>("typed"); // %1 is the folder.
        QTest::addColumn<QString>("path");
        QTest::newRow("name") << u"Monday.box"_s << u"Monday.box"_s;
        QTest::newRow("without the suffix") << u"Monday"_s << u"Monday.box"_s;
        QTest::newRow("blanks") << u"two words.box"_s << u"two words.box"_s;
        QTest::newRow("right to left") << u"קופסה.box"_s << u"קופסה.box"_s;
        QTest::newRow("200 characters") << longName() << longName();
        QTest::newRow("relative") << u"Plain/Tuesday.box"_s << u"Plain/Tuesday.box"_s;
        QTest::newRow("absolute") << u"%1/Monday.box"_s << u"Monday.box"_s;
        QTest::newRow("absolute, elsewhere") << u"%1/Plain/Tuesday.box"_s << u"Plain/Tuesday.box"_s;
        QTest::newRow("up and down") << u"Plain/../Plain/Tuesday.box"_s << u"Plain/Tuesday.box"_s;
    }

    void aTypedNameIsChosen()
    {
        QFETCH(QString, typed);
        QFETCH(QString, path);
        open();
        const QString text = typed.contains(u'%') ? typed.arg(m_folder->path()) : typed;
        type(text);
        QCOMPARE(nameEdit()->text(), text);
        QVERIFY(button()->isEnabled());
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(path));
    }

    void otherThingsAreRefused_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        QTest::newRow("another file") << u"notes.txt"_s << u"notes.txt"_s << u"Cardboard box"_s;
        QTest::newRow("plain file") << u"file.box"_s << u"file.box"_s << u"plain file"_s;
        QTest::newRow("nothing") << u"Sunday.box"_s << u"Sunday.box"_s << u"not found"_s;
        QTest::newRow("in a package")
            << u"Monday.box/content.json"_s << u"Monday.box"_s << u"inside"_s;
        QTest::newRow("300 characters") << u"x"_s.repeated(300) << u"xx…xx"_s << u"not found"_s;
    }

    void otherThingsAreRefused()
    {
        QFETCH(QString, typed);
        QFETCH(QString, name);
        QFETCH(QString, reason);
        open();
        const int width = m_dialog->width();
        QVERIFY(!message()->isVisible());
        type(typed);
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QVERIFY(m_dialog->isVisible());
        QVERIFY(message()->isVisible());
        QVERIFY2(message()->text().contains(name), qPrintable(message()->text()));
        QVERIFY2(message()->text().contains(reason), qPrintable(message()->text()));
        QCOMPARE(message()->textFormat(), Qt::PlainText);
        QCOMPARE(m_dialog->width(), width);
        // The next name may be typed at once.
        QTest::keyClicks(nameEdit(), u"Monday"_s);
        QVERIFY(!message()->isVisible());
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"Monday.box"_s));
    }

    void aTypedFolderIsEntered()
    {
        open();
        type(m_folder->path(u"Plain"_s));
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QTRY_COMPARE(listed(), QStringList{u"Tuesday.box"_s});
        QVERIFY(m_dialog->isVisible());
        QVERIFY(nameEdit()->text().isEmpty());
        QTest::keyClicks(nameEdit(), u"Tuesday"_s);
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"Plain/Tuesday.box"_s));
    }

    void withoutANameThereIsNothingToOpen()
    {
        open();
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        type(u"  "_s);
        QVERIFY(!button()->isEnabled());
        QTest::keyClick(nameEdit(), Qt::Key_Return);
        QVERIFY(m_dialog->isVisible());
        QVERIFY(!message()->isVisible());
    }

    void escapeCancels_data()
    {
        QTest::addColumn<Panel>("panel");
        QTest::addColumn<bool>("inTheList");
        QTest::newRow("open, name") << Panel::Open << false;
        QTest::newRow("open, list") << Panel::Open << true;
        QTest::newRow("save, name") << Panel::Save << false;
        QTest::newRow("save, list") << Panel::Save << true;
    }

    void escapeCancels()
    {
        QFETCH(Panel, panel);
        QFETCH(bool, inTheList);
        show(panel, panel == Panel::Open ? m_folder->path() : m_folder->path(u"Sunday"_s));
        if (inTheList)
            view()->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!m_dialog->isVisible());
        QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
        QVERIFY(m_dialog->chosenPath().isEmpty());
    }

    void theOpenPanelChangesNothingOnDisk()
    {
        open();
        QVERIFY(!m_dialog->findChild<QWidget *>(u"newFolderButton"_s)->isVisible());
        QVERIFY(!m_dialog->findChild<QAction *>(u"qt_new_folder_action"_s)->isVisible());
        verifyDeletingIsImpossible();
        QTest::keyClick(view(), Qt::Key_F2);
        QVERIFY(!view()->findChild<QLineEdit *>());
    }

    // Saving.

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

    // Many, and for callers.

    void thousandsOfPackagesAreListedSoon()
    {
        for (int i = 0; i < 2000; ++i)
            m_folder->addFolder(u"Many/Box %1.box"_s.arg(i));
        QElapsedTimer time;
        time.start();
        show(Panel::Open, m_folder->path(u"Many"_s), {});
        QTRY_COMPARE_WITH_TIMEOUT(listed().size(), 2000, 20000);
        qInfo("2000 packages were listed after %lld ms", time.elapsed());
        QCOMPARE(listed().at(10), u"Box 10.box"_s);
        view()->setFocus();
        QTest::keyClick(view(), Qt::Key_End);
        QCOMPARE(nameEdit()->text(), u"Box 1999.box"_s);
        QTest::keyClick(view(), Qt::Key_Return);
        QCOMPARE(chosen(), m_folder->path(u"Many/Box 1999.box"_s));
    }

    void callersGetThePath()
    {
        answer([this](PackageDialog *dialog) {
            QTest::keyClicks(dialog->findChild<QLineEdit *>(u"fileNameEdit"_s), u"Monday"_s);
            QTest::mouseClick(acceptButton(dialog), Qt::LeftButton);
        });
        QCOMPARE(PackageDialog::getOpenPackage(nullptr, u"Choose"_s, m_folder->type,
                                               m_folder->path()),
                 std::optional(m_folder->path(u"Monday.box"_s)));
        answer(
            [](PackageDialog *dialog) { QTest::mouseClick(acceptButton(dialog), Qt::LeftButton); });
        QCOMPARE(PackageDialog::getSavePackage(nullptr, u"Save"_s, m_folder->type,
                                               m_folder->path(u"Sunday"_s)),
                 std::optional(m_folder->path(u"Sunday.box"_s)));
    }

    void callersGetNothingWhenItWasCancelled()
    {
        answer([](PackageDialog *dialog) { dialog->reject(); });
        QCOMPARE(PackageDialog::getOpenPackage(nullptr, u"Choose"_s, m_folder->type,
                                               m_folder->path()),
                 std::optional<QString>());
    }

    void callersGetNothingWhenTheWindowGoes()
    {
        auto *window = new QWidget;
        window->show();
        answer([window](PackageDialog *) { delete window; });
        QCOMPARE(PackageDialog::getSavePackage(window, u"Save"_s, m_folder->type,
                                               m_folder->path(u"Sunday"_s)),
                 std::optional<QString>());
    }

private:
    static QString longName() { return u"w"_s.repeated(196) + u".box"_s; }

    static QStringList packages()
    {
        return {u"Monday.box"_s, u"two words.box"_s, u"קופסה.box"_s, longName()};
    }

    static void bothViews()
    {
        QTest::addColumn<QFileDialog::ViewMode>("mode");
        QTest::newRow("list") << QFileDialog::List;
        QTest::newRow("table") << QFileDialog::Detail;
    }

    void show(Panel panel, const QString &path,
              std::optional<QFileDialog::ViewMode> mode = QFileDialog::Detail)
    {
        m_dialog = std::make_unique<PackageDialog>(panel, m_folder->type, u"Choose"_s, path);
        if (mode)
            m_dialog->setViewMode(*mode);
        m_dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
    }

    void open(QFileDialog::ViewMode mode = QFileDialog::Detail)
    {
        show(Panel::Open, m_folder->path(), mode);
        QTRY_COMPARE(listed().size(), 6);
    }

    void save(const QString &name, QFileDialog::ViewMode mode = QFileDialog::Detail)
    {
        show(Panel::Save, m_folder->path(name), mode);
        QTRY_COMPARE(listed().size(), 6);
    }

    /// What the dialog says to its caller; empty as long as it is open.
    QString chosen() const
    {
        return m_dialog->result() == QDialog::Accepted ? m_dialog->chosenPath() : QString();
    }

    QLineEdit *nameEdit() const { return m_dialog->findChild<QLineEdit *>(u"fileNameEdit"_s); }
    QLabel *message() const { return m_dialog->findChild<QLabel *>(u"packageMessage"_s); }
    QPushButton *button() const { return acceptButton(m_dialog.get()); }
    QString buttonText() const { return button()->text().remove(u'&'); }

    static QPushButton *acceptButton(const QDialog *dialog)
    {
        for (auto *button : dialog->findChildren<QPushButton *>())
            if (button->isDefault())
                return button;
        return nullptr;
    }

    QAbstractItemView *view() const
    {
        if (m_dialog->viewMode() == QFileDialog::List)
            return m_dialog->findChild<QListView *>(u"listView"_s);
        return m_dialog->findChild<QTreeView *>(u"treeView"_s);
    }

    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; row < view()->model()->rowCount(view()->rootIndex()); ++row)
            names.append(view()->model()->index(row, 0, view()->rootIndex()).data().toString());
        return names;
    }

    QPoint placeOf(const QString &name) const
    {
        const int row = int(listed().indexOf(name));
        const QModelIndex index = view()->model()->index(row, 0, view()->rootIndex());
        view()->scrollTo(index);
        return view()->visualRect(index).topLeft() + QPoint(20, 5);
    }

    void click(const QString &name) const
    {
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, placeOf(name));
    }

    void doubleClick(const QString &name) const
    {
        const QPoint place = placeOf(name);
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(view()->viewport(), Qt::LeftButton, {}, place);
    }

    void type(const QString &text) const
    {
        nameEdit()->setFocus();
        nameEdit()->selectAll();
        // Keys can be simulated for Latin letters only; others are pasted.
        if (std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; })) {
            QTest::keyClicks(nameEdit(), text);
        } else {
            QApplication::clipboard()->setText(text);
            QTest::keyClick(nameEdit(), Qt::Key_V, Qt::ControlModifier);
        }
        // What offers to complete it would be taken for the window that gets the next key.
        if (QWidget *popup = QApplication::activePopupWidget())
            QTest::keyClick(popup, Qt::Key_Escape);
    }

    Alert *question() const
    {
        auto *alert = m_dialog->findChild<Alert *>();
        if (!alert || !alert->isVisible())
            return nullptr;
        [[maybe_unused]] const bool active = QTest::qWaitFor(
            [alert] { return QApplication::activeWindow() == alert; });
        return alert;
    }

    void verifyDeletingIsImpossible() const
    {
        QVERIFY(!m_dialog->findChild<QAction *>(u"qt_delete_action"_s)->isVisible());
        click(u"Monday.box"_s);
        QTest::keyClick(view(), Qt::Key_Delete);
        QVERIFY(!QApplication::activeModalWidget()
                || QApplication::activeModalWidget() == m_dialog.get());
        QVERIFY(QFile::exists(m_folder->path(u"Monday.box/content.json"_s)));
    }

    void answer(const std::function<void(PackageDialog *)> &act)
    {
        QTimer::singleShot(100, this, [act] {
            auto *dialog = qobject_cast<PackageDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            act(dialog);
        });
    }

    std::unique_ptr<PackageFolder> m_folder;
    std::unique_ptr<PackageDialog> m_dialog;
};

QTEST_MAIN(tst_PackageDialog)
#include "tst_PackageDialog.moc"
