#include "Preferences/InputControls/OnlyEmojiValueFormatter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestOnlyEmojiValueFormatter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decides_data();
    void decides();
    void guardsPasting_data();
    void guardsPasting();
    void guardsTyping();
    void keepsTheTextAsValue_data();
    void keepsTheTextAsValue();
    void showsTextsOnly_data();
    void showsTextsOnly();
};

namespace {

void addTexts()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("letters") << u"abc"_s << false;
    QTest::newRow("one letter") << u"a"_s << false;
    QTest::newRow("digits") << u"12"_s << false;
    QTest::newRow("letters and digits") << u"a1"_s << false;
    QTest::newRow("Cyrillic") << u"Привет"_s << false;
    QTest::newRow("Han") << u"漢字"_s << false;
    QTest::newRow("Arabic digits") << u"١٢"_s << false;
    QTest::newRow("a fraction, which is a number") << u"½"_s << false;
    QTest::newRow("a letter with a combining mark") << u"e\u0301"_s << false;
    QTest::newRow("a mark alone") << u"\u0301"_s << false;
    QTest::newRow("letters beyond the first plane") << u"𝐀𐐀"_s << false;
    QTest::newRow("digits beyond the first plane") << u"𝟏𝟐"_s << false;
    QTest::newRow("a digit as keycap: number and marks") << u"1\uFE0F\u20E3"_s << false;
    QTest::newRow("exclamation and question mark") << u"!?"_s << false;
    QTest::newRow("a full stop") << u"."_s << false;
    QTest::newRow("brackets, dashes, quotation marks") << u"(–“”)_"_s << false;
    QTest::newRow("punctuation beyond the first plane") << u"𐄀"_s << false;
    QTest::newRow("an emoji") << u"😀"_s << true;
    QTest::newRow("an emoji of the first plane") << u"⚠"_s << true;
    QTest::newRow("with variation selector") << u"❤\uFE0F"_s << true;
    QTest::newRow("a flag") << u"🇩🇪"_s << true;
    QTest::newRow("a family") << u"👩‍👩‍👧‍👦"_s << true;
    QTest::newRow("a skin tone") << u"👍🏽"_s << true;
    QTest::newRow("a number sign as keycap: punctuation and marks") << u"#\uFE0F\u20E3"_s << true;
    QTest::newRow("several emoji") << u"😀🚀"_s << true;
    QTest::newRow("a letter and an exclamation mark") << u"a!"_s << true;
    QTest::newRow("a letter and an emoji") << u"a😀"_s << true;
    QTest::newRow("punctuation and an emoji") << u"!😀"_s << true;
    QTest::newRow("a blank") << u" "_s << true;
    QTest::newRow("words with a blank") << u"a b"_s << true;
    QTest::newRow("symbols") << u"+$^"_s << true;
}

} // namespace

void TestOnlyEmojiValueFormatter::decides_data()
{
    addTexts();
    QTest::newRow("empty") << u""_s << true;
    QTest::newRow("missing") << QString() << true;
    QTest::newRow("half of a pair") << QString(QChar(0xD83D)) << true;
}

void TestOnlyEmojiValueFormatter::decides()
{
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    QCOMPARE(OnlyEmojiValueFormatter::isPartialStringValid(text), accepted);
    const OnlyEmojiValueFormatter formatter;
    QString proposed = text;
    int position = 0;
    QCOMPARE(formatter.validate(proposed, position),
             accepted ? QValidator::Acceptable : QValidator::Invalid);
    QCOMPARE(proposed, text);
}

void TestOnlyEmojiValueFormatter::guardsPasting_data()
{
    addTexts();
}

void TestOnlyEmojiValueFormatter::guardsPasting()
{
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    QLineEdit field;
    field.setValidator(new OnlyEmojiValueFormatter(&field));
    field.show();
    QVERIFY(QTest::qWaitForWindowActive(&field));
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(field.text(), accepted ? text : QString());
}

void TestOnlyEmojiValueFormatter::guardsTyping()
{
    QLineEdit field;
    field.setValidator(new OnlyEmojiValueFormatter(&field));
    field.show();
    QVERIFY(QTest::qWaitForWindowActive(&field));
    QTest::keyClicks(&field, u"a1!"_s);
    QCOMPARE(field.text(), QString());
    QTest::keyClicks(&field, u"+"_s);
    QCOMPARE(field.text(), u"+"_s);
    QTest::keyClicks(&field, u"a!"_s);
    QCOMPARE(field.text(), u"+a!"_s);
}

void TestOnlyEmojiValueFormatter::keepsTheTextAsValue_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("an emoji") << u"❤\uFE0F"_s;
    QTest::newRow("what would be refused while typing") << u"abc"_s;
    QTest::newRow("empty") << u""_s;
}

void TestOnlyEmojiValueFormatter::keepsTheTextAsValue()
{
    QFETCH(QString, text);
    QVariant object;
    QVERIFY(OnlyEmojiValueFormatter::getObjectValue(object, text));
    QCOMPARE(object, QVariant(text));
    QCOMPARE(OnlyEmojiValueFormatter::stringForObjectValue(object), text);
}

void TestOnlyEmojiValueFormatter::showsTextsOnly_data()
{
    QTest::addColumn<QVariant>("object");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("a number") << QVariant(12);
    QTest::newRow("bytes") << QVariant(QByteArray("abc"));
    QTest::newRow("a list of texts") << QVariant(QStringList{u"😀"_s});
}

void TestOnlyEmojiValueFormatter::showsTextsOnly()
{
    QFETCH(QVariant, object);
    QCOMPARE(OnlyEmojiValueFormatter::stringForObjectValue(object), QString());
}

QTEST_MAIN(TestOnlyEmojiValueFormatter)
#include "tst_OnlyEmojiValueFormatter.moc"
