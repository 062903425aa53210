#include "Toolkit/List/ObjectSorting.h"

#include "Person.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_ObjectSorting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalObjectsStandInTheOrderOfTheTieKey()
    {
        ArrayController::ObjectList people;
        for (const int age : {30, 20, 40, 10}) {
            people.append(std::make_shared<Person>(u"Ana"_s, age));
        }
        const auto byAge = [](const QObject &person) {
            return qint64(person.property("age").toInt());
        };
        QCOMPARE(ages(sortedObjects(people, {{"name", true}}, byAge)), (QList{10, 20, 30, 40}));
        // Also where the greatest value comes first, and whatever order they come in.
        std::reverse(people.begin(), people.end());
        QCOMPARE(ages(sortedObjects(people, {{"name", false}}, byAge)), (QList{10, 20, 30, 40}));
        QCOMPARE(ages(sortedObjects(people, {{"age", false}}, byAge)), (QList{40, 30, 20, 10}));
        QCOMPARE(ages(sortedObjects(people, {{"name", true}})), (QList{10, 40, 20, 30}));
    }

private:
    static QList<int> ages(const ArrayController::ObjectList &people)
    {
        QList<int> ages;
        for (const auto &person : people)
            ages.append(person->property("age").toInt());
        return ages;
    }
};

QTEST_GUILESS_MAIN(tst_ObjectSorting)
#include "tst_ObjectSorting.moc"
