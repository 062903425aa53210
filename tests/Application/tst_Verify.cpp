#include "Application/Verify.h"

#include "Application/Sample/SampleJournal.h"
#include "Backup/JournalImport.h"
#include "support/FolderContents.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// A teammate, a meeting, a tag and a note, with every key there is.
const QByteArray complete =
    R"json([{"name":"Ana","objectID":"x://a","sessions":[{"date":573406200,"flag":0,)json"
    R"json("counterpartSentiment":2,"meetingSentiment":3,"personalSentiment":1,"objectID":"x://s",)json"
    R"json("tags":[{"emoji":"🚀","name":"launch \u00e9\n","objectID":"x://t"}],)json"
    R"json("notes":[{"identifier":4,"contentString":"Wants \\ more \u0022"}]}]}])json";
const QString completeAmounts = u"1 teammate, 1 meeting, 1 note, 1 tag"_s;

QByteArray inSession(const QByteArray &members)
{
    return R"([{"sessions":[{)" + members + "}]}]";
}

} // namespace

/// What `--verify` says of documents, good and bad.
class tst_Verify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void countsWhatCanBeImported_data();
    void countsWhatCanBeImported();
    void refusesWhatCannot_data();
    void refusesWhatCannot();
    void refusesEachPieceOfADocument();
    void refusesALongDocumentThatIsCutOff();
    void aTextOf50MegabytesDoesNoHarm_data();
    void aTextOf50MegabytesDoesNoHarm();
    void saysItInOneLineWhateverIsInIt();

private:
    PrintAndExit verify(const QByteArray &json) const
    {
        writeFile(m_package + u"/teammates.json"_s, json);
        return verifyPackage(m_package);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_package;
};

void tst_Verify::init()
{
    m_folder = std::make_unique<QTemporaryDir>(temporaryTemplate());
    m_package = m_folder->filePath(u"Mine.tembrabackup"_s);
    QVERIFY(QDir().mkdir(m_package));
}

void tst_Verify::countsWhatCanBeImported_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("amounts");
    const QString nothing = u"0 teammates, 0 meetings, 0 notes, 0 tags"_s;
    const QString oneMeeting = u"1 teammate, 1 meeting, 0 notes, 0 tags"_s;
    const auto row = [](const char *name, const QByteArray &json, const QString &amounts) {
        QTest::newRow(name) << json << amounts;
    };
    row("an empty list", "[]", nothing);
    row("an empty list among blanks", " \t\r\n[ \n] \n\n", nothing);
    row("one of each", complete, completeAmounts);
    row("with a byte-order mark", "\xEF\xBB\xBF" + complete, completeAmounts);
    row("several", R"([{},{"sessions":[{},{"tags":[{},{}],"notes":[{"contentString":""}]}]}])",
        u"2 teammates, 2 meetings, 1 note, 1 tag"_s);
    row("a note without a text is none", inSession(R"("notes":[{"identifier":3}])"), oneMeeting);
    row("null for everything",
        inSession(R"("date":null,"flag":null,"objectID":null,"tags":null,"notes":null)"),
        oneMeeting);
    row("unknown keys",
        R"([{"team":{"a":[1,{"b":null}]},"sessions":[{"mood":"?","x":[true,false,1e9]}],"":0}])",
        oneMeeting);
    row("nested just as deep as may be",
        R"([{"x":)" + QByteArray(62, '[') + QByteArray(62, ']') + "}]",
        u"1 teammate, 0 meetings, 0 notes, 0 tags"_s);
    row("whole numbers with a fraction or an exponent", inSession(R"("flag":1.0,"date":1e2)"),
        oneMeeting);
    row("the largest whole numbers", inSession(R"("flag":32767,"meetingSentiment":-32768)"),
        oneMeeting);
}

void tst_Verify::countsWhatCanBeImported()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, amounts);
    const PrintAndExit said = verify(json);
    QCOMPARE(said.text, m_package + u": "_s + amounts + u'\n');
    QCOMPARE(said.exitStatus, 0);
}

