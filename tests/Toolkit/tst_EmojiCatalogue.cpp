#include "Toolkit/Emoji/EmojiCatalogue.h"
#include "Toolkit/Emoji/EmojiSearch.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <set>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// An emoji as Unicode's own list has it.
struct Listed
{
    QString text;
    QString name;
    QString group;
};

QList<Listed> readList()
{
    static const QRegularExpression line(
        u"^([0-9A-F ]+?)\\s*; fully-qualified\\s*# \\S+ E[0-9.]+ (.+)$"_s);
    QFile file(QStringLiteral(TEMBRA_UNICODE_DATA "/emoji/emoji-test.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<Listed> list;
    QString group;
    for (const QString &text : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (text.startsWith(u"# group: "))
            group = text.mid(9).trimmed();
        const QRegularExpressionMatch match = line.match(text);
        if (!match.hasMatch())
            continue;
        QString emoji;
        for (const QString &code : match.captured(1).split(u' '))
            emoji += QChar::fromUcs4(code.toUInt(nullptr, 16));
        list.append({emoji, match.captured(2).trimmed(), group});
    }
    return list;
}

bool hasTone(const QString &emoji)
{
    const QList<uint> characters = emoji.toUcs4();
    return std::ranges::any_of(characters, [](uint character) {
        return character >= 0x1F3FB && character <= 0x1F3FF;
    });
}

} // namespace

class TestEmojiCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_list = readList();
        QVERIFY(m_list.size() > 3000);
    }

    void hasEveryEmojiInOrder()
    {
        QList<Listed> bases;
        std::ranges::copy_if(m_list, std::back_inserter(bases),
                             [](const Listed &emoji) { return !hasTone(emoji.text); });
        qsizetype at = 0;
        qsizetype variants = 0;
        for (const EmojiGroup &group : m_catalogue.groups()) {
            for (const EmojiEntry &entry : group.emoji) {
                QVERIFY(at < bases.size());
                QCOMPARE(entry.text, bases.at(at).text);
                QCOMPARE(group.title, bases.at(at).group);
                QVERIFY(!entry.name.isEmpty());
                ++at;
                for (const EmojiEntry &tone : entry.skinTones) {
                    QVERIFY2(hasTone(tone.text), qPrintable(tone.name));
                    ++variants;
                }
            }
        }
        QCOMPARE(at, bases.size());
        QCOMPARE(at + variants, m_list.size());
        std::set<const EmojiEntry *> entries;
        for (const Listed &emoji : m_list) {
            const EmojiEntry *entry = m_catalogue.find(emoji.text);
            QVERIFY2(entry, qPrintable(emoji.name));
            QCOMPARE(entry->text, emoji.text);
            entries.insert(entry);
        }
        QCOMPARE(qsizetype(entries.size()), m_list.size());
    }

    void foldsVariantsIntoTheirBase_data()
    {
        QTest::addColumn<QString>("variant");
        QTest::addColumn<QString>("base");
        QTest::newRow("one person") << u"👋🏽"_s << u"👋"_s;
        QTest::newRow("with variation selector") << u"☝🏽"_s << u"☝\uFE0F"_s;
        QTest::newRow("at work") << u"👩🏿‍💻"_s << u"👩‍💻"_s;
        QTest::newRow("with hair") << u"👨🏻‍🦰"_s << u"👨‍🦰"_s;
        QTest::newRow("two hands of one tone") << u"🤝🏾"_s << u"🤝"_s;
        QTest::newRow("two hands of two tones") << u"🫱🏻‍🫲🏿"_s << u"🤝"_s;
        QTest::newRow("a couple of two tones")
            << u"🧑🏻‍❤️‍💋‍🧑🏼"_s << u"💏"_s;
        QTest::newRow("a couple told apart")
            << u"👩🏻‍❤️‍💋‍👨🏼"_s << u"👩‍❤️‍💋‍👨"_s;
        QTest::newRow("holding hands") << u"👩🏻‍🤝‍👨🏿"_s << u"👫"_s;
        QTest::newRow("no variant") << u"😀"_s << u"😀"_s;
    }

    void foldsVariantsIntoTheirBase()
    {
        QFETCH(QString, variant);
        QFETCH(QString, base);
        const EmojiEntry *entry = m_catalogue.find(variant);
        QVERIFY(entry);
        QCOMPARE(entry->text, variant);
        QCOMPARE(m_catalogue.base(entry)->text, base);
    }

    void ordersTheTonesOfTwo()
    {
        const EmojiEntry *handshake = m_catalogue.find(u"🤝"_s);
        QCOMPARE(handshake->skinTones.size(), size_t(25));
        QCOMPARE(handshake->skinTones.at(0).text, u"🤝🏻"_s);
        QCOMPARE(handshake->skinTones.at(1).text, u"🫱🏻‍🫲🏼"_s);
        QCOMPARE(handshake->skinTones.at(5).text, u"🫱🏼‍🫲🏻"_s);
        QCOMPARE(handshake->skinTones.at(6).text, u"🤝🏼"_s);
        QCOMPARE(handshake->skinTones.at(24).text, u"🤝🏿"_s);
        QCOMPARE(m_catalogue.find(u"👋"_s)->skinTones.size(), size_t(5));
        QVERIFY(m_catalogue.find(u"😀"_s)->skinTones.empty());
    }

    void findsByText()
    {
        QCOMPARE(m_catalogue.find(u"❤"_s)->text, u"❤\uFE0F"_s);
        QCOMPARE(m_catalogue.find(u"❤\uFE0F"_s)->name, u"red heart"_s);
        QCOMPARE(m_catalogue.find(u"abc"_s), nullptr);
        QCOMPARE(m_catalogue.find(u""_s), nullptr);
        QCOMPARE(m_catalogue.find(u"🏽"_s), nullptr);
    }

    void choosesTheLanguage_data()
    {
        QTest::addColumn<QStringList>("languages");
        QTest::newRow("English") << QStringList{u"en"_s};
        QTest::newRow("a region of English") << QStringList{u"en-GB"_s, u"en"_s};
        QTest::newRow("a region alone") << QStringList{u"en_AU"_s};
        QTest::newRow("a language without names") << QStringList{u"tlh"_s};
        QTest::newRow("none") << QStringList{};
    }

    void choosesTheLanguage()
    {
        QFETCH(QStringList, languages);
        QCOMPARE(&EmojiCatalogue::inLanguage(languages), &m_catalogue);
    }

    void everyEmojiIsFoundByItsName()
    {
        for (const Listed &emoji : m_list) {
            const EmojiEntry *entry = m_catalogue.find(emoji.text);
            const QList<const EmojiEntry *> found = m_search.find(entry->name);
            QVERIFY2(found.contains(entry), qPrintable(entry->name));
        }
    }

    void searches_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("emoji");
        QTest::addColumn<bool>("found");
        QTest::newRow("name") << u"grinning face"_s << u"😀"_s << true;
        QTest::newRow("part of a name") << u"grinn"_s << u"😀"_s << true;
        QTest::newRow("keyword") << u"grin"_s << u"😁"_s << true;
        QTest::newRow("upper case") << u"ROCKET"_s << u"🚀"_s << true;
        QTest::newRow("with accents") << u"röckét"_s << u"🚀"_s << true;
        QTest::newRow("without accents") << u"pinata"_s << u"🪅"_s << true;
        QTest::newRow("words in any order") << u"germany flag"_s << u"🇩🇪"_s << true;
        QTest::newRow("blanks around") << u"  rocket \t "_s << u"🚀"_s << true;
        QTest::newRow("within a word") << u"ocke"_s << u"🚀"_s << true;
        QTest::newRow("the emoji itself") << u"🚀"_s << u"🚀"_s << true;
        QTest::newRow("the emoji without its selector") << u"❤"_s << u"❤\uFE0F"_s << true;
        QTest::newRow("another name") << u"rocket"_s << u"😀"_s << false;
        QTest::newRow("one of two words") << u"rocket zebra"_s << u"🚀"_s << false;
        QTest::newRow("blanks only") << u"  "_s << u"🚀"_s << false;
        QTest::newRow("nothing") << u""_s << u"🚀"_s << false;
    }

    void searches()
    {
        QFETCH(QString, text);
        QFETCH(QString, emoji);
        QFETCH(bool, found);
        QCOMPARE(m_search.find(text).contains(m_catalogue.find(emoji)), found);
    }

    void ranksNamesFirst()
    {
        const QList<const EmojiEntry *> cats = m_search.find(u"cat"_s);
        const auto place = [&](const QString &emoji) {
            return cats.indexOf(m_catalogue.find(emoji));
        };
        QCOMPARE(place(u"🐈"_s), 0); // "cat"
        QVERIFY(place(u"🐱"_s) > 0); // "cat face"
        QVERIFY(place(u"😺"_s) > place(u"🐱"_s)); // "grinning cat"
        QVERIFY(place(u"🎓"_s) == -1 || place(u"🎓"_s) > place(u"😺"_s)); // "education"
        for (const EmojiEntry *entry : cats)
            QVERIFY(!hasTone(entry->text));
    }

    void findsVariants()
    {
        const QList<const EmojiEntry *> dark = m_search.find(u"waving dark skin"_s);
        QVERIFY(dark.contains(m_catalogue.find(u"👋🏿"_s)));
        QVERIFY(dark.contains(m_catalogue.find(u"👋🏾"_s))); // medium-dark
        QVERIFY(!dark.contains(m_catalogue.find(u"👋🏻"_s)));
        QVERIFY(!dark.contains(m_catalogue.find(u"👋"_s)));
    }

    void readsLines()
    {
        const EmojiCatalogue catalogue(
            u"@Grüße\n👋\twinkende Hand\tGruß|winken\n"
            "+👋🏻\twinkende Hand: hell\n@Leute\n🧑\tPerson\t\n"_s);
        QCOMPARE(catalogue.groups().size(), size_t(2));
        QCOMPARE(catalogue.groups().at(0).title, u"Grüße"_s);
        const EmojiEntry &wave = catalogue.groups().at(0).emoji.at(0);
        QCOMPARE(wave.text, u"👋"_s);
        QCOMPARE(wave.name, u"winkende Hand"_s);
        QCOMPARE(wave.keywords, u"Gruß|winken"_s);
        QCOMPARE(wave.skinTones.size(), size_t(1));
        QCOMPARE(wave.skinTones.at(0).text, u"👋🏻"_s);
        QCOMPARE(wave.skinTones.at(0).name, u"winkende Hand: hell"_s);
        QCOMPARE(wave.skinTones.at(0).keywords, QString());
        QCOMPARE(catalogue.groups().at(1).emoji.at(0).keywords, QString());
        const EmojiSearch search(catalogue);
        QCOMPARE(search.find(u"GRUSS"_s), QList<const EmojiEntry *>{&wave});
        QCOMPARE(search.find(u"hell"_s), QList<const EmojiEntry *>{&wave.skinTones.at(0)});
    }

    void isMadeInOtherLanguages()
    {
        const QString annotations = QStringLiteral(TEMBRA_UNICODE_DATA "/cldr/common");
        if (!QFile::exists(annotations + u"/annotations/de.xml"_s))
            QSKIP("There are no annotations here");
        const QString lines = made(u"de"_s, {u"--annotations"_s, annotations});
        QVERIFY(!lines.isEmpty());
        const EmojiCatalogue german(lines);
        QCOMPARE(german.find(u"❤"_s)->name, u"rotes Herz"_s);
        QCOMPARE(german.find(u"🇩🇪"_s)->name, u"Flagge: Deutschland"_s);
        QCOMPARE(german.find(u"👋🏻"_s)->name, u"winkende Hand: helle Hautfarbe"_s);
        const EmojiSearch search(german);
        QVERIFY(search.find(u"händeschütteln"_s).contains(german.find(u"🤝"_s)));
        QVERIFY(search.find(u"HANDESCHUTTELN"_s).contains(german.find(u"🤝"_s)));
        for (const Listed &emoji : m_list) {
            const EmojiEntry *entry = german.find(emoji.text);
            QVERIFY2(entry && !entry->name.isEmpty(), qPrintable(emoji.name));
            QVERIFY2(search.find(entry->name).contains(entry), qPrintable(entry->name));
        }
        // Regions say only what they call otherwise.
        const EmojiCatalogue swiss(made(u"de_CH"_s, {u"--annotations"_s, annotations}));
        QVERIFY(swiss.find(u"❤"_s));
        QCOMPARE(swiss.find(u"❤"_s)->name, u"rotes Herz"_s);
        // A language nobody named emoji in is served in English.
        QCOMPARE(made(u"tlh"_s, {u"--annotations"_s, annotations}), QString());
    }

    void isMadeWithoutAnnotations()
    {
        const QString lines = made(u"en"_s, {});
        QVERIFY(!lines.isEmpty());
        const EmojiCatalogue bare(lines);
        for (const Listed &emoji : m_list) {
            const EmojiEntry *entry = bare.find(emoji.text);
            QVERIFY2(entry, qPrintable(emoji.name));
            QCOMPARE(entry->name, emoji.name);
            QCOMPARE(entry->keywords, QString());
        }
        QCOMPARE(made(u"de"_s, {}), QString());
    }

private:
    /// What the build would make for @p language.
    QString made(const QString &language, const QStringList &options) const
    {
        const QTemporaryDir folder;
        const QStringList arguments = QStringList{QStringLiteral(TEMBRA_EMOJI_SCRIPT),
                                                  u"--emoji-test"_s,
                                                  QStringLiteral(TEMBRA_UNICODE_DATA
                                                                 "/emoji/emoji-test.txt"),
                                                  u"--output"_s, folder.path()}
                                      + options + QStringList{language};
        if (QProcess::execute(QStringLiteral(TEMBRA_PYTHON), arguments) != 0)
            return {};
        QFile file(folder.filePath(u"emoji_%1.txt"_s.arg(language)));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    const EmojiCatalogue &m_catalogue = EmojiCatalogue::inLanguage({u"en"_s});
    const EmojiSearch m_search{m_catalogue};
    QList<Listed> m_list;
};

QTEST_MAIN(TestEmojiCatalogue)
#include "tst_EmojiCatalogue.moc"
