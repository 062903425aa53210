#include "Foundation/Text/WellFormedText.h"

namespace tembra {

QString wellFormedText(QString text)
{
    if (text.isValidUtf16())
        return text;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool pairStarts = text.at(i).isHighSurrogate() && i + 1 < text.size()
                                && text.at(i + 1).isLowSurrogate();
        if (pairStarts)
            ++i;
        else if (text.at(i).isSurrogate())
            text[i] = QChar(QChar::ReplacementCharacter);
    }
    return text;
}

} // namespace tembra
