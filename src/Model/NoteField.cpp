#include "Model/NoteField.h"

#include <QCoreApplication>

#include <array>

namespace tembra {

namespace {

/// An English text and what its translators are told.
struct Translatable
{
    const char *text; ///< Null for none.
    const char *comment;
};

struct FieldTexts
{
    Translatable title;
    Translatable prompt;
};

QString translated(const Translatable &source)
{
    return source.text ? QCoreApplication::translate("NoteField", source.text, source.comment)
                       : QString();
}

constexpr std::array<FieldTexts, maximumNoteIdentifier + 1> fieldTexts{{
    {QT_TRANSLATE_NOOP3("NoteField", "Action items for me", "Session field title"),
     QT_TRANSLATE_NOOP3("NoteField", "This is what I committed to do with/for my teammate.",
                        "Note field prompt text")},
    {QT_TRANSLATE_NOOP3("NoteField", "Blockers", "Session field title"),
     QT_TRANSLATE_NOOP3("NoteField", "This is what is getting in the way of my teammate's success.",
                        "Note field prompt text")},
    {QT_TRANSLATE_NOOP3("NoteField", "Feedback given", "Session field title"),
     QT_TRANSLATE_NOOP3("NoteField",
                        "This is what I told my teammate to help them be successful, and where I "
                        "praised them for a job well done.",
                        "Note field prompt text")},
    {QT_TRANSLATE_NOOP3("NoteField", "Feedback received", "Session field title"),
     QT_TRANSLATE_NOOP3("NoteField",
                        "This is what my teammate told me to help me work with them better.",
                        "Note field prompt text")},
    {QT_TRANSLATE_NOOP3("NoteField", "Goals discussed", "Session field title"),
     QT_TRANSLATE_NOOP3("NoteField", "Examples: short-term, long-term, project-based, etc.",
                        "Note field prompt text")},
    {QT_TRANSLATE_NOOP3("NoteField", "Wins", "Session field title"),
     QT_TRANSLATE_NOOP3("NoteField",
                        "Capture any successes discussed in this meeting, as these are easy to "
                        "forget as time goes on.",
                        "Note field prompt text")},
    {QT_TRANSLATE_NOOP3("NoteField", "Professional development", "Session field title"),
     QT_TRANSLATE_NOOP3("NoteField",
                        "Am I checking in regularly, at least every other month, on progress to "
                        "short and long term professional goals?",
                        "Note field prompt text")},
    {QT_TRANSLATE_NOOP3("NoteField", "Next time off", "Session field title"),
     QT_TRANSLATE_NOOP3("NoteField",
                        "When was the last time I discussed time off with this teammate? Remember "
                        "to build breaks into the work for sustainability and long-term success.",
                        "Note field prompt text")},
    {QT_TRANSLATE_NOOP3("NoteField", "Miscellaneous", "Session field title"), {nullptr, nullptr}},
}};

const FieldTexts &textsOf(qint16 identifier)
{
    const bool known = identifier >= 0 && identifier <= maximumNoteIdentifier;
    return fieldTexts.at(known ? size_t(identifier) : 0);
}

} // namespace

QList<NoteIdentifier> allNoteIdentifiers()
{
    QList<NoteIdentifier> all;
    for (qint16 raw = 0; raw <= maximumNoteIdentifier; ++raw)
        all.append(NoteIdentifier(raw));
    return all;
}

QString noteFieldTitle(qint16 identifier)
{
    return translated(textsOf(identifier).title);
}

QString noteFieldPrompt(qint16 identifier)
{
    return translated(textsOf(identifier).prompt);
}

} // namespace tembra
