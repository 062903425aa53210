#include "MainWindow/Session/DateTextParser.h"

#include <QRegularExpression>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int latestYear = 9999;
constexpr int yearsAhead = 20; ///< A year of two digits is less than this many years ahead.
constexpr qsizetype longestText = 100;
constexpr qsizetype shortestPrefix = 3; ///< Of a month's name.

/// Spells a text in one way: lower case, ASCII digits, single blanks, no invisible characters.
QString normalized(const QString &text, const QLocale &locale)
{
    QString result;
    for (const char32_t character : text.normalized(QString::NormalizationForm_KC).toUcs4()) {
        const int digit = QChar::digitValue(character);
        if (digit >= 0)
            result.append(QChar(u'0' + digit));
        else if (QChar::category(character) != QChar::Other_Format)
            result.append(QChar::fromUcs4(character));
    }
    return locale.toLower(result).simplified();
}

QString withoutQuotedText(QString format)
{
    return format.remove(QRegularExpression(u"'[^']*'"_s));
}

/// The order of the letters "d", "M" and "y" in a format.
QString orderOf(const QString &format)
{
    QString order;
    for (const QChar letter : withoutQuotedText(format)) {
        if (u"dMy"_s.contains(letter) && !order.contains(letter))
            order.append(letter);
    }
    return order;
}

/// What stands between hours and minutes in the locale's times.
QString timeSeparator(const QLocale &locale)
{
    static const QRegularExpression hoursAndMinutes(u"[hH]+(.*?)m"_s);
    QString format = locale.timeFormat(QLocale::ShortFormat);
    return hoursAndMinutes.match(format.remove(u'\'')).captured(1).simplified();
}

QString alternatives(const QStringList &texts)
{
    QStringList escaped;
    for (const QString &text : texts)
        escaped.append(QRegularExpression::escape(text));
    // The longest first, for "am" also begins "am.".
    std::ranges::sort(escaped, std::greater(), &QString::size);
    return escaped.join(u'|');
}

} // namespace

struct DateTextParser::Tokens
{
    QStringList numbers;
    int month = 0; ///< 0 without a month's name.
    int weekday = 0;
};

DateTextParser::DateTextParser(const QLocale &locale, int currentYear, const QCalendar &calendar)
    : m_locale(locale)
    , m_currentYear(currentYear)
    , m_calendar(calendar)
    , m_numericOrder(orderOf(locale.dateFormat(QLocale::ShortFormat)))
{
    const QString longOrder = orderOf(locale.dateFormat(QLocale::LongFormat));
    m_yearPrecedesDay = longOrder.indexOf(u'y') < longOrder.indexOf(u'd');
    addNames();
    addConnectingWords(locale.dateFormat(QLocale::LongFormat));
    addConnectingWords(locale.dateFormat(QLocale::ShortFormat));
    addConnectingWords(locale.timeFormat(QLocale::ShortFormat));
}

QString DateTextParser::displayFormat(const QLocale &locale)
{
    QString format = locale.dateTimeFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"_L1))
        format.replace("yy"_L1, "yyyy"_L1);
    // Qt knows no "B", the part of the day, and would print the letter.
    return format.remove(":ss"_L1).remove(u'B');
}

void DateTextParser::addNames()
{
    const auto add = [this](QHash<QString, int> &names, QString name, int value) {
        name = normalized(name, m_locale);
        if (name.endsWith(u'.'))
            name.chop(1);
        // Some locales have numbers for names.
        if (!name.isEmpty() && !name.front().isDigit())
            names.insert(name, value);
    };
    for (const QLocale::FormatType type : {QLocale::LongFormat, QLocale::ShortFormat}) {
        for (int month = 1; month <= m_calendar.maximumMonthsInYear(); ++month) {
            add(m_months, m_calendar.monthName(m_locale, month, QCalendar::Unspecified, type),
                month);
            add(m_months,
                m_calendar.standaloneMonthName(m_locale, month, QCalendar::Unspecified, type),
                month);
        }
        for (int day = 1; day <= 7; ++day) {
            add(m_weekdays, m_calendar.weekDayName(m_locale, day, type), day);
            add(m_weekdays, m_calendar.standaloneWeekDayName(m_locale, day, type), day);
        }
    }
    for (const QString &word : {u"am"_s, u"a.m."_s, m_locale.amText()})
        m_dayHalves.insert(normalized(word, m_locale), false);
    for (const QString &word : {u"pm"_s, u"p.m."_s, m_locale.pmText()})
        m_dayHalves.insert(normalized(word, m_locale), true);
}

