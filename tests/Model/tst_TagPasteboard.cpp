#include "Model/TagPasteboard.h"

#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "support/JournalFixture.h"

#include <plist/plist.h>

#include <QTest>

#include <cstdlib>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// A property list of these texts, as another program may have made it.
QByteArray listOf(const QStringList &texts, bool inXml = false)
{
    const plist_t list = plist_new_array();
    for (const QString &text : texts)
        plist_array_append_item(list, plist_new_string(text.toUtf8().constData()));
    char *bytes = nullptr;
    uint32_t size = 0;
    (inXml ? plist_to_xml : plist_to_bin)(list, &bytes, &size);
    const QByteArray data(bytes, qsizetype(size));
    std::free(bytes);
    plist_free(list);
    return data;
}

QString uriOf(const JournalFixture &journal, const Tag &tag)
{
    return journal.coreData().persistentContainer().uriRepresentation(tag.objectID());
}

} // namespace

class tst_TagPasteboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isABinaryListOfTheUri();
    void tagsComeBackInTheirOrder();
    void nothingWithoutTags();
    void deletedTagsAreLeftOut();
    void readsTheXmlForm();
    void passesOverWhatNamesNoTagHere();
    void ignoresWhatIsNoList_data();
    void ignoresWhatIsNoList();
    void ignoresDataThatIsCutOff();
};

void tst_TagPasteboard::isABinaryListOfTheUri()
{
    const JournalFixture journal;
    const auto tag = Tag::findOrCreate(journal.context(), u"launch"_s, u"🚀"_s);
    const QByteArray data = TagPasteboard::encode({tag});
    QVERIFY(data.startsWith("bplist00"));
    QCOMPARE(data, listOf({uriOf(journal, *tag)}));
    QCOMPARE(TagPasteboard::type, "velquoranthic.tembra.tag"_L1);
}

void tst_TagPasteboard::tagsComeBackInTheirOrder()
{
    const JournalFixture journal;
    QList<std::shared_ptr<Tag>> tags;
    for (int i = 0; i < 40; ++i)
        tags.prepend(Tag::findOrCreate(journal.context(), QString::number(i), {}));
    QCOMPARE(TagPasteboard::decode(TagPasteboard::encode(tags), journal.context()), tags);
}

void tst_TagPasteboard::nothingWithoutTags()
{
    QVERIFY(TagPasteboard::encode({}).isEmpty());
}

void tst_TagPasteboard::deletedTagsAreLeftOut()
{
    const JournalFixture journal;
    const auto kept = Tag::findOrCreate(journal.context(), u"kept"_s, {});
    const auto gone = Tag::findOrCreate(journal.context(), u"gone"_s, {});
    const QByteArray both = TagPasteboard::encode({gone, kept});
    QVERIFY(journal.context().deleteObject(gone));
    QCOMPARE(TagPasteboard::decode(both, journal.context()), QList{kept});
    QVERIFY(TagPasteboard::encode({gone}).isEmpty());
}

void tst_TagPasteboard::readsTheXmlForm()
{
    const JournalFixture journal;
    const auto tag = Tag::findOrCreate(journal.context(), u"launch"_s, u"🚀"_s);
    QCOMPARE(TagPasteboard::decode(listOf({uriOf(journal, *tag)}, true), journal.context()),
             QList{tag});
}

void tst_TagPasteboard::passesOverWhatNamesNoTagHere()
{
    const JournalFixture journal;
    const JournalFixture other;
    const auto tag = Tag::findOrCreate(journal.context(), u"launch"_s, u"🚀"_s);
    const auto foreign = Tag::findOrCreate(other.context(), u"launch"_s, u"🚀"_s);
    const auto meeting = journal.addSession(journal.addCounterpart(u"Ana"_s), Date{5});
    const QString own = uriOf(journal, *tag);
    const QStringList texts{
        uriOf(other, *foreign),
        journal.coreData().persistentContainer().uriRepresentation(meeting->objectID()),
        own + u"0000"_s,
        own + u'x',
        u"https://example.org/"_s,
        QString(),
        own,
    };
    QCOMPARE(TagPasteboard::decode(listOf(texts), journal.context()), QList{tag});
}

void tst_TagPasteboard::ignoresWhatIsNoList_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a text") << QByteArray("launch 🚀");
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    QTest::newRow("the beginning of a list alone") << QByteArray("bplist00");
    QTest::newRow("JSON") << QByteArray(R"(["tembra-store://x/Tag/p1"])");
    QTest::newRow("XML of something else") << QByteArray("<html><body/></html>");
    QTest::newRow("a number instead of a list")
        << QByteArray(R"(<plist version="1.0"><integer>5</integer></plist>)");
    QTest::newRow("a list of numbers")
        << QByteArray(R"(<plist version="1.0"><array><integer>5</integer></array></plist>)");
    QTest::newRow("too much of it") << QByteArray(20 << 20, 'x');
}

void tst_TagPasteboard::ignoresWhatIsNoList()
{
    QFETCH(QByteArray, data);
    const JournalFixture journal;
    QVERIFY(TagPasteboard::decode(data, journal.context()).isEmpty());
}

void tst_TagPasteboard::ignoresDataThatIsCutOff()
{
    const JournalFixture journal;
    const auto tag = Tag::findOrCreate(journal.context(), u"launch"_s, u"🚀"_s);
    const QByteArray whole = TagPasteboard::encode({tag});
    for (qsizetype size = 0; size < whole.size(); ++size)
        QVERIFY(TagPasteboard::decode(whole.left(size), journal.context()).isEmpty());
}

QTEST_GUILESS_MAIN(tst_TagPasteboard)
#include "tst_TagPasteboard.moc"
