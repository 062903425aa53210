#include "Backup/BackupDocument.h"
#include "MainWindow/BackupCommands.h"
#include "MainWindow/StatusLine.h"
#include "MeetingWindowsTest.h"
#include "support/RecordCount.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/ProgressSheet.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QUrl>
#include <QWheelEvent>
#include <QWindow>

#include <csignal>

using namespace tembra;
using namespace Qt::StringLiterals;

/// While an import, or its undoing, is in progress, no window of the program takes input.
class tst_ModalImport : public MeetingWindowsTest
{
    Q_OBJECT

private Q_SLOTS:
    void noWindowTakesKeysOrClicks_data();
    void noWindowTakesKeysOrClicks();
    void noControlTakesWheelDropsOrContextMenus();
    void theMenuBarStaysClosed();
    void theSheetKeepsTheKeyboard();
    void otherWindowsAreStillPaintedAndResized();
    void aDroppedPackageWaits();
    void whatIsHalfTypedIsSavedFirst();
    void quittingCancelsIt_data();
    void quittingCancelsIt();
    void anUndoneImportIsModalToo();
    void aCancelledUndoKeepsEverything();

private:
    QString package(const QString &name, int sessions) const
    {
        const QString path = m_folder->filePath(name + u".tembrabackup"_s);
        const QByteArray json = "[{\"name\":\"Long\",\"sessions\":[{}"
                                + QByteArray(",{}").repeated(sessions - 1) + "]}]";
        return BackupDocument{json}.write(path) ? path : QString();
    }
    /// Of a size that takes much longer to import than any test waits.
    QString endlessPackage() const { return package(u"Long"_s, 3'000'000); }

    Alert *question() const
    {
        for (Alert *alert : m_program->window->findChildren<Alert *>()) {
            if (alert->isVisible())
                return alert;
        }
        return nullptr;
    }
    /// Made when an import begins, visible later.
    ProgressSheet *sheet() const { return m_program->window->findChild<ProgressSheet *>(); }
    QString message() const
    {
        const auto *label = m_program->window->statusLine().findChild<EmojiLabel *>(
            u"statusMessage"_s);
        return label && label->isVisible() ? label->text() : QString();
    }
    void beginImport(const QString &path) const
    {
        m_program->delegate->openFiles({path});
        QTRY_VERIFY(question());
        QTest::mouseClick(question()->buttons().first(), Qt::LeftButton);
        QVERIFY(sheet());
    }
    void cancelImport() const
    {
        QTRY_VERIFY(sheet()->isVisible() && sheet()->isActiveWindow());
        QTest::keyClick(sheet()->windowHandle(), Qt::Key_Escape);
        QTRY_VERIFY(!sheet());
    }
    qint64 sessionCount() const { return recordCount(context(), {.entityName = "Session"}); }
};

void tst_ModalImport::noWindowTakesKeysOrClicks_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<bool>("isSheetVisible");
    for (const char *place : {"main window", "meeting window", "tag browser"}) {
        for (const bool isVisible : {false, true})
            QTest::addRow("%s, %s", place, isVisible ? "sheet shown" : "at once")
                << QString::fromLatin1(place) << isVisible;
    }
}

