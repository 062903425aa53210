#include "BackupFixture.h"
#include "Foundation/Logging.h"
#include "MeetingsDocument.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

QString quoted(const QString &text)
{
    return text.isNull() ? u"null"_s : QString(u'"' + text + u'"');
}

QString shown(const Tag &tag)
{
    return quoted(tag.name()) + u' ' + quoted(tag.emoji());
}

/// The tags of a meeting in their order, or all that there are in the order in which they were made.
QString shown(const QList<std::shared_ptr<Tag>> &tags)
{
    QStringList parts;
    for (const std::shared_ptr<Tag> &tag : tags)
        parts.append(shown(*tag));
    return parts.join(u", "_s);
}

QList<std::shared_ptr<Tag>> allTags(ManagedObjectContext &context)
{
    return context.fetch<Tag>({.entityName = "Tag"}).value();
}

/// A teammate with meetings that have these tags, each a list of records.
QByteArray meetingsWith(const QByteArrayList &tags)
{
    QByteArrayList members;
    for (const QByteArray &records : tags)
        members.append("\"tags\":[" + records + ']');
    return meetingsDocument(members);
}

/// Imports meetings with these tags, and lets the records that are held here hear of it.
bool importMeetings(const QByteArrayList &tags, const JournalFixture &journal)
{
    const bool done = importBackup(meetingsWith(tags), journal).has_value();
    QCoreApplication::processEvents();
    return done;
}

const QByteArray launch = R"({"emoji":"🚀","name":"launch"})";

/// The lines that the import says, from one on.
class ImportLog
{
public:
    ImportLog()
    {
        QLoggingCategory::setFilterRules(u"tembra.import.debug=true"_s);
        s_lines.clear();
        s_previous = qInstallMessageHandler(take);
    }
    ~ImportLog()
    {
        qInstallMessageHandler(s_previous);
        QLoggingCategory::setFilterRules({});
    }
    Q_DISABLE_COPY_MOVE(ImportLog)

    static QStringList lines() { return s_lines; }

private:
    static void take(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (qstrcmp(context.category, importLog().categoryName()) == 0)
            s_lines.append(message);
        else
            s_previous(type, context, message);
    }

    static inline QStringList s_lines;
    static inline QtMessageHandler s_previous = nullptr;
};

} // namespace

class tst_TagMerger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tagsOfAMeeting_data();
    void tagsOfAMeeting();
    void meetingsShareATag();
    void mergesWithTagsOfTheStore_data();
    void mergesWithTagsOfTheStore();
    void mergesWithTheFirstOfEqualTags();
    void mergesWithWhatWasNotSavedYet();
    void lastUseIsNoBackupsBusiness();
    void saysWhatBecameOfEachTag();
    void saysNothingUnlessAsked();
};

void tst_TagMerger::tagsOfAMeeting_data()
{
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const QByteArray &tags, const char *expected) {
        QTest::newRow(name) << "\"tags\":" + tags << QString::fromUtf8(expected);
    };
    QTest::newRow("absent") << QByteArray() << QString();
    row("null", "null", "");
    row("none", "[]", "");
    row("one", '[' + launch + ']', R"("launch" "🚀")");
    row("no emoji", R"([{"name":"a"}])", R"("a" "🏷")");
    row("null as emoji", R"([{"name":"a","emoji":null}])", R"("a" null)");
    row("empty emoji", R"([{"name":"a","emoji":""}])", R"("a" "")");
    row("no name", R"([{"emoji":"🚀"}])", R"(null "🚀")");
    row("null as name", R"([{"emoji":"🚀","name":null}])", R"(null "🚀")");
    row("empty name", R"([{"emoji":"🚀","name":""}])", R"("" "🚀")");
    row("nothing in it", "[{}]", R"(null "🏷")");
    row("several emoji", R"([{"emoji":"🚀🏳️‍🌈x","name":"a"}])",
        R"("a" "🚀🏳️‍🌈x")");
    row("two", R"([{"name":"b"},{"name":"a"}])", R"("a" "🏷", "b" "🏷")");
    row("the same twice", '[' + launch + ',' + launch + ']', R"("launch" "🚀")");
    row("both missing twice", R"([{"emoji":null},{"emoji":null,"name":null}])", "null null");
    row("no emoji and the default one", R"([{"name":"a"},{"name":"a","emoji":"🏷"}])",
        R"("a" "🏷")");
    row("missing is not empty",
        R"([{"name":"","emoji":null},{"name":"","emoji":""},{"name":null,"emoji":""}])",
        R"(null "", "" null, "" "")");
    row("case and accents count",
        R"([{"name":"a"},{"name":"A"},{"name":"á"},{"name":"a\u0301"},{"name":"a "}])",
        "\"A\" \"🏷\", \"a\" \"🏷\", \"a \" \"🏷\", \"a\u0301\" \"🏷\", \"á\" \"🏷\"");
    row("variation selectors count",
        R"([{"name":"a","emoji":"\u2764"},{"name":"a","emoji":"\u2764\ufe0f"}])",
        "\"a\" \"\u2764\", \"a\" \"\u2764\uFE0F\"");
    row("names like the mark of a missing one", R"([{"name":"-"},{"name":"+"},{"name":null}])",
        R"(null "🏷", "+" "🏷", "-" "🏷")");
    row("key twice", "[" + launch + R"(],"tags":[{"name":"land"}])", R"("land" "🏷")");
}

