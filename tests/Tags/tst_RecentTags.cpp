#include "Store/Undo/UndoManager.h"
#include "TagFieldTest.h"
#include "Tags/RecentTagsViewController.h"
#include "Tags/TagShortcutMonitor.h"
#include "Toolkit/FieldPopover.h"
#include "Toolkit/List/ArrayController.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QListView>
#include <QPalette>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The tags used last, beside a field that is being typed in.
class tst_RecentTags : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_test = std::make_unique<TagFieldTest>();
        m_test->field->setSession(m_test->meeting);
        QVERIFY(QTest::qWaitForWindowActive(m_test->window.get()));
    }
    void cleanup() { m_test.reset(); }

    void rowsSayTitleAndShortcut()
    {
        const TagListViewModel row;
        QCOMPARE(row.shortcut(), u" "_s);
        QVERIFY(row.isEnabled());
        use(u"Planning"_s, u"🗓"_s, 1);
        use(u"Launch"_s, u"🚀"_s, 2);
        focus();
        QCOMPARE(rows(), (QStringList{u"⌥⌘1 Launch 🚀"_s, u"⌥⌘2 Planning 🗓"_s}));
    }

    void theSevenLatestAreShown()
    {
        for (int i = 0; i < 10; ++i)
            use(QString::number(i), {}, i);
        use(u"never"_s, {}, {});
        focus();
        QCOMPARE(rows().size(), 7);
        QCOMPARE(rows().first(), u"⌥⌘1 9 "_s);
        QCOMPARE(rows().last(), u"⌥⌘7 3 "_s);
    }

    /// A use that never was comes after every other.
    void tagsThatWereNeverUsedComeLast()
    {
        use(u"never"_s, {}, {});
        use(u"once"_s, {}, -1'000'000'000);
        focus();
        QCOMPARE(rows(), (QStringList{u"⌥⌘1 once "_s, u"⌥⌘2 never "_s}));
    }

    void noTagsOrNoMeetingNoPopover()
    {
        focus();
        QVERIFY(!popover());
        leave();
        use(u"Planning"_s, {}, 1);
        m_test->field->setSession({});
        focus();
        QVERIFY(!popover());
        leave();
        m_test->field->setSession(m_test->meeting);
        focus();
        QVERIFY(popover());
    }

    void itComesWithTheKeyboardAndGoesWithIt()
    {
        use(u"Planning"_s, {}, 1);
        focus();
        QVERIFY(popover());
        QVERIFY(m_test->field->hasFocus());
        m_test->press(Qt::Key_Escape);
        QVERIFY(!popover());
        leave();
        focus();
        QVERIFY(popover());
        leave();
        QVERIFY(!popover());
    }

    void itStepsAsideForTheCompletions()
    {
        use(u"Planning"_s, {}, 1);
        focus();
        QTest::keyClicks(m_test->field, u"pl"_s);
        QVERIFY(m_test->field->isCompletionListShown());
        QVERIFY(!popover());
        m_test->press(Qt::Key_Escape);
        QVERIFY(!m_test->field->isCompletionListShown());
        QVERIFY(popover());
    }

    void aClickPutsTheTagOnTheMeeting()
    {
        const auto planning = use(u"Planning"_s, {}, 1);
        focus();
        click(0);
        QCOMPARE(m_test->field->tags(), QList{planning});
        QCOMPARE(m_test->meeting->tags(), QList{planning});
        QVERIFY(m_test->field->hasFocus());
        // It has been taken now, and a click does nothing more.
        QVERIFY(!row(0)->isEnabled());
        click(0);
        QCOMPARE(m_test->field->tags(), QList{planning});
        QVERIFY(recent().tagsArrayController->selectedObjects().isEmpty());
        leave();
        QCOMPARE(planning->lastUse(), m_test->journal.clock.now());
    }

    void tagsOfTheMeetingAreDimmed()
    {
        const auto planning = use(u"Planning"_s, {}, 1);
        m_test->meeting->addTag(*planning);
        focus();
        const QPalette palette = QGuiApplication::palette();
        QVERIFY(!row(0)->isEnabled());
        QCOMPARE(row(0)->labelColor(), palette.color(QPalette::Disabled, QPalette::WindowText));
        m_test->meeting->removeTag(*planning);
        QVERIFY(row(0)->isEnabled());
        QCOMPARE(row(0)->labelColor(), palette.color(QPalette::Active, QPalette::WindowText));
    }

    /// Only clicks respect the dimming; so it is intended.
    void theShortcutOfADimmedRowAddsASecondToken()
    {
        const auto planning = use(u"Planning"_s, {}, 1);
        m_test->meeting->addTag(*planning);
        focus();
        m_test->press(Qt::Key_1, Qt::ControlModifier | Qt::AltModifier);
        QCOMPARE(m_test->field->tags(), (QList{planning, planning}));
        leave();
        QCOMPARE(m_test->meeting->tags(), QList{planning});
    }

    void aHeldShortcutAddsOneToken()
    {
        const auto planning = use(u"Planning"_s, {}, 1);
        focus();
        constexpr Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::AltModifier;
        for (const bool isRepeat : {false, true, true}) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_1, both, u"1"_s, isRepeat);
            QCoreApplication::sendEvent(m_test->field, &press);
        }
        QCOMPARE(m_test->field->tags(), QList{planning});
        QVERIFY(!m_test->field->editor().hasHalfTypedText());
    }

    void shortcutsAreHeardWhileTheFieldIsEdited()
    {
        const auto planning = use(u"Planning"_s, {}, 1);
        constexpr Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::AltModifier;
        focus();
        for (const Qt::Key key : {Qt::Key_0, Qt::Key_2, Qt::Key_8, Qt::Key_9})
            m_test->press(key, both);
        QVERIFY(m_test->field->tags().isEmpty());
        m_test->press(Qt::Key_1, Qt::ControlModifier);
        m_test->press(Qt::Key_1, Qt::AltModifier);
        m_test->press(Qt::Key_A, both);
        leave();
        m_test->field->setObjectValue({});
        QTest::keyClick(m_test->elsewhere, Qt::Key_1, both);
        QVERIFY(m_test->field->tags().isEmpty());
        focus();
        m_test->press(Qt::Key_1, both);
        QCOMPARE(m_test->field->tags(), QList{planning});
    }

    void keysAreDigitsOnEveryLayout_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<quint32>("scanCode");
        QTest::addColumn<int>("digit"); // -1: none.

        constexpr Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::AltModifier;
        const auto add = [](const char *name, int key, Qt::KeyboardModifiers modifiers,
                            quint32 scanCode, int digit) {
            QTest::newRow(name) << key << modifiers << scanCode << digit;
        };
        add("1", Qt::Key_1, both, 10, 1);
        add("9", Qt::Key_9, both, 18, 9);
        add("0", Qt::Key_0, both, 19, 0);
        add("keypad", Qt::Key_3, both | Qt::KeypadModifier, 89, 3);
        add("Shift, where 1 becomes an exclamation mark", Qt::Key_Exclam, both | Qt::ShiftModifier,
            10, 1);
        add("a French keyboard, where the key is an ampersand", Qt::Key_Ampersand, both, 10, 1);
        add("Meta as well", Qt::Key_1, both | Qt::MetaModifier, 10, 1);
        add("AltGr", Qt::Key_1, both | Qt::GroupSwitchModifier, 10, -1);
        add("Ctrl alone", Qt::Key_1, Qt::ControlModifier, 10, -1);
        add("Alt alone", Qt::Key_1, Qt::AltModifier, 10, -1);
        add("a letter", Qt::Key_A, both, 38, -1);
        add("a key of unknown place", Qt::Key_Exclam, both, 0, -1);
    }
    void keysAreDigitsOnEveryLayout()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(quint32, scanCode);
        QFETCH(int, digit);
        const QKeyEvent event(QEvent::KeyPress, key, modifiers, scanCode, 0, 0);
        QCOMPARE(TagShortcutMonitor::digitOf(event).value_or(-1), digit);
    }

    void anotherWindowHearsNothing()
    {
        use(u"Planning"_s, {}, 1);
        focus();
        QWidget other;
        auto *field = new QLineEdit(&other);
        other.show();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QTest::keyClick(field, Qt::Key_1, Qt::ControlModifier | Qt::AltModifier);
        QVERIFY(m_test->field->tags().isEmpty());
    }

    void theMonitorEndsWithItsField()
    {
        use(u"Planning"_s, {}, 1);
        focus();
        delete m_test->field;
        m_test->field = nullptr;
        QTest::keyClick(m_test->elsewhere, Qt::Key_1, Qt::ControlModifier | Qt::AltModifier);
        QVERIFY(!m_test->window->findChild<RecentTagsViewController *>());
    }

    void aDeletedTagIsHandedToNobody()
    {
        const auto planning = use(u"Planning"_s, {}, 1);
        focus();
        const auto kept = row(0);
        QVERIFY(m_test->journal.context().deleteObject(planning));
        QVERIFY(!kept->tag());
        QVERIFY(!recent().chooseByNumber(1));
        m_test->journal.context().processPendingChanges();
        QCOMPARE(recent().tagListModels().size(), 0);
    }

    void aTagThatIsRenamedShowsSo()
    {
        const auto planning = use(u"Planning"_s, {}, 1);
        focus();
        planning->setName(u"Plans"_s);
        m_test->journal.context().processPendingChanges();
        QCOMPARE(rows(), QStringList{u"⌥⌘1 Plans "_s});
    }