/// The words that a format has besides its fields, as in "5 de marzo de 2025".
void DateTextParser::addConnectingWords(const QString &format)
{
    static const QRegularExpression words(u"'([^']*)'|([^\\x00-\\x7F]+)"_s);
    for (auto match = words.globalMatch(format); match.hasNext();) {
        const QString text = normalized(match.next().captured().remove(u'\''), m_locale);
        for (const QString &word : text.split(u' ', Qt::SkipEmptyParts))
            m_connectingWords.insert(word.endsWith(u'.') ? word.chopped(1) : word);
    }
    if (m_locale.language() == QLocale::English)
        m_connectingWords.unite({u"at"_s, u"of"_s, u"the"_s, u"st"_s, u"nd"_s, u"rd"_s, u"th"_s});
}

std::optional<ParsedDateText> DateTextParser::parse(const QString &text) const
{
    if (text.size() > longestText)
        return std::nullopt;
    const QDateTime shown = m_locale.toDateTime(text, displayFormat(m_locale), m_calendar);
    if (shown.isValid())
        return ParsedDateText{shown.date(), shown.time()};
    static const QRegularExpression isoSeparator(u"^(\\d{4}-\\d\\d?-\\d\\d?)t(?=\\d)"_s);
    QString rest = normalized(text, m_locale).replace(isoSeparator, u"\\1 "_s);
    ParsedDateText parsed;
    if (!takeTime(rest, parsed.time))
        return std::nullopt;
    const std::optional<Tokens> parts = tokens(rest);
    if (!parts)
        return std::nullopt;
    parsed.date = dateOf(*parts);
    const bool isOtherWeekday = parts->weekday != 0
                                && parts->weekday != m_calendar.dayOfWeek(parsed.date);
    if (!parsed.date.isValid() || isOtherWeekday)
        return std::nullopt;
    return parsed;
}

bool DateTextParser::takeTime(QString &text, std::optional<QTime> &time) const
{
    const QString half = u"(?:"_s + alternatives(m_dayHalves.keys()) + u")"_s;
    const QString separator = QRegularExpression::escape(timeSeparator(m_locale));
    // A colon makes a time anywhere. Other separators stand in dates, too, and make one at the end.
    const QStringList patterns{
        u"(?<![\\d:])(%1)?\\s?(\\d\\d?):(\\d\\d)(?::(\\d\\d)(?:[.,]\\d+)?)?\\s?(%1)?(?![\\w:+])"_s
            .arg(half),
        u"(?<=\\s)(%1)?\\s?(\\d\\d?)\\s?%2\\s?(\\d\\d)()\\s?(%1)?$"_s.arg(half, separator),
        u"(?<=\\s)()(\\d\\d?)()()\\s?(%1)$"_s.arg(half)};
    for (const QString &pattern : patterns) {
        const QRegularExpressionMatch match =
            QRegularExpression(pattern, QRegularExpression::UseUnicodePropertiesOption).match(text);
        if (!match.hasMatch())
            continue;
        const QString word = match.captured(1) + match.captured(5);
        int hour = match.captured(2).toInt();
        if (!word.isEmpty()) {
            if (hour > 12 || !m_dayHalves.contains(word))
                return false;
            hour = hour % 12 + (m_dayHalves.value(word) ? 12 : 0);
        }
        time = QTime(hour, match.captured(3).toInt(), match.captured(4).toInt());
        text.replace(match.capturedStart(), match.capturedLength(), u" "_s);
        return time->isValid();
    }
    return true;
}

