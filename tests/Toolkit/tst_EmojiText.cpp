#include "Toolkit/Emoji/EmojiText.h"

#include "Toolkit/Emoji/EmojiComboBox.h"
#include "Toolkit/Emoji/EmojiHighlighter.h"
#include "Toolkit/Emoji/EmojiItemDelegate.h"
#include "Toolkit/Emoji/EmojiLabel.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QImage>
#include <QListView>
#include <QListWidget>
#include <QPainter>
#include <QPlainTextEdit>
#include <QTest>
#include <QToolTip>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Pixels of a clear colour; black, white and grey have none.
int colouredPixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y).hsvSaturationF() > 0.3F
                     && image.pixelColor(x, y).alpha() > 128;
    }
    return count;
}

QImage drawn(const QString &text, const QFont &font, const QSize &size = {300, 40},
             Qt::Alignment alignment = Qt::AlignLeading | Qt::AlignVCenter)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    drawEmojiText(&painter, image.rect(), text, font, Qt::black, alignment);
    return image;
}

/// The columns that are not blank: first and last.
std::pair<int, int> extent(const QImage &image)
{
    int first = image.width(), last = -1;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) != Qt::white) {
                first = std::min(first, x);
                last = x;
            }
        }
    }
    return {first, last};
}

/// The lowest row with black in it: where text without descenders stands.
int baseline(const QImage &image)
{
    for (int y = image.height() - 1; y >= 0; --y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).lightness() < 60
                && image.pixelColor(x, y).hslSaturationF() < 0.2F)
                return y;
        }
    }
    return -1;
}

QFont dejaVu()
{
    return QFont(u"DejaVu Sans"_s, 11);
}

} // namespace

