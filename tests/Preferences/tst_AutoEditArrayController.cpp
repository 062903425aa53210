#include "Preferences/InputControls/AutoEditArrayController.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>
#include <QVBoxLayout>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestAutoEditArrayController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void editsTheAddedRow();
    void waitsATenthOfASecond();
    void typesTheNameAtOnce();
    void keepsWhatAnotherEditorHolds();
    void editsTheSelectedRowNotTheAddedOne();
    void editsNothingWithoutSelection();
    void editsNothingWithoutTable();
    void editsNothingBeyondTheTablesRows();
    void addsTwiceInARow();
    void survivesItsTable();

private:
    QLineEdit *editor() const { return m_table->findChild<QLineEdit *>(); }
    QStringList names() const
    {
        QStringList result;
        for (const auto &object : m_controller->arrangedObjects())
            result.append(object->objectName());
        return result;
    }

    std::unique_ptr<AutoEditArrayController> m_controller;
    std::unique_ptr<QTableView> m_table;
};

void TestAutoEditArrayController::init()
{
    m_controller = std::make_unique<AutoEditArrayController>();
    m_controller->setColumns({"objectName"});
    m_controller->setColumnEditable(0, true);
    m_controller->setNewObject([] {
        auto object = std::make_shared<QObject>();
        object->setObjectName(u"Unnamed"_s);
        return object;
    });
    m_table = std::make_unique<QTableView>();
    m_table->setModel(m_controller.get());
    m_controller->bindSelection(m_table->selectionModel());
    m_controller->setTableView(m_table.get());
    m_table->resize(300, 200);
    m_table->show();
    QVERIFY(QTest::qWaitForWindowActive(m_table.get()));
}

void TestAutoEditArrayController::cleanup()
{
    m_table.reset();
    m_controller.reset();
}

void TestAutoEditArrayController::editsTheAddedRow()
{
    m_controller->add();
    QTRY_VERIFY(editor());
    QVERIFY(m_table->isPersistentEditorOpen(m_controller->index(0, 0)));
    QCOMPARE(editor()->selectedText(), u"Unnamed"_s);
    QTRY_VERIFY(editor()->hasFocus());
}

void TestAutoEditArrayController::waitsATenthOfASecond()
{
    QElapsedTimer clock;
    clock.start();
    m_controller->add();
    QVERIFY(!editor());
    QTRY_VERIFY_WITH_TIMEOUT(editor(), 1000);
    QVERIFY(clock.elapsed() >= 95);
}

void TestAutoEditArrayController::typesTheNameAtOnce()
{
    m_controller->add();
    QTRY_VERIFY(editor());
    QTest::keyClicks(editor(), u"Ana Silva"_s);
    QTest::keyClick(editor(), Qt::Key_Return);
    QTRY_COMPARE(names(), QStringList({u"Ana Silva"_s}));
}

void TestAutoEditArrayController::keepsWhatAnotherEditorHolds()
{
    m_controller->add();
    QTRY_VERIFY(editor());
    QTest::keyClicks(editor(), u"Ana"_s);
    m_controller->add();
    QTRY_VERIFY(m_table->isPersistentEditorOpen(m_controller->index(1, 0)));
    QTRY_COMPARE(names(), QStringList({u"Ana"_s, u"Unnamed"_s}));
}

void TestAutoEditArrayController::editsTheSelectedRowNotTheAddedOne()
{
    m_controller->add();
    m_controller->add();
    m_controller->setSelectionIndex(0);
    QTRY_VERIFY(editor());
    QVERIFY(m_table->isPersistentEditorOpen(m_controller->index(0, 0)));
}

void TestAutoEditArrayController::editsNothingWithoutSelection()
{
    m_controller->add();
    m_controller->setSelectedObjects({});
    QTest::qWait(250);
    QVERIFY(!editor());
}

void TestAutoEditArrayController::editsNothingWithoutTable()
{
    m_controller->setTableView(nullptr);
    m_controller->add();
    QTest::qWait(250);
    QVERIFY(!editor());
    QCOMPARE(names(), QStringList({u"Unnamed"_s}));
}

void TestAutoEditArrayController::editsNothingBeyondTheTablesRows()
{
    // The table shows fewer rows than the controller has: here, those of another model.
    QStandardItemModel other(1, 1);
    m_controller->bindSelection(nullptr);
    m_table->setModel(&other);
    m_controller->add();
    m_controller->add();
    QCOMPARE(m_controller->selectionIndex(), 1);
    QTest::qWait(250);
    QVERIFY(!editor());
    m_table->setModel(nullptr);
}

void TestAutoEditArrayController::addsTwiceInARow()
{
    m_controller->add();
    m_controller->add();
    QTRY_VERIFY(editor());
    QTest::keyClicks(editor(), u"Second"_s);
    QTest::qWait(250);
    QCOMPARE(editor()->text(), u"Second"_s);
    QVERIFY(m_table->isPersistentEditorOpen(m_controller->index(1, 0)));
}

void TestAutoEditArrayController::survivesItsTable()
{
    m_controller->add();
    m_table.reset();
    QTest::qWait(250);
    QVERIFY(!m_controller->tableView());
    QCOMPARE(names(), QStringList({u"Unnamed"_s}));
}

QTEST_MAIN(TestAutoEditArrayController)
#include "tst_AutoEditArrayController.moc"
