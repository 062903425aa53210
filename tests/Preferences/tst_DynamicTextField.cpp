#include "Preferences/InputControls/DynamicTextField.h"

#include <QAccessible>
#include <QTest>
#include <QVBoxLayout>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_DynamicTextField : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itIsExactlyAsTallAsItsWrappedText()
    {
        DynamicTextField field(longText());
        const int line = oneLine();
        QVERIFY(field.wraps());
        field.resize(2000, 10);
        QCOMPARE(field.sizeHint().height(), line);
        int lines = 1;
        for (const int width : {400, 200, 120}) {
            field.resize(width, 10);
            const int height = field.sizeHint().height();
            QCOMPARE(height % line, 0);
            QVERIFY(height / line > lines);
            QVERIFY(field.sizeHint().width() <= width);
            QCOMPARE(field.heightForWidth(width), height);
            QCOMPARE(field.minimumSizeHint().height(), height);
            lines = height / line;
        }
    }

    void withoutWrappingItIsOneLine()
    {
        DynamicTextField field(longText());
        field.setWraps(false);
        QVERIFY(!field.wraps());
        const QSize size = field.sizeHint();
        QCOMPARE(size.height(), oneLine());
        QVERIFY(size.width() > 400);
        field.resize(50, 10);
        QCOMPARE(field.sizeHint(), size);
        QCOMPARE(field.heightForWidth(50), -1);
        QVERIFY(!field.hasHeightForWidth());
    }

    void aLayoutGivesItThatHeight()
    {
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        layout->setContentsMargins({});
        auto *field = new DynamicTextField(u"Short"_s);
        auto *rest = new QWidget;
        layout->addWidget(field);
        layout->addWidget(rest, 1);
        window.resize(150, 600);
        window.show();
        QCOMPARE(field->height(), oneLine());
        field->setText(longText());
        QTRY_COMPARE(field->height(), field->heightForWidth(150));
        QVERIFY(field->height() >= 3 * oneLine());
        const int narrow = field->height();
        window.resize(500, 600);
        QTRY_COMPARE(field->height(), field->heightForWidth(500));
        QVERIFY(field->height() < narrow);
        field->setText(u"Short"_s);
        QTRY_COMPARE(field->height(), oneLine());
        field->setText(longText());
        field->setWraps(false);
        QTRY_COMPARE(field->height(), oneLine());
    }

    void linesOfTheTextStayLines()
    {
        DynamicTextField field(u"one\ntwo\nthree"_s);
        field.resize(1000, 10);
        QCOMPARE(field.sizeHint().height(), 3 * oneLine());
    }

    void anEmptyTextIsALineHigh()
    {
        DynamicTextField field;
        field.resize(100, 10);
        QCOMPARE(field.sizeHint().height(), oneLine());
    }

    void aWordThatIsTooLongIsBroken()
    {
        DynamicTextField field(QString(200, u'x'));
        field.resize(100, 10);
        QVERIFY(field.sizeHint().height() >= 3 * oneLine());
        QVERIFY(field.sizeHint().width() <= 100);
    }

    void markupIsText()
    {
        DynamicTextField field(u"<b>x</b>"_s);
        field.resize(300, 10);
        DynamicTextField plain(u"x"_s);
        plain.resize(300, 10);
        QVERIFY(field.sizeHint().width() > 3 * plain.sizeHint().width());
        QCOMPARE(QAccessible::queryAccessibleInterface(&field)->text(QAccessible::Name),
                 u"<b>x</b>"_s);
    }

    void emojiAreInColour_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("plain") << u"🎯"_s;
        QTest::newRow("with a variation selector") << u"⚡️"_s;
    }

    void emojiAreInColour()
    {
        QFETCH(const QString, text);
        DynamicTextField field(text);
        field.resize(60, 40);
        const QImage image = field.grab().toImage();
        int coloured = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                coloured += image.pixelColor(x, y).hslSaturation() > 120
                            && image.pixelColor(x, y).alpha() > 200;
        }
        QVERIFY(coloured > 20);
    }

private:
    static QString longText()
    {
        return u"3 tagged: A tag with quite a long name (double-click a session for more detail)"_s;
    }

    static int oneLine()
    {
        DynamicTextField field(u"x"_s);
        field.resize(1000, 10);
        return field.sizeHint().height();
    }
};

QTEST_MAIN(tst_DynamicTextField)
#include "tst_DynamicTextField.moc"
