#include "Preferences/InputControls/OnlyIntegerValueFormatter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestOnlyIntegerValueFormatter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decides_data();
    void decides();
    void guardsAField();
};

void TestOnlyIntegerValueFormatter::decides_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("empty") << u""_s << true;
    QTest::newRow("missing") << QString() << true;
    QTest::newRow("zero") << u"0"_s << true;
    QTest::newRow("minus twelve") << u"-12"_s << true;
    QTest::newRow("plus twelve") << u"+12"_s << true;
    QTest::newRow("leading zeros") << u"0012"_s << true;
    QTest::newRow("minus zero") << u"-0"_s << true;
    QTest::newRow("digits and a letter") << u"12a"_s << false;
    QTest::newRow("a letter and digits") << u"a12"_s << false;
    QTest::newRow("twenty nines") << u"99999999999999999999"_s << false;
    QTest::newRow("largest") << u"9223372036854775807"_s << true;
    QTest::newRow("beyond the largest") << u"9223372036854775808"_s << false;
    QTest::newRow("smallest") << u"-9223372036854775808"_s << true;
    QTest::newRow("beyond the smallest") << u"-9223372036854775809"_s << false;
    QTest::newRow("a sign alone") << u"-"_s << false;
    QTest::newRow("two signs") << u"+-1"_s << false;
    QTest::newRow("sign behind") << u"1-"_s << false;
    QTest::newRow("blank before") << u" 1"_s << false;
    QTest::newRow("blank behind") << u"1 "_s << false;
    QTest::newRow("blank alone") << u" "_s << false;
    QTest::newRow("grouping comma") << u"1,000"_s << false;
    QTest::newRow("grouping blank") << u"1\u00A0000"_s << false;
    QTest::newRow("decimal point") << u"1.0"_s << false;
    QTest::newRow("exponent") << u"1e3"_s << false;
    QTest::newRow("hexadecimal") << u"0x10"_s << false;
    QTest::newRow("Arabic digits") << u"١٢"_s << false;
    QTest::newRow("full-width digits") << u"１２"_s << false;
    QTest::newRow("a true minus sign") << u"−12"_s << false;
    QTest::newRow("line break behind") << u"12\n"_s << false;
}

void TestOnlyIntegerValueFormatter::decides()
{
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    QCOMPARE(OnlyIntegerValueFormatter::isPartialStringValid(text), accepted);
    const OnlyIntegerValueFormatter formatter;
    int position = 0;
    QCOMPARE(formatter.validate(text, position),
             accepted ? QValidator::Acceptable : QValidator::Invalid);
}

void TestOnlyIntegerValueFormatter::guardsAField()
{
    QLineEdit field;
    field.setValidator(new OnlyIntegerValueFormatter(&field));
    field.show();
    QVERIFY(QTest::qWaitForWindowActive(&field));
    QTest::keyClicks(&field, u"1a2 ."_s);
    QCOMPARE(field.text(), u"12"_s);
    QTest::keyClick(&field, Qt::Key_Home);
    QTest::keyClicks(&field, u"-"_s);
    QCOMPARE(field.text(), u"-12"_s);
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete);
    QCOMPARE(field.text(), QString());
    QGuiApplication::clipboard()->setText(u"99999999999999999999"_s);
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(field.text(), QString());
    QGuiApplication::clipboard()->setText(u"-7"_s);
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(field.text(), u"-7"_s);
}

QTEST_MAIN(TestOnlyIntegerValueFormatter)
#include "tst_OnlyIntegerValueFormatter.moc"
