#include "MainWindow/StatusLine.h"

#include "support/GuiTest.h"
#include "Toolkit/Emoji/EmojiLabel.h"

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

#include <limits>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

const QString longText =
    u"Die Sicherungskopie „Teamgespräche der Abteilung Anwendungsentwicklung.tembrabackup“ "
    u"wurde vollständig eingelesen: 1.284 Besprechungen mit 37 Teammitgliedern"_s;

/// What a screen reader was told, in order.
QStringList announcements;

void noteAlert(QAccessibleEvent *event)
{
    if (event->type() == QAccessible::Alert)
        announcements.append(event->accessibleInterface()->text(QAccessible::Name));
}

} // namespace

class tst_StatusLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_field = new QLineEdit;
        m_line = new StatusLine;
        auto *layout = new QVBoxLayout(m_window.get());
        layout->addWidget(m_field);
        layout->addStretch();
        layout->addWidget(m_line);
        m_window->resize(900, 200);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_field->setFocus();
    }

    void cleanup() { m_window.reset(); }

    void itIsHiddenWithNothingToSay()
    {
        QVERIFY(!m_line->isVisible());
        m_line->setProgress(0.5);
        m_line->endProgress();
        m_line->clear();
        QVERIFY(!m_line->isVisible());
    }

    // Messages.

    void aMessageIsSeen()
    {
        m_line->showMessage(u"Imported 3 teammates 🎯"_s);
        QVERIFY(message()->isVisible());
        QCOMPARE(message()->text(), u"Imported 3 teammates 🎯"_s);
        QVERIFY(!actionButton()->isVisible());
        QVERIFY(dismissButton()->isVisible());
        QVERIFY(!progressBar()->isVisible());
    }

    void markupIsShownAsText()
    {
        m_line->showMessage(u"Imported <b>Ana</b>"_s);
        QCOMPARE(message()->textFormat(), Qt::PlainText);
    }

    void aNewMessageReplacesTheOld()
    {
        m_line->showMessage(u"One"_s, u"Undo One"_s, [this] { m_done.append(u"one"_s); });
        m_line->showMessage(u"Two"_s, u"Undo Two"_s, [this] { m_done.append(u"two"_s); });
        QCOMPARE(message()->text(), u"Two"_s);
        QTest::mouseClick(actionButton(), Qt::LeftButton);
        QCOMPARE(takeDone(), QStringList{u"two"_s});
        m_line->showMessage(u"Three"_s);
        QVERIFY(!actionButton()->isVisible());
    }

    void theActionTakesTheMessageAway()
    {
        m_line->showMessage(u"Imported"_s, u"Undo Import"_s, [this] { m_done.append(u"undo"_s); });
        QCOMPARE(actionButton()->text(), u"Undo Import"_s);
        QTest::mouseClick(actionButton(), Qt::LeftButton);
        QCOMPARE(takeDone(), QStringList{u"undo"_s});
        QVERIFY(!m_line->isVisible());
    }

    void theActionMaySaySomethingNew()
    {
        m_line->showMessage(u"Imported"_s, u"Undo Import"_s,
                            [this] { m_line->showMessage(u"Import undone"_s); });
        QTest::mouseClick(actionButton(), Qt::LeftButton);
        QCOMPARE(message()->text(), u"Import undone"_s);
        QVERIFY(message()->isVisible());
        QVERIFY(!actionButton()->isVisible());
    }

    void theActionMayDestroyTheWindow()
    {
        m_line->showMessage(u"Imported"_s, u"Close"_s, [this] {
            m_line->clear();
            m_window.release()->deleteLater();
        });
        QTest::mouseClick(actionButton(), Qt::LeftButton);
        QVERIFY(!m_window);
    }

    void aMessageCanBeDismissed()
    {
        m_line->showMessage(u"Imported"_s);
        QVERIFY(!dismissButton()->icon().isNull());
        QCOMPARE(dismissButton()->toolTip(), u"Dismiss message"_s);
        QCOMPARE(dismissButton()->accessibleName(), u"Dismiss message"_s);
        QTest::mouseClick(dismissButton(), Qt::LeftButton);
        QVERIFY(!m_line->isVisible());
    }

    void aLongMessageIsElidedAndToldByATooltip()
    {
        m_line->showMessage(longText, u"Datenübernahme rückgängig machen"_s);
        QTRY_VERIFY(message()->isElided());
        QCOMPARE(m_window->width(), 900);
        QVERIFY(actionButton()->width() >= actionButton()->sizeHint().width());
        QVERIFY(dismissButton()->isVisible());
        hover(message());
        QTRY_COMPARE(gui::shownToolTip(), longText);
    }

    // Tasks.

    void aTaskShowsHowFarItIs_data()
    {
        QTest::addColumn<std::optional<double>>("fraction");
        QTest::addColumn<double>("shown"); ///< −1 for "not known".
        QTest::newRow("not known") << std::optional<double>() << -1.0;
        QTest::newRow("beginning") << std::optional(0.0) << 0.0;
        QTest::newRow("a quarter") << std::optional(0.25) << 0.25;
        QTest::newRow("end") << std::optional(1.0) << 1.0;
        QTest::newRow("beyond the end") << std::optional(1.5) << 1.0;
        QTest::newRow("before the beginning") << std::optional(-2.0) << 0.0;
        QTest::newRow("not a number")
            << std::optional(std::numeric_limits<double>::quiet_NaN()) << -1.0;
    }

    void aTaskShowsHowFarItIs()
    {
        QFETCH(std::optional<double>, fraction);
        QFETCH(double, shown);
        m_line->showProgress(u"Importing"_s);
        m_line->setProgress(0.5);
        m_line->setProgress(fraction);
        QVERIFY(progressBar()->isVisible());
        QCOMPARE(shownFraction(), shown);
    }

    void aTaskIsBusyAtFirst()
    {
        m_line->showProgress(u"Importing"_s);
        QCOMPARE(task()->text(), u"Importing"_s);
        QCOMPARE(progressBar()->accessibleName(), u"Importing"_s);
        QCOMPARE(shownFraction(), -1.0);
        QVERIFY(!dismissButton()->isVisible());
    }

    void cancellingIsAskedForOnce()
    {
        const QSignalSpy requests(m_line, &StatusLine::cancelRequested);
        m_line->showProgress(u"Importing"_s);
        QTest::mouseClick(cancelButton(), Qt::LeftButton);
        QTest::mouseClick(cancelButton(), Qt::LeftButton);
        QCOMPARE(requests.count(), 1);
        QVERIFY(!cancelButton()->isEnabled());
        QCOMPARE(task()->text(), u"Cancelling…"_s);
        m_line->setProgress(0.9);
        QCOMPARE(task()->text(), u"Cancelling…"_s);
        QVERIFY(m_line->isVisible());
        m_line->endProgress();
        QVERIFY(!m_line->isVisible());
    }

    void theNextTaskCanBeCancelledToo()
    {
        m_line->showProgress(u"Importing"_s);
        m_line->setProgress(0.9);
        QTest::mouseClick(cancelButton(), Qt::LeftButton);
        m_line->endProgress();
        m_line->showProgress(u"Backing up"_s);
        QVERIFY(cancelButton()->isEnabled());
        QCOMPARE(task()->text(), u"Backing up"_s);
        QCOMPARE(shownFraction(), -1.0);
    }

    void whoAsksMayEndTheTaskAtOnce()
    {
        connect(m_line, &StatusLine::cancelRequested, m_line, &StatusLine::endProgress);
        m_line->showProgress(u"Importing"_s);
        QTest::mouseClick(cancelButton(), Qt::LeftButton);
        QVERIFY(!m_line->isVisible());
    }

    void longLabelsLeaveRoomForTheBar()
    {
        m_line->showProgress(longText);
        QTRY_VERIFY(task()->isElided());
        QCOMPARE(m_window->width(), 900);
        QVERIFY(progressBar()->width() >= 80);
        QVERIFY(cancelButton()->width() >= cancelButton()->sizeHint().width());
    }

    // One beside the other.

    void theMessageComesBackAfterATask()
    {
        m_line->showMessage(u"Imported"_s, u"Undo Import"_s, [this] { m_done.append(u"undo"_s); });
        m_line->showProgress(u"Backing up"_s);
        QVERIFY(!message()->isVisible());
        QVERIFY(!actionButton()->isVisible());
        m_line->endProgress();
        QVERIFY(message()->isVisible());
        QVERIFY(!progressBar()->isVisible());
        QTest::mouseClick(actionButton(), Qt::LeftButton);
        QCOMPARE(takeDone(), QStringList{u"undo"_s});
    }

    void whatIsSaidMeanwhileIsSeenAfterwards()
    {
        m_line->showMessage(u"Old"_s);
        m_line->showProgress(u"Importing"_s);
        m_line->showMessage(u"New"_s);
        QVERIFY(progressBar()->isVisible());
        QVERIFY(!message()->isVisible());
        m_line->endProgress();
        QCOMPARE(message()->text(), u"New"_s);
        QVERIFY(message()->isVisible());
    }

    void clearingTakesEverythingAway()
    {
        m_line->showMessage(u"Imported"_s);
        m_line->showProgress(u"Backing up"_s);
        m_line->clear();
        QVERIFY(!m_line->isVisible());
        m_line->endProgress();
        QVERIFY(!m_line->isVisible());
    }

    void theLineKeepsItsHeight()
    {
        m_line->showMessage(u"Imported"_s);
        QTest::qWait(20);
        const int height = m_line->height();
        m_line->showMessage(u"Imported"_s, u"Undo Import"_s);
        QTest::qWait(20);
        QCOMPARE(m_line->height(), height);
        m_line->showProgress(u"Backing up"_s);
        QTest::qWait(20);
        QCOMPARE(m_line->height(), height);
    }

    // Screen readers.

    void everythingNewIsAnnouncedOnce()
    {
        // Without anybody who could listen, nothing is announced.
        QVERIFY2(QTest::qWaitFor([] { return QAccessible::isActive(); }, 10000),
                 "There is no accessibility bus (at-spi2-core) to announce anything on");
        announcements.clear();
        QAccessible::installUpdateHandler(noteAlert);
        m_line->showMessage(u"One"_s);
        m_line->showMessage(u"Two"_s);
        m_line->showProgress(u"Importing"_s);
        m_line->setProgress(0.5);
        m_line->endProgress(); // "Two" comes back, and is no news.
        m_line->showProgress(u"Backing up"_s);
        m_line->showMessage(u"Three"_s); // Is told once it is seen.
        QTest::mouseClick(cancelButton(), Qt::LeftButton);
        m_line->endProgress();
        m_line->clear();
        QAccessible::installUpdateHandler(nullptr);
        QCOMPARE(announcements, (QStringList{u"One"_s, u"Two"_s, u"Importing"_s, u"Backing up"_s,
                                             u"Cancelling…"_s, u"Three"_s}));
    }

    void itsNameIsWhatItShows()
    {
        m_line->showMessage(u"Imported"_s);
        QCOMPARE(m_line->accessibleName(), u"Imported"_s);
        m_line->showProgress(u"Backing up"_s);
        QCOMPARE(m_line->accessibleName(), u"Backing up"_s);
        QTest::mouseClick(cancelButton(), Qt::LeftButton);
        QCOMPARE(m_line->accessibleName(), u"Cancelling…"_s);
        m_line->endProgress();
        QCOMPARE(m_line->accessibleName(), u"Imported"_s);
    }

    // The keyboard.

    void itNeverTakesTheKeyboard()
    {
        m_line->showMessage(u"Imported"_s, u"Undo Import"_s);
        QVERIFY(m_field->hasFocus());
        m_line->showProgress(u"Importing"_s);
        QVERIFY(m_field->hasFocus());
    }

    void tabReachesTheButtonsOfAMessage()
    {
        m_line->showMessage(u"Imported"_s, u"Undo Import"_s, [this] { m_done.append(u"undo"_s); });
        press(Qt::Key_Tab);
        QVERIFY(actionButton()->hasFocus());
        press(Qt::Key_Tab);
        QVERIFY(dismissButton()->hasFocus());
        press(Qt::Key_Backtab);
        press(Qt::Key_Space);
        QCOMPARE(takeDone(), QStringList{u"undo"_s});
    }

    void tabReachesCancel()
    {
        const QSignalSpy requests(m_line, &StatusLine::cancelRequested);
        m_line->showProgress(u"Importing"_s);
        press(Qt::Key_Tab);
        QVERIFY(cancelButton()->hasFocus());
        press(Qt::Key_Space);
        QCOMPARE(requests.count(), 1);
    }

    void theKeyboardReturnsToWhereItCameFrom_data()
    {
        QTest::addColumn<bool>("isTask");
        QTest::addColumn<int>("tabs");
        QTest::newRow("action") << false << 1;
        QTest::newRow("dismiss") << false << 2;
        QTest::newRow("cancel") << true << 1;
    }

    void theKeyboardReturnsToWhereItCameFrom()
    {
        QFETCH(bool, isTask);
        QFETCH(int, tabs);
        auto *between = new QLineEdit;
        m_window->layout()->addWidget(between);
        if (isTask)
            m_line->showProgress(u"Importing"_s);
        else
            m_line->showMessage(u"Imported"_s, u"Undo Import"_s);
        for (int i = 0; i < tabs; ++i)
            press(Qt::Key_Tab);
        QVERIFY(m_line->isAncestorOf(QApplication::focusWidget()));
        press(Qt::Key_Space);
        QVERIFY(m_field->hasFocus());
    }

    void aTaskThatComesInBetweenLeavesItsCancelButtonAlone()
    {
        m_line->showMessage(u"Imported"_s);
        press(Qt::Key_Tab);
        QVERIFY(dismissButton()->hasFocus());
        m_line->showProgress(u"Backing up"_s);
        QVERIFY(m_field->hasFocus());
    }

    // Its place in the window.

    void itIsMirroredInRightToLeftLayouts()
    {
        m_window->setLayoutDirection(Qt::RightToLeft);
        m_line->showMessage(u"ייבוא הסתיים"_s, u"ביטול"_s);
        QTest::qWait(20);
        QVERIFY(leftOf(message()) > leftOf(actionButton()));
        QVERIFY(leftOf(actionButton()) > leftOf(dismissButton()));
        m_line->showProgress(u"ייבוא"_s);
        QTest::qWait(20);
        QVERIFY(leftOf(task()) > leftOf(progressBar()));
        QVERIFY(leftOf(progressBar()) > leftOf(cancelButton()));
    }

