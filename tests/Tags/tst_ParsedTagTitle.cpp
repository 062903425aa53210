#include "Tags/ParsedTagTitle.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

/// The name and the emoji of a new tag, as they are typed in one text.
class tst_ParsedTagTitle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsNameAndEmoji_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("emoji");

        QTest::newRow("name and emoji") << u"Hiring 🚀"_s << u"Hiring"_s << u"🚀"_s;
        QTest::newRow("name alone") << u"Hiring"_s << u"Hiring"_s << QString();
        QTest::newRow("no blank between them") << u"Hiring🚀"_s << u"Hiring"_s << u"🚀"_s;
        QTest::newRow("of several blanks one goes") << u"Hiring  🚀"_s << u"Hiring "_s << u"🚀"_s;
        QTest::newRow("a blank at the end") << u"Hiring "_s << u"Hiring"_s << QString();
        QTest::newRow("a blank after the emoji") << u"Hiring 🚀 "_s << u"Hiring 🚀"_s << QString();
        QTest::newRow("the last of several emoji") << u"🎉🚀"_s << u"🎉"_s << u"🚀"_s;
        QTest::newRow("an emoji alone") << u"🚀"_s << u""_s << u"🚀"_s;
        QTest::newRow("an emoji in the middle") << u"Go 🚀 go"_s << u"Go 🚀 go"_s << QString();
        QTest::newRow("a family") << u"Home 👩‍👩‍👧"_s << u"Home"_s
                                  << u"👩‍👩‍👧"_s;
        QTest::newRow("a flag") << u"Paris 🇫🇷"_s << u"Paris"_s << u"🇫🇷"_s;
        QTest::newRow("a keycap") << u"Step 1️⃣"_s << u"Step"_s << u"1️⃣"_s;
        QTest::newRow("a symbol") << u"Risk ⚠"_s << u"Risk"_s << u"⚠"_s;
        QTest::newRow("a tab before the emoji") << u"Risk\t⚠️"_s << u"Risk"_s << u"⚠️"_s;
        // Its hand is none by itself, and nothing joins it to its colour.
        QTest::newRow("a hand that points, of some skin")
            << u"Up ☝🏽"_s << u"Up ☝🏽"_s << QString();
    }
    void splitsNameAndEmoji()
    {
        QFETCH(QString, text);
        QFETCH(QString, name);
        QFETCH(QString, emoji);
        const ParsedTagTitle title = ParsedTagTitle::parse(text);
        QCOMPARE(title.name, name);
        QCOMPARE(title.emoji, emoji);
        QCOMPARE(title.emoji.isNull(), emoji.isNull());
    }
};

QTEST_GUILESS_MAIN(tst_ParsedTagTitle)
#include "tst_ParsedTagTitle.moc"
