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
    void tellsInsertionsAgainAsUpdates();
    void tellsTooManyWholesale();
};

using Notes = std::function<void(PendingChanges &)>;
Q_DECLARE_METATYPE(Notes)

void tst_PendingChanges::tellsEachRecordOnce_data()
{
    QTest::addColumn<Notes>("notes");
    QTest::addColumn<QString>("told");
    const auto row = [](const char *name, const Notes &notes, const char *told) {
        QTest::newRow(name) << notes << QString::fromLatin1(told);
    };
    row(
        "nothing", [](PendingChanges &) {}, "");
    row(
        "updates add up",
        [](PendingChanges &p) {
            p.noteUpdated(record, 1);
            p.noteUpdated(record, 4);
        },
        "updated 5");
    row(
        "insert and update",
        [](PendingChanges &p) {
            p.noteInserted(change(3));
            p.noteUpdated(record, 4);
        },
        "inserted 7");
    row(
        "insert and delete",
        [](PendingChanges &p) {
            p.noteInserted(change(1));
            p.noteDeleted(change(1));
        },
        "");
    row(
        "update and delete",
        [](PendingChanges &p) {
            p.noteUpdated(record, 1);
            p.noteDeleted(change(2));
        },
        "deleted 3");
    row(
        "delete and bring back",
        [](PendingChanges &p) {
            p.noteDeleted(change(1));
            p.noteInserted(change(1));
        },
        "updated 1");
    row(
        "insert, delete and bring back",
        [](PendingChanges &p) {
            p.noteInserted(change(1));
            p.noteDeleted(change(1));
            p.noteInserted(change(1));
        },
        "inserted 1");
    row(
        "to-one keeps its first old key and its last new one",
        [](PendingChanges &p) {
            p.noteToOne(record, {2, 5, 6});
            p.noteToOne(record, {2, 6, 8});
        },
        "updated 4 [2:5>8]");
    row(
        "to-one set back is still an update",
        [](PendingChanges &p) {
            p.noteToOne(record, {2, 5, 6});
            p.noteToOne(record, {2, 6, 5});
        },
        "updated 4 [2:5>5]");
    row(
        "inserted record's to-one comes from nothing",
        [](PendingChanges &p) {
            p.noteInserted(change(0));
            p.noteToOne(record, {2, 0, 6});
            p.noteToOne(record, {2, 6, 9});
        },
        "inserted 4 [2:0>9]");
    row(
        "moved and deleted record's to-one leads from its first key to nothing",
        [](PendingChanges &p) {
            p.noteToOne(record, {2, 5, 6});
            p.noteDeleted(change(4, {{2, 6, 0}}));
        },
        "deleted 4 [2:5>0]");
    row(
        "deleted and brought back elsewhere",
        [](PendingChanges &p) {
            p.noteDeleted(change(4, {{2, 5, 0}}));
            p.noteInserted(change(4, {{2, 0, 9}}));
        },
        "updated 4 [2:5>9]");
}

void tst_PendingChanges::tellsEachRecordOnce()
{
    QFETCH(Notes, notes);
    QFETCH(QString, told);
    PendingChanges pending;
    notes(pending);
    QCOMPARE(describe(pending.take()), told);
}

void tst_PendingChanges::startsAnewAfterTaking()
{
    PendingChanges pending;
    pending.noteInserted(change(1));
    (void)pending.take();
    QVERIFY(pending.isEmpty());
    pending.noteDeleted(change(1));
    QCOMPARE(describe(pending.take()), QStringLiteral("deleted 1"));
}

void tst_PendingChanges::keepsTheOrderOfFirstMention()
{
    PendingChanges pending;
    for (const qint64 key : {9, 3, 5})
        pending.noteUpdated({1, key}, 1);
    pending.noteUpdated({1, 9}, 2);
    const ChangeSet changes = pending.take();
    QCOMPARE(changes.updated.size(), size_t(3));
    QCOMPARE(changes.updated[0].id.key, 9);
    QCOMPARE(changes.updated[1].id.key, 3);
    QCOMPARE(changes.updated[2].id.key, 5);
}

void tst_PendingChanges::tellsInsertionsAgainAsUpdates()
{
    PendingChanges pending;
    pending.noteAsUpdates({{change(3, {{0, 0, 5}})}, {}, {}});
    QCOMPARE(describe(pending.take()), QStringLiteral("updated 3 [0:0>5]"));
}

void tst_PendingChanges::tellsTooManyWholesale()
{
    PendingChanges pending;
    pending.setMostRecords(3);
    for (qint64 key = 1; key <= 3; ++key)
        pending.noteInserted({{2, key}, allProperties, {}});
    pending.noteUpdated({2, 1}, 1); // Known already.
    pending.noteUpdated({1, 1}, 1); // One too many.
    pending.noteInserted({{2, 4}, allProperties, {}});
    const ChangeSet changes = pending.take();
    QVERIFY(changes.isWholesale(2));
    QVERIFY(!changes.isWholesale(1));
    QVERIFY(changes.inserted.empty());
    QCOMPARE(changes.updated.size(), size_t(1));
    QVERIFY(pending.isEmpty());
    // The next gathering starts anew.
    pending.noteInserted({{2, 5}, allProperties, {}});
    QCOMPARE(pending.take().wholesale, EntityMask(0));
}

QTEST_APPLESS_MAIN(tst_PendingChanges)

#include "tst_PendingChanges.moc"
