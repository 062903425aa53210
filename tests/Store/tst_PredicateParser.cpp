#include "Store/Query/PredicateParser.h"

#include <QRandomGenerator>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(QList<tembra::PredicateArgument>)

namespace {

const PredicateArgument record = ObjectID{0, 7};
const PredicateArgument text = u"text"_s;
const PredicateArgument date = Date{1};
const PredicateArgument number = qint64(3);

using Arguments = QList<PredicateArgument>;

} // namespace

class tst_PredicateParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatIsOfTheLanguage_data();
    void readsWhatIsOfTheLanguage();
    void saysWhereAFormatIsWrong_data();
    void saysWhereAFormatIsWrong();
    void survivesAnyText();
};

void tst_PredicateParser::readsWhatIsOfTheLanguage_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<Arguments>("arguments");
    QTest::addColumn<QString>("described");

    const auto same = [](const char *name, const QString &format, const Arguments &arguments) {
        QTest::newRow(name) << format << arguments << format;
    };
    same("record", u"counterpart == %@"_s, {record});
    same("to-many record", u"ANY tags == %@"_s, {record});
    same("search", u"ANY notes.contentString CONTAINS[cd] %@"_s, {text});
    same("integer", u"flag > %d"_s, {number});
    same(
        "last entry",
        u"session.counterpart == %@ AND identifier == %d AND contentString != %@ AND contentString != NULL"_s,
        {record, number, text});
    same(
        "window",
        u"session.date < %@ AND session.date > %@ AND identifier == %d AND contentString != %@ AND contentString != NULL"_s,
        {date, date, number, text});
    same("any teammate", u"session.counterpart != NULL"_s, {});
    same("range", u"date < %@ AND date > %@"_s, {date, date});
    same("orders", u"a <= %d AND b >= %d AND c < %d"_s, {number, number, number});
    same("NOT of one", u"NOT a == NULL"_s, {});
    same("NOT of many", u"NOT (a == NULL OR b == NULL)"_s, {});
    same("NOT NOT", u"NOT NOT a == NULL"_s, {});
    same("parentheses that matter", u"a == NULL AND (b == NULL OR c == NULL)"_s, {});
    same("names with keywords in them", u"ANYthing.android == NULL OR NOTE_1.nullable == NULL"_s,
         {});

    QTest::newRow("AND binds tighter than OR")
        << u"a == NULL OR b == NULL AND c == NULL"_s << Arguments()
        << u"a == NULL OR (b == NULL AND c == NULL)"_s;
    QTest::newRow("NOT binds tighter than AND")
        << u"NOT a == NULL AND b == NULL"_s << Arguments() << u"NOT a == NULL AND b == NULL"_s;
    QTest::newRow("needless parentheses") << u"((a == NULL))"_s << Arguments() << u"a == NULL"_s;
    QTest::newRow("keywords in any case")
        << u"not any a.b contains[CD] %@ and b == null Or c == Null"_s << Arguments{text}
        << u"(NOT ANY a.b CONTAINS[cd] %@ AND b == NULL) OR c == NULL"_s;
    QTest::newRow("blanks of all kinds")
        << u" \t\n( a==NULL\r)AND b!=%d "_s << Arguments{number} << u"a == NULL AND b != %d"_s;
}

void tst_PredicateParser::readsWhatIsOfTheLanguage()
{
    QFETCH(QString, format);
    QFETCH(Arguments, arguments);
    QFETCH(QString, described);

    const auto predicate = Predicate::withFormat(format, arguments);
    QVERIFY2(predicate, qPrintable(predicate ? QString() : predicate.error().message));
    QCOMPARE(predicate->describe(), described);
    QVERIFY(predicate->arguments() == arguments);

    const auto again = Predicate::withFormat(predicate->describe(), predicate->arguments());
    QVERIFY(again);
    QCOMPARE(again->describe(), described);
}

