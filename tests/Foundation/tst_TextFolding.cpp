#include "Foundation/Text/TextFolding.h"
#include "Foundation/Text/UnicodeFolding.h"

#include <QElapsedTimer>
#include <QTest>

#include <random>
#include <thread>
#include <vector>

using namespace tembra;
using namespace std::string_literals;

class tst_TextFolding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folds_data();
    void folds();
    void matches_data();
    void matches();
    void survivesInvalidUtf8_data();
    void survivesInvalidUtf8();
    void foldsEveryCharacterAsIcuDoes();
    void foldsAnyTextAsIcuDoes_data();
    void foldsAnyTextAsIcuDoes();
    void foldsFromSeveralThreads();
    void longNeedleTakesNoLonger();
};

namespace {

std::string utf8(std::u32string_view text)
{
    return QString::fromUcs4(text.data(), qsizetype(text.size())).toStdString();
}

} // namespace

void tst_TextFolding::folds_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("expected");

    QTest::newRow("nothing") << ""s
                             << ""s;
    QTest::newRow("ASCII") << "Ana, 1:1 [NEXT] @Zed"s
                           << "ana, 1:1 [next] @zed"s;
    QTest::newRow("composed accent") << "Café"s
                                     << "cafe"s;
    QTest::newRow("combining accent") << "Cafe\u0301"s
                                      << "cafe"s;
    QTest::newRow("accent with nothing before it") << "\u0301x"s
                                                   << "x"s;
    QTest::newRow("sharp s") << "Straße"s
                             << "strasse"s;
    QTest::newRow("capital sharp s") << "STRAẞE"s
                                     << "strasse"s;
    QTest::newRow("dotted capital I") << "İstanbul"s
                                      << "istanbul"s;
    QTest::newRow("dotless i stays") << "ılık"s
                                     << "ılık"s;
    QTest::newRow("final sigma") << "ΟΔΟΣ οδός"s
                                 << "οδοσ οδοσ"s;
    QTest::newRow("iota subscript") << "ᾳ"s
                                    << "αι"s;
    QTest::newRow("full width") << "ＡＢＣ１２３"s
                                << "abc123"s;
    QTest::newRow("half-width kana") << "ｶﾞ"s
                                     << "ガ"s;
    QTest::newRow("ligature") << "ﬁt oﬀice"s
                              << "fit office"s;
    QTest::newRow("superscript") << "m²"s
                                 << "m2"s;
    QTest::newRow("squared word") << "㍿"s
                                  << "株式会社"s;
    QTest::newRow("stroke is part of the letter") << "Łódź"s
                                                  << "łodz"s;
    QTest::newRow("Hebrew points") << "שָׁלוֹם"s
                                   << "שלום"s;
    QTest::newRow("Arabic vowels") << "مُحَمَّد"s
                                   << "محمد"s;
    QTest::newRow("Arabic madda") << "آ"s
                                  << "ا"s;
    QTest::newRow("kana voicing stays") << "ガ"s
                                        << "ガ"s;
    QTest::newRow("kana voicing composes") << "カ\u3099"s
                                           << "ガ"s;
    QTest::newRow("Indic vowel signs stay") << "की"s
                                            << "की"s;
    QTest::newRow("Indic nukta decomposes") << "\u0958"s
                                            << "\u0915\u093C"s;
    QTest::newRow("Indic nukta composes") << "\u0928\u093C"s
                                          << "\u0929"s;
    QTest::newRow("Thai tone stays") << "ที่"s
                                     << "ที่"s;
    QTest::newRow("Hangul letters compose") << "\u1112\u1161\u11AB"s
                                            << "한"s;
    QTest::newRow("Hangul syllable and letter compose") << "하\u11AB"s
                                                        << "한"s;
    QTest::newRow("joiner between them goes") << "하\u200D\u11AB"s
                                              << "한"s;
    QTest::newRow("soft hyphen goes") << "co\u00ADop"s
                                      << "coop"s;
    QTest::newRow("variation selector goes") << "⚠\uFE0F"s
                                             << "⚠"s;
    QTest::newRow("emoji stays") << "😀"s
                                 << "😀"s;
    QTest::newRow("mathematical letters") << "𝐀𝐛"s
                                          << "ab"s;
    QTest::newRow("Deseret has case") << "𐐀"s
                                      << "𐐨"s;
    QTest::newRow("U+0000") << "A\0É"s
                            << "a\0e"s;
}

void tst_TextFolding::folds()
{
    QFETCH(std::string, text);
    QFETCH(std::string, expected);
    QCOMPARE(foldForSearch(text), expected);
    QCOMPARE(foldForSearch(expected), expected);
}

