#include "Preferences/InputControls/PopoverSourceButton.h"

#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestPopoverSourceButton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void actsAsTheMouseGoesDown();
    void actsOncePerPress();
    void leavesOtherButtonsAlone();
    void doesNothingWhileDisabled();
    void isPressedByTheKeyboard();

private:
    std::unique_ptr<QWidget> m_window;
    PopoverSourceButton *m_button = nullptr;
};

void TestPopoverSourceButton::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(200, 100);
    m_button = new PopoverSourceButton(u"Emoji"_s, m_window.get());
    m_button->setGeometry(20, 20, 100, 30);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void TestPopoverSourceButton::cleanup()
{
    m_window.reset();
}

void TestPopoverSourceButton::actsAsTheMouseGoesDown()
{
    const QSignalSpy actions(m_button, &QPushButton::clicked);
    QTest::mousePress(m_button, Qt::LeftButton);
    QCOMPARE(actions.count(), 1);
    QTest::mouseRelease(m_button, Qt::LeftButton);
    QCOMPARE(actions.count(), 1);
    QVERIFY(!m_button->isDown());
}

void TestPopoverSourceButton::actsOncePerPress()
{
    const QSignalSpy actions(m_button, &QPushButton::clicked);
    QTest::mousePress(m_button, Qt::LeftButton);
    QTest::mouseMove(m_button, QPoint(5, 5));
    QTest::mouseMove(m_button, QPoint(50, 10));
    QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(50, 10));
    QCOMPARE(actions.count(), 1);
    QTest::mouseClick(m_button, Qt::LeftButton);
    QCOMPARE(actions.count(), 2);
}

void TestPopoverSourceButton::leavesOtherButtonsAlone()
{
    const QSignalSpy actions(m_button, &QPushButton::clicked);
    QTest::mouseClick(m_button, Qt::RightButton);
    QTest::mouseClick(m_button, Qt::MiddleButton);
    QCOMPARE(actions.count(), 0);
}

void TestPopoverSourceButton::doesNothingWhileDisabled()
{
    m_button->setEnabled(false);
    const QSignalSpy actions(m_button, &QPushButton::clicked);
    QTest::mouseClick(m_button, Qt::LeftButton);
    QCOMPARE(actions.count(), 0);
}

void TestPopoverSourceButton::isPressedByTheKeyboard()
{
    m_button->setFocus();
    const QSignalSpy actions(m_button, &QPushButton::clicked);
    QTest::keyPress(m_button, Qt::Key_Space);
    QCOMPARE(actions.count(), 0);
    QTest::keyRelease(m_button, Qt::Key_Space);
    QCOMPARE(actions.count(), 1);
}

QTEST_MAIN(TestPopoverSourceButton)
#include "tst_PopoverSourceButton.moc"