void tst_PredicateParser::saysWhereAFormatIsWrong_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<Arguments>("arguments");
    QTest::addColumn<int>("character");
    QTest::addColumn<QString>("reason");

    const auto row = [](const char *name, const QString &format, const Arguments &arguments,
                        int character, const QString &reason) {
        QTest::newRow(name) << format << arguments << character << reason;
    };
    const QString operators = u"expected ==, !=, <, >, <=, >= or CONTAINS[cd], found "_s;
    row("empty", u""_s, {}, 1, u"expected a condition, found the end"_s);
    row("blanks", u"  "_s, {}, 3, u"expected a condition, found the end"_s);
    row("no operator", u"flag"_s, {}, 5, QString(operators + u"the end"_s));
    row("one equals sign", u"flag = %d"_s, {number}, 6, QString(operators + u"“=”"_s));
    row("other operator", u"name LIKE %@"_s, {text}, 6, QString(operators + u"“LIKE”"_s));
    row("CONTAINS alone", u"name CONTAINS %@"_s, {text}, 6, QString(operators + u"“CONTAINS”"_s));
    row("CONTAINS[c]", u"name CONTAINS[c] %@"_s, {text}, 6, QString(operators + u"“CONTAINS”"_s));
    row("no argument", u"flag > "_s, {}, 8, u"expected %@, %d or NULL, found the end"_s);
    row("a literal number", u"flag > 3"_s, {}, 8, u"expected %@, %d or NULL, found “3”"_s);
    row("a literal text", u"name == 'x'"_s, {}, 9, u"expected %@, %d or NULL, found “'”"_s);
    row("other place holder", u"name == %s"_s, {text}, 9, u"expected %@, %d or NULL, found “%”"_s);
    row("half a path", u"session. == %@"_s, {record}, 10,
        u"expected a name of a key path, found “==”"_s);
    row("path begins with a dot", u".date == %@"_s, {date}, 1,
        u"expected a condition, found “.”"_s);
    row("path of a keyword", u"a.NOT == %@"_s, {date}, 3,
        u"expected a name of a key path, found “NOT”"_s);
    row("ANY alone", u"ANY == %@"_s, {record}, 5, u"expected a name of a key path, found “==”"_s);
    row("open parenthesis", u"(flag > %d"_s, {number}, 11,
        u"expected AND, OR or “)”, found the end"_s);
    row("closing parenthesis", u"flag > %d)"_s, {number}, 10,
        u"expected AND, OR or the end, found “)”"_s);
    row("empty parentheses", u"()"_s, {}, 2, u"expected a condition, found “)”"_s);
    row("AND at the end", u"a == NULL AND"_s, {}, 14, u"expected a condition, found the end"_s);
    row("AND at the start", u"AND a == NULL"_s, {}, 1, u"expected a condition, found “AND”"_s);
    row("two conditions", u"a == NULL b == NULL"_s, {}, 11,
        u"expected AND, OR or the end, found “b”"_s);
    row("words of C", u"a == NULL && b == NULL"_s, {}, 11,
        u"expected AND, OR or the end, found “&”"_s);
    row("after an emoji", u"a == 😀 %@"_s, {text}, 6, u"expected %@, %d or NULL, found “😀”"_s);
    row("counts an emoji once", u"a 😀"_s, {}, 3, QString(operators + u"“😀”"_s));
    row("not a name", u"ä == NULL"_s, {}, 1, u"expected a condition, found “ä”"_s);
    row("text for %d", u"a == NULL AND flag > %d"_s, {text}, 22,
        u"%d takes an integer, but the argument is a text"_s);
    row("integer for %@", u"flag > %@"_s, {number}, 8,
        u"%@ takes a record, a text or a date, but the argument is an integer"_s);
    row("date in a search", u"a CONTAINS[cd] %@"_s, {date}, 16,
        u"CONTAINS[cd] takes a text, but the argument is a date"_s);
    row("number in a search", u"a CONTAINS[cd] %d"_s, {number}, 16,
        u"CONTAINS[cd] takes a text, but the argument is an integer"_s);
    row("too few arguments", u"a == %@ AND b == %@"_s, {text}, 18,
        u"there is no argument for this place holder, only 1 were given"_s);
    row("too many arguments", u"a == %@"_s, {text, text}, 0,
        u"has 1 place holders, but 2 arguments were given"_s);
    row("nested too deep", QString(QString(17, u'(') + u"a == NULL"_s + QString(17, u')')), {}, 17,
        u"conditions are nested more than 16 deep"_s);
    row("negated too deep", QString(u"NOT "_s.repeated(100000) + u"a == NULL"_s), {}, 65,
        u"conditions are nested more than 16 deep"_s);
}

void tst_PredicateParser::saysWhereAFormatIsWrong()
{
    QFETCH(QString, format);
    QFETCH(Arguments, arguments);
    QFETCH(int, character);
    QFETCH(QString, reason);

    const auto predicate = Predicate::withFormat(format, arguments);
    QVERIFY(!predicate);
    const QString message = predicate.error().message;
    QVERIFY2(message.contains(reason), qPrintable(message));
    if (character > 0)
        QVERIFY2(message.contains(u"at character %1, "_s.arg(character)), qPrintable(message));
}

void tst_PredicateParser::survivesAnyText()
{
    QRandomGenerator random(5);
    const QStringList pieces{u"ANY"_s,
                             u"AND"_s,
                             u"OR"_s,
                             u"NOT"_s,
                             u"NULL"_s,
                             u"("_s,
                             u")"_s,
                             u"=="_s,
                             u"<"_s,
                             u"%@"_s,
                             u"%d"_s,
                             u"a"_s,
                             u"b.c"_s,
                             u"a == NULL"_s,
                             u"ANY b > NULL"_s,
                             u"."_s,
                             u"CONTAINS[cd]"_s,
                             u"%"_s,
                             u"="_s,
                             QString(QChar(0xD800)),
                             QString(QChar(0))};
    int read = 0;
    for (int round = 0; round < 20000; ++round) {
        QStringList words;
        for (int i = random.bounded(9); i >= 0; --i)
            words.append(pieces.at(random.bounded(int(pieces.size()))));
        const auto predicate = Predicate::withFormat(words.join(u' '), {});
        if (!predicate)
            continue;
        ++read;
        const auto again = Predicate::withFormat(predicate->describe(), {});
        QVERIFY2(again, qPrintable(predicate->describe()));
        QCOMPARE(again->describe(), predicate->describe());
    }
    QVERIFY(read > 100);
}

QTEST_GUILESS_MAIN(tst_PredicateParser)
#include "tst_PredicateParser.moc"
