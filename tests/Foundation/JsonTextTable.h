#pragma once

#include <QByteArray>
#include <QList>

namespace tembra {

/// A JSON text, and what reading it gives.
///
/// Expected values are written as in JSON, without blanks, numbers in their shortest form, and each
/// character of a text outside of ASCII's visible ones as its code point: "<E9>".
struct JsonText
{
    const char
        *name; ///< Of what is special about it. Where the standard leaves a choice, the choice.
    QByteArray document;
    QByteArray expected; ///< The values; or in a refused text what the message ends with.
};

QList<JsonText> acceptedJsonTexts();
QList<JsonText> refusedJsonTexts();

// Where the standard leaves the decision to the reader.
QList<JsonText> jsonTextsAcceptedByChoice();
QList<JsonText> jsonTextsRefusedByChoice();

} // namespace tembra
