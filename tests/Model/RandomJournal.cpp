#include "RandomJournal.h"

#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

enum class Attribute { Name, Meetings, Date, Flag, Rating, Note, Tags, TagName, TagEmoji, End };

const QStringList plainTexts{u"Ana"_s, u"Ben Müller"_s, u"山田"_s, u"launch"_s,
                             u"Wants to lead the next release. Asked for a day off in May."_s};
const QStringList plainEmoji{u"🚀"_s, u"⭐"_s, u"🏷"_s, u"❤\uFE0F"_s};

/// Whatever can be typed or pasted; some of it looks like something else in JSON.
const QStringList oddTexts{
    {},
    u""_s,
    u" "_s,
    u"\n"_s,
    u"null"_s,
    u"\"}],[{\\\"/</b>\\u0041\t\r\b\f\u0001\u001F\u007F"_s,
    QString(QChar(0)),
    u"a"_s + QChar(0) + u"b"_s,
    u"\uFEFFbyte-order mark"_s,
    u"\uFFFD\uFFFE\uFFFF\u2028\u2029\u0085"_s,
    u"\U0001F3F3\uFE0F\u200D\U0001F308\U0010FFFF\U0001F9D1\U0001F3FD"_s,
    u"e\u0301 é שלום \u202Eabc\u202C مرحبا"_s,
};
/// The store makes U+FFFD of them.
const QStringList loneSurrogates{QString(QChar(0xD83D)), u"a"_s + QChar(0xDE80) + u"b"_s};

const QList<double> oddDates{0,
                             -0.0,
                             -1,
                             0.1,
                             -63114076800.5,
                             573406200.123456789,
                             9007199254740993.0,
                             1e300,
                             -1e300,
                             5e-324,
                             std::numeric_limits<double>::max(),
                             std::numeric_limits<double>::lowest()};

class RandomWriter
{
public:
    RandomWriter(const JournalFixture &journal, unsigned seed)
        : m_journal(journal)
        , m_odd(Attribute(seed % unsigned(Attribute::End)))
        , m_random(seed)
    {
    }

    void write()
    {
        for (int count = below(6); count > 0; --count)
            m_tags.append(
                Tag::findOrCreate(m_journal.context(), text(Attribute::TagName), emoji()));
        if (m_odd == Attribute::Tags)
            m_tags.append(Tag::findOrCreate(m_journal.context(), {}, {}));
        for (int count = below(5); count > 0; --count)
            writeTeammate();
    }

private:
    // Only the generator's raw numbers, which are the same on every platform.
    int below(int bound) { return int(m_random() % unsigned(bound)); }
    template<typename Value>
    Value oneOf(const QList<Value> &values)
    {
        return values.at(below(int(values.size())));
    }
    bool isOdd(Attribute attribute) { return attribute == m_odd ? below(4) > 0 : below(12) == 0; }

    QString text(Attribute attribute)
    {
        return isOdd(attribute) ? oneOf(oddTexts) : oneOf(plainTexts);
    }

    QString emoji() { return isOdd(Attribute::TagEmoji) ? oneOf(oddTexts) : oneOf(plainEmoji); }

    void writeTeammate()
    {
        const auto teammate = m_journal.addCounterpart(text(Attribute::Name));
        if (m_odd == Attribute::Name && below(4) == 0)
            teammate->setName(oneOf(loneSurrogates));
        // What a backup leaves out.
        teammate->setEmail(u"ana@example.org"_s);
        teammate->setLastUpdate(Date{7});
        const int meetings = isOdd(Attribute::Meetings) ? 0 : 1 + below(4);
        for (int i = 0; i < meetings; ++i)
            writeMeeting(teammate);
    }

    void writeMeeting(const std::shared_ptr<Counterpart> &teammate)
    {
        const auto meeting = m_journal.addSession(teammate, {});
        meeting->setDate(date());
        if (below(2) == 0) {
            meeting->setFlag(integer(Attribute::Flag, 2));
            meeting->setPersonalSentiment(integer(Attribute::Rating, 9));
            meeting->setMeetingSentiment(integer(Attribute::Rating, 7));
            meeting->setCounterpartSentiment(integer(Attribute::Rating, 9));
        }
        for (const std::shared_ptr<Note> &note : meeting->sortedNotes()) {
            if (below(9) < 4)
                note->setContentString(noteText());
        }
        const bool allOrNone = isOdd(Attribute::Tags);
        const int chance = allOrNone ? below(2) * 100 : 30;
        for (const std::shared_ptr<Tag> &tag : m_tags) {
            if (below(100) < chance)
                meeting->addTag(*tag);
        }
    }

    OptionalDate date()
    {
        const Date usual{double(m_random() % 800'000'000U)};
        if (!isOdd(Attribute::Date))
            return usual;
        switch (below(4)) {
        case 0:
            return {};
        case 1:
            return usual.adding(std::ldexp(double(m_random()), -32));
        case 2:
            return anyFiniteNumber();
        default:
            return Date{oneOf(oddDates)};
        }
    }

    Date anyFiniteNumber()
    {
        const quint64 bits = quint64(m_random()) << 32 | m_random();
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        return Date{std::isfinite(number) ? number : 1.0};
    }

    qint16 integer(Attribute attribute, int bound)
    {
        if (!isOdd(attribute))
            return qint16(below(bound));
        const QList<qint16> extremes{-32768, -1, 255, 256, 32767};
        return below(2) == 0 ? oneOf(extremes) : qint16(quint16(m_random()));
    }

    QString noteText()
    {
        constexpr int longText = 400;
        if (!isOdd(Attribute::Note))
            return oneOf(plainTexts);
        switch (below(8)) {
        case 0:
            return QString(oneOf(plainTexts) + oneOf(oddTexts)).repeated(longText);
        case 1:
            return oneOf(loneSurrogates);
        default:
            return oneOf(oddTexts);
        }
    }

    const JournalFixture &m_journal;
    const Attribute m_odd;
    std::mt19937 m_random;
    QList<std::shared_ptr<Tag>> m_tags;
};

} // namespace

void writeRandomJournal(const JournalFixture &journal, unsigned seed)
{
    RandomWriter(journal, seed).write();
}

} // namespace tembra
