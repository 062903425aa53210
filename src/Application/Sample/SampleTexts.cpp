#include "Application/Sample/SampleTexts.h"

namespace tembra::SampleTexts {

using namespace Qt::StringLiterals;

QList<Teammate> teammates()
{
    return {
        {u"Ana Silva"_s, 6, 7},         {u"Ben Okafor"_s, 31, 14},
        {u"Chidi Anyanwu"_s, 0, 0},     {u"Daria Kowalczyk"_s, 2, 14},
        {u"Émile Fontaine"_s, 11, 7},   {u"Maximiliane von Hohenstein-Löwenberg"_s, 9, 14},
        {u"Priya Raghunathan"_s, 1, 7}, {u"Tomás Herrera"_s, 12, 21},
    };
}

QList<TagText> tags()
{
    return {
        {u"launch"_s, u"🚀"_s},         {u"growth"_s, u"🌱"_s},
        {u"focus"_s, u"🎯"_s},          {u"hiring"_s, u"🤝"_s},
        {u"on call"_s, u"📟"_s},        {u"workload"_s, u"🏋\uFE0F"_s},
        {u"promotion"_s, u"🎓"_s},      {u"family"_s, u"👨‍👩‍👧"_s},
        {u"conflict"_s, u"⚡\uFE0F"_s}, {u"celebrate"_s, u"🎉"_s},
    };
}

namespace {

/// What goes on: action items, blockers, feedback both ways.
QList<QStringList> notesAboutWork()
{
    return {
        {
            u"Ask finance whether the training budget carries over into January."_s,
            u"Introduce us to the platform team before Thursday's design review."_s,
            u"Read the draft of the migration plan and comment by Wednesday.\nBook a room for the retro."_s,
            u"Find out who owns the staging cluster now."_s,
            u"Send the notes of the skip-level meeting."_s,
            u"Clear two Fridays for the hiring panel; ask the platform lead about swapping."_s,
        },
        {
            u"Waiting for security to sign off on the new login flow. Third week now."_s,
            u"Too many meetings before lunch; no block longer than 45 minutes."_s,
            u"The test environment is down every other day."_s,
            u"Unclear who decides about the data model. Needs one name."_s,
            u"Reviews take two days because everybody is in a different time zone."_s,
        },
        {
            u"The way you ran the incident review was exactly right: calm, specific, no blame."_s,
            u"Let people finish in the planning meeting; your point is stronger when it comes last."_s,
            u"Thank you for writing the onboarding guide. Two new people told me it saved them days 🎉"_s,
            u"Please raise it earlier when a date slips. A day's notice is too little."_s,
            u"Great demo. Next time show the numbers first."_s,
        },
        {
            u"I cancel too often at short notice. Fair. I will move instead of cancelling."_s,
            u"Wants more context on why priorities changed last month."_s,
            u"Liked the written answers after the all-hands."_s,
            u"Would like me to push back on the roadmap instead of passing it on."_s,
        },
    };
}

/// Where it leads: goals, wins, development, time off, miscellaneous.
QList<QStringList> notesAboutThePerson()
{
    return {
        {
            u"Short term: own the billing rewrite end to end. Long term: staff engineer."_s,
            u"Speak at the spring conference; first draft of the talk in two weeks."_s,
            u"Hand the release process over by the end of the quarter."_s,
            u"Learn enough SQL to answer the support questions alone."_s,
            u"Bring the error rate below 0.1 % and keep it there for a month."_s,
        },
        {
            u"Shipped the new search. First week: 40 % fewer support tickets 🚀"_s,
            u"Signed the second pilot customer."_s,
            u"The flaky test suite is green for ten days in a row."_s,
            u"Mentored the intern through a first feature; it is live."_s,
            u"Closed the audit without a single finding."_s,
        },
        {
            u"Would like a mentor outside of the team. I know two people to ask."_s,
            u"Signed up for the negotiation course in March."_s,
            u"Shadowing the on-call lead next rotation."_s,
            u"Reading group on distributed systems, every other Tuesday."_s,
            u"Promotion packet: collect examples from the café project and the migration."_s,
        },
        {
            u"Two weeks off in July, then part time until September."_s,
            u"No break since spring. Suggested the long weekend; will look at the calendar."_s,
            u"Away from the 20th; we still need somebody to cover."_s,
            u"Family visit in December, wants to work the first week from there."_s,
        },
        {
            u"Moved to the new flat. Dog is called Pixel."_s,
            u"Prefers to walk while we talk ☀️ next one outside."_s,
            u"Asked about the office move; nothing to tell yet."_s,
            u"Started learning the cello."_s,
        },
    };
}

} // namespace

QStringList notes(qint16 identifier)
{
    static const QList<QStringList> notesOfField = notesAboutWork() + notesAboutThePerson();
    return notesOfField.value(identifier);
}

} // namespace tembra::SampleTexts
