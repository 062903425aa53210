#include "Toolkit/WindowActivation.h"

#include "support/GuiTest.h"

#include <QWidget>

using namespace tembra;

class tst_WindowActivation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWindowComesToTheFront_data()
    {
        QTest::addColumn<Qt::WindowStates>("state");
        QTest::newRow("behind another") << Qt::WindowStates(Qt::WindowNoState);
        QTest::newRow("minimised") << Qt::WindowStates(Qt::WindowMinimized);
    }

    void aWindowComesToTheFront()
    {
        QFETCH(Qt::WindowStates, state);
        QWidget window, other;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        window.setWindowState(state);
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        bringToFront(window);
        QVERIFY(gui::waitUntilActive(window));
        QVERIFY(!window.isMinimized());
    }

    void aHiddenWindowIsShown()
    {
        QWidget window;
        bringToFront(window);
        QVERIFY(window.isVisible());
        QVERIFY(gui::waitUntilActive(window));
    }
};

QTEST_MAIN(tst_WindowActivation)
#include "tst_WindowActivation.moc"
