#include "Store/Query/Predicate.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_Predicate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesEverythingWithoutACondition();
    void joinsPredicates();
    void joiningNestsNothing();
    void keepsAlternativesTogether();
    void neverMakesArgumentsPartOfTheFormat();
};

void tst_Predicate::matchesEverythingWithoutACondition()
{
    QVERIFY(Predicate().isEmpty());
    QCOMPARE(Predicate().describe(), QString());
    QVERIFY(Predicate().arguments().isEmpty());
    QVERIFY(Predicate::andPredicate({}).isEmpty());
    QVERIFY(Predicate::andPredicate({Predicate(), Predicate()}).isEmpty());
}

void tst_Predicate::joinsPredicates()
{
    const Predicate both = Predicate::andPredicate(
        {Predicate::fixed(u"counterpart == %@", {ObjectID{0, 1}}), Predicate(),
         Predicate::fixed(u"flag > %d", {qint64(2)})});
    QCOMPARE(both.describe(), u"counterpart == %@ AND flag > %d"_s);
    const QList<PredicateArgument> expected{ObjectID{0, 1}, qint64(2)};
    QVERIFY(both.arguments() == expected);
    QCOMPARE(Predicate::andPredicate({Predicate(), both}).describe(), both.describe());
}

void tst_Predicate::joiningNestsNothing()
{
    Predicate all;
    for (int i = 0; i < 50; ++i)
        all = Predicate::andPredicate(
            {all, Predicate::fixed(u"ANY tags == %@", {ObjectID{1, i + 1}})});
    QCOMPARE(all.describe().count(u"ANY tags == %@"_s), 50);
    QVERIFY(!all.describe().contains(u'('));
    QVERIFY(Predicate::withFormat(all.describe(), all.arguments()));
}

void tst_Predicate::keepsAlternativesTogether()
{
    const Predicate either = Predicate::fixed(u"a == NULL OR b == NULL", {});
    const Predicate all = Predicate::andPredicate({either, Predicate::fixed(u"c == NULL", {})});
    QCOMPARE(all.describe(), u"(a == NULL OR b == NULL) AND c == NULL"_s);
}

void tst_Predicate::neverMakesArgumentsPartOfTheFormat()
{
    const QString sly = u"%@ OR name != NULL"_s;
    const Predicate predicate = Predicate::fixed(u"name == %@", {sly});
    QCOMPARE(predicate.describe(), u"name == %@"_s);
    QCOMPARE(std::get<QString>(predicate.arguments().first()), sly);
}

QTEST_GUILESS_MAIN(tst_Predicate)
#include "tst_Predicate.moc"