void tst_TextFolding::matches_data()
{
    QTest::addColumn<std::string>("needle");
    QTest::addColumn<std::string>("text");
    QTest::addColumn<bool>("expected");

    QTest::newRow("empty needle") << ""s
                                  << "Ana"s << true;
    QTest::newRow("empty needle, empty text") << ""s
                                              << ""s << true;
    QTest::newRow("needle of an accent alone") << "\u0301"s
                                               << "Ana"s << true;
    QTest::newRow("empty text") << "a"s
                                << ""s << false;
    QTest::newRow("case") << "ANA"s
                          << "met Ana today"s << true;
    QTest::newRow("other case") << "ana"s
                                << "MET ANA"s << true;
    QTest::newRow("not there") << "bob"s
                               << "met Ana today"s << false;
    QTest::newRow("at the start") << "met"s
                                  << "Met Ana"s << true;
    QTest::newRow("at the end") << "ana"s
                                << "Met Ana"s << true;
    QTest::newRow("whole") << "met ana"s
                           << "Met Ana"s << true;
    QTest::newRow("longer than the text") << "met ana!"s
                                          << "Met Ana"s << false;
    QTest::newRow("several lines") << "b\nc"s
                                   << "A\nB\nC"s << true;
    QTest::newRow("bracket is not a letter") << "["s
                                             << "{"s << false;

    QTest::newRow("cafe, Café") << "cafe"s
                                << "im Café"s << true;
    QTest::newRow("café, Cafe") << "café"s
                                << "im Cafe"s << true;
    QTest::newRow("CAFÉ, combining") << "CAFÉ"s
                                     << "cafe\u0301s"s << true;
    QTest::newRow("strasse, Straße") << "strasse"s
                                     << "Lange Straße"s << true;
    QTest::newRow("Straße, STRASSE") << "Straße"s
                                     << "LANGE STRASSE"s << true;
    QTest::newRow("istanbul, İstanbul") << "istanbul"s
                                        << "İstanbul"s << true;
    QTest::newRow("İSTANBUL, istanbul") << "İSTANBUL"s
                                        << "istanbul"s << true;
    QTest::newRow("sigma") << "οδοσ"s
                           << "Ὁδός"s << true;
    QTest::newRow("tonos") << "ΑΘΗΝΑ"s
                           << "Αθήνα"s << true;
    QTest::newRow("full width") << "tokyo"s
                                << "ＴＯＫＹＯ"s << true;
    QTest::newRow("full-width needle") << "ＴＯＫＹＯ"s
                                       << "Tokyo"s << true;
    QTest::newRow("ligature") << "office"s
                              << "Oﬃce"s << true;
    QTest::newRow("part of a ligature") << "off"s
                                        << "Oﬃce"s << true;
    QTest::newRow("Cyrillic case") << "проект"s
                                   << "ПРОЕКТ"s << true;
    QTest::newRow("Cyrillic short i") << "мои"s
                                      << "Мой"s << true;
    QTest::newRow("Arabic vowels") << "محمد"s
                                   << "مُحَمَّد"s << true;
    QTest::newRow("Hebrew points") << "שלום"s
                                   << "שָׁלוֹם"s << true;
    QTest::newRow("Vietnamese") << "nguyen"s
                                << "Nguyễn"s << true;
    QTest::newRow("emoji") << "🎉"s
                           << "Done 🎉!"s << true;
    QTest::newRow("emoji with and without selector") << "⚠️"s
                                                     << "⚠"s << true;

    QTest::newRow("kana voicing is another letter") << "カ"s
                                                    << "ガ"s << false;
    QTest::newRow("and so it is decomposed") << "カ"s
                                             << "カ\u3099"s << false;
    QTest::newRow("Indic vowel sign is another vowel") << "कि"s
                                                       << "की"s << false;
    QTest::newRow("Indic consonant within a syllable") << "क"s
                                                       << "की"s << true;
    QTest::newRow("Hangul syllable is not its start") << "하"s
                                                      << "한"s << false;
    QTest::newRow("dotless i") << "i"s
                               << "ı"s << false;
    QTest::newRow("accented needle, other word") << "größe"s
                                                 << "GROSS"s << false;

    QTest::newRow("after U+0000") << "ana"s
                                  << "met\0Ana"s << true;
    QTest::newRow("across U+0000") << "t\0a"s
                                   << "Met\0Ana"s << true;
    QTest::newRow("U+0000 alone") << "\0"s
                                  << "Met\0Ana"s << true;
    QTest::newRow("U+0000 not there") << "\0"s
                                      << "Met Ana"s << false;
    QTest::newRow("U+0000 among accents") << "e\0E"s
                                          << "Café\0É"s << true;
}

void tst_TextFolding::matches()
{
    QFETCH(std::string, needle);
    QFETCH(std::string, text);
    QFETCH(bool, expected);
    const FoldedNeedle folded(needle);
    QCOMPARE(folded.isContainedIn(text), expected);
    // The way it takes depends on what else is in the text and on its length.
    QCOMPARE(folded.isContainedIn(std::string(100, ' ') + text + std::string(100, ' ')), expected);
    QCOMPARE(folded.isContainedIn("→ " + text + " ←"), expected);
    QCOMPARE(folded.isContainedIn(text + "\u0F73"), expected);
}

