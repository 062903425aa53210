#include "Foundation/Time/CalendarArithmetic.h"

#include <QDateTime>
#include <QTest>
#include <QTimeZone>

#include <cmath>
#include <limits>
#include <random>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// "2026-03-28 10:00" or "... 10:00:00.001" on the clocks of the zone.
Date at(const QString &text, const QString &zone = u"UTC"_s)
{
    QDateTime moment = QDateTime::fromString(QString(text).replace(u' ', u'T'), Qt::ISODateWithMs);
    moment.setTimeZone(QTimeZone(zone.toLatin1()));
    return Date::fromUnixMilliseconds(double(moment.toMSecsSinceEpoch()));
}

double millisecondsBetween(Date from, Date to)
{
    return std::round(to.toUnixMilliseconds() - from.toUnixMilliseconds());
}

} // namespace

class tst_CalendarArithmetic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsCompleteDays_data();
    void countsCompleteDays();
    void clampsAbsurdDates();
    void noDateHasNoDays();
    void findsMomentDayCountChanges_data();
    void findsMomentDayCountChanges();
    void dayCountChangesAtThatMomentAndNotBefore_data();
    void dayCountChangesAtThatMomentAndNotBefore();
    void findsStartOfNextDay_data();
    void findsStartOfNextDay();
    void usesTimeZoneOfSystem();
};

void tst_CalendarArithmetic::countsCompleteDays_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<int>("days");

    const auto row = [](const char *name, const QString &zone, const QString &from,
                        const QString &to,
                        int days) { QTest::newRow(name) << zone << from << to << days; };
    const QString utc = u"UTC"_s;
    row("same moment", utc, u"2026-11-20 10:00"_s, u"2026-11-20 10:00"_s, 0);
    row("later that day", utc, u"2026-11-20 10:00"_s, u"2026-11-20 23:00"_s, 0);
    row("next date, not a day yet", utc, u"2026-11-20 23:00"_s, u"2026-11-21 01:00"_s, 0);
    row("a millisecond short", utc, u"2026-11-20 10:00"_s, u"2026-11-21 09:59:59.999"_s, 0);
    row("a day", utc, u"2026-11-20 10:00"_s, u"2026-11-21 10:00"_s, 1);
    row("two weeks", utc, u"2026-11-06 10:00"_s, u"2026-11-20 10:00"_s, 14);
    row("over a leap day", utc, u"2028-02-28 10:00"_s, u"2028-03-01 10:00"_s, 2);
    row("over no leap day", utc, u"2026-02-28 10:00"_s, u"2026-03-01 10:00"_s, 1);
    row("a year", utc, u"2025-11-20 10:00"_s, u"2026-11-20 10:00"_s, 365);
    row("three centuries", utc, u"1726-11-20 10:00"_s, u"2026-11-20 10:00"_s, 109573);
    row("future, less than a day", utc, u"2026-11-21 10:00"_s, u"2026-11-20 10:00:00.001"_s, 0);
    row("future, a day", utc, u"2026-11-21 10:00"_s, u"2026-11-20 10:00"_s, -1);
    row("future, two weeks", utc, u"2026-12-04 10:00"_s, u"2026-11-20 10:00"_s, -14);

    const QString berlin = u"Europe/Berlin"_s;
    row("day of 23 hours", berlin, u"2026-03-28 12:00"_s, u"2026-03-29 12:00"_s, 1);
    row("almost a day of 23 hours", berlin, u"2026-03-28 12:00"_s, u"2026-03-29 11:59"_s, 0);
    row("day of 25 hours", berlin, u"2026-10-24 12:00"_s, u"2026-10-25 12:00"_s, 1);
    row("24 of 25 hours", berlin, u"2026-10-24 12:00"_s, u"2026-10-25 11:00"_s, 0);
    row("from an hour left out the next day", berlin, u"2026-03-28 02:30"_s, u"2026-03-29 03:29"_s,
        0);
    row("and after it", berlin, u"2026-03-28 02:30"_s, u"2026-03-29 03:30"_s, 1);
    row("over winter", berlin, u"2025-10-01 09:00"_s, u"2026-04-01 09:00"_s, 182);
    row("over summer, backwards", berlin, u"2026-12-01 09:00"_s, u"2026-06-01 09:00"_s, -183);
    row("same moments, other zone", u"America/New_York"_s, u"2026-10-24 12:00"_s,
        u"2026-10-25 12:00"_s, 1);
    row("half an hour of summer time", u"Australia/Lord_Howe"_s, u"2026-10-03 12:00"_s,
        u"2026-10-04 12:00"_s, 1);
    row("unknown zone is UTC", u"Mars/Olympus"_s, u"2026-11-20 10:00"_s, u"2026-11-21 10:00"_s, 1);
}

