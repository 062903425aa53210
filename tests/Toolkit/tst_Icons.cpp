#include "Toolkit/Icons.h"

#include <QApplication>
#include <QImage>
#include <QPushButton>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr std::array allNames = {icons::Name::Add,      icons::Name::Remove, icons::Name::Previous,
                                 icons::Name::Next,     icons::Name::Help,   icons::Name::Search,
                                 icons::Name::Save,     icons::Name::Undo,   icons::Name::Redo,
                                 icons::Name::Calendar, icons::Name::Close};

QImage image(const QIcon &icon, QIcon::Mode mode = QIcon::Normal, int size = 32)
{
    return icon.pixmap(QSize(size, size), mode).toImage().convertToFormat(QImage::Format_ARGB32);
}

int opaquePixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 200;
    return count;
}

/// The colour of the drawing, taken where it is opaque.
QColor inkOf(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) == 255)
                return image.pixelColor(x, y);
    return {};
}

} // namespace

class TestIcons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyIconIsDrawn()
    {
        for (const icons::Name name : allNames) {
            const int ink = opaquePixels(image(icons::icon(name)));
            QVERIFY(ink > 20 && ink < 32 * 32 / 2);
        }
        for (const auto kind :
             {icons::AlertIcon::Information, icons::AlertIcon::Warning, icons::AlertIcon::Error})
            QVERIFY(opaquePixels(image(icons::alert(kind))) > 100);
        QVERIFY(opaquePixels(image(icons::package())) > 100);
    }

    void iconsDiffer()
    {
        for (size_t i = 0; i < allNames.size(); ++i)
            for (size_t j = i + 1; j < allNames.size(); ++j)
                QVERIFY(image(icons::icon(allNames[i])) != image(icons::icon(allNames[j])));
    }

    void followTheTextColour()
    {
        const QPalette before = QApplication::palette();
        const QIcon icon = icons::icon(icons::Name::Add);
        QCOMPARE(inkOf(image(icon)), before.color(QPalette::ButtonText));
        QPalette palette = before;
        palette.setColor(QPalette::ButtonText, QColor(0xee, 0xdd, 0xcc));
        palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x77, 0x66, 0x55));
        palette.setColor(QPalette::HighlightedText, QColor(0x11, 0x22, 0x33));
        QApplication::setPalette(palette);
        QCOMPARE(inkOf(image(icon)), QColor(0xee, 0xdd, 0xcc));
        QCOMPARE(inkOf(image(icon, QIcon::Disabled)), QColor(0x77, 0x66, 0x55));
        QCOMPARE(inkOf(image(icon, QIcon::Selected)), QColor(0x11, 0x22, 0x33));
        QPushButton button(icon, QString());
        QCOMPARE(inkOf(image(button.icon())), QColor(0xee, 0xdd, 0xcc));
        QApplication::setPalette(before);
    }

    void areSharpAtTwiceTheScale()
    {
        const QPixmap pixmap = icons::icon(icons::Name::Search).pixmap(QSize(16, 16), 2.0);
        QCOMPARE(pixmap.size(), QSize(32, 32));
        QCOMPARE(pixmap.devicePixelRatio(), 2.0);
        QImage atTwice = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
        atTwice.setDevicePixelRatio(1);
        QCOMPARE(atTwice, image(icons::icon(icons::Name::Search)));
    }

    void applicationIconIsColoured()
    {
        const QImage picture = image(icons::application(), QIcon::Normal, 64);
        QVERIFY(opaquePixels(picture) > 64 * 64 / 2);
        QVERIFY(picture.pixelColor(20, 56).hslSaturationF() > 0.3F);
    }
};

QTEST_MAIN(TestIcons)
#include "tst_Icons.moc"
