#include "Application/Sample/SampleJournal.h"

#include "Backup/JournalImport.h"
#include "Model/JournalEncoding.h"
#include "Model/JournalQueries.h"
#include "Model/SentimentScale.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Undo/UndoManager.h"
#include "support/JournalFixture.h"
#include "Toolkit/Emoji/EmojiText.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <algorithm>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Everything the journal says, with dates as days and hours before now.
QStringList contentsOf(const JournalFixture &journal)
{
    QStringList lines;
    for (const auto &teammate : journal.counterparts()) {
        lines.append(teammate->name());
        for (const auto &session : teammate->sessions()) {
            const double ago = journal.clock.now().secondsSinceReferenceDate
                               - session->date()->secondsSinceReferenceDate;
            QStringList line{QString::number(ago), session->emojiSummary(),
                             session->tagEmojiSummary()};
            for (const auto &note : session->sortedNotes())
                line.append(note->contentString());
            lines.append(line.join(u'|'));
        }
    }
    lines.sort();
    return lines;
}

/// A backup's document without what differs from store to store and from day to day.
QString withoutKeysAndDates(const QByteArray &document)
{
    static const QRegularExpression uri(u"tembra-store://[^/]+/([A-Za-z]+)/p[0-9]+"_s);
    static const QRegularExpression date(u"\"date\":[0-9.]+"_s);
    return QString::fromUtf8(document).replace(uri, u"\\1"_s).replace(date, u"date"_s);
}

} // namespace

class tst_SampleJournal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_journal = std::make_unique<JournalFixture>();
        fill(*m_journal);
    }

    void hasEightTeammates();
    void meetingsLieInTheLastTwoYears();
    void meetingsAreInWorkingHours();
    void oneIsOverdueAndOneWasNeverMet();
    void everyRatingOccursAndNoneIsOffItsScale();
    void fourOfNineNotesAreFilled();
    void notesReadLikeAManagersOwn();
    void tagsHaveEmoji();
    void isABackupLikeAnyOther();
    void isSavedAndNotUndoable();
    void isTheSameEveryTime();
    void movesWithTheClock();
    void tellsWhenItCannotBeBroughtIn();

private:
    static void fill(const JournalFixture &journal)
    {
        const auto done = SampleJournal::importInto(journal.coreData(), journal.directory.path(),
                                                    journal.clock, QTimeZone::utc());
        QVERIFY2(done, done ? "" : qPrintable(done.error().description()));
    }
    QList<std::shared_ptr<Session>> allSessions() const
    {
        QList<std::shared_ptr<Session>> sessions;
        for (const auto &teammate : m_journal->counterparts())
            sessions += teammate->sessions();
        return sessions;
    }
    /// The texts of all filled notes.
    QStringList allTexts() const
    {
        QStringList texts;
        for (const auto &session : allSessions()) {
            for (const auto &note : session->notes()) {
                if (!note->contentString().isNull())
                    texts.append(note->contentString());
            }
        }
        return texts;
    }

    std::unique_ptr<JournalFixture> m_journal;
};

void tst_SampleJournal::hasEightTeammates()
{
    QSet<QString> names;
    for (const auto &teammate : m_journal->counterparts())
        names.insert(teammate->name());
    QCOMPARE(names.size(), 8);
    QVERIFY(std::any_of(names.begin(), names.end(),
                        [](const QString &name) { return name.size() > 30; }));
}

void tst_SampleJournal::meetingsLieInTheLastTwoYears()
{
    const auto sessions = allSessions();
    QVERIFY(sessions.size() > 200);
    double oldest = 0;
    for (const auto &session : sessions) {
        const double daysAgo = (m_journal->clock.now().secondsSinceReferenceDate
                                - session->date()->secondsSinceReferenceDate)
                               / secondsPerDay;
        QVERIFY2(daysAgo > 0 && daysAgo < 734, qPrintable(QString::number(daysAgo)));
        oldest = std::max(oldest, daysAgo);
    }
    QVERIFY(oldest > 700);
}

void tst_SampleJournal::meetingsAreInWorkingHours()
{
    for (const auto &session : allSessions()) {
        const auto moment = QDateTime::fromMSecsSinceEpoch(
            qint64(session->date()->toUnixMilliseconds()), Qt::UTC);
        QVERIFY2(moment.date().dayOfWeek() <= Qt::Friday, qPrintable(moment.toString(Qt::ISODate)));
        QVERIFY2(moment.time() >= QTime(9, 0) && moment.time() < QTime(17, 0),
                 qPrintable(moment.toString(Qt::ISODate)));
    }
}

void tst_SampleJournal::oneIsOverdueAndOneWasNeverMet()
{
    int overdue = 0;
    int neverMet = 0;
    for (const auto &teammate : m_journal->counterparts()) {
        overdue += teammate->isOverdue();
        neverMet += teammate->sessions().isEmpty();
    }
    QCOMPARE(overdue, 1);
    QCOMPARE(neverMet, 1);
}

