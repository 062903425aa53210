#pragma once

#include <QCalendar>
#include <QDateTime>
#include <QHash>
#include <QLocale>
#include <QSet>
#include <QString>

#include <optional>

namespace tembra {

/// A date, and a time of day where the text has one.
struct ParsedDateText
{
    QDate date;
    std::optional<QTime> time;

    friend bool operator==(const ParsedDateText &, const ParsedDateText &) = default;
};

/// Parses a date that a person typed or pasted: in the locale's numeric, short and long forms, with
/// or without leading zeros, weekday and time, or in ISO 8601 without a time zone.
///
/// A text of which any part is not understood is no date; neither is one without a year, or with a
/// weekday that is not the date's. Years run from 1 to 9999.
class DateTextParser
{
public:
    /// A year of one or two digits is the nearest one that is less than 80 years before
    /// @p currentYear and less than 20 years after it.
    DateTextParser(const QLocale &locale, int currentYear, const QCalendar &calendar = QCalendar());

    std::optional<ParsedDateText> parse(const QString &text) const;

    /// The format in which a date is shown where it can be edited: the locale's short one, with the
    /// whole year and without seconds.
    static QString displayFormat(const QLocale &locale);

private:
    struct Tokens;

    void addNames();
    void addConnectingWords(const QString &format);
    /// Takes the time of day out of @p text. False when the text has an impossible one.
    bool takeTime(QString &text, std::optional<QTime> &time) const;
    std::optional<Tokens> tokens(const QString &text) const;
    bool addWord(const QString &word, Tokens &tokens) const;
    QDate dateOf(const Tokens &tokens) const;
    QDate date(const QString &year, int month, const QString &day) const;
    int yearOf(const QString &digits) const;

    QLocale m_locale;
    int m_currentYear;
    QCalendar m_calendar;
    QString m_numericOrder; ///< The letters "d", "M" and "y" as the locale orders the numbers.
    bool m_yearPrecedesDay; ///< In the locale's long form.
    QHash<QString, int> m_months; ///< By name.
    QHash<QString, int> m_weekdays;
    QSet<QString> m_connectingWords; ///< Words of the locale's forms that mean nothing.
    QHash<QString, bool> m_dayHalves; ///< The words for AM (false) and PM (true).
};

} // namespace tembra
