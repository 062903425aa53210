#include "PackageDialogTest.h"

#include <QComboBox>
#include <QToolButton>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Choosing a package to open, with mouse and keys and by its name.
class tst_PackageDialogOpening : public QObject, protected PackageDialogTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

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
        gui::handlePendingEvents();
        const QRect row = view()->visualRect(view()->model()->index(0, 0, view()->rootIndex()));
        QVERIFY(view()->viewport()->rect().contains(row));
    }

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
};

QTEST_MAIN(tst_PackageDialogOpening)
#include "tst_PackageDialogOpening.moc"
