#include "EditorTest.h"

#include "Model/DefaultsManager.h"

#include <QAbstractItemView>
#include <QApplication>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The rating menus of the editor.
class tst_SessionRatings : public EditorTest
{
    Q_OBJECT

private Q_SLOTS:
    void menusListTheScalesInOrder_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QStringList>("emoji");
        const QStringList personal{u"—"_s,    u"🙂"_s, u"😔"_s, u"🤩"_s, u"😖"_s,
                                   u"🤕"_s, u"😎"_s,    u"😐"_s, u"🤔"_s};
        QTest::newRow("me") << u"mePopup"_s << personal;
        QTest::newRow("teammate") << u"teammatePopup"_s << personal;
        QTest::newRow("meeting") << u"meetingPopup"_s
                                 << QStringList{u"—"_s,      u"💥"_s, u"🙌"_s, u"✅"_s,
                                                u"⚡️"_s, u"😤"_s, u"🔋"_s};
    }

    void menusListTheScalesInOrder()
    {
        QFETCH(QString, menu);
        QFETCH(QStringList, emoji);
        show();
        QStringList titles;
        for (int index = 0; index < popup(menu)->count(); ++index)
            titles.append(popup(menu)->itemText(index));
        QCOMPARE(titles, emoji);
    }

    void aRatingIsShownAndPicked_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QByteArray>("property");
        QTest::newRow("me") << u"mePopup"_s << QByteArray("personalSentiment");
        QTest::newRow("meeting") << u"meetingPopup"_s << QByteArray("meetingSentiment");
        QTest::newRow("teammate") << u"teammatePopup"_s << QByteArray("counterpartSentiment");
    }

    void aRatingIsShownAndPicked()
    {
        QFETCH(QString, menu);
        QFETCH(QByteArray, property);
        m_session->setProperty(property.constData(), QVariant::fromValue(qint16(2)));
        show();
        QCOMPARE(popup(menu)->currentIndex(), 2);
        popup(menu)->setFocus();
        QTest::keyClick(popup(menu), Qt::Key_Down);
        QCOMPARE(m_session->property(property.constData()).toInt(), 3);
        QCOMPARE(popup(menu)->currentIndex(), 3);
    }

    void aRatingIsPickedFromTheOpenMenu()
    {
        show();
        QTest::mouseClick(popup(u"meetingPopup"_s), Qt::LeftButton);
        QAbstractItemView *list = popup(u"meetingPopup"_s)->view();
        QTRY_VERIFY(list->isVisible());
        QTest::qWait(QApplication::doubleClickInterval() + 50); // So soon a click would not count.
        const QModelIndex tense = list->model()->index(4, 0);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(tense).center());
        QTRY_COMPARE(int(m_session->meetingSentiment()), 4);
    }

    void aRatingOffTheScaleShowsNothingAndStays()
    {
        m_session->setPersonalSentiment(9);
        m_session->setMeetingSentiment(-1);
        show();
        QCOMPARE(popup(u"mePopup"_s)->currentIndex(), -1);
        QCOMPARE(popup(u"meetingPopup"_s)->currentIndex(), -1);
        m_editor->setSession(m_other);
        m_editor->setSession(m_session);
        Q_EMIT m_journal->notifications.didChangeEmoji();
        QVERIFY(m_editor->commitEditing());
        QCOMPARE(int(m_session->personalSentiment()), 9);
        QCOMPARE(int(m_session->meetingSentiment()), -1);
        QCOMPARE(popup(u"mePopup"_s)->currentIndex(), -1);
    }

    void theWordForARatingIsToldBesideItsEmoji()
    {
        m_session->setPersonalSentiment(6);
        show();
        QCOMPARE(popup(u"mePopup"_s)->toolTip(), u"Proud"_s);
        QCOMPARE(popup(u"mePopup"_s)->accessibleDescription(), u"Proud"_s);
        QCOMPARE(popup(u"mePopup"_s)->itemData(3, Qt::AccessibleTextRole).toString(), u"Excited"_s);
        m_session->setPersonalSentiment(7);
        QCOMPARE(popup(u"mePopup"_s)->toolTip(), u"Disengaged"_s);
    }

    void newEmojiAreShownAndTheSelectionStays()
    {
        m_session->setPersonalSentiment(3);
        show();
        m_journal->defaults.setEmojiOverride(DefaultsManager::personalOverrideKey(3), u"🥳"_s);
        m_journal->defaults.emojiChanged();
        QCOMPARE(popup(u"mePopup"_s)->currentIndex(), 3);
        QCOMPARE(popup(u"mePopup"_s)->currentText(), u"🥳"_s);
        QCOMPARE(popup(u"teammatePopup"_s)->itemText(3), u"🥳"_s);
        QCOMPARE(int(m_session->personalSentiment()), 3);
    }
};

QTEST_MAIN(tst_SessionRatings)
#include "tst_SessionRatings.moc"