std::optional<DateTextParser::Tokens> DateTextParser::tokens(const QString &text) const
{
    static const QRegularExpression token(
        u"(\\d+)|([\\p{L}\\p{M}][\\p{L}\\p{M}'’]*)|[\\s,،、./\\-‐–()]+"_s);
    Tokens tokens;
    qsizetype end = 0;
    for (auto match = token.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch next = match.next();
        if (next.capturedStart() != end)
            return std::nullopt;
        end = next.capturedEnd();
        if (next.hasCaptured(1))
            tokens.numbers.append(next.captured(1));
        else if (next.hasCaptured(2) && !addWord(next.captured(2), tokens))
            return std::nullopt;
    }
    if (end != text.size())
        return std::nullopt;
    return tokens;
}

bool DateTextParser::addWord(const QString &word, Tokens &tokens) const
{
    // First of all, for in some languages they are also the short names of weekdays.
    if (m_connectingWords.contains(word))
        return true;
    int month = m_months.value(word);
    if (month == 0 && word.size() >= shortestPrefix) {
        QSet<int> candidates;
        for (auto name = m_months.begin(); name != m_months.end(); ++name) {
            if (name.key().startsWith(word))
                candidates.insert(name.value());
        }
        if (candidates.size() == 1)
            month = *candidates.begin();
    }
    // Some languages have the same short name for a weekday and a month.
    if (month != 0 && tokens.month == 0) {
        tokens.month = month;
        return true;
    }
    if (const int weekday = m_weekdays.value(word); weekday != 0 && tokens.weekday == 0) {
        tokens.weekday = weekday;
        return true;
    }
    // Scripts without blanks join words, as in "5日水曜日".
    return std::ranges::any_of(m_connectingWords, [&](const QString &first) {
        return !first.isEmpty() && word.startsWith(first)
               && addWord(word.mid(first.size()), tokens);
    });
}

QDate DateTextParser::dateOf(const Tokens &tokens) const
{
    const QStringList &numbers = tokens.numbers;
    const auto isYear = [](const QString &number) { return number.size() > 2; };
    if (tokens.month != 0) {
        if (numbers.size() != 2)
            return {};
        const bool yearFirst = isYear(numbers.at(0)) != isYear(numbers.at(1))
                                   ? isYear(numbers.at(0))
                                   : m_yearPrecedesDay;
        return date(numbers.at(yearFirst ? 0 : 1), tokens.month, numbers.at(yearFirst ? 1 : 0));
    }
    if (numbers.size() == 1 && numbers.first().size() == 8)
        return QDate::fromString(numbers.first(), u"yyyyMMdd"_s, m_calendar);
    if (numbers.size() != 3)
        return {};
    const QString order = isYear(numbers.first()) ? u"yMd"_s : m_numericOrder;
    const auto field = [&](QChar letter) { return numbers.at(order.indexOf(letter)); };
    return field(u'M').size() > 2 ? QDate() : date(field(u'y'), field(u'M').toInt(), field(u'd'));
}

QDate DateTextParser::date(const QString &year, int month, const QString &day) const
{
    if (year.size() > 4 || day.size() > 2)
        return {};
    const int number = yearOf(year);
    return number < 1 || number > latestYear ? QDate()
                                             : QDate(number, month, day.toInt(), m_calendar);
}

int DateTextParser::yearOf(const QString &digits) const
{
    if (digits.size() > 2)
        return digits.toInt();
    const int first = m_currentYear + yearsAhead - 100;
    const int offset = (digits.toInt() - first) % 100;
    return first + (offset < 0 ? offset + 100 : offset);
}

} // namespace tembra
