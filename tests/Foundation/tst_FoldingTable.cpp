#include "Foundation/Text/FoldingTable.h"

#include <QTest>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using namespace tembra;

class tst_FoldingTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsKinds_data();
    void tellsKinds();
    void threadsSeeTheSamePage();
};

void tst_FoldingTable::tellsKinds_data()
{
    QTest::addColumn<char32_t>("character");
    QTest::addColumn<FoldedCharacter::Kind>("kind");
    QTest::addColumn<QByteArray>("text");

    using Kind = FoldedCharacter::Kind;
    const auto row = [](const char *name, char32_t character, Kind kind, const char *text) {
        QTest::newRow(name) << character << kind << QByteArray(text);
    };
    row("letter", U'Q', Kind::Fixed, "q");
    row("accented letter", U'É', Kind::Fixed, "e");
    row("letter that becomes two", U'ß', Kind::Fixed, "ss");
    row("dropped mark", U'\u0301', Kind::Fixed, "");
    row("dropped joiner", U'\u200D', Kind::Fixed, "");
    row("Chinese", U'会', Kind::Fixed, "会");
    row("voiced kana", U'ガ', Kind::Fixed, "ガ");
    row("Hangul syllable", U'하', Kind::Fixed, "하");
    row("emoji", U'😀', Kind::Fixed, "😀");
    row("voicing mark", U'\u3099', Kind::Mark, "\u3099");
    row("Hangul final letter", U'\u11AB', Kind::Mark, "\u11AB");
    row("virama", U'\u094D', Kind::Mark, "\u094D");
    row("kept mark", U'\u1DC4', Kind::Mark, "\u1DC4");
    row("two marks in one", U'\u0F73', Kind::Complex, "");
    row("a whole phrase", U'\uFDFA', Kind::Complex, "");
    row("last of Unicode", U'\U0010FFFF', Kind::Fixed, "\U0010FFFF");
}

void tst_FoldingTable::tellsKinds()
{
    QFETCH(char32_t, character);
    QFETCH(FoldedCharacter::Kind, kind);
    QFETCH(QByteArray, text);
    const auto table = std::make_unique<FoldingTable>();
    const FoldedCharacter &folded = (*table)[character];
    QCOMPARE(folded.kind, kind);
    QCOMPARE(QByteArray(folded.bytes.data(), folded.length), text);
}

void tst_FoldingTable::threadsSeeTheSamePage()
{
    const auto table = std::make_unique<FoldingTable>();
    std::atomic<bool> go = false;
    std::vector<const FoldedCharacter *> seen(4);
    std::vector<std::thread> threads;
    for (const FoldedCharacter *&entry : seen) {
        threads.emplace_back([&] {
            while (!go)
                std::this_thread::yield();
            for (char32_t character = 0; character < 0x3000; character += 64)
                entry = &(*table)[character];
        });
    }
    go = true;
    for (std::thread &thread : threads)
        thread.join();
    for (const FoldedCharacter *entry : seen)
        QCOMPARE(entry, seen.front());
}

QTEST_GUILESS_MAIN(tst_FoldingTable)
#include "tst_FoldingTable.moc"