private:
    template<typename Widget>
    Widget *part(const QString &name) const
    {
        return m_line->findChild<Widget *>(name);
    }
    EmojiLabel *message() const { return part<EmojiLabel>(u"statusMessage"_s); }
    QPushButton *actionButton() const { return part<QPushButton>(u"statusActionButton"_s); }
    QToolButton *dismissButton() const { return part<QToolButton>(u"statusDismissButton"_s); }
    EmojiLabel *task() const { return part<EmojiLabel>(u"statusTask"_s); }
    QProgressBar *progressBar() const { return part<QProgressBar>(u"statusProgressBar"_s); }
    QPushButton *cancelButton() const { return part<QPushButton>(u"statusCancelButton"_s); }

    double shownFraction() const
    {
        const QProgressBar *bar = progressBar();
        return bar->maximum() == 0 ? -1.0 : double(bar->value()) / bar->maximum();
    }

    int leftOf(const QWidget *widget) const { return widget->mapTo(m_line, QPoint()).x(); }

    static void press(int key) { QTest::keyClick(QApplication::focusWidget(), Qt::Key(key)); }

    static void hover(QWidget *widget)
    {
        const QPoint middle = widget->rect().center();
        QHelpEvent event(QEvent::ToolTip, middle, widget->mapToGlobal(middle));
        QApplication::sendEvent(widget, &event);
    }

    QStringList takeDone() { return std::exchange(m_done, {}); }

    std::unique_ptr<QWidget> m_window;
    QLineEdit *m_field = nullptr;
    StatusLine *m_line = nullptr;
    QStringList m_done;
};

int main(int argc, char **argv)
{
    // Qt asks for the accessibility bus at its start and does not wait for one.
    qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    QProcess::execute(u"dbus-send"_s,
                      {u"--session"_s, u"--print-reply=literal"_s, u"--dest=org.a11y.Bus"_s,
                       u"/org/a11y/bus"_s, u"org.a11y.Bus.GetAddress"_s});
    QApplication application(argc, argv);
    tst_StatusLine test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_StatusLine.moc"
