#include "Tags/TagCandidates.h"

#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "support/JournalFixture.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

const QString prompt = u" (Create New Tag)"_s;

} // namespace

/// What a field offers while a name is typed.
class tst_TagCandidates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_tags = Tag::allTagsResultController(m_journal->context());
        m_candidates = std::make_unique<TagCandidates>(*m_tags);
    }
    void cleanup()
    {
        m_candidates.reset();
        m_tags.reset();
        m_journal.reset();
    }

    void namesComeInDescendingOrder()
    {
        make(u"Planning"_s, u"🗓"_s);
        make(u"Plans"_s, u"📋"_s);
        make(u"Other"_s, {});
        QCOMPARE(completions(u"pl"_s),
                 (QStringList{u"Plans 📋"_s, u"Planning 🗓"_s, u"pl (Create New Tag)"_s}));
    }

    void caseDoesNotMatter()
    {
        make(u"ÜBERGABE"_s, {});
        QCOMPARE(completions(u"über"_s), (QStringList{u"ÜBERGABE "_s, u"über (Create New Tag)"_s}));
        QCOMPARE(completions(u"ÜBer"_s), (QStringList{u"ÜBERGABE "_s, u"ÜBer (Create New Tag)"_s}));
    }

    void onlyBeginningsMatch()
    {
        make(u"Replan"_s, {});
        QCOMPARE(completions(u"plan"_s), QStringList{u"plan (Create New Tag)"_s});
    }

    void exactNameLeavesOutTheCreation()
    {
        make(u"Planning"_s, u"🗓"_s);
        QCOMPARE(completions(u"planning"_s), QStringList{u"Planning 🗓"_s});
    }

    /// Then a second tag of that name can be made; so it is intended.
    void attachedTagsAreNeitherOfferedNorExact()
    {
        const auto planning = make(u"Planning"_s, u"🗓"_s);
        QCOMPARE(completions(u"planning"_s, {planning.get()}),
                 QStringList{u"planning (Create New Tag)"_s});
    }

    void anEmojiFindsItsTags()
    {
        make(u"Launch"_s, u"🚀"_s);
        make({}, u"🚀"_s);
        make(u"Other"_s, u"🗓"_s);
        QCOMPARE(completions(u"🚀"_s),
                 (QStringList{u"Launch 🚀"_s, u" 🚀"_s, u"🚀 (Create New Tag)"_s}));
        // As a whole only, and beside a name that matches the tag comes once.
        QCOMPARE(completions(u"🚀x"_s), QStringList{u"🚀x (Create New Tag)"_s});
        make(u"🎯"_s, u"🎯"_s);
        QCOMPARE(completions(u"🎯"_s), QStringList{u"🎯 🎯"_s});
    }

    void exactNamesCountAlsoWithoutAMatch()
    {
        // Lower case is that of the whole name here, of the whole text there.
        make(u"plan"_s, {});
        QCOMPARE(completions(u"PLAN"_s), QStringList{u"plan "_s});
    }

    void nothingTypedMatchesEveryName()
    {
        make(u"a"_s, {});
        make({}, u"🚀"_s);
        QCOMPARE(completions(u""_s), (QStringList{u"a "_s, u" (Create New Tag)"_s}));
    }

    void withoutTagsOnlyTheCreation()
    {
        QCOMPARE(completions(u"x"_s), QStringList{u"x (Create New Tag)"_s});
    }

    void thereIsNoLimit()
    {
        for (int i = 0; i < 300; ++i)
            make(u"tag %1"_s.arg(i), {});
        QCOMPARE(completions(u"t"_s).size(), 301);
    }

    void titlesNameTagsExactly()
    {
        const auto first = make(u"Planning"_s, u"🗓"_s);
        const auto bare = make(u"Bare"_s, {});
        QVERIFY(m_tags->performFetch());
        QCOMPARE(m_candidates->tagTitled(u"Planning 🗓"_s), first);
        QCOMPARE(m_candidates->tagTitled(u"Bare "_s), bare);
        for (const QString &other :
             {u"planning 🗓"_s, u"Planning"_s, u"Planning 🗓 "_s, u"Bare"_s})
            QVERIFY2(!m_candidates->tagTitled(other), qPrintable(other));
    }

    void changesCountOnceTheyAreTold()
    {
        const auto tag = make(u"Planning"_s, {});
        QCOMPARE(completions(u"p"_s).size(), 2);
        tag->setName(u"Other"_s);
        m_candidates->invalidate();
        QCOMPARE(completions(u"p"_s), QStringList{u"p (Create New Tag)"_s});
    }

private:
    std::shared_ptr<Tag> make(const QString &name, const QString &emoji) const
    {
        const auto tag = m_journal->context().insert<Tag>();
        tag->setName(name);
        tag->setEmoji(emoji);
        return tag;
    }
    QStringList completions(const QString &typed, const QSet<const QObject *> &attached = {}) const
    {
        if (!m_tags->performFetch())
            return {u"the tags could not be fetched"_s};
        m_candidates->invalidate();
        return m_candidates->completions(typed, attached, prompt);
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<FetchedResultsController> m_tags;
    std::unique_ptr<TagCandidates> m_candidates;
};

QTEST_GUILESS_MAIN(tst_TagCandidates)
#include "tst_TagCandidates.moc"
