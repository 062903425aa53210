#include "Toolkit/Alert.h"

#include "support/GuiTest.h"

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
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_window->resize(600, 400);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_pressed = -1;
    }

    void cleanup() { m_window.reset(); }

    void showsItsTexts()
    {
        const Alert *alert = begin(deletion());
        QCOMPARE(alert->findChild<QLabel *>(u"messageText"_s)->text(),
                 u"Do you really want to delete these teammates?"_s);
        QCOMPARE(alert->findChild<QLabel *>(u"informativeText"_s)->text(), u"3 will be removed."_s);
        QCOMPARE(alert->accessibleName(), u"Do you really want to delete these teammates?"_s);
    }

    void keepsTheOrderOfButtons()
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

    void answersKeys_data()
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

    void answersKeys()
    {
        QFETCH(bool, destroys);
        QFETCH(QList<int>, keys);
        QFETCH(int, button);
        begin(destroys ? deletion() : question());
        for (const int key : keys)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key(key));
        QCOMPARE(m_pressed, button);
    }

    void answersClicks()
    {
        const QPointer<Alert> alert = begin(deletion());
        gui::pressAlertButton(*alert, 0);
        QCOMPARE(m_pressed, 0);
        QTRY_VERIFY(!alert);
    }

    void blocksOnlyItsWindow()
    {
        const Alert *alert = begin(deletion());
        QCOMPARE(alert->windowModality(), Qt::WindowModal);
        QCOMPARE(m_pressed, -1);
    }

    void callsNobodyWhenTheWindowGoes()
    {
        begin(deletion());
        m_window.reset();
        QCOMPARE(m_pressed, -1);
    }

    void cancelsWhenClosed()
    {
        begin(question())->close();
        QCOMPARE(m_pressed, 2);
    }

    void showsMarkupAsText()
    {
        AlertContents contents = deletion();
        contents.informativeText = u"<b>Ana</b> will be removed."_s;
        const Alert *alert = begin(contents);
        const QLabel *label = alert->findChild<QLabel *>(u"informativeText"_s);
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(label->text(), contents.informativeText);
    }

    void runsModal()
    {
        for (const int button : {0, 1, 2}) {
            QTimer::singleShot(0, this, [button] {
                auto *alert = qobject_cast<Alert *>(QApplication::activeModalWidget());
                QVERIFY(alert);
                QVERIFY(alert->windowModality() == Qt::ApplicationModal);
                gui::pressAlertButton(*alert, button);
            });
            QCOMPARE(Alert::runModal(question()), button);
        }
    }

    void staysNarrowWithLongTexts()
    {
        AlertContents contents = question();
        contents.informativeText = u"A sentence that does not come to an end for a long while. "_s
                                       .repeated(12);
        const Alert *alert = begin(contents);
        QVERIFY(alert->width() <= 440);
        const QLabel *label = alert->findChild<QLabel *>(u"informativeText"_s);
        QVERIFY(label->height() >= label->heightForWidth(label->width()));
    }

private:
    Alert *begin(const AlertContents &contents)
    {
        Alert *alert = Alert::beginSheet(contents, m_window.get(),
                                         [this](int index) { m_pressed = index; });
        [[maybe_unused]] const bool isActive = gui::waitUntilActive(*alert);
        return alert;
    }

    std::unique_ptr<QWidget> m_window;
    int m_pressed = -1;
};

QTEST_MAIN(TestAlert)
#include "tst_Alert.moc"
