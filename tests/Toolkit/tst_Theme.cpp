#include "Toolkit/Theme.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

QPalette lightPalette()
{
    return QPalette(QColor(0xef, 0xef, 0xef));
}

QPalette darkPalette()
{
    QPalette palette(QColor(0x2d, 0x2d, 0x30));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x20));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(role, QColor(0xe6, 0xe6, 0xe6));
    return palette;
}

/// Text that is hardly readable to begin with must not get any dimmer.
QPalette paleTextPalette()
{
    QPalette palette = lightPalette();
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Text, QColor(0x76, 0x76, 0x76));
    return palette;
}

} // namespace

class TestTheme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contrastIsThatOfLuminance()
    {
        QCOMPARE(qRound(theme::contrast(Qt::black, Qt::white) * 100), 2100);
        QCOMPARE(qRound(theme::contrast(Qt::white, QColor(0x77, 0x77, 0x77)) * 100), 448);
        QCOMPARE(qRound(theme::contrast(Qt::red, Qt::red) * 100), 100);
    }

    void secondaryTextIsReadable_data()
    {
        QTest::addColumn<QPalette>("palette");
        QTest::newRow("light") << lightPalette();
        QTest::newRow("dark") << darkPalette();
        QTest::newRow("the application's own") << QApplication::palette();
        QTest::newRow("pale text") << paleTextPalette();
    }

    void secondaryTextIsReadable()
    {
        QFETCH(QPalette, palette);
        for (const auto background : {QPalette::Base, QPalette::Window, QPalette::Button}) {
            const QColor color = theme::secondaryText(palette, background);
            QVERIFY(theme::contrast(color, palette.color(background)) >= 4.5);
        }
        const QColor highlighted = palette.color(QPalette::Highlight);
        const double full = theme::contrast(palette.color(QPalette::HighlightedText), highlighted);
        QVERIFY(theme::contrast(theme::secondaryHighlightedText(palette), highlighted)
                >= std::min(full, 4.5));
        const double plain = theme::contrast(palette.color(QPalette::WindowText),
                                             palette.color(QPalette::Window));
        QVERIFY(theme::contrast(theme::secondaryText(palette, QPalette::Window),
                                palette.color(QPalette::Window))
                < plain);
    }

    void tellsDarkFromLight()
    {
        QVERIFY(!theme::isDark(lightPalette()));
        QVERIFY(theme::isDark(darkPalette()));
    }

    void mixes()
    {
        QCOMPARE(theme::mixed(Qt::black, Qt::white, 0), QColor(Qt::black));
        QCOMPARE(theme::mixed(Qt::black, Qt::white, 1), QColor(Qt::white));
        QCOMPARE(theme::mixed(Qt::black, Qt::white, 0.5).red(), 128);
    }

    void hairlineIsBetweenWindowAndText()
    {
        for (const QPalette &palette : {lightPalette(), darkPalette()}) {
            const double contrast = theme::contrast(theme::hairline(palette),
                                                    palette.color(QPalette::Window));
            QVERIFY(contrast > 1.2 && contrast < 3);
        }
    }

    void fontsAreScaled()
    {
        const QFont points(u"DejaVu Sans"_s, 10);
        QCOMPARE(theme::titleFont(points).pointSizeF(), 13.0);
        QCOMPARE(theme::titleFont(points).weight(), QFont::DemiBold);
        QCOMPARE(theme::secondaryFont(points).pointSizeF(), 9.0);
        QCOMPARE(theme::secondaryFont(points).weight(), points.weight());
        QFont pixels;
        pixels.setPixelSize(20);
        QCOMPARE(theme::titleFont(pixels).pixelSize(), 26);
        QCOMPARE(theme::secondaryFont(pixels).pixelSize(), 18);
        QCOMPARE(theme::semiboldFont(points).weight(), QFont::DemiBold);
        QCOMPARE(theme::mediumFont(points).weight(), QFont::Medium);
    }

    void motionFollowsTheDesktop()
    {
        QTemporaryDir folder;
        qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
        QVERIFY(!theme::prefersReducedMotion());
        QVERIFY(QDir(folder.path()).mkdir(u"gtk-3.0"_s));
        const auto write = [&folder](const QString &name, const QByteArray &text) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(text);
        };
        write(u"gtk-3.0/settings.ini"_s, "[Settings]\ngtk-enable-animations=true\n");
        QVERIFY(!theme::prefersReducedMotion());
        write(u"gtk-3.0/settings.ini"_s, "[Settings]\ngtk-enable-animations=false\n");
        QVERIFY(theme::prefersReducedMotion());
        QVERIFY(QFile::remove(folder.filePath(u"gtk-3.0/settings.ini"_s)));
        QVERIFY(!theme::prefersReducedMotion());
        write(u"kdeglobals"_s, "[KDE]\nAnimationDurationFactor=0\n");
        QVERIFY(theme::prefersReducedMotion());
    }
};

QTEST_MAIN(TestTheme)
#include "tst_Theme.moc"