private:
    /// A tag that was last used at a time in seconds, if ever.
    std::shared_ptr<Tag> use(const QString &name, const QString &emoji,
                             std::optional<double> when) const
    {
        const auto tag = m_test->make(name, emoji);
        if (when)
            tag->setLastUse(Date{*when});
        m_test->journal.context().processPendingChanges();
        return tag;
    }
    RecentTagsViewController &recent() const { return m_test->field->recentTagsViewController(); }
    std::shared_ptr<TagListViewModel> row(int row) const
    {
        return recent().tagListModels().at(row);
    }
    QStringList rows() const
    {
        QStringList rows;
        for (const auto &row : recent().tagListModels())
            rows.append(row->shortcut() + u' ' + row->title());
        return rows;
    }
    bool popover() const
    {
        const auto *popover = m_test->window->findChild<FieldPopover *>();
        return popover && popover->isVisible();
    }
    void click(int row) const
    {
        QListView &table = *recent().tableView;
        const QRect place = table.visualRect(table.model()->index(row, 0));
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, place.center());
    }
    void focus() const
    {
        m_test->field->setFocus();
        QTRY_VERIFY(m_test->field->hasFocus());
    }
    void leave() const
    {
        m_test->elsewhere->setFocus();
        QTRY_VERIFY(m_test->elsewhere->hasFocus());
    }

    std::unique_ptr<TagFieldTest> m_test;
};

QTEST_MAIN(tst_RecentTags)
#include "tst_RecentTags.moc"
