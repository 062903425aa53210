#include "Application/Sample/SampleJournal.h"

#include "Application/Sample/SampleDay.h"
#include "Foundation/Json/JsonDecoder.h"
#include "Model/RecordValues.h"
#include "support/JournalFixture.h"

#include <QDateTime>
#include <QMap>
#include <QTest>

#include <algorithm>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

using Moments = QMap<QString, QList<QDateTime>>; ///< Of the meetings of each teammate, ascending.

QDateTime momentOf(Date date, const QTimeZone &zone)
{
    return QDateTime::fromMSecsSinceEpoch(qint64(date.toUnixMilliseconds()), zone);
}

Moments momentsInDocument(const QByteArray &json)
{
    Moments moments;
    JsonDecoder decoder(json);
    decodeJournal(decoder, [&] {
        QList<QDateTime> ofTeammate;
        const auto values = CounterpartValues::decode(decoder, [&] {
            const OptionalDate date = SessionValues::decode(decoder).attributes.date(
                Session::dateProperty);
            ofTeammate.append(momentOf(date.value_or(Date{}), QTimeZone::utc()));
        });
        std::ranges::sort(ofTeammate);
        moments.insert(values.attributes.text(Counterpart::nameProperty), ofTeammate);
    });
    return moments;
}

Moments momentsInStore(const JournalFixture &journal, const QTimeZone &zone)
{
    Moments moments;
    for (const auto &teammate : journal.counterparts()) {
        QList<QDateTime> &ofTeammate = moments[teammate->name()];
        for (const auto &session : teammate->sessions())
            ofTeammate.append(momentOf(session->date().value_or(Date{}), zone));
        std::ranges::sort(ofTeammate);
    }
    return moments;
}

bool isWeekend(const QDate &day)
{
    return day.dayOfWeek() > Qt::Friday;
}

} // namespace

/// On which days the meetings of the sample journal fall, whatever today is and wherever.
class tst_SampleDays : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void meetingsMoveToToday_data();
    void meetingsMoveToToday();
};

void tst_SampleDays::meetingsMoveToToday_data()
{
    QTest::addColumn<Date>("now");
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDate>("today");

    QTest::newRow("the sample's own day") << utc(2026, 1, 5) << QByteArray("UTC") << sampleDay();
    QTest::newRow("a Friday") << utc(2026, 11, 20) << QByteArray("UTC") << QDate(2026, 11, 20);
    QTest::newRow("a Saturday") << utc(2026, 11, 21) << QByteArray("UTC") << QDate(2026, 11, 21);
    QTest::newRow("a Sunday") << utc(2026, 11, 22) << QByteArray("UTC") << QDate(2026, 11, 22);
    QTest::newRow("a Wednesday") << utc(2026, 11, 25) << QByteArray("UTC") << QDate(2026, 11, 25);
    QTest::newRow("a leap day") << utc(2028, 2, 29) << QByteArray("UTC") << QDate(2028, 2, 29);
    QTest::newRow("before the sample") << utc(2020, 3, 4) << QByteArray("UTC") << QDate(2020, 3, 4);
    QTest::newRow("already tomorrow in Tokyo")
        << utc(2026, 11, 19, 23, 30) << QByteArray("Asia/Tokyo") << QDate(2026, 11, 20);
    QTest::newRow("still yesterday in Honolulu")
        << utc(2026, 11, 20, 3) << QByteArray("Pacific/Honolulu") << QDate(2026, 11, 19);
    QTest::newRow("summer time in New York")
        << utc(2026, 7, 1) << QByteArray("America/New_York") << QDate(2026, 7, 1);
    QTest::newRow("the day summer time ends in Berlin")
        << utc(2026, 10, 25) << QByteArray("Europe/Berlin") << QDate(2026, 10, 25);
    QTest::newRow("a zone of odd minutes")
        << utc(2026, 11, 18) << QByteArray("Asia/Kathmandu") << QDate(2026, 11, 18);
}

/// The day by as many days as lie between the sample's and today, to the Friday before where that is
/// a weekend; the hour not at all.
void tst_SampleDays::meetingsMoveToToday()
{
    QFETCH(Date, now);
    QFETCH(QByteArray, zone);
    QFETCH(QDate, today);
    const JournalFixture journal(now);
    const QTimeZone timeZone(zone);
    QVERIFY(timeZone.isValid());
    QVERIFY(SampleJournal::importInto(journal.coreData(), journal.directory.path(), journal.clock,
                                      timeZone));
    const Moments before = momentsInDocument(SampleJournal::document());
    const Moments after = momentsInStore(journal, timeZone);
    QCOMPARE(after.keys(), before.keys());
    int weekends = 0;
    for (const QString &teammate : before.keys()) {
        QCOMPARE(after[teammate].size(), before[teammate].size());
        for (qsizetype i = 0; i < before[teammate].size(); ++i) {
            const QDateTime was = before[teammate].at(i);
            const QDateTime is = after[teammate].at(i);
            QCOMPARE(is.time(), was.time());
            const QDate sameDistance = today.addDays(sampleDay().daysTo(was.date()));
            const qint64 furtherBack = is.date().daysTo(sameDistance);
            QVERIFY(!isWeekend(is.date()));
            if (isWeekend(sameDistance)) {
                ++weekends;
                QCOMPARE(is.date().dayOfWeek(), int(Qt::Friday));
                QVERIFY(furtherBack == 1 || furtherBack == 2);
            } else {
                QCOMPARE(furtherBack, 0);
            }
        }
    }
    QVERIFY(weekends > 20); // Otherwise the above has shown little.
}

QTEST_GUILESS_MAIN(tst_SampleDays)
#include "tst_SampleDays.moc"
