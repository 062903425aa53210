#include "Foundation/Time/UserRegion.h"

#include <QTest>
#include <QTimeZone>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_UserRegion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesLocaleFromEnvironment_data();
    void takesLocaleFromEnvironment();
    void takesTimeZoneOfSystem();
};

void tst_UserRegion::takesLocaleFromEnvironment_data()
{
    QTest::addColumn<QByteArray>("all");
    QTest::addColumn<QByteArray>("time");
    QTest::addColumn<QByteArray>("lang");
    QTest::addColumn<QString>("expected");

    const QByteArray unset;
    QTest::newRow("all goes first") << QByteArray("fr_FR.UTF-8") << QByteArray("de_DE.UTF-8")
                                    << QByteArray("en_US.UTF-8") << u"fr_FR"_s;
    QTest::newRow("time before language")
        << unset << QByteArray("de_DE.UTF-8") << QByteArray("en_US.UTF-8") << u"de_DE"_s;
    QTest::newRow("language alone") << unset << unset << QByteArray("en_GB.UTF-8") << u"en_GB"_s;
    QTest::newRow("language without country") << unset << unset << QByteArray("ja") << u"ja"_s;
    QTest::newRow("modifier") << unset << unset << QByteArray("nl_NL.UTF-8@euro") << u"nl_NL"_s;
    QTest::newRow("C") << unset << unset << QByteArray("C") << u"en_US_POSIX"_s;
    QTest::newRow("C with an encoding")
        << unset << unset << QByteArray("C.UTF-8") << u"en_US_POSIX"_s;
    QTest::newRow("POSIX") << unset << QByteArray("POSIX") << unset << u"en_US_POSIX"_s;
    QTest::newRow("nothing set") << unset << unset << unset << u"en_US_POSIX"_s;
}

void tst_UserRegion::takesLocaleFromEnvironment()
{
    QFETCH(QByteArray, all);
    QFETCH(QByteArray, time);
    QFETCH(QByteArray, lang);
    QFETCH(QString, expected);
    qputenv("LC_ALL", all);
    qputenv("LC_TIME", time);
    qputenv("LANG", lang);
    QCOMPARE(UserRegion::current().localeName, expected);
}

void tst_UserRegion::takesTimeZoneOfSystem()
{
    qputenv("TZ", "America/Havana");
    QCOMPARE(UserRegion::current().timeZoneId, u"America/Havana"_s);
    qunsetenv("TZ");
    QVERIFY(QTimeZone(UserRegion::current().timeZoneId.toLatin1()).isValid());
}

QTEST_GUILESS_MAIN(tst_UserRegion)
#include "tst_UserRegion.moc"