void tst_TagMerger::tagsOfAMeeting()
{
    QFETCH(QByteArray, member);
    JournalFixture journal;
    QVERIFY(importBackup(meetingsDocument({member}), journal));
    const auto meeting = journal.counterparts().first()->sessions().first();
    QTEST(shown(meeting->sortedTags()), "expected");
    // None beside those of the meeting.
    QCOMPARE(allTags(journal.context()).size(), meeting->tags().size());
}

void tst_TagMerger::meetingsShareATag()
{
    JournalFixture journal;
    QByteArray document = meetingsWith({launch, launch + R"(,{"name":"land"})", ""});
    document.chop(1);
    document += ',' + meetingsWith({R"({"objectID":"else","name":"launch","emoji":"🚀"})"}).mid(1);
    QVERIFY(importBackup(document, journal));
    const auto tags = allTags(journal.context());
    QCOMPARE(shown(tags), uR"("launch" "🚀", "land" "🏷")"_s);
    QCOMPARE(tags.at(0)->sessions().size(), 3);
    QCOMPARE(tags.at(1)->sessions().size(), 1);
}

void tst_TagMerger::mergesWithTagsOfTheStore_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("emoji");
    QTest::addColumn<bool>("merges"); // Rows are named by the tag that comes in.

    const auto row = [](const char *tag, const QString &name, const QString &emoji, bool merges) {
        QTest::newRow(tag) << name << emoji << merges;
    };
    row(R"({"name":"launch","emoji":"🚀"})", u"launch"_s, u"🚀"_s, true);
    row(R"({"name":"launch","emoji":"⭐"})", u"launch"_s, u"🚀"_s, false);
    row(R"({"name":"land","emoji":"🚀"})", u"launch"_s, u"🚀"_s, false);
    row(R"({"name":"Launch","emoji":"🚀"})", u"launch"_s, u"🚀"_s, false);
    row(R"({"name":"launch"})", u"launch"_s, u"🏷"_s, true);
    row(R"({"name":"launch","emoji":null})", u"launch"_s, {}, true);
    row(R"({"name":"launch","emoji":""})", u"launch"_s, u""_s, true);
    row(R"({"name":null,"emoji":"🚀"})", {}, u"🚀"_s, true);
    row(R"({"emoji":"🚀"})", {}, u"🚀"_s, true);
    row(R"({"name":"","emoji":"🚀"})", u""_s, u"🚀"_s, true);
    row(R"({"emoji":null})", {}, {}, true);
    row(R"({"name":"launch", "emoji":null })", u"launch"_s, u""_s, false);
    row(R"({"name":"launch","emoji": ""})", u"launch"_s, {}, false);
    row(R"({"name":"", "emoji":"🚀"})", {}, u"🚀"_s, false);
    row(R"({"emoji": "🚀"})", u""_s, u"🚀"_s, false);
    row(R"({"name":"a\u0000b","emoji":"🚀"})", u"a"_s + QChar(0) + u'b', u"🚀"_s, true);
    row(R"({"name":"a\u0000c","emoji":"🚀"})", u"a"_s + QChar(0) + u'b', u"🚀"_s, false);
}

