#include "Model/Note.h"
#include "Model/NoteField.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_NoteField : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void titlesAndPrompts_data();
    void titlesAndPrompts();
    void fieldsStandInScreenOrder();
};

void tst_NoteField::titlesAndPrompts_data()
{
    QTest::addColumn<int>("identifier");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("prompt");

    const QString firstPrompt = u"This is what I committed to do with/for my teammate."_s;
    QTest::newRow("action items") << 0 << u"Action items for me"_s << firstPrompt;
    QTest::newRow("blockers") << 1 << u"Blockers"_s
                              << u"This is what is getting in the way of my teammate's success."_s;
    QTest::newRow("feedback given")
        << 2 << u"Feedback given"_s
        << u"This is what I told my teammate to help them be successful, and where I praised them for a job well done."_s;
    QTest::newRow("feedback received")
        << 3 << u"Feedback received"_s
        << u"This is what my teammate told me to help me work with them better."_s;
    QTest::newRow("goals") << 4 << u"Goals discussed"_s
                           << u"Examples: short-term, long-term, project-based, etc."_s;
    QTest::newRow("wins")
        << 5 << u"Wins"_s
        << u"Capture any successes discussed in this meeting, as these are easy to forget as time goes on."_s;
    QTest::newRow("development")
        << 6 << u"Professional development"_s
        << u"Am I checking in regularly, at least every other month, on progress to short and long term professional goals?"_s;
    QTest::newRow("time off")
        << 7 << u"Next time off"_s
        << u"When was the last time I discussed time off with this teammate? Remember to build breaks into the work for sustainability and long-term success."_s;
    QTest::newRow("miscellaneous has no prompt") << 8 << u"Miscellaneous"_s << QString();
    QTest::newRow("beyond the last reads as the first")
        << 9 << u"Action items for me"_s << firstPrompt;
    QTest::newRow("negative reads as the first") << -1 << u"Action items for me"_s << firstPrompt;
}

void tst_NoteField::titlesAndPrompts()
{
    QFETCH(int, identifier);
    QFETCH(QString, title);
    QFETCH(QString, prompt);
    QCOMPARE(noteFieldTitle(qint16(identifier)), title);
    QCOMPARE(noteFieldPrompt(qint16(identifier)), prompt);
    QCOMPARE(noteFieldPrompt(qint16(identifier)).isNull(), prompt.isNull());
}

void tst_NoteField::fieldsStandInScreenOrder()
{
    const QList<NoteIdentifier> all = allNoteIdentifiers();
    QCOMPARE(all.size(), 9);
    for (qsizetype i = 0; i < all.size(); ++i)
        QCOMPARE(qsizetype(all.at(i)), i);
    QCOMPARE(qint16(Note::Identifier::goals), qint16(4));
}

QTEST_GUILESS_MAIN(tst_NoteField)
#include "tst_NoteField.moc"
