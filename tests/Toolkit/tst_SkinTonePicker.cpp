#include "Toolkit/Emoji/SkinTonePicker.h"

#include "PaletteTest.h"

#include <QStyleHints>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestSkinTonePicker : public PaletteTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { openPalette(); }
    void cleanup() { closePalette(); }
    void offersSkinTones_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"Menu", "Alt+Down", "Shift+F10", "right click", "long press",
                                "Alt+Down in the search"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void offersSkinTones()
    {
        QFETCH(QString, way);
        QTest::keyClicks(m_search, u"waving hand"_s);
        QCOMPARE(currentEmoji(), u"👋"_s);
        const QPoint place = placeOf(u"👋"_s);
        if (way == u"Menu"_s) {
            QTest::keyClick(m_grid, Qt::Key_Menu);
        } else if (way == u"Alt+Down"_s) {
            QTest::keyClick(m_grid, Qt::Key_Down, Qt::AltModifier);
        } else if (way == u"Shift+F10"_s) {
            QTest::keyClick(m_grid, Qt::Key_F10, Qt::ShiftModifier);
        } else if (way == u"right click"_s) {
            QContextMenuEvent event(QContextMenuEvent::Mouse, place,
                                    m_grid->viewport()->mapToGlobal(place));
            QApplication::sendEvent(m_grid->viewport(), &event);
        } else if (way == u"long press"_s) {
            QTest::mousePress(m_grid->viewport(), Qt::LeftButton, {}, place);
            QTRY_VERIFY(popup());
        } else {
            QTest::keyClick(m_search, Qt::Key_Down, Qt::AltModifier);
        }
        QVERIFY(popup());
        auto *tones = popup()->findChild<EmojiGrid *>(u"skinTones"_s);
        QVERIFY(tones);
        QVERIFY(tones->hasFocus());
        QCOMPARE(tones->model()->rowCount(), 1);
        QCOMPARE(tones->model()->columnCount(), 6);
        QCOMPARE(tones->model()->index(0, 0).data().toString(), u"👋"_s);
        QTest::keyClick(tones, Qt::Key_Right);
        QTest::keyClick(tones, Qt::Key_Right);
        QCOMPARE(m_name->text(), u"waving hand: medium-light skin tone"_s);
        QTest::keyClick(tones, Qt::Key_Return);
        QCOMPARE(popup(), nullptr);
        QCOMPARE(m_choices->count(), 1);
        QCOMPARE(m_choices->constFirst().constFirst().toString(), u"👋🏼"_s);
        QCOMPARE(m_recent->emoji().constFirst(), u"👋🏼"_s);
    }

    void offersTonesOfTwo()
    {
        EmojiGrid *tones = openTones(u"🤝"_s);
        QVERIFY(tones);
        QCOMPARE(tones->model()->rowCount(), 6);
        QCOMPARE(tones->model()->columnCount(), 5);
        QTest::keyClick(tones, Qt::Key_Down);
        QTest::keyClick(tones, Qt::Key_Down);
        QTest::mouseClick(tones->viewport(), Qt::LeftButton, {},
                          tones->visualRect(tones->model()->index(2, 0)).center());
        QCOMPARE(m_choices->constFirst().constFirst().toString(), u"🫱🏼‍🫲🏻"_s);
    }

    void offersNoTonesWhereThereAreNone()
    {
        QCOMPARE(openTones(u"😀"_s), nullptr);
        QCOMPARE(openTones(u"🏁"_s), nullptr);
        EmojiGrid *tones = openTones(u"👋"_s);
        QVERIFY(tones);
        // No more behind these; Escape leads back and chooses nothing.
        QTest::keyClick(tones, Qt::Key_Menu);
        QCOMPARE(popup()->findChild<EmojiGrid *>(u"skinTones"_s), tones);
        QTest::keyClick(tones, Qt::Key_Escape);
        QCOMPARE(popup(), nullptr);
        QCOMPARE(m_choices->count(), 0);
        QVERIFY(m_palette->isVisible());
        QTRY_VERIFY(m_grid->hasFocus());
        QCOMPARE(m_name->text(), u"waving hand"_s);
    }

    void aLongPressOffersTonesAndChoosesNothing()
    {
        const QPoint place = placeOf(u"👋"_s);
        QTest::mousePress(m_grid->viewport(), Qt::LeftButton, {}, place);
        QVERIFY(!popup());
        QTRY_VERIFY(popup());
        QTest::mouseRelease(m_grid->viewport(), Qt::LeftButton, {}, place);
        QCOMPARE(m_choices->count(), 0);
        QVERIFY(popup());
        QTest::keyClick(popup(), Qt::Key_Escape);
        // Let go in time, it is a click.
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {}, place);
        QTest::qWait(QGuiApplication::styleHints()->mousePressAndHoldInterval() + 100);
        QVERIFY(!popup());
        QCOMPARE(m_choices->count(), 1);
    }

private:
    EmojiGrid *openTones(const QString &emoji) const
    {
        m_grid->setCurrentIndex(indexOf(emoji));
        m_grid->setFocus();
        QTest::keyClick(m_grid, Qt::Key_Menu);
        return popup() ? popup()->findChild<EmojiGrid *>(u"skinTones"_s) : nullptr;
    }
};

QTEST_MAIN(TestSkinTonePicker)
#include "tst_SkinTonePicker.moc"