class TestEmojiText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drawsEmojiInColour_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("high voltage") << u"⚡️"_s;
        QTest::newRow("warning") << u"⚠️"_s;
        QTest::newRow("check mark") << u"✅"_s;
        QTest::newRow("heart") << u"❤️"_s;
        QTest::newRow("heart without selector") << u"❤"_s;
        QTest::newRow("face") << u"😀"_s;
        QTest::newRow("flag") << u"🇩🇪"_s;
        QTest::newRow("rainbow flag") << u"🏳️‍🌈"_s;
        QTest::newRow("skin tone") << u"👍🏽"_s;
        QTest::newRow("keycap") << u"1️⃣"_s;
    }

    void drawsEmojiInColour()
    {
        QFETCH(QString, text);
        QVERIFY(colouredPixels(drawn(text, dejaVu())) > 40);
        QVERIFY(colouredPixels(drawn(QString(u"text "_s + text), dejaVu())) > 40);
    }

    void drawsJoinedEmojiAsOne_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("heart on fire") << u"❤️‍🔥"_s;
        QTest::newRow("rainbow flag") << u"🏳️‍🌈"_s;
        QTest::newRow("family") << u"👨‍👩‍👧"_s;
        QTest::newRow("profession with skin tone") << u"👩🏽‍💻"_s;
        QTest::newRow("flag") << u"🇩🇪"_s;
        QTest::newRow("keycap") << u"1️⃣"_s;
    }

    void drawsJoinedEmojiAsOne()
    {
        QFETCH(QString, text);
        const double one = emojiTextSize(u"😀"_s, dejaVu()).width();
        QVERIFY(qAbs(emojiTextSize(text, dejaVu()).width() - one) < 2);
    }

    void drawsPlainTextWithoutColour()
    {
        const QImage image = drawn(u"plain text"_s, dejaVu());
        QVERIFY(extent(image).second > 20);
        QCOMPARE(colouredPixels(image), 0);
    }

    void keepsTheBaseline()
    {
        const int plain = baseline(drawn(u"nm"_s, dejaVu()));
        QVERIFY(plain > 0);
        QVERIFY(qAbs(baseline(drawn(u"nm 😀"_s, dejaVu())) - plain) <= 1);
    }

    void aligns_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("plain") << u"plain"_s;
        QTest::newRow("emoji") << u"text ✅"_s;
        QTest::newRow("right to left") << u"שלום ✅"_s;
    }

    void aligns()
    {
        QFETCH(QString, text);
        const auto [left, leftEnd] = extent(drawn(text, dejaVu()));
        QVERIFY(left < 6);
        const auto [right, rightEnd] = extent(
            drawn(text, dejaVu(), {300, 40}, Qt::AlignRight | Qt::AlignVCenter));
        QVERIFY(rightEnd > 293);
        const auto [centre, centreEnd] = extent(drawn(text, dejaVu(), {300, 40}, Qt::AlignCenter));
        QVERIFY(qAbs((centre + centreEnd) / 2 - 150) < 4);
        QVERIFY(leftEnd - left > 20 && leftEnd < 150);
    }

    void elides()
    {
        const QString text = u"A long text 🎯 with much to say ✅ and more"_s;
        const QImage narrow = drawn(text, dejaVu(), {120, 40});
        QImage wide(400, 40, QImage::Format_RGB32);
        wide.fill(Qt::white);
        QPainter painter(&wide);
        drawEmojiText(&painter, QRectF(0, 0, 120, 40), text, dejaVu(), Qt::black);
        painter.end();
        QVERIFY(extent(wide).second < 120);
        QCOMPARE(wide.copy(0, 0, 120, 40), narrow);
        QVERIFY(extent(narrow).second > 80);
    }

    void measuresWhatItDraws()
    {
        const QString text = u"Goals 🎯 and ✅"_s;
        const QSizeF size = emojiTextSize(text, dejaVu());
        QVERIFY(qAbs(extent(drawn(text, dejaVu())).second - size.width()) < 4);
        QVERIFY(size.height() >= QFontMetricsF(dejaVu()).height());
        QCOMPARE(emojiTextSize(QString(), dejaVu()).width(), 0.0);
    }

    void drawsRepeatedTextsFromPictures()
    {
        const QString text = u"⚠️ Oct 2, 2026 😐 ✅ 🤔 🚀 🎯 🙌 🤩"_s;
        QImage image(300, 40, QImage::Format_RGB32);
        QPainter painter(&image);
        drawEmojiText(&painter, image.rect(), text, dejaVu(), Qt::black);
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < 200; ++i)
            drawEmojiText(&painter, image.rect(), text, dejaVu(), Qt::black);
        const double each = double(clock.nsecsElapsed()) / 200 / 1e6;
        qInfo("A repeated text of 35 characters: %.3f ms", each);
        QVERIFY(each < 0.7);
    }

    void followsColourAndFont()
    {
        const auto darkest = [](const QColor &color, int pointSize) {
            QImage image(300, 60, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            drawEmojiText(&painter, image.rect(), u"III ✅"_s, QFont(u"DejaVu Sans"_s, pointSize),
                          color);
            painter.end();
            int reds = 0;
            for (int x = 0; x < image.width(); ++x)
                for (int y = 0; y < image.height(); ++y)
                    reds += image.pixelColor(x, y).red() > 200
                            && image.pixelColor(x, y).green() < 60;
            return reds;
        };
        QCOMPARE(darkest(Qt::black, 11), 0);
        const int small = darkest(Qt::red, 11);
        QVERIFY(small > 10);
        QVERIFY(darkest(Qt::red, 22) > 2 * small);
    }

    void leavesVariationSelectorsOutOfDisplayTexts()
    {
        QCOMPARE(displayText(u"⚡️ text"_s), u"⚡ text"_s);
        QCOMPARE(displayText(u"plain"_s), u"plain"_s);
    }

    void givesPlainWidgetsAFontWithColour()
    {
        const QFont safe = emojiSafeFont(dejaVu());
        QCOMPARE(safe.families().last(), u"Noto Color Emoji"_s);
        QCOMPARE(safe.pointSizeF(), dejaVu().pointSizeF());
        QLabel label(displayText(u"text ⚡️"_s));
        label.setFont(safe);
        label.resize(label.sizeHint());
        QVERIFY(colouredPixels(label.grab().toImage()) > 40);
    }

    void labelElidesWithTooltip()
    {
        const QString text = u"A long name with emoji 🎯 and then some ⚡️"_s;
        EmojiLabel label(text);
        label.resize(label.sizeHint());
        QVERIFY(!label.isElided());
        QVERIFY(label.minimumSizeHint().width() < 60);
        label.resize(100, label.height());
        QVERIFY(label.isElided());
        label.show();
        QVERIFY(QTest::qWaitForWindowExposed(&label));
        QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), label.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&label, &help);
        QCOMPARE(QToolTip::text(), displayText(text));
        QToolTip::hideText();
        QVERIFY(colouredPixels(label.grab().toImage()) == 0);
    }

    void labelIsReadAloud()
    {
        EmojiLabel label(u"Ana 🎯"_s);
        QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&label);
        QVERIFY(interface);
        QCOMPARE(interface->text(QAccessible::Name), u"Ana 🎯"_s);
        QCOMPARE(interface->role(), QAccessible::StaticText);
    }

    void comboBoxShowsColour_data()
    {
        QTest::addColumn<QString>("title");
        QTest::newRow("high voltage") << u"⚡️"_s;
        QTest::newRow("warning") << u"⚠️"_s;
        QTest::newRow("check mark") << u"✅"_s;
    }

    void comboBoxShowsColour()
    {
        QFETCH(QString, title);
        EmojiComboBox box;
        box.setFont(dejaVu());
        box.addItems({u"—"_s, title});
        box.resize(box.sizeHint());
        const int none = colouredPixels(box.grab().toImage());
        box.setCurrentIndex(1);
        QVERIFY(colouredPixels(box.grab().toImage()) > none + 40);
        QCOMPARE(box.currentText(), title);
    }

    void comboBoxListShowsColour()
    {
        EmojiComboBox box;
        box.setFont(dejaVu());
        box.addItems({u"—"_s, u"⚡️"_s, u"⚠️"_s, u"✅"_s});
        box.show();
        QVERIFY(QTest::qWaitForWindowActive(&box));
        QTest::keyClick(&box, Qt::Key_Space);
        QTRY_VERIFY(box.view()->isVisible());
        const QImage list = box.view()->viewport()->grab().toImage();
        for (int row = 1; row < 4; ++row)
            QVERIFY(colouredPixels(list.copy(box.view()->visualRect(box.model()->index(row, 0))))
                    > 40);
        QTest::keyClick(box.view(), Qt::Key_Down);
        QTest::keyClick(box.view(), Qt::Key_Return);
        QCOMPARE(box.currentIndex(), 1);
    }

    void delegateShowsColour()
    {
        QListWidget list;
        list.setFont(dejaVu());
        list.setItemDelegate(new EmojiItemDelegate(&list));
        list.addItems({u"Plain"_s, u"⚡️ Energizing"_s});
        list.resize(200, 100);
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
        const QImage image = list.viewport()->grab().toImage();
        const auto row = [&](int number) {
            return image.copy(list.visualItemRect(list.item(number)));
        };
        QVERIFY(colouredPixels(row(1)) > 40);
        QCOMPARE(list.visualItemRect(list.item(0)).height(),
                 list.visualItemRect(list.item(1)).height());
    }

    void documentShowsColourAndKeepsItsText()
    {
        const QString text = u"Blocked ⚠️ and ✅"_s;
        QPlainTextEdit editor;
        editor.setFont(dejaVu());
        new EmojiHighlighter(editor.document());
        editor.setPlainText(text);
        editor.resize(300, 80);
        QVERIFY(colouredPixels(editor.viewport()->grab().toImage()) > 80);
        QCOMPARE(editor.toPlainText(), text);
    }
};

QTEST_MAIN(TestEmojiText)
#include "tst_EmojiText.moc"
