#include "Preferences/InputControls/CoachingMarkViewController.h"

#include "Toolkit/Popover.h"

#include <QLabel>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestCoachingMarkViewController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsItsTextInAPopover();
};

void TestCoachingMarkViewController::showsItsTextInAPopover()
{
    QWidget window;
    window.setGeometry(500, 300, 300, 300);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto *coachingMark = new CoachingMarkViewController;
    Popover popover(&window);
    popover.setContent(coachingMark);
    popover.showRelativeTo(&window, QRect(100, 100, 20, 20), Qt::BottomEdge);
    QVERIFY(QTest::qWaitForWindowExposed(&popover));
    QCOMPARE(coachingMark->label->objectName(), u"label"_s);
    QCOMPARE(coachingMark->label->textFormat(), Qt::PlainText);
    const int before = popover.height();
    // The presenter sets the text once the popover is open.
    coachingMark->label->setText(
        u"Am I checking in regularly, at least every other month, on progress to goals?"_s);
    QTRY_VERIFY(popover.height() > before);
    QVERIFY(coachingMark->label->height()
            >= coachingMark->label->heightForWidth(coachingMark->label->width()));
}

QTEST_MAIN(TestCoachingMarkViewController)
#include "tst_CoachingMarkViewController.moc"