void tst_Verify::refusesWhatCannot_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("reason"); // What stands between the package and the byte.
    const auto row = [](const QByteArray &name, const QByteArray &json, const char *reason) {
        QTest::newRow(name.constData()) << json << QString::fromUtf8(reason);
    };
    const QByteArray endless(R"([{"x":)" + QByteArray(63, '[') + QByteArray(63, ']') + "}]");
    row("empty", "", "the file is empty");
    row("only a byte-order mark", "\xEF\xBB\xBF", "the file is empty");
    row("only blanks", " \n ", "the file is empty");
    row("a text file", "Dear Ana,",
        "the file is not valid JSON: a value is missing or makes no sense");
    row("zeros", QByteArray(4096, '\0'),
        "the file is not valid JSON: a value is missing or makes no sense");
    row("a picture", "\x89PNG\r\n\x1A\n\xFF\xFE",
        "the file is not valid JSON: a value is missing or makes no sense");
    row("in UTF-16", QByteArray("\xFF\xFE[\0]\0", 6),
        "the file is not valid JSON: a value is missing or makes no sense");
    row("single quotes", "[{'name':1}]",
        "teammate 1: the file is not valid JSON: the name of a value is missing");
    row("a comma too many", "[{},]",
        "teammate 2: the file is not valid JSON: a value is missing or makes no sense");
    row("a comment", "[] // mine", "the file is not valid JSON: something follows after its end");
    row("a second document", "[][]", "the file is not valid JSON: something follows after its end");
    row("a zero after its end", QByteArray("[]\0", 3),
        "the file is not valid JSON: something follows after its end");
    row("a record in place of the list", "{}", "expected a list");
    row("null in place of the list", "null", "expected a list");
    row("a text in place of the list", R"("[]")", "expected a list");
    row("a list as a teammate", "[{},[]]", "teammate 2: expected a record");
    row("null as a teammate", "[null]", "teammate 1: expected a record");
    row("name", R"([{"name":5}])", "teammate 1, name: expected a text");
    row("teammate's objectID", R"([{"objectID":5}])", "teammate 1, objectID: expected a text");
    row("sessions", R"([{"sessions":{}}])", "teammate 1, sessions: expected a list");
    row("session", R"([{"sessions":[5]}])", "teammate 1, session 1: expected a record");
    row("date", inSession(R"("date":"2019-03-04T15:30:00Z")"),
        "teammate 1, session 1, date: expected a number");
    row("session's objectID", inSession(R"("objectID":{})"),
        "teammate 1, session 1, objectID: expected a text");
    for (const QByteArray key :
         {"flag", "counterpartSentiment", "meetingSentiment", "personalSentiment"}) {
        const QByteArray reason = "teammate 1, session 1, " + key
                                  + ": expected a whole number between -32768 and 32767";
        for (const QByteArray value : {"\"1\"", "true", "1.5", "32768", "-32769", "1e300"})
            row(QByteArray(key + ' ' + value), inSession('"' + key + "\":" + value),
                reason.constData());
    }
    row("tags", inSession(R"("tags":"x")"), "teammate 1, session 1, tags: expected a list");
    row("tag", inSession(R"("tags":[{},"x"])"), "teammate 1, session 1, tag 2: expected a record");
    row("emoji", inSession(R"("tags":[{"emoji":1}])"),
        "teammate 1, session 1, tag 1, emoji: expected a text");
    row("tag's name", inSession(R"("tags":[{"name":false}])"),
        "teammate 1, session 1, tag 1, name: expected a text");
    row("notes", inSession(R"("notes":7)"), "teammate 1, session 1, notes: expected a list");
    row("note", inSession(R"("notes":[[]])"), "teammate 1, session 1, note 1: expected a record");
    row("identifier", inSession(R"("notes":[{"identifier":"4"}])"),
        "teammate 1, session 1, note 1, identifier: "
        "expected a whole number between -32768 and 32767");
    row("identifier 65540", inSession(R"("notes":[{"identifier":65540}])"),
        "teammate 1, session 1, note 1, identifier: "
        "expected a whole number between -32768 and 32767");
    row("contentString", inSession(R"("notes":[{"contentString":["x"]}])"),
        "teammate 1, session 1, note 1, contentString: expected a text");
    row("date 1e999", inSession(R"("date":1e999)"),
        "teammate 1, session 1, date: a number is too large");
    row("date -1e999", inSession(R"("date":-1e999)"),
        "teammate 1, session 1, date: a number is too large");
    row("1e999 where nobody reads it", R"([{"x":[1e999]}])",
        "teammate 1, x: a number is too large");
    for (const QByteArray value : {"NaN", "Infinity", "-Infinity", "nan", "+1", ".5"})
        row(QByteArray("date " + value), inSession("\"date\":" + value),
            "teammate 1, session 1, date: the file is not valid JSON: "
            "a value is missing or makes no sense");
    row("date 1.", inSession("\"date\":1."),
        "teammate 1, session 1, date: the file is not valid JSON: a number lacks digits");
    row("invalid UTF-8 in a name", "[{\"name\":\"A\xFFna\"}]",
        "teammate 1, name: the file is not valid JSON: a text is not encoded in UTF-8");
    row("half a character in a note", inSession("\"notes\":[{\"contentString\":\"\xF0\x9F\x9A\"}]"),
        "teammate 1, session 1, note 1, contentString: the file is not valid JSON: "
        "a text is not encoded in UTF-8");
    row("a surrogate in UTF-8", "[{\"name\":\"\xED\xA0\x80\"}]",
        "teammate 1, name: the file is not valid JSON: a text is not encoded in UTF-8");
    row("invalid UTF-8 where nobody reads it", "[{\"x\":\"\xC0\xAF\"}]",
        "teammate 1, x: the file is not valid JSON: a text is not encoded in UTF-8");
    row("a line break in a text", "[{\"name\":\"A\nna\"}]",
        "teammate 1, name: the file is not valid JSON: "
        "a text holds a control character, or a backslash that means nothing");
    row("nested too deeply", endless, "teammate 1, x: lists and records are nested too deeply");
    row("nested without end", R"([{"x":)" + QByteArray(5 << 20, '['),
        "teammate 1, x: lists and records are nested too deeply");
    row("lists in lists", QByteArray(5 << 20, '['), "teammate 1: expected a record");
}