void tst_CalendarArithmetic::countsCompleteDays()
{
    QFETCH(QString, zone);
    QFETCH(QString, from);
    QFETCH(QString, to);
    const QString clockZone = zone.startsWith(u"Mars") ? u"UTC"_s : zone;
    QTEST(CalendarArithmetic(zone).completeDays(at(from, clockZone), at(to, clockZone)), "days");
}

void tst_CalendarArithmetic::clampsAbsurdDates()
{
    const CalendarArithmetic calendar(u"Europe/Berlin"_s);
    const Date now = at(u"2026-11-20 10:00"_s);
    // 100 million days from 1970 are as far as it goes.
    const int daysSince1970 = 20777;
    for (const double farAway : {1e17, 1e300, infinity}) {
        QCOMPARE(calendar.completeDays(now, {farAway}), 100'000'000 - daysSince1970 - 1);
        QCOMPARE(calendar.completeDays({farAway}, now), -(100'000'000 - daysSince1970 - 1));
        QCOMPARE(calendar.completeDays({-farAway}, {farAway}), 200'000'000);
        QCOMPARE(calendar.completeDays({farAway}, {farAway}), 0);
        QVERIFY(calendar.momentDayCountChanges({-farAway}, now) > now);
        QVERIFY(calendar.momentDayCountChanges({farAway}, now) > now);
        QVERIFY(std::isfinite(calendar.startOfNextDay({farAway}).secondsSinceReferenceDate));
        QVERIFY(std::isfinite(calendar.startOfNextDay({-farAway}).secondsSinceReferenceDate));
    }
}

void tst_CalendarArithmetic::noDateHasNoDays()
{
    const CalendarArithmetic calendar(u"UTC"_s);
    const Date now = at(u"2026-11-20 10:00"_s);
    QCOMPARE(calendar.completeDays({notANumber}, now), 0);
    QCOMPARE(calendar.completeDays(now, {notANumber}), 0);
    QCOMPARE(calendar.momentDayCountChanges({notANumber}, now).secondsSinceReferenceDate, infinity);
}

void tst_CalendarArithmetic::findsMomentDayCountChanges_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("now");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const QString &from, const QString &now,
                        const QString &expected) {
        QTest::newRow(name) << from << now << expected;
    };
    row("at the meeting", u"2026-11-20 10:00"_s, u"2026-11-20 10:00"_s, u"2026-11-21 10:00"_s);
    row("before the hour", u"2026-11-10 10:00"_s, u"2026-11-20 09:00"_s, u"2026-11-20 10:00"_s);
    row("at the hour", u"2026-11-10 10:00"_s, u"2026-11-20 10:00"_s, u"2026-11-21 10:00"_s);
    row("after the hour", u"2026-11-10 10:00"_s, u"2026-11-20 11:00"_s, u"2026-11-21 10:00"_s);
    row("over the night clocks go forward", u"2026-03-20 10:00"_s, u"2026-03-28 11:00"_s,
        u"2026-03-29 10:00"_s);
    row("into an hour left out", u"2026-03-20 02:30"_s, u"2026-03-28 11:00"_s,
        u"2026-03-29 03:30"_s);
    row("over the night clocks go back", u"2026-10-20 10:00"_s, u"2026-10-24 11:00"_s,
        u"2026-10-25 10:00"_s);
    row("meeting within a day", u"2026-11-21 09:00"_s, u"2026-11-20 10:00"_s,
        u"2026-11-22 09:00"_s);
    row("meeting in a day", u"2026-11-21 10:00"_s, u"2026-11-20 10:00"_s,
        u"2026-11-20 10:00:00.001"_s);
    row("meeting in some days", u"2026-11-25 10:00"_s, u"2026-11-20 09:00"_s,
        u"2026-11-20 10:00:00.001"_s);
}

void tst_CalendarArithmetic::findsMomentDayCountChanges()
{
    QFETCH(QString, from);
    QFETCH(QString, now);
    QFETCH(QString, expected);
    const QString berlin = u"Europe/Berlin"_s;
    const Date moment = CalendarArithmetic(berlin).momentDayCountChanges(at(from, berlin),
                                                                         at(now, berlin));
    QCOMPARE(millisecondsBetween(at(expected, berlin), moment), 0.0);
}

