#include "Store/Undo/UndoManager.h"
#include "TagFieldTest.h"

#include <QFile>
#include <QSet>

#include <algorithm>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

const QString unicodeFolder = QString::fromUtf8(TEMBRA_UNICODE_DATA);
constexpr int fewestEmoji = 3000;

/// The lines of one of Unicode's files, up to their remarks, at their semicolons.
QList<QStringList> unicodeLines(const QString &file)
{
    QFile data(unicodeFolder + file);
    QList<QStringList> lines;
    if (!data.open(QIODevice::ReadOnly))
        return lines;
    const QStringList all = QString::fromUtf8(data.readAll()).split(u'\n');
    for (const QString &line : all) {
        QStringList parts = line.section(u'#', 0, 0).split(u';');
        for (QString &part : parts)
            part = part.trimmed();
        if (parts.size() == 2)
            lines.append(parts);
    }
    return lines;
}

QList<char32_t> codePoints(const QString &hexadecimal, const QString &separator)
{
    QList<char32_t> points;
    const QStringList numbers = hexadecimal.split(separator);
    for (const QString &number : numbers)
        points.append(char32_t(number.toUInt(nullptr, 16)));
    return points;
}

bool joinsOrSelectsVariation(char32_t point)
{
    return point == 0x200C || point == 0x200D || (point >= 0xFE00 && point <= 0xFE0F)
           || (point >= 0xE0100 && point <= 0xE01EF) || (point >= 0x180B && point <= 0x180D)
           || point == 0x180F;
}

} // namespace

/// Every emoji there is, typed behind a name: what the tag's emoji is and what its name.
class tst_TagFieldEmoji : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const QStringList &line : unicodeLines(u"/emoji/emoji-data.txt"_s)) {
            if (line.last() != u"Emoji_Presentation")
                continue;
            const QList<char32_t> range = codePoints(line.first(), u".."_s);
            for (char32_t point = range.first(); point <= range.last(); ++point)
                m_shownAsEmoji.insert(point);
        }
        for (const QStringList &line : unicodeLines(u"/emoji/emoji-test.txt"_s)) {
            const QList<char32_t> points = codePoints(line.first(), u" "_s);
            if (line.last() == u"fully-qualified")
                m_emoji.append(points);
            else if (line.last() == u"unqualified" && points.size() == 1)
                m_bareSymbols.append(points);
        }
        QVERIFY2(m_shownAsEmoji.contains(U'\U0001F680'), "Unicode's list says what is an emoji");
        QVERIFY2(m_emoji.size() > fewestEmoji, qPrintable(QString::number(m_emoji.size())));
        QVERIFY(!m_bareSymbols.isEmpty());
    }

    void init()
    {
        m_test = std::make_unique<TagFieldTest>();
        m_test->field->setSession(m_test->meeting);
        QVERIFY(QTest::qWaitForWindowActive(m_test->window.get()));
        m_test->field->setFocus();
        QTRY_VERIFY(m_test->field->hasFocus());
    }

    void cleanup() { m_test.reset(); }

    void eachEmojiEndsANameAsTheRuleSays()
    {
        const Outcome outcome = verifyEach(m_emoji);
        // Both happen: a hand with a skin tone has nothing that would make it count.
        QVERIFY(outcome.emojiOfTags > fewestEmoji);
        QVERIFY(outcome.partsOfNames > 0);
    }

    void aSymbolThatIsNotShownAsEmojiByItselfCountsByItsCategory()
    {
        const Outcome outcome = verifyEach(m_bareSymbols);
        QVERIFY(outcome.emojiOfTags > 0);
        QVERIFY(outcome.partsOfNames > 0); // "‼" is punctuation.
    }

private:
    struct Outcome
    {
        int emojiOfTags = 0;
        int partsOfNames = 0;
    };

    Outcome verifyEach(const QList<QList<char32_t>> &list) const
    {
        // Thousands of steps take their time.
        const UndoManager::Suspension notUndoable(*m_test->journal.context().undoManager());
        Outcome outcome;
        for (const QList<char32_t> &points : list) {
            const QString emoji = QString::fromUcs4(points.constData(), points.size());
            verifyTyped(emoji, counts(points));
            if (QTest::currentTestFailed())
                break;
            ++(counts(points) ? outcome.emojiOfTags : outcome.partsOfNames);
        }
        qInfo("%d emoji of tags, %d parts of names", outcome.emojiOfTags, outcome.partsOfNames);
        return outcome;
    }

    bool counts(const QList<char32_t> &points) const
    {
        if (m_shownAsEmoji.contains(points.first()))
            return true;
        if (points.size() == 1)
            return QChar::category(points.first()) == QChar::Symbol_Other;
        return std::any_of(points.begin(), points.end(), joinsOrSelectsVariation);
    }

    void verifyTyped(const QString &emoji, bool isEmojiOfTag) const
    {
        const QByteArray utf8 = emoji.toUtf8();
        const char *shown = utf8.constData();
        QTest::keyClicks(m_test->field, u"G "_s);
        m_test->compose(emoji);
        m_test->press(Qt::Key_Return);
        const auto tags = m_test->field->tags();
        QVERIFY2(tags.size() == 1, shown);
        const auto &tag = tags.first();
        QVERIFY2(tag->name() == (isEmojiOfTag ? u"G"_s : QString(u"G "_s + emoji)),
                 qPrintable(emoji + u" makes the name "_s + tag->name()));
        QVERIFY2(tag->emoji() == (isEmojiOfTag ? emoji : QString()),
                 qPrintable(emoji + u" makes the emoji "_s + tag->emoji()));
        QVERIFY2(m_test->meeting->tags() == tags, shown);
        QVERIFY(m_test->journal.context().deleteObject(tag));
        m_test->journal.context().processPendingChanges();
        QVERIFY2(m_test->field->tags().isEmpty(), shown);
        QVERIFY2(m_test->field->editor().halfTypedText().text.isEmpty(), shown);
    }

    QSet<char32_t> m_shownAsEmoji;
    QList<QList<char32_t>> m_emoji;
    QList<QList<char32_t>> m_bareSymbols; ///< Emoji only where a variation selector follows.
    std::unique_ptr<TagFieldTest> m_test;
};

QTEST_MAIN(tst_TagFieldEmoji)
#include "tst_TagFieldEmoji.moc"
