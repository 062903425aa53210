#include "Foundation/Time/DateFormatting.h"

#include "Foundation/Text/IcuBridge.h"
#include "support/FixedClock.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QTest>
#include <QTimeZone>

#include <unicode/calendar.h>
#include <unicode/datefmt.h>

#include <limits>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double secondsPerDay = 86400;

Date at(int year, int month, int day, int hour = 12, int minute = 0)
{
    const QDateTime moment(QDate(year, month, day), QTime(hour, minute), QTimeZone::utc());
    return Date::fromUnixMilliseconds(double(moment.toMSecsSinceEpoch()));
}

/// ICU's own format, which goes by the computer's clock.
std::unique_ptr<icu::DateFormat> formatOfIcu(const icu::Locale &locale, const QString &zone)
{
    std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createDateInstance(icu::DateFormat::kMediumRelative, locale));
    UErrorCode status = U_ZERO_ERROR;
    format->setContext(UDISPCTX_CAPITALIZATION_FOR_STANDALONE, status);
    format->adoptTimeZone(icuTimeZone(zone).release());
    return format;
}

QString shownBy(const icu::DateFormat &format, Date date)
{
    icu::UnicodeString text;
    return fromIcu(format.format(icuMoment(date), text));
}

} // namespace

class tst_DateFormatting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsDates_data();
    void showsDates();
    void followsClock();
    void todayIsOfTheTimeZone_data();
    void todayIsOfTheTimeZone();
    void showsWhatIcuShows_data();
    void showsWhatIcuShows();
    void showsWhatIcuShowsInEveryLocale();
    void showsDayAndMonth_data();
    void showsDayAndMonth();
    void survivesAbsurdDates_data();
    void survivesAbsurdDates();
    void takesUnknownLocale();
};

void tst_DateFormatting::showsDates_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<Date>("date");
    QTest::addColumn<QString>("expected");

    // Today is Friday, 20 November 2026.
    const auto row = [](const char *name, const QString &locale, Date date,
                        const QString &expected) {
        QTest::newRow(name) << locale << date << expected;
    };
    row("today", u"en_US"_s, at(2026, 11, 20), u"Today"_s);
    row("first minute of today", u"en_US"_s, at(2026, 11, 20, 0, 0), u"Today"_s);
    row("last minute of today", u"en_US"_s, at(2026, 11, 20, 23, 59), u"Today"_s);
    row("yesterday", u"en_US"_s, at(2026, 11, 19), u"Yesterday"_s);
    row("last minute of yesterday", u"en_US"_s, at(2026, 11, 19, 23, 59), u"Yesterday"_s);
    row("tomorrow", u"en_US"_s, at(2026, 11, 21), u"Tomorrow"_s);
    row("two days ago", u"en_US"_s, at(2026, 11, 18), u"Nov 18, 2026"_s);
    row("in two days", u"en_US"_s, at(2026, 11, 22), u"Nov 22, 2026"_s);
    row("a year ago", u"en_US"_s, at(2025, 11, 20), u"Nov 20, 2025"_s);
    row("British, yesterday", u"en_GB"_s, at(2026, 11, 19), u"Yesterday"_s);
    row("British", u"en_GB"_s, at(2026, 11, 3), u"3 Nov 2026"_s);
    row("German, the day before yesterday", u"de"_s, at(2026, 11, 18), u"vorgestern"_s);
    row("German, the day after tomorrow", u"de"_s, at(2026, 11, 22), u"übermorgen"_s);
    row("German", u"de"_s, at(2026, 11, 3), u"03.11.2026"_s);
    row("French", u"fr"_s, at(2026, 11, 18), u"avant-hier"_s);
    row("Japanese", u"ja"_s, at(2026, 11, 22), u"明後日"_s);
    row("Arabic", u"ar"_s, at(2026, 11, 19), u"أمس"_s);
    row("Thai year", u"th_TH"_s, at(2026, 11, 3), u"3 พ.ย. 2569"_s);
}

void tst_DateFormatting::showsDates()
{
    QFETCH(QString, locale);
    QFETCH(Date, date);
    const FixedClock clock(at(2026, 11, 20, 12));
    const DateFormatting dates(locale, u"UTC"_s, clock);
    QTEST(dates.displayDate(date), "expected");
}

