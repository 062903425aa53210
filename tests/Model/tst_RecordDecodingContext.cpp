#include "Model/RecordDecoding.h"

#include "BackupFixture.h"
#include "Foundation/Json/JsonDecoder.h"
#include "LastWords.h"
#include "MeetingsDocument.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "support/RecordCount.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

template<typename Record>
std::shared_ptr<Record> decoded(QByteArrayView json, ManagedObjectContext &context)
{
    JsonDecoder decoder(json);
    setDecodingContext(decoder, context);
    const auto record = Record::decode(decoder);
    return decoder.hasFailed() ? nullptr : record;
}

qint64 countOf(ManagedObjectContext &context, const QByteArray &entityName)
{
    return recordCount(context, {.entityName = entityName});
}

/// A record of a store that knows no journal.
class Stranger : public ManagedObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name NOTIFY nameChanged)

public:
    QString name() const { return text(0); }

Q_SIGNALS:
    void nameChanged();
};

ObjectModel strangersModel()
{
    return {{{.name = "Stranger",
              .table = "stranger",
              .attributes = {{"name", AttributeType::Text}},
              .makeObject = [] { return std::make_shared<Stranger>(); }}},
            {{1, {"CREATE TABLE stranger (id INTEGER PRIMARY KEY, name TEXT)"}}}};
}

} // namespace

class tst_RecordDecodingContext : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesAllThatIsRead();
    void teammateAlone();
    void meetingAlone();
    void noteAlone_data();
    void noteAlone();
    void tagAlone_data();
    void tagAlone();
    void takesMoreThanItKeepsInMemory();
    void whatCameInBeforeAMistakeStays();
    void isNeeded_data();
    void isNeeded();
};

void tst_RecordDecodingContext::takesAllThatIsRead()
{
    JournalFixture journal;
    const auto context = newImportContext(journal);
    const auto read = readBackup(R"([{"name":"Ben"},{"name":"Ana"},{"name":"Ben"}])", *context);
    QVERIFY(read);
    QStringList names;
    QList<qint64> keys;
    for (const std::shared_ptr<Counterpart> &teammate : *read) {
        QCOMPARE(teammate->managedObjectContext(), context.get());
        names.append(teammate->name());
        keys.append(teammate->objectID().key);
    }
    QCOMPARE(names, QStringList({u"Ben"_s, u"Ana"_s, u"Ben"_s}));
    QVERIFY(keys.at(0) < keys.at(1) && keys.at(1) < keys.at(2));
    // Not in the store before the context is saved.
    QVERIFY(journal.counterparts().isEmpty());
    QVERIFY(context->save());
    QCOMPARE(journal.counterparts().size(), 3);
}

void tst_RecordDecodingContext::teammateAlone()
{
    JournalFixture journal;
    const auto context = newImportContext(journal);
    JsonDecoder decoder(R"({"sessions":[{"date":1},{"date":2}],"name":"Ana"})");
    setDecodingContext(decoder, *context);
    int meetings = 0;
    const auto teammate = Counterpart::decode(decoder, [&] { ++meetings; });
    QVERIFY(!decoder.hasFailed());
    QCOMPARE(meetings, 2);
    QCOMPARE(teammate->name(), u"Ana"_s);
    QCOMPARE(teammate->sessions().size(), 2);
    // Whoever is told of a meeting can stop there.
    JsonDecoder stopped(R"({"sessions":[{},{},{}],"name":"Ben"})");
    setDecodingContext(stopped, *context);
    const auto part = Counterpart::decode(stopped, [&] { stopped.fail({u"enough"_s, {}}); });
    QCOMPARE(stopped.error().message, u"enough"_s);
    QCOMPARE(part->sessions().size(), 1);
}

void tst_RecordDecodingContext::meetingAlone()
{
    JournalFixture journal;
    const auto context = newImportContext(journal);
    const auto meeting = decoded<Session>(R"({"date":5,"tags":[{"name":"a"}]})", *context);
    QVERIFY(meeting);
    QVERIFY(!meeting->counterpart());
    QCOMPARE(meeting->date(), OptionalDate(Date{5}));
    QCOMPARE(meeting->tags().size(), 1);
    QCOMPARE(countOf(*context, "Counterpart"), 0);
}

void tst_RecordDecodingContext::noteAlone_data()
{
    QTest::addColumn<qint16>("identifier"); // Rows are named by the note.
    QTest::addColumn<QString>("text");
    QTest::newRow("{}") << qint16(0) << QString();
    QTest::newRow(R"({"identifier":null,"contentString":null})") << qint16(0) << QString();
    QTest::newRow(R"({"contentString":"","identifier":8})") << qint16(8) << u""_s;
    QTest::newRow(R"({"identifier":-5,"contentString":"x\n","objectID":"uri"})")
        << qint16(-5) << u"x\n"_s;
}

void tst_RecordDecodingContext::noteAlone()
{
    QFETCH(QString, text);
    JournalFixture journal;
    const auto context = newImportContext(journal);
    const auto note = decoded<Note>(QByteArray(QTest::currentDataTag()), *context);
    QVERIFY(note);
    QTEST(note->identifier(), "identifier");
    QVERIFY(!isMissing(note->value(Note::identifierProperty)));
    QVERIFY(note->value(Note::contentStringProperty) == textValue(text));
    QVERIFY(!note->session());
    QCOMPARE(countOf(*context, "Note"), 1);
}

