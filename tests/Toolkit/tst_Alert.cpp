#include "Toolkit/Alert.h"

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

AlertContents deletion()
{
    return {.messageText = u"Do you really want to delete these teammates?"_s,
            .informativeText = u"3 will be removed."_s,
            .buttons = {u"Delete"_s, u"Cancel"_s},
            .firstButtonDestroys = true};
}

AlertContents question()
{
    return {.messageText = u"Quit anyway?"_s,
            .informativeText = u"Changes would be lost."_s,
            .buttons = {u"Quit anyway"_s, u"Look first"_s, u"Cancel"_s}};
}

} // namespace

class TestAlert : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsItsTexts();
    void keepsTheOrderOfButtons();
    void answersKeys_data();
    void answersKeys();
    void answersClicks();
    void blocksOnlyItsWindow();
    void callsNobodyWhenTheWindowGoes();
    void cancelsWhenClosed();
    void showsMarkupAsText();
    void runsModal();
    void staysNarrowWithLongTexts();

private:
    Alert *begin(const AlertContents &contents);

    std::unique_ptr<QWidget> m_window;
    int m_pressed = -1;
};

void TestAlert::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(600, 400);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_pressed = -1;
}

void TestAlert::cleanup()
{
    m_window.reset();
}

Alert *TestAlert::begin(const AlertContents &contents)
{
    Alert *alert = Alert::beginSheet(contents, m_window.get(),
                                     [this](int index) { m_pressed = index; });
    // A dialog counts as active while its parent is; the keyboard comes a moment later.
    [[maybe_unused]] const bool active = QTest::qWaitFor(
        [alert] { return QApplication::activeWindow() == alert; });
    return alert;
}

void TestAlert::showsItsTexts()
{
    const Alert *alert = begin(deletion());
    QCOMPARE(alert->findChild<QLabel *>(u"messageText"_s)->text(),
             u"Do you really want to delete these teammates?"_s);
    QCOMPARE(alert->findChild<QLabel *>(u"informativeText"_s)->text(), u"3 will be removed."_s);
    QCOMPARE(alert->accessibleName(), u"Do you really want to delete these teammates?"_s);
}

void TestAlert::keepsTheOrderOfButtons()
{
    const Alert *alert = begin(question());
    QStringList titles;
    int right = 0;
    for (const QPushButton *button : alert->buttons()) {
        titles.append(button->text());
        const int left = button->mapTo(alert, QPoint()).x();
        QVERIFY(left >= right);
        right = left + button->width();
    }
    QCOMPARE(titles, question().buttons);
    QCOMPARE(alert->findChild<QPushButton *>(u"alertButton1"_s)->text(), u"Look first"_s);
}

void TestAlert::answersKeys_data()
{
    QTest::addColumn<bool>("destroys");
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("button");
    QTest::newRow("Return, harmless") << false << QList<int>{Qt::Key_Return} << 0;
    QTest::newRow("Enter, harmless") << false << QList<int>{Qt::Key_Enter} << 0;
    QTest::newRow("Escape, harmless") << false << QList<int>{Qt::Key_Escape} << 2;
    QTest::newRow("Return, destroying") << true << QList<int>{Qt::Key_Return} << 1;
    QTest::newRow("Space, destroying") << true << QList<int>{Qt::Key_Space} << 1;
    QTest::newRow("Escape, destroying") << true << QList<int>{Qt::Key_Escape} << 1;
    QTest::newRow("to the second button and Return")
        << false << QList<int>{Qt::Key_Tab, Qt::Key_Return} << 1;
}

void TestAlert::answersKeys()
{
    QFETCH(bool, destroys);
    QFETCH(QList<int>, keys);
    QFETCH(int, button);
    begin(destroys ? deletion() : question());
    for (const int key : keys)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key));
    QCOMPARE(m_pressed, button);
}

void TestAlert::answersClicks()
{
    const QPointer<Alert> alert = begin(deletion());
    QTest::mouseClick(alert->buttons().at(0), Qt::LeftButton);
    QCOMPARE(m_pressed, 0);
    QTRY_VERIFY(!alert);
}

void TestAlert::blocksOnlyItsWindow()
{
    const Alert *alert = begin(deletion());
    QCOMPARE(alert->windowModality(), Qt::WindowModal);
    QCOMPARE(m_pressed, -1);
}

void TestAlert::callsNobodyWhenTheWindowGoes()
{
    begin(deletion());
    m_window.reset();
    QCOMPARE(m_pressed, -1);
}

void TestAlert::cancelsWhenClosed()
{
    begin(question())->close();
    QCOMPARE(m_pressed, 2);
}

void TestAlert::showsMarkupAsText()
{
    AlertContents contents = deletion();
    contents.informativeText = u"<b>Ana</b> will be removed."_s;
    const Alert *alert = begin(contents);
    const QLabel *label = alert->findChild<QLabel *>(u"informativeText"_s);
    QCOMPARE(label->textFormat(), Qt::PlainText);
    QCOMPARE(label->text(), contents.informativeText);
}

void TestAlert::runsModal()
{
    for (const int button : {0, 1, 2}) {
        QTimer::singleShot(0, this, [button] {
            auto *alert = qobject_cast<Alert *>(QApplication::activeModalWidget());
            QVERIFY(alert);
            QVERIFY(alert->windowModality() == Qt::ApplicationModal);
            QTest::mouseClick(alert->buttons().at(button), Qt::LeftButton);
        });
        QCOMPARE(Alert::runModal(question()), button);
    }
}

void TestAlert::staysNarrowWithLongTexts()
{
    AlertContents contents = question();
    contents.informativeText = u"A sentence that does not come to an end for a long while. "_s
                                   .repeated(12);
    const Alert *alert = begin(contents);
    QVERIFY(alert->width() <= 440);
    const QLabel *label = alert->findChild<QLabel *>(u"informativeText"_s);
    QVERIFY(label->height() >= label->heightForWidth(label->width()));
}

QTEST_MAIN(TestAlert)
#include "tst_Alert.moc"
