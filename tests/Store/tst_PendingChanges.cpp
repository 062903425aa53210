#include "Store/Objects/PendingChanges.h"

#include <QTest>

using namespace tembra;

namespace {

constexpr ObjectID record{2, 7};

ObjectChange change(PropertyMask properties, QVarLengthArray<ToOneChange, 1> toOnes = {})
{
    return {record, properties, toOnes};
}

/// "inserted 1 [2:0>5]" and the like; one line per entry.
QString describe(const ChangeSet &changes)
{
    QStringList lines;
    const auto add = [&](const char *kind, const std::vector<ObjectChange> &list) {
        for (const ObjectChange &entry : list) {
            QString line = QLatin1String(kind) + QLatin1Char(' ')
                           + QString::number(entry.properties);
            for (const ToOneChange &toOne : entry.toOnes)
                line += QStringLiteral(" [%1:%2>%3]")
                            .arg(toOne.property)
                            .arg(toOne.oldKey)
                            .arg(toOne.newKey);
            lines.append(line);
        }
    };
    add("inserted", changes.inserted);
    add("updated", changes.updated);
    add("deleted", changes.deleted);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

class tst_PendingChanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsEachRecordOnce_data();
    void tellsEachRecordOnce();
    void startsAnewAfterTaking();
    void keepsTheOrderOfFirstMention();
    void addsUpASetOfChanges();
    void listsNoneOfVeryManyRecords();
};

using Additions = std::function<void(PendingChanges &)>;
Q_DECLARE_METATYPE(Additions)

void tst_PendingChanges::tellsEachRecordOnce_data()
{
    QTest::addColumn<Additions>("additions");
    QTest::addColumn<QString>("told");
    const auto row = [](const char *name, const Additions &additions, const char *told) {
        QTest::newRow(name) << additions << QString::fromLatin1(told);
    };
    row(
        "nothing", [](PendingChanges &) {}, "");
    row(
        "updates add up",
        [](PendingChanges &p) {
            p.addUpdated(record, 1);
            p.addUpdated(record, 4);
        },
        "updated 5");
    row(
        "insert and update",
        [](PendingChanges &p) {
            p.addInserted(change(3));
            p.addUpdated(record, 4);
        },
        "inserted 7");
    row(
        "insert and delete",
        [](PendingChanges &p) {
            p.addInserted(change(1));
            p.addDeleted(change(1));
        },
        "");
    row(
        "update and delete",
        [](PendingChanges &p) {
            p.addUpdated(record, 1);
            p.addDeleted(change(2));
        },
        "deleted 3");
    row(
        "delete and bring back",
        [](PendingChanges &p) {
            p.addDeleted(change(1));
            p.addInserted(change(1));
        },
        "updated 1");
    row(
        "insert, delete and bring back",
        [](PendingChanges &p) {
            p.addInserted(change(1));
            p.addDeleted(change(1));
            p.addInserted(change(1));
        },
        "inserted 1");
    row(
        "to-one keeps its first old key and its last new one",
        [](PendingChanges &p) {
            p.addToOne(record, {2, 5, 6});
            p.addToOne(record, {2, 6, 8});
        },
        "updated 4 [2:5>8]");
    row(
        "to-one set back is still an update",
        [](PendingChanges &p) {
            p.addToOne(record, {2, 5, 6});
            p.addToOne(record, {2, 6, 5});
        },
        "updated 4 [2:5>5]");
    row(
        "inserted record's to-one comes from nothing",
        [](PendingChanges &p) {
            p.addInserted(change(0));
            p.addToOne(record, {2, 0, 6});
            p.addToOne(record, {2, 6, 9});
        },
        "inserted 4 [2:0>9]");
    row(
        "moved and deleted record's to-one leads from its first key to nothing",
        [](PendingChanges &p) {
            p.addToOne(record, {2, 5, 6});
            p.addDeleted(change(4, {{2, 6, 0}}));
        },
        "deleted 4 [2:5>0]");
    row(
        "deleted and brought back elsewhere",
        [](PendingChanges &p) {
            p.addDeleted(change(4, {{2, 5, 0}}));
            p.addInserted(change(4, {{2, 0, 9}}));
        },
        "updated 4 [2:5>9]");
}

void tst_PendingChanges::tellsEachRecordOnce()
{
    QFETCH(Additions, additions);
    QFETCH(QString, told);
    PendingChanges pending;
    additions(pending);
    QCOMPARE(describe(pending.take()), told);
}

void tst_PendingChanges::startsAnewAfterTaking()
{
    PendingChanges pending;
    pending.addInserted(change(1));
    (void)pending.take();
    QVERIFY(pending.isEmpty());
    pending.addDeleted(change(1));
    QCOMPARE(describe(pending.take()), QStringLiteral("deleted 1"));
}

void tst_PendingChanges::keepsTheOrderOfFirstMention()
{
    PendingChanges pending;
    for (const qint64 key : {9, 3, 5})
        pending.addUpdated({1, key}, 1);
    pending.addUpdated({1, 9}, 2);
    const ChangeSet changes = pending.take();
    QCOMPARE(changes.updated.size(), size_t(3));
    QCOMPARE(changes.updated[0].id.key, 9);
    QCOMPARE(changes.updated[1].id.key, 3);
    QCOMPARE(changes.updated[2].id.key, 5);
}

void tst_PendingChanges::addsUpASetOfChanges()
{
    PendingChanges pending;
    pending.addInserted(change(1));
    pending.add({{}, {change(2, {{0, 0, 5}})}, {}});
    QCOMPARE(describe(pending.take()), QStringLiteral("inserted 3 [0:0>5]"));
    pending.add({{}, {}, {change(1)}, entityBit(4)});
    const ChangeSet changes = pending.take();
    QCOMPARE(describe(changes), QStringLiteral("deleted 1"));
    QCOMPARE(changes.bulk, entityBit(4));
}

void tst_PendingChanges::listsNoneOfVeryManyRecords()
{
    constexpr qint64 many = qint64(PendingChanges::bulkThreshold);
    PendingChanges pending;
    for (qint64 key = 1; key <= many; ++key)
        pending.addInserted({{2, key}, allProperties, {}});
    pending.addUpdated({2, 1}, 1); // Known already.
    pending.addUpdated({1, 1}, 1);
    QCOMPARE(PendingChanges(pending).take().inserted.size(), size_t(many));
    pending.addInserted({{2, many + 1}, allProperties, {}}); // One too many.
    const ChangeSet changes = pending.take();
    QVERIFY(changes.isBulkChange(2));
    QVERIFY(!changes.isBulkChange(1));
    QVERIFY(changes.inserted.empty());
    QCOMPARE(changes.updated.size(), size_t(1));
    QVERIFY(pending.isEmpty());
    // The next changes start anew.
    pending.addInserted({{2, many + 2}, allProperties, {}});
    QCOMPARE(pending.take().bulk, EntityMask(0));
}

QTEST_APPLESS_MAIN(tst_PendingChanges)

#include "tst_PendingChanges.moc"
