#include "MainWindow/Counterparts/CounterpartListView.h"
#include "MainWindow/Detail/SummaryCollectionView.h"
#include "MeetingWindowsTest.h"
#include "Model/DefaultsManager.h"
#include "Preferences/InputControls/DynamicTextField.h"

#include <QAccessible>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Tells whether a view is painted.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget *widget)
    {
        QTest::qWait(50); // What is due already does not count.
        widget->installEventFilter(this);
    }
    bool isPainted() const { return m_isPainted; }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        m_isPainted = m_isPainted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_isPainted = false;
};

} // namespace

/// A tag that gets another name or emoji, and ratings that get another emoji, everywhere they show.
class tst_TagChanges : public MeetingWindowsTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        MeetingWindowsTest::init();
        m_tag = addTag(m_meeting, u"Focus"_s, u"🎯"_s);
        m_meeting->setMeetingSentiment(2);
        m_meeting->setPersonalSentiment(1);
        settle();
        m_window = open(m_meeting);
        browser().show();
        QVERIFY(QTest::qWaitForWindowActive(&browser()));
        browser().selectTag(m_tag);
        filterField()->setObjectValue({m_tag});
        tell();
    }
    void cleanup()
    {
        m_tag.reset();
        m_window = nullptr;
        MeetingWindowsTest::cleanup();
    }

    void aNewNameOrEmojiReachesEverything_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("emoji");
        QTest::newRow("name") << u"Aim"_s << u"🎯"_s;
        QTest::newRow("emoji") << u"Focus"_s << u"🚀"_s;
        QTest::newRow("both") << u"Aim"_s << u"🚀"_s;
    }

    void aNewNameOrEmojiReachesEverything()
    {
        QFETCH(QString, name);
        QFETCH(QString, emoji);
        verifyShown(u"Focus"_s, u"🎯"_s);
        m_tag->setName(name);
        m_tag->setEmoji(emoji);
        tell();
        verifyShown(name, emoji);
        undo();
        tell();
        verifyShown(u"Focus"_s, u"🎯"_s);
    }

    void tilesAndRowsShowTheEmoji()
    {
        const QImage tiles = strip()->viewport()->grab().toImage();
        const QImage rows = teammates()->viewport()->grab().toImage();
        m_tag->setEmoji(u"🚀"_s);
        tell();
        QVERIFY(strip()->viewport()->grab().toImage() != tiles);
        QVERIFY(teammates()->viewport()->grab().toImage() != rows);
        undo();
        tell();
        QCOMPARE(strip()->viewport()->grab().toImage(), tiles);
        QCOMPARE(teammates()->viewport()->grab().toImage(), rows);
    }

    void tokensAreDrawnAnew()
    {
        for (TagField *field : {tagField(mainEditor()), filterField(),
                                tagField(m_window->sessionDetailViewController)}) {
            const QImage before = field->grab().toImage();
            m_tag->setName(u"Something longer"_s);
            tell();
            QVERIFY(field->grab().toImage() != before);
            undo();
            tell();
            QCOMPARE(field->grab().toImage(), before);
        }
    }

    void aNewEmojiIsPaintedAtOnce()
    {
        const PaintWatch tiles(strip()->viewport());
        const PaintWatch rows(teammates()->viewport());
        m_tag->setEmoji(u"🚀"_s);
        QTRY_VERIFY(tiles.isPainted());
        QTRY_VERIFY(rows.isPainted());
    }

    void newRatingEmojiReachMenusAndBrowser()
    {
        QVERIFY2(meetingRow(0).contains(u"🙌"), qPrintable(meetingRow(0)));
        DefaultsManager &defaults = m_program->services.defaults;
        defaults.setEmojiOverride(DefaultsManager::meetingOverrideKey(2), u"🏆"_s);
        defaults.setEmojiOverride(DefaultsManager::personalOverrideKey(1), u"🥳"_s);
        defaults.emojiChanged();
        for (const SessionDetailViewController *editor :
             {mainEditor(), m_window->sessionDetailViewController}) {
            QCOMPARE(popup(editor, u"meetingPopup"_s)->currentText(), u"🏆"_s);
            QCOMPARE(popup(editor, u"mePopup"_s)->currentText(), u"🥳"_s);
            QCOMPARE(popup(editor, u"teammatePopup"_s)->itemText(1), u"🥳"_s);
        }
        QVERIFY2(meetingRow(0).contains(u"🏆"), qPrintable(meetingRow(0)));
        QVERIFY2(meetingRow(0).contains(u"🥳"), qPrintable(meetingRow(0)));
        QVERIFY(!meetingRow(0).contains(u"🙌"));
        const QString tile = strip()->model()->index(0, 0).data().toString();
        QVERIFY2(tile.contains(u"🏆"), qPrintable(tile));
    }

private:
    SummaryCollectionView *strip() const { return pane().findChild<SummaryCollectionView *>(); }
    CounterpartListView *teammates() const
    {
        return m_program->window->findChild<CounterpartListView *>();
    }
    QString meetingRow(int column) const
    {
        return browser().sessionsTableView->model()->index(0, column).data().toString();
    }
    static QString tokenText(TagField *field)
    {
        return QAccessible::queryAccessibleInterface(field)->text(QAccessible::Value);
    }

    void verifyShown(const QString &name, const QString &emoji) const
    {
        const QString title = name + u' ' + emoji;
        for (TagField *field : {tagField(mainEditor()), filterField(),
                                tagField(m_window->sessionDetailViewController)})
            QVERIFY2(tokenText(field).contains(title), qPrintable(tokenText(field)));
        const QAbstractItemModel *tags = browser().tagsTableView->model();
        QCOMPARE(tags->index(0, TagsArrayController::NameColumn).data().toString(), name);
        QCOMPARE(tags->index(0, TagsArrayController::EmojiColumn).data().toString(), emoji);
        QCOMPARE(meetingRow(2), title);
        QVERIFY2(browser().promptLabel->text().contains(title),
                 qPrintable(browser().promptLabel->text()));
        QCOMPARE(m_ana->recentSessionTagSummary(), emoji);
    }

    std::shared_ptr<Tag> m_tag;
    SessionWindowController *m_window = nullptr;
};

QTEST_MAIN(tst_TagChanges)
#include "tst_TagChanges.moc"