void tst_DateFormatting::followsClock()
{
    FixedClock clock(at(2026, 11, 20, 23, 59));
    const DateFormatting dates(u"en_US"_s, u"UTC"_s, clock);
    const Date meeting = at(2026, 11, 20);
    QCOMPARE(dates.displayDate(meeting), u"Today"_s);
    clock.advance(60);
    QCOMPARE(dates.displayDate(meeting), u"Yesterday"_s);
    clock.advance(secondsPerDay);
    QCOMPARE(dates.displayDate(meeting), u"Nov 20, 2026"_s);
    clock.setNow(at(2026, 11, 19));
    QCOMPARE(dates.displayDate(meeting), u"Tomorrow"_s);
    clock.setNow(at(1999, 12, 31));
    QCOMPARE(dates.displayDate(at(2000, 1, 1)), u"Tomorrow"_s);
}

void tst_DateFormatting::todayIsOfTheTimeZone_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<Date>("now");
    QTest::addColumn<Date>("date");
    QTest::addColumn<QString>("expected");

    QTest::newRow("still yesterday in New York")
        << u"America/New_York"_s << at(2026, 11, 20, 12) << at(2026, 11, 20, 4) << u"Yesterday"_s;
    QTest::newRow("already tomorrow in Tokyo")
        << u"Asia/Tokyo"_s << at(2026, 11, 20, 12) << at(2026, 11, 20, 16) << u"Tomorrow"_s;
    QTest::newRow("both tomorrow in Tokyo")
        << u"Asia/Tokyo"_s << at(2026, 11, 20, 17) << at(2026, 11, 20, 16) << u"Today"_s;
    QTest::newRow("date is written as in Tokyo")
        << u"Asia/Tokyo"_s << at(2026, 11, 20, 12) << at(2026, 11, 1, 16) << u"Nov 2, 2026"_s;
    QTest::newRow("day of 23 hours, late")
        << u"Europe/Berlin"_s << at(2026, 3, 29, 12) << at(2026, 3, 29, 21, 59) << u"Today"_s;
    QTest::newRow("day of 25 hours, late")
        << u"Europe/Berlin"_s << at(2026, 10, 25, 12) << at(2026, 10, 25, 22, 59) << u"Today"_s;
    QTest::newRow("day of 25 hours, over")
        << u"Europe/Berlin"_s << at(2026, 10, 25, 12) << at(2026, 10, 25, 23) << u"Tomorrow"_s;
}

void tst_DateFormatting::todayIsOfTheTimeZone()
{
    QFETCH(QString, zone);
    QFETCH(Date, now);
    QFETCH(Date, date);
    const FixedClock clock(now);
    QTEST(DateFormatting(u"en_US"_s, zone, clock).displayDate(date), "expected");
}

void tst_DateFormatting::showsWhatIcuShows_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("zone");
    for (const char *locale : {"en_US", "en_GB", "de", "fr", "ja", "ar", "ar_SA", "fa_IR", "th_TH",
                               "nl", "en_US_POSIX"}) {
        for (const char *zone : {"UTC", "Pacific/Kiritimati", "Pacific/Pago_Pago"})
            QTest::addRow("%s, %s", locale, zone)
                << QString::fromLatin1(locale) << QString::fromLatin1(zone);
    }
}

