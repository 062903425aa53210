#include "Foundation/Files/TemporaryFiles.h"

#include <QFile>
#include <QSet>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_TemporaryFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsItsOwnNames_data();
    void knowsItsOwnNames();
    void knowsNoOthers_data();
    void knowsNoOthers();
    void givesNoNameTwice();
};

void tst_TemporaryFiles::knowsItsOwnNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("usual") << u"TembraData.tembrabackup"_s;
    QTest::newRow("short") << u"a"_s;
    QTest::newRow("hidden") << u".a"_s;
    QTest::newRow("long") << QString(255, u'x');
    QTest::newRow("long, beyond the BMP") << u"\U0001F600"_s.repeated(63);
    QTest::newRow("long, cut within a pair") << u"x"_s + u"\U0001F600"_s.repeated(63);
    QTest::newRow("a temporary name itself") << u".a.0123456789abcdef.tmp"_s;
}

void tst_TemporaryFiles::knowsItsOwnNames()
{
    QFETCH(QString, name);
    const QString temporary = newTemporaryName(name);
    QVERIFY(temporary.startsWith(u'.'));
    // What some encrypting disks take at most.
    QVERIFY(QFile::encodeName(temporary).size() <= 143);
    QCOMPARE(QFile::decodeName(QFile::encodeName(temporary)), temporary);
    QVERIFY(isTemporaryName(temporary, name));
    QVERIFY(!isTemporaryName(temporary, u"other"_s));
}

void tst_TemporaryFiles::knowsNoOthers_data()
{
    QTest::addColumn<QString>("candidate");
    QTest::newRow("nothing") << QString();
    QTest::newRow("the name itself") << u"a.b"_s;
    QTest::newRow("not hidden") << u"a.b.0123456789abcdef.tmp"_s;
    QTest::newRow("no digits") << u".a.b..tmp"_s;
    QTest::newRow("too few digits") << u".a.b.0123456789abcde.tmp"_s;
    QTest::newRow("too many digits") << u".a.b.0123456789abcdef0.tmp"_s;
    QTest::newRow("other digits") << u".a.b.0123456789abcdeF.tmp"_s;
    QTest::newRow("digits of another script") << u".a.b.0123456789abcde\u0663.tmp"_s;
    QTest::newRow("other ending") << u".a.b.0123456789abcdef.TMP"_s;
    QTest::newRow("of a longer name") << u".a.b.c.0123456789abcdef.tmp"_s;
    QTest::newRow("of a shorter name") << u".a.0123456789abcdef.tmp"_s;
}

void tst_TemporaryFiles::knowsNoOthers()
{
    QFETCH(QString, candidate);
    QVERIFY(isTemporaryName(u".a.b.0123456789abcdef.tmp"_s, u"a.b"_s));
    QVERIFY(!isTemporaryName(candidate, u"a.b"_s));
}

void tst_TemporaryFiles::givesNoNameTwice()
{
    constexpr int names = 1000;
    QSet<QString> all;
    for (int i = 0; i < names; ++i)
        all.insert(newTemporaryName(u"a"_s));
    QCOMPARE(all.size(), names);
}

QTEST_GUILESS_MAIN(tst_TemporaryFiles)
#include "tst_TemporaryFiles.moc"