void tst_TagMerger::mergesWithTagsOfTheStore()
{
    QFETCH(QString, name);
    QFETCH(QString, emoji);
    QFETCH(bool, merges);
    JournalFixture journal;
    const auto there = journal.context().insert<Tag>();
    there->setName(name);
    there->setEmoji(emoji);
    journal.settle();
    QVERIFY(importMeetings({QTest::currentDataTag()}, journal));
    const auto tag = journal.counterparts().first()->sessions().first()->tags().first();
    QCOMPARE(tag == there, merges);
    QCOMPARE(allTags(journal.context()).size(), merges ? 1 : 2);
    // It stays as it was.
    QCOMPARE(shown(*there), quoted(name) + u' ' + quoted(emoji));
}

void tst_TagMerger::mergesWithTheFirstOfEqualTags()
{
    JournalFixture journal;
    QList<std::shared_ptr<Tag>> there;
    for (int i = 0; i < 3; ++i) {
        there.append(journal.context().insert<Tag>());
        there.last()->setName(u"launch"_s);
        there.last()->setEmoji(u"🚀"_s);
    }
    journal.settle();
    QVERIFY(importMeetings({launch, launch}, journal));
    QCOMPARE(allTags(journal.context()).size(), 3);
    for (const std::shared_ptr<Session> &meeting : journal.counterparts().first()->sessions())
        QCOMPARE(meeting->tags(), there.first(1));
}

void tst_TagMerger::mergesWithWhatWasNotSavedYet()
{
    JournalFixture journal;
    const auto there = journal.context().insert<Tag>();
    there->setName(u"launch"_s);
    there->setEmoji(u"🚀"_s);
    // Into the same context, whose edits nobody has written.
    QVERIFY(readBackup(meetingsWith({launch}), journal.context()));
    QCOMPARE(journal.counterparts().first()->sessions().first()->tags().first(), there);
    // Another context sees it as a draft.
    there->setName(u"land"_s);
    QVERIFY(journal.context().writeDrafts());
    QVERIFY(importMeetings({R"({"emoji":"🚀","name":"land"})"}, journal));
    QCOMPARE(shown(allTags(journal.context())), uR"("land" "🚀")"_s);
    for (const std::shared_ptr<Counterpart> &teammate : journal.counterparts())
        QCOMPARE(teammate->sessions().first()->tags().first(), there);
}

void tst_TagMerger::lastUseIsNoBackupsBusiness()
{
    JournalFixture journal;
    const auto there = Tag::findOrCreate(journal.context(), u"launch"_s, u"🚀"_s);
    there->setLastUse(Date{5});
    journal.settle();
    QVERIFY(
        importMeetings({R"({"emoji":"🚀","name":"launch","lastUse":9},{"name":"land","lastUse":9})"},
                       journal));
    for (const std::shared_ptr<Tag> &tag : allTags(journal.context()))
        QCOMPARE(tag->lastUse(), tag == there ? OptionalDate(Date{5}) : OptionalDate());
}

void tst_TagMerger::saysWhatBecameOfEachTag()
{
    JournalFixture journal;
    const auto there = Tag::findOrCreate(journal.context(), u"launch"_s, u"🚀"_s);
    journal.settle();
    const QString uriOfThere = QString::fromUtf8(uriOf(*there));
    const ImportLog log;
    QVERIFY(importMeetings({launch + R"(,{"name":"land"})", R"({"name":"land"},{})"}, journal));
    QStringList uris;
    for (const std::shared_ptr<Tag> &tag : allTags(journal.context()))
        uris.append(QString::fromUtf8(uriOf(*tag)));
    QCOMPARE(uris.size(), 3);
    QCOMPARE(uris.at(0), uriOfThere);
    QCOMPARE(log.lines(),
             QStringList({u"Existing: launch 🚀 "_s + uris.at(0), u"New: land 🏷 "_s + uris.at(1),
                          u"Existing: land 🏷 "_s + uris.at(1), u"New:  🏷 "_s + uris.at(2)}));
}

void tst_TagMerger::saysNothingUnlessAsked()
{
    const ImportLog log;
    QLoggingCategory::setFilterRules({});
    JournalFixture journal;
    QVERIFY(importMeetings({launch, launch}, journal));
    QCOMPARE(log.lines(), QStringList());
}

QTEST_GUILESS_MAIN(tst_TagMerger)
#include "tst_TagMerger.moc"
