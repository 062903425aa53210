#include "MainWindow/Session/DateTextParser.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Dates as they are typed and pasted in several locales, in November 2026.
class tst_DateTextParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDateIsUnderstood_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QTime>("time");

        const QDate fifth(2025, 3, 5);
        const QDate fourteenth(2026, 11, 14);
        const QTime none;
        const QTime morning(9, 30);
        const QTime evening(21, 30);
        QTest::newRow("en_US numeric") << u"en_US"_s << u"3/5/2025"_s << fifth << none;
        QTest::newRow("en_US leading zeros") << u"en_US"_s << u"03/05/2025"_s << fifth << none;
        QTest::newRow("en_US short year") << u"en_US"_s << u"3/5/25"_s << fifth << none;
        QTest::newRow("en_US dashes") << u"en_US"_s << u"3-5-2025"_s << fifth << none;
        QTest::newRow("en_US blanks") << u"en_US"_s << u"  3/5/2025 "_s << fifth << none;
        QTest::newRow("en_US with time") << u"en_US"_s << u"3/5/2025 9:30 AM"_s << fifth << morning;
        QTest::newRow("en_US lower case")
            << u"en_US"_s << u"3/5/2025 9:30 pm"_s << fifth << evening;
        QTest::newRow("en_US no blank") << u"en_US"_s << u"3/5/2025 9:30pm"_s << fifth << evening;
        QTest::newRow("en_US points") << u"en_US"_s << u"3/5/2025 9:30 p.m."_s << fifth << evening;
        QTest::newRow("en_US hour alone")
            << u"en_US"_s << u"3/5/2025 9 PM"_s << fifth << QTime(21, 0);
        QTest::newRow("en_US 24 hours") << u"en_US"_s << u"3/5/2025 21:30"_s << fifth << evening;
        QTest::newRow("en_US noon")
            << u"en_US"_s << u"3/5/2025 12:00 PM"_s << fifth << QTime(12, 0);
        QTest::newRow("en_US midnight")
            << u"en_US"_s << u"3/5/2025 12:05 AM"_s << fifth << QTime(0, 5);
        QTest::newRow("en_US hour zero")
            << u"en_US"_s << u"3/5/2025 0:05 AM"_s << fifth << QTime(0, 5);
        QTest::newRow("en_US narrow blank")
            << u"en_US"_s << u"3/5/2025, 9:30\u202fPM"_s << fifth << evening;
        QTest::newRow("en_US long") << u"en_US"_s << u"Wednesday, March 5, 2025"_s << fifth << none;
        QTest::newRow("en_US medium") << u"en_US"_s << u"Mar 5, 2025"_s << fifth << none;
        QTest::newRow("en_US day first") << u"en_US"_s << u"5 march 2025"_s << fifth << none;
        QTest::newRow("en_US prefix")
            << u"en_US"_s << u"Sept. 7 2025"_s << QDate(2025, 9, 7) << none;
        QTest::newRow("en_US ordinal")
            << u"en_US"_s << u"March 5th, 2025 at 9:30 AM"_s << fifth << morning;
        QTest::newRow("en_US name, short year") << u"en_US"_s << u"Mar 5, 25"_s << fifth << none;
        QTest::newRow("en_US seconds")
            << u"en_US"_s << u"3/5/2025 9:30:15 AM"_s << fifth << QTime(9, 30, 15);
        QTest::newRow("en_GB") << u"en_GB"_s << u"5/3/2025"_s << fifth << none;
        QTest::newRow("ISO") << u"en_US"_s << u"2025-03-05"_s << fifth << none;
        QTest::newRow("ISO with time") << u"en_US"_s << u"2025-03-05T21:30"_s << fifth << evening;
        QTest::newRow("ISO seconds")
            << u"de_DE"_s << u"2025-03-05T21:30:05.25"_s << fifth << QTime(21, 30, 5);
        QTest::newRow("ISO blank") << u"de_DE"_s << u"2025-03-05 21:30"_s << fifth << evening;
        QTest::newRow("ISO basic") << u"de_DE"_s << u"20250305"_s << fifth << none;
        QTest::newRow("year first") << u"en_US"_s << u"2025/3/5"_s << fifth << none;
        QTest::newRow("de numeric") << u"de_DE"_s << u"5.3.2025"_s << fifth << none;
        QTest::newRow("de zeros") << u"de_DE"_s << u"05.03.25"_s << fifth << none;
        QTest::newRow("de long") << u"de_DE"_s << u"Mittwoch, 5. März 2025"_s << fifth << none;
        QTest::newRow("de time") << u"de_DE"_s << u"14.11.2026 21:30"_s << fourteenth << evening;
        QTest::newRow("de decomposed") << u"de_DE"_s << u"5. Ma\u0308rz 2025"_s << fifth << none;
        QTest::newRow("fr long") << u"fr_FR"_s << u"mercredi 5 mars 2025"_s << fifth << none;
        QTest::newRow("es long") << u"es_ES"_s << u"miércoles, 5 de marzo de 2025"_s << fifth
                                 << none;
        QTest::newRow("fi time") << u"fi_FI"_s << u"5.3.2025 9.30"_s << fifth << morning;
        QTest::newRow("da date alone") << u"da_DK"_s << u"05.03.25"_s << fifth << none;
        QTest::newRow("sv") << u"sv_SE"_s << u"2025-03-05 21:30"_s << fifth << evening;
        QTest::newRow("ja long") << u"ja_JP"_s << u"2025年3月5日水曜日"_s << fifth << none;
        QTest::newRow("ja full width") << u"ja_JP"_s << u"２０２５/０３/０５"_s << fifth << none;
        QTest::newRow("zh with time") << u"zh_CN"_s << u"2025/3/5 21:30"_s << fifth << evening;
        QTest::newRow("ar digits") << u"ar_EG"_s << u"٥/٣/٢٠٢٥"_s << fifth << none;
        QTest::newRow("ru long") << u"ru_RU"_s << u"среда, 5 марта 2025 г."_s << fifth << none;
        QTest::newRow("leap day") << u"en_US"_s << u"2/29/2024"_s << QDate(2024, 2, 29) << none;
        QTest::newRow("first year") << u"en_US"_s << u"1/2/0001"_s << QDate(1, 1, 2) << none;
        QTest::newRow("year 100") << u"en_US"_s << u"1/2/100"_s << QDate(100, 1, 2) << none;
        QTest::newRow("last year") << u"en_US"_s << u"12/31/9999"_s << QDate(9999, 12, 31) << none;
        QTest::newRow("two digits ahead") << u"en_US"_s << u"1/2/45"_s << QDate(2045, 1, 2) << none;
        QTest::newRow("two digits ago") << u"en_US"_s << u"1/2/46"_s << QDate(1946, 1, 2) << none;
        QTest::newRow("one digit") << u"en_US"_s << u"1/2/1"_s << QDate(2001, 1, 2) << none;
    }

    void aDateIsUnderstood()
    {
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QFETCH(QDate, date);
        QFETCH(QTime, time);
        const auto parsed = DateTextParser(QLocale(locale), 2026).parse(text);
        QVERIFY(parsed);
        QCOMPARE(parsed->date, date);
        QCOMPARE(parsed->time.has_value(), time.isValid());
        QCOMPARE(parsed->time.value_or(QTime()), time);
    }

    void anythingElseIsRefused_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text : {"",
                                 " ",
                                 "abc",
                                 "3/5",
                                 "March 5",
                                 "9:30 AM",
                                 "13/3/2025",
                                 "2/29/2025",
                                 "3/5/20255",
                                 "3/5/2025 x",
                                 "3/5/2025 25:00",
                                 "3/5/2025 14:30 PM",

                                 "3/5/2025 9:60",
                                 "3/5/2025/7",
                                 "0/0/0",
                                 "1/1/0000",
                                 "tomorrow",
                                 "Thursday, March 5, 2025",
                                 "March April 5, 2025",
                                 "3/5/2025 9:30 9:31",
                                 "2025-03-05T21:30Z",
                                 "2025-03-05T21:30+02:00",
                                 "3//",
                                 "5202",
                                 "3/345/2025",
                                 "<b>3/5/2025</b>",
                                 "3/5/2025;"})
            QTest::newRow(text) << QString::fromUtf8(text);
        QTest::newRow("without end") << QString(100'000, u'3');
    }

    void anythingElseIsRefused()
    {
        QFETCH(QString, text);
        QVERIFY(!DateTextParser(QLocale(u"en_US"_s), 2026).parse(text));
    }

    /// What the program shows, every locale of the system must be able to type again.
    void whatALocaleFormatsItParses()
    {
        const QList<QDate> dates{QDate(2026, 11, 14), QDate(2025, 3, 5), QDate(1999, 12, 31)};
        QStringList failures;
        int count = 0;
        for (const QLocale &locale :
             QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript,
                                      QLocale::AnyCountry)) {
            const DateTextParser parser(locale, 2026);
            const QString format = DateTextParser::displayFormat(locale);
            for (const QDate &date : dates) {
                const QDateTime moment(date, QTime(21, 7));
                const QString text = locale.toString(moment, format);
                const auto parsed = parser.parse(text);
                ++count;
                if (parsed != ParsedDateText{date, QTime(21, 7)})
                    failures.append(locale.name() + u": "_s + text);
            }
        }
        QVERIFY(count > 1000);
        for (const QString &failure : failures)
            qWarning().noquote() << failure;
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
    }
};

QTEST_GUILESS_MAIN(tst_DateTextParser)
#include "tst_DateTextParser.moc"