void tst_TextFolding::survivesInvalidUtf8_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("expected");

    const std::string bad = "\uFFFD";
    QTest::newRow("trail byte alone") << "A\x80 B"s
                                      << "a" + bad + " b";
    QTest::newRow("cut short at the end") << "A\xE2\x82"s
                                          << "a" + bad;
    QTest::newRow("cut short before a letter") << "\xC3 A"s << bad + " a";
    QTest::newRow("overlong") << "\xC0\x80"s << bad + bad;
    QTest::newRow("surrogate") << "\xED\xA0\x80"s << bad + bad + bad;
    QTest::newRow("beyond Unicode") << "\xF4\x90\x80\x80"s << bad + bad + bad + bad;
    QTest::newRow("no lead byte") << "\xFF\xFE"s << bad + bad;
}

void tst_TextFolding::survivesInvalidUtf8()
{
    QFETCH(std::string, text);
    QFETCH(std::string, expected);
    QCOMPARE(foldForSearch(text), expected);
    QCOMPARE(foldForSearch(text), foldByNormalizing(text));
    QVERIFY(FoldedNeedle(expected).isContainedIn(text));
    QVERIFY(!FoldedNeedle("zebra").isContainedIn(text));
}

void tst_TextFolding::foldsEveryCharacterAsIcuDoes()
{
    for (char32_t character = 0; character <= 0x10FFFF; ++character) {
        if (character >= 0xD800 && character <= 0xDFFF)
            continue;
        const std::string text = utf8({&character, 1});
        if (foldForSearch(text) != foldByNormalizing(text))
            QFAIL(qPrintable(QStringLiteral("U+%1").arg(uint(character), 4, 16)));
    }
}

void tst_TextFolding::foldsAnyTextAsIcuDoes_data()
{
    QTest::addColumn<std::u32string>("alphabet");

    QTest::newRow("Latin with marks") << U"aEé\u0301\u0327\u0338\u0345İßﬁ\u200D\u1DC4\u20D7"s;
    QTest::newRow("Greek with marks") << U"αΑάᾳΣς\u0301\u0345\u0342\u0323"s;
    QTest::newRow("Hebrew, Arabic") << U"שׁ\u05C1\u05BCﬠاآ\u0653\u064B\u0651ـ\uFDFAa"s;
    QTest::newRow("Japanese") << U"カガｶ\uFF9E\u3099\u309A㍿はば"s;
    QTest::newRow("Devanagari") << U"कनऩ\u0958\u093C\u094D\u093F\u0951\u0301 "s;
    QTest::newRow("Bengali, Tamil") << U"কে\u09BE\u09D7\u09C7ெ\u0BBE\u0BD7\u0BC6க\u09BC\u09CD"s;
    QTest::newRow("Hangul") << U"\u1100\u1112\u1161\u11A8\u11AB가하한각ᄒ\u200D "s;
    QTest::newRow("Thai, Tibetan")
        << U"ท\u0E35\u0E48\u0E38\u0F40\u0F71\u0F72\u0F73\u0F75\u0F81\u0F39"s;
    QTest::newRow("astral") << U"😀\U0001F3FD\uFE0F\U0001D15E\U00011099\U000110BA𝐀\U00010EFD"s;
    QTest::newRow("all together")
        << U"aÉ\u0301\u05C1\u064Bカ\u3099क\u093C\u094D하\u11AB\u0E48\u0F73\u200D\u1DC4ﬁ\u0345 \0"s;
}

void tst_TextFolding::foldsAnyTextAsIcuDoes()
{
    QFETCH(std::u32string, alphabet);
    std::mt19937 random(20261121);
    for (int i = 0; i < 30'000; ++i) {
        std::u32string text;
        for (size_t length = 1 + random() % 9; length > 0; --length)
            text += alphabet[random() % alphabet.size()];
        const std::string encoded = utf8(text);
        if (foldForSearch(encoded) != foldByNormalizing(encoded))
            QFAIL(QByteArray::fromStdString(encoded).toHex(' ').constData());
    }
}

void tst_TextFolding::foldsFromSeveralThreads()
{
    std::string text;
    for (char32_t character = 0x100; character < 0xD000; character += 7)
        text += utf8({&character, 1}) + ' ';
    const std::string expected = foldByNormalizing(text);
    std::vector<std::string> results(4);
    std::vector<std::thread> threads;
    for (std::string &result : results)
        threads.emplace_back([&] { result = foldForSearch(text); });
    for (std::thread &thread : threads)
        thread.join();
    for (const std::string &result : results)
        QVERIFY(result == expected);
}

void tst_TextFolding::longNeedleTakesNoLonger()
{
    // A plain search compares most of the needle at every position here: some minutes.
    const std::string text(1'000'000, 'a');
    const FoldedNeedle needle(std::string(300'000, 'a') + 'b' + std::string(100'000, 'a'));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!needle.isContainedIn(text));
    QVERIFY2(timer.elapsed() < 5'000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_GUILESS_MAIN(tst_TextFolding)
#include "tst_TextFolding.moc"
