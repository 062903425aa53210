#include "Foundation/Json/JsonErrors.h"

#include <QCoreApplication>

#include <rapidjson/error/en.h>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// The user's words. A place in the file may stand before each, with a colon.
class JsonWords
{
    Q_DECLARE_TR_FUNCTIONS(JsonDecoder)

public:
    static QString of(JsonProblem problem)
    {
        switch (problem) {
        case JsonProblem::ExpectedList:
            return tr("expected a list", "Why a file cannot be read");
        case JsonProblem::ExpectedRecord:
            return tr("expected a record", "Why a file cannot be read");
        case JsonProblem::ExpectedText:
            return tr("expected a text", "Why a file cannot be read");
        case JsonProblem::ExpectedNumber:
            return tr("expected a number", "Why a file cannot be read");
        case JsonProblem::ExpectedInt16:
            return tr("expected a whole number between -32768 and 32767",
                      "Why a file cannot be read");
        case JsonProblem::NumberTooLarge:
            return tr("a number is too large", "Why a file cannot be read");
        case JsonProblem::NestedTooDeeply:
            return tr("lists and records are nested too deeply", "Why a file cannot be read");
        case JsonProblem::Empty:
            return tr("the file is empty", "Why a file cannot be read");
        case JsonProblem::EndsTooEarly:
            return malformed(tr("it ends too early", "What is wrong with a JSON file"));
        case JsonProblem::TooLarge:
            break;
        }
        return tr("the file is too large", "Why a file cannot be read");
    }

    static QString of(rapidjson::ParseErrorCode code)
    {
        switch (code) {
        case rapidjson::kParseErrorDocumentRootNotSingular:
            return malformed(
                tr("something follows after its end", "What is wrong with a JSON file"));
        case rapidjson::kParseErrorObjectMissName:
            return malformed(
                tr("the name of a value is missing", "What is wrong with a JSON file"));
        case rapidjson::kParseErrorObjectMissColon:
            return malformed(tr("a colon is missing", "What is wrong with a JSON file"));
        case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
        case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
            return malformed(
                tr("a comma or closing bracket is missing", "What is wrong with a JSON file"));
        case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
        case rapidjson::kParseErrorStringEscapeInvalid:
        case rapidjson::kParseErrorStringMissQuotationMark: // at U+0000
            return malformed(
                tr("a text holds a control character, or a backslash that means nothing",
                   "What is wrong with a JSON file"));
        case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
            return malformed(
                tr("a text holds half of a surrogate pair", "What is wrong with a JSON file"));
        case rapidjson::kParseErrorStringInvalidEncoding:
            return malformed(
                tr("a text is not encoded in UTF-8", "What is wrong with a JSON file"));
        case rapidjson::kParseErrorNumberMissFraction:
        case rapidjson::kParseErrorNumberMissExponent:
            return malformed(tr("a number lacks digits", "What is wrong with a JSON file"));
        default:
            return malformed(
                tr("a value is missing or makes no sense", "What is wrong with a JSON file"));
        }
    }

    static QString element(const QString &label, qint64 number)
    {
        return tr("%1 %2", "Place in a file: a word (\"session\") and its number")
            .arg(label, QString::number(number));
    }

    static QString at(const QString &place, const QString &problem)
    {
        if (place.isEmpty())
            return problem;
        return tr("%1: %2", "Place in a file (\"session 12, date\"), then what is wrong there")
            .arg(place, problem);
    }

private:
    static QString malformed(const QString &reason)
    {
        return tr("the file is not valid JSON: %1", "Why a file cannot be read, with the details")
            .arg(reason);
    }
};

} // namespace

QString jsonElementPlace(const QString &label, qint64 number)
{
    return JsonWords::element(label, number);
}

Error unreadableJsonError(const QString &place, JsonProblem problem, size_t offset)
{
    return {JsonWords::at(place, JsonWords::of(problem)), u"at byte %1"_s.arg(offset)};
}

Error malformedJsonError(const QString &place, rapidjson::ParseErrorCode code, size_t offset)
{
    const auto reason = QLatin1StringView(rapidjson::GetParseError_En(code));
    return {JsonWords::at(place, JsonWords::of(code)), u"%1 at byte %2"_s.arg(reason).arg(offset)};
}

} // namespace tembra