void tst_DateFormatting::showsWhatIcuShows()
{
    QFETCH(QString, locale);
    QFETCH(QString, zone);
    const auto icuFormat = formatOfIcu(icu::Locale(locale.toLatin1().constData()), zone);
    const SystemClock clock;
    const DateFormatting dates(locale, zone, clock);
    for (int hours = -6 * 24; hours <= 6 * 24; hours += 3) {
        const Date date = clock.now().adding(hours * 3600.0);
        // Once more where midnight passes in between.
        QTRY_COMPARE(dates.displayDate(date), shownBy(*icuFormat, date));
    }
    for (const double days : {-40'000.0, -5'000.0, -400.0, -30.0, 30.0, 400.0, 5'000.0}) {
        const Date date = clock.now().adding(days * secondsPerDay);
        QCOMPARE(dates.displayDate(date), shownBy(*icuFormat, date));
    }
}

void tst_DateFormatting::showsWhatIcuShowsInEveryLocale()
{
    const SystemClock clock;
    int32_t count = 0;
    const icu::Locale *locales = icu::Locale::getAvailableLocales(count);
    QVERIFY(count > 100);
    for (const icu::Locale *locale = locales; locale != locales + count; ++locale) {
        const DateFormatting dates(QString::fromLatin1(locale->getName()), u"UTC"_s, clock);
        const auto icuFormat = formatOfIcu(*locale, u"UTC"_s);
        for (int day = -7; day <= 7; ++day) {
            const Date date = clock.now().adding(day * secondsPerDay);
            QTRY_COMPARE(dates.displayDate(date), shownBy(*icuFormat, date));
        }
    }
}

void tst_DateFormatting::showsDayAndMonth_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("expected");

    QTest::newRow("American") << u"en_US"_s << u"UTC"_s << u"03/07"_s;
    QTest::newRow("British") << u"en_GB"_s << u"UTC"_s << u"07/03"_s;
    QTest::newRow("German") << u"de"_s << u"UTC"_s << u"07.03."_s;
    QTest::newRow("French") << u"fr_FR"_s << u"UTC"_s << u"07/03"_s;
    QTest::newRow("Dutch") << u"nl"_s << u"UTC"_s << u"07-03"_s;
    QTest::newRow("Japanese") << u"ja"_s << u"UTC"_s << u"03/07"_s;
    QTest::newRow("Korean") << u"ko"_s << u"UTC"_s << u"03. 07."_s;
    QTest::newRow("Arabic digits and mark") << u"ar_EG"_s << u"UTC"_s << u"٠٧\u200F/٠٣"_s;
    QTest::newRow("already the next day") << u"en_US"_s << u"Asia/Tokyo"_s << u"03/08"_s;
}

void tst_DateFormatting::showsDayAndMonth()
{
    QFETCH(QString, locale);
    QFETCH(QString, zone);
    // Today or not makes no difference.
    for (const Date now : {at(2026, 3, 7), at(2026, 11, 20)}) {
        const FixedClock clock(now);
        QTEST(DateFormatting(locale, zone, clock).dayAndMonth(at(2026, 3, 7, 18)), "expected");
    }
}

void tst_DateFormatting::survivesAbsurdDates_data()
{
    QTest::addColumn<QString>("locale");
    for (const char *locale : {"en_US", "ar_SA", "fa_IR", "th_TH", "zh@calendar=chinese",
                               "he@calendar=hebrew", "ar@calendar=islamic", "ja@calendar=japanese"})
        QTest::newRow(locale) << QString::fromLatin1(locale);
}

void tst_DateFormatting::survivesAbsurdDates()
{
    QFETCH(QString, locale);
    FixedClock clock(at(2026, 11, 20));
    const DateFormatting dates(locale, u"Europe/Berlin"_s, clock);
    QElapsedTimer timer;
    timer.start();
    for (const double seconds : {1e10, 1e12, 1e17, 1e300, std::numeric_limits<double>::max()}) {
        for (const double signedSeconds : {seconds, -seconds}) {
            QVERIFY(!dates.displayDate({signedSeconds}).isEmpty());
            QVERIFY(!dates.dayAndMonth({signedSeconds}).isEmpty());
        }
    }
    for (const double noDate :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        QCOMPARE(dates.displayDate({noDate}), u""_s);
        QCOMPARE(dates.dayAndMonth({noDate}), u""_s);
        QVERIFY(!dates.displayDate({noDate}).isNull());
        clock.setNow({noDate});
        QVERIFY(!dates.displayDate(at(2026, 11, 20)).isEmpty());
    }
    QVERIFY2(timer.elapsed() < 5'000, qPrintable(QString::number(timer.elapsed())));
}

void tst_DateFormatting::takesUnknownLocale()
{
    const FixedClock clock(at(2026, 11, 20));
    for (const QString &locale : {u""_s, u"xx_YY"_s, u"not a locale"_s}) {
        const DateFormatting dates(locale, u"UTC"_s, clock);
        QVERIFY(dates.displayDate(at(2026, 11, 3)).contains(u"2026"));
        QVERIFY(dates.dayAndMonth(at(2026, 11, 3)).contains(u"03"));
    }
}

QTEST_GUILESS_MAIN(tst_DateFormatting)
#include "tst_DateFormatting.moc"
