#include "Toolkit/Emoji/RecentEmoji.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <array>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestRecentEmoji : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void beginsWithNone() { QCOMPARE(RecentEmoji(path()).emoji(), QStringList()); }

    void putsTheLastFirstAndEachOnce()
    {
        RecentEmoji recent(path());
        for (const QString &emoji : {u"😀"_s, u"❤\uFE0F"_s, u"👩🏽‍💻"_s, u"😀"_s})
            recent.add(emoji);
        QCOMPARE(recent.emoji(), QStringList({u"😀"_s, u"👩🏽‍💻"_s, u"❤\uFE0F"_s}));
        recent.add({});
        QCOMPARE(recent.emoji().size(), 3);
    }

    void remembersSoMany()
    {
        RecentEmoji recent(path());
        for (int i = 0; i < 2 * RecentEmoji::limit; ++i)
            recent.add(QString::fromUcs4(std::array{char32_t(0x1F600 + i)}.data(), 1));
        QCOMPARE(recent.emoji().size(), RecentEmoji::limit);
        // One of them again pushes none out.
        const QStringList before = recent.emoji();
        recent.add(before.constLast());
        QCOMPARE(recent.emoji().size(), RecentEmoji::limit);
        recent.add(before.constFirst());
        QCOMPARE(recent.emoji().size(), RecentEmoji::limit);
        const char32_t last = char32_t(0x1F600 + 2 * RecentEmoji::limit - 1);
        QCOMPARE(recent.emoji().constFirst(), QString::fromUcs4(&last, 1));
    }

    void survivesARestart()
    {
        {
            RecentEmoji recent(path());
            recent.add(u"❤\uFE0F"_s);
            recent.add(u"🇩🇪"_s);
        }
        QCOMPARE(RecentEmoji(path()).emoji(), QStringList({u"🇩🇪"_s, u"❤\uFE0F"_s}));
    }

    void leavesTheRestOfTheFileAlone()
    {
        write("[main]\ngeometry=1, 2, 3, 4\n");
        RecentEmoji(path()).add(u"😀"_s);
        const QSettings settings(path(), QSettings::IniFormat);
        QCOMPARE(settings.value(u"main/geometry"_s).toStringList().size(), 4);
    }

    void readsWhateverIsThere_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("emoji");
        QTest::newRow("one value")
            << QByteArray("[EmojiPalette]\nrecent=😀\n") << QStringList{u"😀"_s};
        QTest::newRow("twice, and nothing")
            << QByteArray("[EmojiPalette]\nrecent=😀, 🚀, , 😀\n") << QStringList{u"😀"_s, u"🚀"_s};
        QTest::newRow("no settings at all")
            << QByteArray("\x00\xFF\x80 nonsense", 12) << QStringList();
    }

    void readsWhateverIsThere()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, emoji);
        write(content);
        QCOMPARE(RecentEmoji(path()).emoji(), emoji);
    }

private:
    QString path() const { return m_folder->filePath(u"windows.ini"_s); }
    void write(const QByteArray &content) const
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_MAIN(TestRecentEmoji)
#include "tst_RecentEmoji.moc"
