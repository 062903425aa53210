#include "Toolkit/FieldPopover.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

/// A popover below a field in a pane of a window that has another field, too.
class tst_FieldPopover : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_window.reset(); }

    void leavesTheKeyboardInTheField();
    void movesWhenTheFieldGrows();
    void movesWithWhatTheFieldLiesIn();
    void changesSidesWhenTheFieldGrowsToTheWindowsEnd();
    void staysBesideARectangleOfTheField();
    void aClickElsewhereClosesIt();
    void aClickInTheFieldOrInItLeavesItOpen();
    void closesWhenTheWindowIsLeft();
    void goesWithTheField();

private:
    QRect inWindow(const QWidget *widget) const
    {
        return {widget->mapTo(m_window.get(), QPoint()), widget->size()};
    }

    std::unique_ptr<QWidget> m_window;
    QWidget *m_pane = nullptr;
    QLineEdit *m_field = nullptr;
    QLineEdit *m_elsewhere = nullptr;
    QLabel *m_content = nullptr;
    QPointer<FieldPopover> m_popover;
};

void tst_FieldPopover::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(500, 400);
    m_elsewhere = new QLineEdit(m_window.get());
    m_pane = new QWidget(m_window.get());
    m_pane->setGeometry(0, 50, 500, 350);
    m_field = new QLineEdit(m_pane);
    m_field->setGeometry(150, 20, 200, 24);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_field->setFocus();
    m_popover = new FieldPopover(m_field);
    m_content = new QLabel(u"content"_s);
    m_content->setFixedSize(120, 60);
    m_popover->setContent(m_content);
    m_popover->showRelativeTo(m_field, Qt::BottomEdge);
    QVERIFY(m_popover->isVisible());
}

void tst_FieldPopover::leavesTheKeyboardInTheField()
{
    QVERIFY(m_field->hasFocus());
    QVERIFY(!m_popover->isWindow());
    QCOMPARE(inWindow(m_popover).top(), inWindow(m_field).bottom() + 1);
    QTest::keyClicks(QApplication::focusWidget(), u"typed"_s);
    QCOMPARE(m_field->text(), u"typed"_s);
}

void tst_FieldPopover::movesWhenTheFieldGrows()
{
    m_field->setGeometry(150, 20, 200, 100);
    QCOMPARE(inWindow(m_popover).top(), inWindow(m_field).bottom() + 1);
    m_field->setGeometry(150, 20, 200, 24);
    QCOMPARE(inWindow(m_popover).top(), inWindow(m_field).bottom() + 1);
}

void tst_FieldPopover::movesWithWhatTheFieldLiesIn()
{
    m_pane->move(20, 90);
    QCOMPARE(inWindow(m_popover).top(), inWindow(m_field).bottom() + 1);
    QVERIFY(qAbs(inWindow(m_popover).center().x() - inWindow(m_field).center().x()) <= 1);
}

void tst_FieldPopover::changesSidesWhenTheFieldGrowsToTheWindowsEnd()
{
    m_field->setGeometry(150, 150, 200, 190);
    QCOMPARE(m_popover->edge(), Qt::TopEdge);
    QVERIFY(!inWindow(m_popover).intersects(inWindow(m_field)));
}

void tst_FieldPopover::staysBesideARectangleOfTheField()
{
    m_popover->showRelativeTo(m_field, QRect(0, 0, 20, 10), Qt::BottomEdge);
    const int top = inWindow(m_popover).top();
    m_field->setGeometry(150, 20, 200, 100);
    QCOMPARE(inWindow(m_popover).top(), top);
}

void tst_FieldPopover::aClickElsewhereClosesIt()
{
    QTest::mouseClick(m_elsewhere, Qt::LeftButton);
    QVERIFY(!m_popover->isVisible());
}

void tst_FieldPopover::aClickInTheFieldOrInItLeavesItOpen()
{
    QTest::mouseClick(m_field, Qt::LeftButton);
    QTest::mouseClick(m_content, Qt::LeftButton);
    QVERIFY(m_popover->isVisible());
}

void tst_FieldPopover::closesWhenTheWindowIsLeft()
{
    QWidget other;
    other.show();
    other.activateWindow();
    QTRY_VERIFY(!m_popover->isVisible());
}

void tst_FieldPopover::goesWithTheField()
{
    delete m_field;
    QTRY_VERIFY(!m_popover);
}

QTEST_MAIN(tst_FieldPopover)
#include "tst_FieldPopover.moc"
