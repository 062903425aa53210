#include "MeetingWindowsTest.h"

#include <QContextMenuEvent>
#include <QMenu>

using namespace tembra;
using namespace Qt::StringLiterals;

/// How the tag browser and the other windows reach each other.
class tst_TagBrowserWindow : public MeetingWindowsTest
{
    Q_OBJECT

private Q_SLOTS:
    void thereIsOneTagBrowser()
    {
        TagWindowController *one = &browser();
        QVERIFY(!one->isVisible());
        one->show();
        QVERIFY(QTest::qWaitForWindowActive(one));
        press(one, Qt::Key_W, Qt::ControlModifier);
        QTRY_VERIFY(!one->isVisible());
        QCOMPARE(&browser(), one);
    }

    void editTagSelectsTheTagInTheBrowser_data()
    {
        QTest::addColumn<QString>("place");
        for (const char *place : {"main editor", "meeting's window", "filter"})
            QTest::newRow(place) << QString::fromLatin1(place);
    }

    void editTagSelectsTheTagInTheBrowser()
    {
        QFETCH(QString, place);
        const auto other = addTag(m_older, u"Career"_s, u"🚀"_s);
        const auto tag = addTag(m_meeting, u"Focus"_s, u"🎯"_s);
        settle();
        browser().selectTag(other);
        TagField *field = place == u"main editor" ? tagField(mainEditor()) : filterField();
        if (place == u"meeting's window")
            field = tagField(open(m_meeting)->sessionDetailViewController);
        if (place == u"filter")
            filterField()->setObjectValue({tag});
        focus(field);
        QTest::keyClick(field, Qt::Key_End);
        QTest::keyClick(field, Qt::Key_Backspace); // Selects the token.
        auto *menu = field->findChild<QMenu *>(u"tagEditMenu"_s);
        QTimer::singleShot(0, menu, [menu] {
            menu->actions().first()->trigger();
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QCoreApplication::sendEvent(field, &event);
        QTRY_VERIFY(browser().isVisible());
        QTRY_COMPARE(browser().tagsArrayController->selectedTags(), QList{tag});
        QVERIFY(QTest::qWaitForWindowActive(&browser()));
    }

    void aDoubleClickInTheBrowserOpensTheMeeting()
    {
        const auto tag = addTag(m_older, u"Focus"_s, u"🎯"_s);
        settle();
        browser().show();
        QVERIFY(QTest::qWaitForWindowActive(&browser()));
        browser().selectTag(tag);
        BrowserRowsView *rows = browser().sessionsTableView;
        QTRY_VERIFY(rows->isVisible());
        QTest::qWait(20);
        const QPoint row = rows->visualRect(rows->model()->index(0, 0)).center();
        QTest::mouseClick(rows->viewport(), Qt::LeftButton, {}, row);
        QTest::mouseDClick(rows->viewport(), Qt::LeftButton, {}, row);
        QCOMPARE(windows().sessionWindowControllers().size(), 1);
        const SessionWindowController *opened = windows().sessionWindowControllers().first();
        QCOMPARE(opened->session(), m_older);
        QVERIFY(opened->isVisible());
    }
};

QTEST_MAIN(tst_TagBrowserWindow)
#include "tst_TagBrowserWindow.moc"