void tst_ModalImport::noWindowTakesKeysOrClicks()
{
    QFETCH(QString, place);
    QFETCH(bool, isSheetVisible);
    addTag(m_meeting, u"launch"_s, u"🚀"_s);
    settle();
    QMainWindow *window = m_program->window;
    QWidget *control = noteField(mainEditor());
    if (place == u"meeting window") {
        SessionWindowController *meetingWindow = open(m_older);
        window = meetingWindow;
        control = noteField(meetingWindow->sessionDetailViewController);
    } else if (place == u"tag browser") {
        m_program->delegate->tagsWindowController().show();
        window = &browser();
        control = browser().tagsTableView;
    }
    focus(control);
    const auto clickAndType = [&] {
        QWindow *handle = window->windowHandle();
        for (const Qt::Key key : {Qt::Key_X, Qt::Key_Return, Qt::Key_Backspace, Qt::Key_Delete})
            QTest::keyClick(handle, key);
        QTest::keyClick(handle, Qt::Key_N, Qt::ControlModifier); // A new meeting.
        QTest::keyClick(handle, Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        QTest::keyClick(handle, Qt::Key_Z, Qt::ControlModifier);
        QTest::keyClick(control, Qt::Key_X);
        for (QWidget *clicked : window->findChildren<QWidget *>()) {
            if (clicked->isVisible())
                QTest::mouseClick(handle, Qt::LeftButton, {},
                                  clicked->mapTo(window, clicked->rect().center()));
        }
    };
    const auto focusBefore = window->focusWidget();
    beginImport(endlessPackage());
    if (isSheetVisible)
        QTRY_VERIFY(sheet()->isVisible() && sheet()->isActiveWindow());
    clickAndType();
    QVERIFY(sheet());
    QVERIFY(!context().hasChanges());
    QCOMPARE(window->focusWidget(), focusBefore);
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(!question());
    cancelImport();
    QCOMPARE(sessionCount(), 2);
    QCOMPARE(shownNote(m_meeting), QString());
    QCOMPARE(shownNote(m_older), QString());
    QCOMPARE(titlesOf(m_meeting->sortedTags()), QStringList(u"launch 🚀"_s));
    QVERIFY(!context().hasChanges());
    // Then everything works again.
    focus(noteField(mainEditor()));
    QTest::keyClick(m_program->window->windowHandle(), Qt::Key_X);
    m_program->services.coreData.commitEditing();
    QCOMPARE(shownNote(m_meeting), u"x"_s);
}

void tst_ModalImport::noControlTakesWheelDropsOrContextMenus()
{
    BindablePlaceholderTextField *field = noteField(mainEditor());
    focus(field);
    beginImport(endlessPackage());
    const QPointF middle = field->rect().center();
    QWheelEvent wheel(middle, field->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    EmojiComboBox *rating = mainEditor()->findChild<EmojiComboBox *>();
    const int chosen = rating->currentIndex();
    QApplication::sendEvent(rating, &wheel);
    QCOMPARE(rating->currentIndex(), chosen);
    QMimeData text;
    text.setText(u"dropped"_s);
    QDragEnterEvent enter(middle.toPoint(), Qt::CopyAction, &text, Qt::LeftButton, {});
    QApplication::sendEvent(field->viewport(), &enter);
    QVERIFY(!enter.isAccepted());
    QDropEvent drop(middle, Qt::CopyAction, &text, Qt::LeftButton, {});
    QApplication::sendEvent(field->viewport(), &drop);
    QContextMenuEvent menu(QContextMenuEvent::Mouse, middle.toPoint(),
                           field->mapToGlobal(middle.toPoint()));
    QApplication::sendEvent(field->viewport(), &menu);
    QVERIFY(!QApplication::activePopupWidget());
    QInputMethodEvent composed(u"か"_s, {});
    composed.setCommitString(u"か"_s);
    QApplication::sendEvent(field, &composed);
    QCOMPARE(field->toPlainText(), QString());
    cancelImport();
}

void tst_ModalImport::theMenuBarStaysClosed()
{
    beginImport(endlessPackage());
    QMenuBar *bar = m_program->window->menuBar();
    QTest::mouseClick(m_program->window->windowHandle(), Qt::LeftButton, {},
                      bar->mapTo(m_program->window,
                                 bar->actionGeometry(bar->actions().first()).center()));
    QVERIFY(!QApplication::activePopupWidget());
    QTest::keyClick(m_program->window->windowHandle(), Qt::Key_F, Qt::AltModifier);
    QVERIFY(!QApplication::activePopupWidget());
    cancelImport();
}

void tst_ModalImport::theSheetKeepsTheKeyboard()
{
    SessionWindowController *meetingWindow = open(m_older);
    beginImport(endlessPackage());
    QTRY_VERIFY(sheet()->isVisible() && sheet()->isActiveWindow());
    meetingWindow->activateWindow();
    QTRY_VERIFY(QApplication::activeWindow() == sheet());
    QTest::qWait(100);
    QTRY_VERIFY(QApplication::activeWindow() == sheet());
    cancelImport();
}

void tst_ModalImport::otherWindowsAreStillPaintedAndResized()
{
    SessionWindowController *meetingWindow = open(m_older);
    beginImport(endlessPackage());
    QTRY_VERIFY(sheet()->isVisible());
    const QSize larger = meetingWindow->size() + QSize(40, 30);
    meetingWindow->resize(larger);
    QTRY_COMPARE(meetingWindow->size(), larger);
    struct PaintCounter : QObject
    {
        int paints = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            paints += event->type() == QEvent::Paint;
            return false;
        }
    } counter;
    meetingWindow->installEventFilter(&counter);
    meetingWindow->update();
    QTRY_VERIFY(counter.paints > 0);
    cancelImport();
}

void tst_ModalImport::aDroppedPackageWaits()
{
    const QString other = package(u"Other"_s, 1);
    beginImport(endlessPackage());
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(other)});
    QDragEnterEvent enter({200, 200}, Qt::CopyAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(m_program->window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop({200, 200}, Qt::CopyAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(m_program->window, &drop);
    QTRY_VERIFY(sheet()->isVisible());
    QVERIFY(!question());
    cancelImport();
    QTRY_VERIFY(question());
    QVERIFY(question()->accessibleDescription().contains(u"Other"_s));
    question()->reject();
}

void tst_ModalImport::whatIsHalfTypedIsSavedFirst()
{
    TagField *tags = tagField(mainEditor());
    focus(tags);
    QTest::keyClicks(tags, u"half"_s);
    beginImport(endlessPackage());
    QVERIFY(!context().hasChanges());
    m_program->window->backupCommands().endTasks({}, [] {});
    QCOMPARE(titlesOf(m_meeting->sortedTags()).size(), 1);
    // The field still has the keyboard, and takes the next tag.
    focus(tags);
    QTest::keyClicks(tags, u"more,"_s);
    QTRY_COMPARE(titlesOf(m_meeting->sortedTags()).size(), 2);
}

void tst_ModalImport::quittingCancelsIt_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"SIGTERM", "SIGINT", "window", "log-out", "log-out without questions"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void tst_ModalImport::quittingCancelsIt()
{
    QFETCH(QString, way);
    const QString path = endlessPackage();
    m_meeting->sortedNotes().first()->setContentString(u"Half a thought"_s);
    bool isCancelledAtLogOut = true;
    const auto importThenQuit = [&](Alert &alert) {
        AlertReader::press(0)(alert);
        QTRY_VERIFY(sheet() && sheet()->isVisible());
        if (way == u"SIGTERM") {
            std::raise(SIGTERM);
        } else if (way == u"SIGINT") {
            std::raise(SIGINT);
        } else if (way == u"window") {
            m_program->window->windowHandle()->close();
        } else {
            QVERIFY(m_program->delegate->prepareForLogout(way == u"log-out"));
            isCancelledAtLogOut = !sheet();
            QApplication::quit();
        }
        QTRY_VERIFY(!sheet());
    };
    QCOMPARE(m_program->run([&] { m_program->delegate->openFiles({path}); }, {importThenQuit}), 0);
    QVERIFY(isCancelledAtLogOut);
    restart();
    QCOMPARE(sessionCount(), 2);
    QCOMPARE(shownNote(m_meeting), u"Half a thought"_s);
}

void tst_ModalImport::anUndoneImportIsModalToo()
{
    focus(noteField(mainEditor()));
    beginImport(package(u"Mine"_s, 1000));
    QTRY_VERIFY(!sheet());
    QTRY_COMPARE(sessionCount(), 1002);
    auto *undo = m_program->window->statusLine().findChild<QPushButton *>(u"statusActionButton"_s);
    QTest::mouseClick(undo, Qt::LeftButton);
    QTRY_VERIFY(question());
    QTest::mouseClick(question()->buttons().first(), Qt::LeftButton);
    QVERIFY(sheet());
    QTest::keyClick(m_program->window->windowHandle(), Qt::Key_X);
    QTest::keyClick(m_program->window->windowHandle(), Qt::Key_N, Qt::ControlModifier);
    QVERIFY(sheet());
    QVERIFY(!context().hasChanges());
    QTRY_COMPARE(message(), u"The import of “Mine” was undone."_s);
    QCOMPARE(sessionCount(), 2);
    QCOMPARE(shownNote(m_meeting), QString());
}

void tst_ModalImport::aCancelledUndoKeepsEverything()
{
    beginImport(package(u"Mine"_s, 3000));
    QTRY_VERIFY_WITH_TIMEOUT(!sheet(), 60'000);
    QTRY_COMPARE(sessionCount(), 3002);
    auto *undo = m_program->window->statusLine().findChild<QPushButton *>(u"statusActionButton"_s);
    QTest::mouseClick(undo, Qt::LeftButton);
    QTRY_VERIFY(question());
    QTest::mouseClick(question()->buttons().first(), Qt::LeftButton);
    QVERIFY(sheet());
    sheet()->reject();
    QTRY_VERIFY(!sheet());
    QCOMPARE(sessionCount(), 3002);
    QVERIFY(undo->isVisible()); // The offer stays.
}

QTEST_MAIN(tst_ModalImport)
#include "tst_ModalImport.moc"