void tst_SampleJournal::everyRatingOccursAndNoneIsOffItsScale()
{
    QSet<int> own;
    QSet<int> meeting;
    QSet<int> teammates;
    for (const auto &session : allSessions()) {
        own.insert(session->personalSentiment());
        meeting.insert(session->meetingSentiment());
        teammates.insert(session->counterpartSentiment());
    }
    const auto asSet = [](const QList<int> &values) {
        return QSet<int>(values.begin(), values.end());
    };
    QCOMPARE(own, asSet(SentimentScale::personal().allValues()));
    QCOMPARE(meeting, asSet(SentimentScale::meeting().allValues()));
    QCOMPARE(teammates, asSet(SentimentScale::personal().allValues()));
}

void tst_SampleJournal::fourOfNineNotesAreFilled()
{
    for (const auto &session : allSessions())
        QCOMPARE(session->notes().size(), 9);
    const double average = double(allTexts().size()) / double(allSessions().size());
    QVERIFY2(average > 3.6 && average < 4.4, qPrintable(QString::number(average)));
}

void tst_SampleJournal::notesReadLikeAManagersOwn()
{
    const QStringList texts = allTexts();
    QVERIFY(QSet<QString>(texts.begin(), texts.end()).size() > 40);
    QVERIFY(std::any_of(texts.begin(), texts.end(), hasEmoji));
    QVERIFY(std::any_of(texts.begin(), texts.end(),
                        [](const QString &text) { return text.contains(u'é'); }));
    QVERIFY(std::any_of(texts.begin(), texts.end(),
                        [](const QString &text) { return text.contains(u'\n'); }));
    for (const QString &text : texts)
        QVERIFY2(text.size() > 20 && text.size() < 300 && text == text.trimmed(), qPrintable(text));
    // The same words never come twice in a row in a field.
    for (const auto &teammate : m_journal->counterparts()) {
        for (qint16 field = 0; field <= maximumNoteIdentifier; ++field) {
            const auto notes = m_journal->context().fetch<Note>(
                JournalQueries::filledNotes(teammate->objectID(), field));
            QVERIFY(notes);
            for (qsizetype i = 1; i < notes->size(); ++i)
                QVERIFY(notes->at(i)->contentString() != notes->at(i - 1)->contentString());
        }
    }
}

void tst_SampleJournal::tagsHaveEmoji()
{
    const auto tags = m_journal->context().fetch<Tag>(JournalQueries::allTags());
    QVERIFY(tags);
    QCOMPARE(tags->size(), 10);
    for (const auto &tag : *tags) {
        QVERIFY2(hasEmoji(tag->emoji()), qPrintable(tag->name()));
        QVERIFY(!tag->name().isEmpty());
    }
    const auto sessions = allSessions();
    QVERIFY(std::any_of(sessions.begin(), sessions.end(),
                        [](const auto &session) { return session->tags().size() == 2; }));
    QVERIFY(std::any_of(sessions.begin(), sessions.end(),
                        [](const auto &session) { return session->tags().isEmpty(); }));
}

void tst_SampleJournal::isABackupLikeAnyOther()
{
    const auto counts = inspectJournal(SampleJournal::document());
    QVERIFY2(counts, counts ? "" : qPrintable(counts.error().description()));
    QCOMPARE(counts->teammates, m_journal->counterparts().size());
    QCOMPARE(counts->sessions, allSessions().size());
    QCOMPARE(counts->notes, allTexts().size());
    QSet<std::shared_ptr<Tag>> tags;
    for (const auto &session : allSessions()) {
        for (const auto &tag : session->tags())
            tags.insert(tag);
    }
    QCOMPARE(counts->tags, tags.size());
    // And nothing was lost or added on the way in.
    auto teammates = m_journal->counterparts();
    std::ranges::sort(teammates, {}, [](const auto &teammate) { return teammate->objectID().key; });
    const auto written = encodeJournal(m_journal->context(), teammates);
    QVERIFY(written);
    QCOMPARE(withoutKeysAndDates(*written), withoutKeysAndDates(SampleJournal::document()));
}

void tst_SampleJournal::isSavedAndNotUndoable()
{
    QVERIFY(!m_journal->context().hasChanges());
    QVERIFY(!m_journal->context().undoManager()->canUndo());
    QCoreApplication::processEvents();
    QVERIFY(!m_journal->context().undoManager()->canUndo());
    const QStringList before = contentsOf(*m_journal);
    m_journal->reopen();
    QCOMPARE(contentsOf(*m_journal), before);
}

void tst_SampleJournal::isTheSameEveryTime()
{
    const JournalFixture other;
    fill(other);
    QCOMPARE(contentsOf(other), contentsOf(*m_journal));
}

void tst_SampleJournal::movesWithTheClock()
{
    // A whole number of weeks later the days of the week are the same ones.
    const JournalFixture later(utc(2026, 11, 20).adding(52 * 7 * secondsPerDay));
    fill(later);
    QCOMPARE(contentsOf(later), contentsOf(*m_journal));
}

void tst_SampleJournal::tellsWhenItCannotBeBroughtIn()
{
    const JournalFixture journal;
    const QString nowhere = journal.filePath(u"not/there"_s);
    const auto done = SampleJournal::importInto(journal.coreData(), nowhere, journal.clock,
                                                QTimeZone::utc());
    QVERIFY(!done);
    QVERIFY2(done.error().message.contains(nowhere), qPrintable(done.error().message));
    QVERIFY(journal.counterparts().isEmpty());
}

QTEST_GUILESS_MAIN(tst_SampleJournal)
#include "tst_SampleJournal.moc"