void tst_Verify::refusesWhatCannot()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, reason);
    QElapsedTimer timer;
    timer.start();
    const PrintAndExit said = verify(json);
    QVERIFY(timer.elapsed() < 1000);
    QCOMPARE(said.exitStatus, 1);
    const QString start = u"tembra: "_s + m_package + u": "_s + reason;
    QVERIFY2(said.text.startsWith(start + u" ("_s), qPrintable(said.text));
    // The place for whoever looks into the file.
    static const QRegularExpression byte(u" \\(([A-Z][^()]* )?at byte [0-9]+\\)\n$"_s);
    QVERIFY2(said.text.contains(byte), qPrintable(said.text));
    QCOMPARE(said.text.count(u'\n'), 1);
}

/// Whatever a copy that stopped half-way left.
void tst_Verify::refusesEachPieceOfADocument()
{
    QCOMPARE(verify(complete).exitStatus, 0);
    for (qsizetype length = 0; length < complete.size(); ++length) {
        const PrintAndExit said = verify(complete.first(length));
        const QByteArray where = QByteArray::number(length) + ' ' + said.text.toUtf8();
        QVERIFY2(said.exitStatus == 1, where.constData());
        QVERIFY2(said.text.contains(u"ends too early"_s) || said.text.contains(u"is empty"_s)
                     || said.text.contains(u"not encoded in UTF-8"_s),
                 where.constData());
    }
}

void tst_Verify::refusesALongDocumentThatIsCutOff()
{
    const QByteArray document = SampleJournal::document();
    QVERIFY(document.size() > 100'000);
    QCOMPARE(verify(document).exitStatus, 0);
    constexpr int cuts = 60;
    for (int cut = 1; cut <= cuts; ++cut) {
        // Odd steps, so that all kinds of places are met; at last, the end alone is missing.
        const qsizetype length = cut == cuts ? document.size() - 1
                                             : document.size() * cut / cuts - 7 * cut % 61;
        const PrintAndExit said = verify(document.first(length));
        QCOMPARE(said.exitStatus, 1);
        QVERIFY2(said.text.contains(u"ends too early"_s)
                     || said.text.contains(u"not encoded in UTF-8"_s),
                 qPrintable(said.text));
    }
}

void tst_Verify::aTextOf50MegabytesDoesNoHarm_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("isGood");
    QTest::newRow("name") << QByteArray("[{\"name\":\"") << QByteArray("\"}]") << true;
    QTest::newRow("nobody reads it") << QByteArray("[{\"x\":\"") << QByteArray("\"}]") << true;
    QTest::newRow("key") << QByteArray("[{\"") << QByteArray("\":1}]") << true;
    QTest::newRow("emoji") << QByteArray("[{\"sessions\":[{\"tags\":[{\"emoji\":\"")
                           << QByteArray("\"}]}]}]") << true;
    QTest::newRow("without an end") << QByteArray("[{\"name\":\"") << QByteArray() << false;
    QTest::newRow("key that goes wrong") << QByteArray("[{\"") << QByteArray("\":}]") << false;
}

void tst_Verify::aTextOf50MegabytesDoesNoHarm()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(bool, isGood);
    const PrintAndExit said = verify(before + QByteArray(50 << 20, 'x') + after);
    QCOMPARE(said.exitStatus, isGood ? 0 : 1);
    QCOMPARE(said.text.count(u'\n'), 1);
    QVERIFY2(said.text.size() < 500, qPrintable(said.text.left(500)));
}

/// Names of files and of keys may hold what a terminal takes for commands.
void tst_Verify::saysItInOneLineWhateverIsInIt()
{
    m_package = m_folder->filePath(u"a\nb\x1B]0;c\u2028d\u0085e.tembrabackup"_s);
    QVERIFY(QDir().mkdir(m_package));
    const QString shown = m_folder->filePath(u"a?b?]0;c?d?e.tembrabackup"_s);
    QCOMPARE(verify("[]").text, shown + u": 0 teammates, 0 meetings, 0 notes, 0 tags\n"_s);
    const QString said = verify(R"([{"a\nb\u001b[2J":}])").text;
    QVERIFY2(said.startsWith(u"tembra: "_s + shown + u": teammate 1, a?b?[2J: "_s),
             qPrintable(said));
    QCOMPARE(said.count(u'\n'), 1);
}

QTEST_GUILESS_MAIN(tst_Verify)
#include "tst_Verify.moc"
