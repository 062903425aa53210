#include "Toolkit/Popover.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestPopover : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_window->setGeometry(400, 300, 500, 400);
        m_anchor = new QPushButton(u"?"_s, m_window.get());
        m_anchor->setGeometry(200, 180, 60, 24);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_popover = new Popover(m_window.get());
        auto *content = new QLabel(u"explained"_s);
        content->setFixedSize(120, 60);
        m_popover->setContent(content);
    }

    void cleanup() { m_window.reset(); }

    void opensBesideItsAnchor_data()
    {
        QTest::addColumn<Qt::Edge>("edge");
        QTest::newRow("above") << Qt::TopEdge;
        QTest::newRow("below") << Qt::BottomEdge;
        QTest::newRow("left") << Qt::LeftEdge;
        QTest::newRow("right") << Qt::RightEdge;
    }

    void opensBesideItsAnchor()
    {
        QFETCH(Qt::Edge, edge);
        m_popover->showRelativeTo(m_anchor, edge);
        QVERIFY(QTest::qWaitForWindowExposed(m_popover));
        const QRect anchor = anchorOnScreen();
        const QRect panel = m_popover->geometry();
        QCOMPARE(m_popover->edge(), edge);
        QVERIFY(!panel.intersects(anchor));
        if (edge == Qt::TopEdge || edge == Qt::BottomEdge)
            QVERIFY(qAbs(panel.center().x() - anchor.center().x()) <= 1);
        else
            QVERIFY(qAbs(panel.center().y() - anchor.center().y()) <= 1);
        const int gap = edge == Qt::TopEdge      ? anchor.top() - panel.bottom()
                        : edge == Qt::BottomEdge ? panel.top() - anchor.bottom()
                        : edge == Qt::LeftEdge   ? anchor.left() - panel.right()
                                                 : panel.left() - anchor.right();
        QCOMPARE(gap, 1);
    }

    void staysOnTheScreen_data()
    {
        QTest::addColumn<QPoint>("windowPlace");
        QTest::addColumn<QPoint>("anchorPlace");
        QTest::addColumn<Qt::Edge>("wished");
        QTest::addColumn<Qt::Edge>("opened");
        const QPoint topLeft(0, 0), bottomRight(1100, 600);
        QTest::newRow("no room above")
            << topLeft << QPoint(200, 0) << Qt::TopEdge << Qt::BottomEdge;
        QTest::newRow("no room at the left")
            << topLeft << QPoint(0, 100) << Qt::LeftEdge << Qt::RightEdge;
        QTest::newRow("no room below")
            << bottomRight << QPoint(200, 370) << Qt::BottomEdge << Qt::TopEdge;
        QTest::newRow("no room at the right")
            << bottomRight << QPoint(435, 100) << Qt::RightEdge << Qt::LeftEdge;
        QTest::newRow("shifted along the left end")
            << topLeft << QPoint(0, 100) << Qt::BottomEdge << Qt::BottomEdge;
        QTest::newRow("shifted along the right end")
            << bottomRight << QPoint(435, 100) << Qt::TopEdge << Qt::TopEdge;
    }

    void staysOnTheScreen()
    {
        QFETCH(QPoint, windowPlace);
        QFETCH(QPoint, anchorPlace);
        QFETCH(Qt::Edge, wished);
        QFETCH(Qt::Edge, opened);
        m_window->move(windowPlace);
        m_anchor->move(anchorPlace);
        QTRY_VERIFY(qAbs(m_window->frameGeometry().top() - windowPlace.y()) < 30);
        m_popover->showRelativeTo(m_anchor, wished);
        QVERIFY(QTest::qWaitForWindowExposed(m_popover));
        QCOMPARE(m_popover->edge(), opened);
        QVERIFY(m_popover->screen()->availableGeometry().contains(m_popover->geometry()));
    }

    void closesOnEscape()
    {
        const QSignalSpy closings(m_popover, &Popover::closed);
        m_popover->showRelativeTo(m_anchor, Qt::BottomEdge);
        QVERIFY(QTest::qWaitForWindowExposed(m_popover));
        QTest::keyClick(m_popover, Qt::Key_Escape);
        QVERIFY(!m_popover->isVisible());
        QCOMPARE(closings.count(), 1);
    }

    void closesOnAClickElsewhere()
    {
        m_popover->showRelativeTo(m_anchor, Qt::BottomEdge);
        QVERIFY(QTest::qWaitForWindowExposed(m_popover));
        QTest::mouseClick(m_popover, Qt::LeftButton, {}, QPoint(-100, -100));
        QVERIFY(!m_popover->isVisible());
    }

    void followsItsContentsSize()
    {
        m_popover->showRelativeTo(m_anchor, Qt::TopEdge);
        QVERIFY(QTest::qWaitForWindowExposed(m_popover));
        const QRect before = m_popover->geometry();
        m_popover->content()->setFixedSize(200, 150);
        QTRY_COMPARE(m_popover->width(), before.width() + 80);
        QCOMPARE(m_popover->geometry().bottom(), before.bottom());
        QCOMPARE(m_popover->geometry().center().x(), before.center().x());
    }

    void givesItsContentTheKeyboard()
    {
        auto *field = new QLineEdit;
        m_popover->setContent(field);
        m_popover->showRelativeTo(m_anchor, Qt::BottomEdge);
        QVERIFY(QTest::qWaitForWindowExposed(m_popover));
        QTRY_VERIFY(field->hasFocus());
        QTest::keyClicks(field, u"typed"_s);
        QCOMPARE(field->text(), u"typed"_s);
        QTest::keyClick(field, Qt::Key_Escape);
        QVERIFY(!m_popover->isVisible());
    }

private:
    QRect anchorOnScreen() const { return {m_anchor->mapToGlobal(QPoint()), m_anchor->size()}; }

    std::unique_ptr<QWidget> m_window;
    QPushButton *m_anchor = nullptr;
    Popover *m_popover = nullptr;
};

QTEST_MAIN(TestPopover)
#include "tst_Popover.moc"
