#pragma once

#include "Foundation/Json/JsonErrors.h"

#include <QLocale>
#include <QString>
#include <QStringDecoder>

#include <cmath>
#include <optional>
#include <string>

#include <rapidjson/reader.h>

namespace tembra {

/// Takes one value from RapidJSON and keeps what it is asked to. Checks what is skipped as well.
class JsonValueSink : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, JsonValueSink>
{
public:
    // Where a text is kept, if anywhere.
    QString *text = nullptr;
    std::string *key = nullptr;
    double number = 0;
    int levelsLeft = 0;
    // Why a value was refused whose grammar is right.
    std::optional<JsonProblem> problem;
    bool invalidEncoding = false;

    bool String(const char *bytes, rapidjson::SizeType size, bool)
    {
        const QByteArrayView utf8(bytes, qsizetype(size));
        if (key)
            key->assign(bytes, size);
        // Either also finds the lone surrogates that RapidJSON lets through when they are escaped.
        invalidEncoding = text ? !decode(utf8) : !utf8.isValidUtf8();
        return !invalidEncoding;
    }

    bool RawNumber(const char *digits, rapidjson::SizeType size, bool)
    {
        bool inRange = false;
        number = QByteArrayView(digits, qsizetype(size)).toDouble(&inRange);
        // That gives 0 for what is too large as well; QLocale tells the two apart.
        if (!inRange)
            number = QLocale::c().toDouble(QString::fromLatin1(digits, qsizetype(size)));
        if (!std::isfinite(number))
            problem = JsonProblem::NumberTooLarge;
        return !problem;
    }

    bool StartObject() { return enter(); }
    bool StartArray() { return enter(); }
    bool EndObject(rapidjson::SizeType) { return leave(); }
    bool EndArray(rapidjson::SizeType) { return leave(); }

private:
    bool decode(QByteArrayView utf8)
    {
        // A text may start with U+FEFF: there it is no byte-order mark.
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom
                                                         | QStringDecoder::Flag::Stateless);
        *text = decoder(utf8);
        return !decoder.hasError();
    }

    bool enter()
    {
        if (--levelsLeft < 0)
            problem = JsonProblem::NestedTooDeeply;
        return !problem;
    }

    bool leave()
    {
        ++levelsLeft;
        return true;
    }
};

} // namespace tembra
