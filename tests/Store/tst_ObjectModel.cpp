#include "Store/Schema/ObjectModel.h"

#include "Store/Objects/ManagedObject.h"
#include "Store/Schema/SchemaStatements.h"

#include "../Foundation/StopsProgram.h"

#include <QTest>

using namespace tembra;

namespace {

/// Its enumerators stand as its properties do in shelfEntity().
class Shelf : public ManagedObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name NOTIFY nameChanged)
    Q_PROPERTY(qint16 height READ height NOTIFY heightChanged)
    Q_PROPERTY(int books READ books NOTIFY booksChanged)

public:
    enum Property { nameProperty, heightProperty, booksProperty };
    Q_ENUM(Property)

    QString name() const { return text(nameProperty); }
    qint16 height() const { return integer(heightProperty); }
    int books() const { return int(relatedIDs(booksProperty).size()); }

Q_SIGNALS:
    void nameChanged();
    void heightChanged();
    void booksChanged();
};

EntityDescription shelfEntity()
{
    return {.name = "Shelf",
            .table = "shelf",
            .attributes = {{"name", AttributeType::Text}, {"height", AttributeType::Integer16}},
            .toManys = {{.name = "books", .destinationName = "Book", .inverseName = "shelf"}},
            .metaObject = &Shelf::staticMetaObject};
}

EntityDescription bookEntity()
{
    return {.name = "Book",
            .table = "book",
            .attributes = {{"title", AttributeType::Text}, {"bought", AttributeType::Date}},
            .toOnes = {{"shelf", "Shelf", "books"}}};
}

ObjectModel library(const EntityDescription &shelf, const EntityDescription &book = bookEntity())
{
    return {{shelf, book}, {}};
}

} // namespace

class tst_ObjectModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesAreResolvedWhenItIsBuilt();
    void aCopyIsResolvedAnew();
    void anEnumeratorAtAnotherPositionStopsTheProgram();
    void aPropertyWithoutEnumeratorStopsTheProgram();
    void aPropertyThatTheClassLacksStopsTheProgram();
    void aToOneToALaterEntityStopsTheProgram();
    void aToManyWithoutInverseStopsTheProgram();
    void aJoinTableForAToOneStopsTheProgram();
    void tablesComeFromTheDescription();
    void anAttributeOfALaterVersionIsAColumnMore();
};

void tst_ObjectModel::namesAreResolvedWhenItIsBuilt()
{
    const ObjectModel model = library(shelfEntity());
    QCOMPARE(model.entityIndex("Book"), 1);
    QCOMPARE(model.entityIndex("Page"), -1);
    const EntityDescription &shelf = model.entity(0);
    const EntityDescription &book = model.entity(1);
    QCOMPARE(shelf.columns, (std::vector<QByteArray>{"name", "height"}));
    QCOMPARE(book.columns, (std::vector<QByteArray>{"title", "bought", "shelf"}));

    const ToManyDescription &books = shelf.toMany(Shelf::booksProperty);
    QCOMPARE(books.destination, 1);
    QCOMPARE(books.inverse, book.propertyIndex("shelf"));
    QVERIFY(!books.joined);
    const ToOneDescription *toShelf = book.toOne(books.inverse);
    QVERIFY(toShelf);
    QCOMPARE(toShelf->destination, 0);
    QCOMPARE(toShelf->inverse, int(Shelf::booksProperty));
    QVERIFY(!book.toOne(book.propertyIndex("title")));
    QCOMPARE(shelf.references.size(), size_t(1));
    QCOMPARE(shelf.references.front().entity, 1);
}

void tst_ObjectModel::aCopyIsResolvedAnew()
{
    const ObjectModel model = library(shelfEntity());
    const ObjectModel again(model.entities(), model.migrations());
    QCOMPARE(again.entity(0).columns, model.entity(0).columns);
    QCOMPARE(again.entity(0).references.size(), size_t(1));
}

void tst_ObjectModel::anEnumeratorAtAnotherPositionStopsTheProgram()
{
    EntityDescription shelf = shelfEntity();
    shelf.attributes.swapItemsAt(0, 1);
    QVERIFY(stopsProgram([&] { library(shelf); }));
    QVERIFY(!stopsProgram([] { library(shelfEntity()); }));
}

void tst_ObjectModel::aPropertyWithoutEnumeratorStopsTheProgram()
{
    EntityDescription shelf = shelfEntity();
    shelf.attributes.append({"depth", AttributeType::Integer16});
    QVERIFY(stopsProgram([&] { library(shelf); }));
    shelf = shelfEntity();
    shelf.attributes.removeLast();
    QVERIFY(stopsProgram([&] { library(shelf); }));
}

void tst_ObjectModel::aPropertyThatTheClassLacksStopsTheProgram()
{
    EntityDescription shelf = shelfEntity();
    shelf.attributes[1].name = "width";
    QVERIFY(stopsProgram([&] { library(shelf); }));
}

void tst_ObjectModel::aToOneToALaterEntityStopsTheProgram()
{
    QVERIFY(stopsProgram([] { ObjectModel({bookEntity(), shelfEntity()}, {}); }));
}

void tst_ObjectModel::aToManyWithoutInverseStopsTheProgram()
{
    EntityDescription shelf = shelfEntity();
    shelf.toManys[0].inverseName = "place";
    QVERIFY(stopsProgram([&] { library(shelf); }));
}

void tst_ObjectModel::aJoinTableForAToOneStopsTheProgram()
{
    EntityDescription shelf = shelfEntity();
    shelf.toManys[0].joinTable = "shelf_book";
    QVERIFY(stopsProgram([&] { library(shelf); }));
}

void tst_ObjectModel::tablesComeFromTheDescription()
{
    // Texts stand last.
    QCOMPARE(tableStatements({shelfEntity(), bookEntity()}, 1),
             (QList<QByteArray>{
                 R"(CREATE TABLE "shelf" (id INTEGER PRIMARY KEY, "height" INTEGER, "name" TEXT))",
                 R"(CREATE TABLE "book" (id INTEGER PRIMARY KEY, "bought" REAL, "shelf" INTEGER )"
                 R"(REFERENCES "shelf"(id) DEFERRABLE INITIALLY DEFERRED, "title" TEXT))"}));
}

void tst_ObjectModel::anAttributeOfALaterVersionIsAColumnMore()
{
    EntityDescription book = bookEntity();
    QCOMPARE(latestVersion({book}), 1);
    book.attributes.append({"pages", AttributeType::Integer16, 2});
    QCOMPARE(latestVersion({book}), 2);
    const QList<EntityDescription> entities{shelfEntity(), book};
    QCOMPARE(tableStatements(entities, 1), tableStatements({shelfEntity(), bookEntity()}, 1));
    QCOMPARE(tableStatements(entities, 2),
             QList<QByteArray>{R"(ALTER TABLE "book" ADD COLUMN "pages" INTEGER)"});
}

QTEST_GUILESS_MAIN(tst_ObjectModel)
#include "tst_ObjectModel.moc"
