#include "Foundation/Text/AsciiSearch.h"

#include <QTest>

#include <algorithm>
#include <random>
#include <string>

using namespace tembra;

class tst_AsciiSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsAscii();
    void lowersLeadingAscii();
    void findsAtEveryPosition();
    void agreesWithPlainSearch();
};

void tst_AsciiSearch::tellsAscii()
{
    QVERIFY(isAscii(""));
    QVERIFY(isAscii(std::string(3, '\0')));
    for (size_t length = 1; length < 50; ++length) {
        const std::string text(length, '\x7F');
        QVERIFY(isAscii(text));
        for (size_t position = 0; position < length; ++position) {
            std::string other = text;
            other[position] = '\x80';
            QVERIFY(!isAscii(other));
        }
    }
}

void tst_AsciiSearch::lowersLeadingAscii()
{
    std::string all;
    std::string expected;
    for (int byte = 0; byte < 128; ++byte) {
        all += char(byte);
        expected += char(byte >= 'A' && byte <= 'Z' ? byte + 32 : byte);
    }
    for (size_t length = 0; length <= all.size(); ++length) {
        const std::string text = all.substr(0, length) + "\xC3\x89" + "ABC";
        std::string lowered(text.size(), '?');
        QCOMPARE(lowerLeadingAscii(text, lowered.data()), length);
        QCOMPARE(lowered.substr(0, length), expected.substr(0, length));
    }
}

void tst_AsciiSearch::findsAtEveryPosition()
{
    for (const std::string needle : {"q", "qx", "quick", "a needle of more than sixteen"}) {
        std::string upper = needle;
        std::transform(upper.begin(), upper.end(), upper.begin(),
                       [](char letter) { return char(std::toupper(letter)); });
        for (size_t before = 0; before < 40; ++before) {
            for (size_t after = 0; after < 40; ++after) {
                const std::string start(before, '.');
                const std::string end(after, '.');
                QVERIFY(containsIgnoringAsciiCase(start + needle + end, needle));
                QVERIFY(containsIgnoringAsciiCase(start + upper + end, needle));
                QVERIFY(!containsIgnoringAsciiCase(start + needle.substr(1) + end, needle));
            }
        }
    }
}

void tst_AsciiSearch::agreesWithPlainSearch()
{
    std::mt19937 random(20261121);
    const std::string letters("aAbB@[`{\0", 9);
    const auto anyText = [&](size_t length) {
        std::string text;
        for (size_t i = 0; i < length; ++i)
            text += letters[random() % letters.size()];
        return text;
    };
    const auto lowered = [](std::string text) {
        std::transform(text.begin(), text.end(), text.begin(), asciiLowered);
        return text;
    };
    int found = 0;
    for (int i = 0; i < 50'000; ++i) {
        const std::string text = anyText(random() % 60);
        const std::string needle = lowered(anyText(1 + random() % 5));
        const bool expected = lowered(text).find(needle) != std::string::npos;
        QCOMPARE(containsIgnoringAsciiCase(text, needle), expected);
        found += expected;
    }
    QVERIFY(found > 5'000 && found < 45'000);
}

QTEST_GUILESS_MAIN(tst_AsciiSearch)
#include "tst_AsciiSearch.moc"