void tst_RecordDecodingContext::tagAlone_data()
{
    QTest::addColumn<QString>("name"); // Rows are named by the tag.
    QTest::addColumn<QString>("emoji");
    QTest::newRow("{}") << QString() << u"🏷"_s;
    QTest::newRow(R"({"emoji":null,"name":null})") << QString() << QString();
    QTest::newRow(R"({"objectID":"uri","name":"","emoji":""})") << u""_s << u""_s;
    QTest::newRow(R"({"emoji":"🚀","name":"launch"})") << u"launch"_s << u"🚀"_s;
}

void tst_RecordDecodingContext::tagAlone()
{
    QFETCH(QString, name);
    QFETCH(QString, emoji);
    JournalFixture journal;
    const auto context = newImportContext(journal);
    for (int round = 1; round <= 2; ++round) {
        const auto tag = decoded<Tag>(QByteArray(QTest::currentDataTag()), *context);
        QVERIFY(tag);
        QVERIFY(tag->value(Tag::nameProperty) == textValue(name));
        QVERIFY(tag->value(Tag::emojiProperty) == textValue(emoji));
        QVERIFY(tag->sessions().isEmpty());
        // Only a meeting's tags are put together.
        QCOMPARE(countOf(*context, "Tag"), round);
    }
}

void tst_RecordDecodingContext::takesMoreThanItKeepsInMemory()
{
    // What comes in is written some hundred records at a time, and forgotten.
    constexpr int count = 700;
    JournalFixture journal;
    QByteArrayList meetings;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        meetings.append("\"date\":" + number + R"(,"tags":[{"name":")" + (i % 2 ? "odd" : "even")
                        + R"("}],"notes":[{"identifier":8,"contentString":"note )" + number
                        + "\"}]");
    }
    QByteArray document = meetingsDocument(meetings);
    document.replace(document.size() - 2, 2, R"(,"name":"Ana"}])");
    QVERIFY(importBackup(document, journal));
    const auto ana = journal.counterparts().first();
    QCOMPARE(ana->name(), u"Ana"_s);
    const auto found = ana->sessions();
    QCOMPARE(found.size(), count);
    for (int i = 0; i < count; ++i) {
        const Session &meeting = *found.at(i);
        QCOMPARE(meeting.date(), OptionalDate(Date{double(i)}));
        QCOMPARE(meeting.tags().first()->name(), i % 2 ? u"odd"_s : u"even"_s);
        QCOMPARE(meeting.notes().size(), qsizetype(allNoteIdentifiers().size()));
        QCOMPARE(meeting.sortedNotes().last()->contentString(), u"note %1"_s.arg(i));
    }
    QCOMPARE(countOf(journal.context(), "Tag"), 2);
}

void tst_RecordDecodingContext::whatCameInBeforeAMistakeStays()
{
    JournalFixture journal;
    auto context = newImportContext(journal);
    const auto read = readBackup(R"([{"name":"Ana","sessions":[{}]},{"sessions":[{"flag":"x"}]}])",
                                 *context);
    QVERIFY(!read);
    QCOMPARE(read.error().message, u"teammate 2, session 1, flag: expected a whole number between "
                                   "-32768 and 32767"_s);
    // Whoever reads decides what becomes of it: here it is dropped.
    QCOMPARE(countOf(*context, "Counterpart"), 2);
    context.reset();
    QCOMPARE(countOf(journal.context(), "Counterpart"), 0);
    QCOMPARE(countOf(journal.context(), "Session"), 0);
}

void tst_RecordDecodingContext::isNeeded_data()
{
    using Decode = std::function<void(JsonDecoder &)>;
    QTest::addColumn<Decode>("decode");
    QTest::newRow("teammate") << Decode([](JsonDecoder &decoder) { Counterpart::decode(decoder); });
    QTest::newRow("meeting") << Decode([](JsonDecoder &decoder) { Session::decode(decoder); });
    QTest::newRow("note") << Decode([](JsonDecoder &decoder) { Note::decode(decoder); });
    QTest::newRow("tag") << Decode([](JsonDecoder &decoder) { Tag::decode(decoder); });
}

void tst_RecordDecodingContext::isNeeded()
{
    QFETCH(std::function<void(JsonDecoder &)>, decode);
    const QString reason = u"Precondition failed: Failed to decode User"_s;
    QCOMPARE(lastWords([&] {
                 JsonDecoder decoder("{}");
                 decode(decoder);
             }),
             reason);

    const QTemporaryDir directory;
    PersistentContainer strangers(u"Strangers"_s, strangersModel(),
                                  {.directory = directory.filePath(u"store"_s)});
    QVERIFY(strangers.loadPersistentStores());
    QCOMPARE(lastWords([&] {
                 JsonDecoder decoder("{}");
                 setDecodingContext(decoder, strangers.viewContext());
                 decode(decoder);
             }),
             reason);
}

QTEST_GUILESS_MAIN(tst_RecordDecodingContext)
#include "tst_RecordDecodingContext.moc"