void tst_CalendarArithmetic::dayCountChangesAtThatMomentAndNotBefore_data()
{
    QTest::addColumn<QString>("zone");
    for (const char *zone :
         {"UTC", "Europe/Berlin", "America/Havana", "Australia/Lord_Howe", "Pacific/Apia"})
        QTest::newRow(zone) << QString::fromLatin1(zone);
}

void tst_CalendarArithmetic::dayCountChangesAtThatMomentAndNotBefore()
{
    QFETCH(QString, zone);
    const CalendarArithmetic calendar(zone);
    constexpr double millisecond = 0.001;
    constexpr double secondsPerDay = 86400;
    std::mt19937 random(20261121);
    // From 2010 to 2027, fractions of a millisecond included.
    std::uniform_real_distribution<double> moments(9 * 365.25 * secondsPerDay,
                                                   26 * 365.25 * secondsPerDay);
    std::uniform_real_distribution<double> distances(-40 * secondsPerDay, 400 * secondsPerDay);
    for (int i = 0; i < 3'000; ++i) {
        const Date from{moments(random)};
        const Date now = from.adding(distances(random));
        const int days = calendar.completeDays(from, now);
        const Date moment = calendar.momentDayCountChanges(from, now);
        QVERIFY(moment > now);
        QVERIFY(calendar.completeDays(from, moment) > days);
        QCOMPARE(calendar.completeDays(from, moment.adding(-millisecond)), days);
        QCOMPARE(calendar.completeDays(
                     from, {std::midpoint(now.secondsSinceReferenceDate,
                                          moment.adding(-millisecond).secondsSinceReferenceDate)}),
                 days);
    }
}

void tst_CalendarArithmetic::findsStartOfNextDay_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("expected"); // in UTC

    const auto row = [](const char *name, const QString &zone, const QString &date,
                        const QString &expected) {
        QTest::newRow(name) << zone << date << expected;
    };
    row("at midnight", u"UTC"_s, u"2026-11-20 00:00"_s, u"2026-11-21 00:00"_s);
    row("at the last millisecond", u"UTC"_s, u"2026-11-20 23:59:59.999"_s, u"2026-11-21 00:00"_s);
    row("at the end of the year", u"UTC"_s, u"2026-12-31 12:00"_s, u"2027-01-01 00:00"_s);
    row("in winter", u"Europe/Berlin"_s, u"2026-11-20 12:00"_s, u"2026-11-20 23:00"_s);
    row("before clocks go forward", u"Europe/Berlin"_s, u"2026-03-28 12:00"_s,
        u"2026-03-28 23:00"_s);
    row("on the day they do", u"Europe/Berlin"_s, u"2026-03-29 01:30"_s, u"2026-03-29 22:00"_s);
    row("at an hour the next day leaves out", u"Europe/Berlin"_s, u"2026-03-28 02:30"_s,
        u"2026-03-28 23:00"_s);
    row("on the day they go back", u"Europe/Berlin"_s, u"2026-10-25 12:00"_s,
        u"2026-10-25 23:00"_s);
    row("midnight left out", u"America/Havana"_s, u"2026-03-07 12:00"_s, u"2026-03-08 05:00"_s);
    row("midnight left out, from its hour", u"America/Havana"_s, u"2026-03-07 00:30"_s,
        u"2026-03-08 05:00"_s);
    row("midnight twice", u"America/Havana"_s, u"2026-10-31 12:00"_s, u"2026-11-01 04:00"_s);
    row("date left out", u"Pacific/Apia"_s, u"2011-12-29 12:00"_s, u"2011-12-30 10:00"_s);
}

void tst_CalendarArithmetic::findsStartOfNextDay()
{
    QFETCH(QString, zone);
    QFETCH(QString, date);
    QFETCH(QString, expected);
    const Date start = CalendarArithmetic(zone).startOfNextDay(at(date, zone));
    QCOMPARE(millisecondsBetween(at(expected), start), 0.0);
}

void tst_CalendarArithmetic::usesTimeZoneOfSystem()
{
    qputenv("TZ", "Asia/Tokyo");
    const Date start = CalendarArithmetic().startOfNextDay(at(u"2026-11-20 12:00"_s));
    qunsetenv("TZ");
    QCOMPARE(millisecondsBetween(at(u"2026-11-20 15:00"_s), start), 0.0);
}

QTEST_GUILESS_MAIN(tst_CalendarArithmetic)
#include "tst_CalendarArithmetic.moc"
