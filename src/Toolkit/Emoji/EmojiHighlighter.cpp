#include "Toolkit/Emoji/EmojiHighlighter.h"

#include "Foundation/Text/EmojiSegmentation.h"
#include "Toolkit/Emoji/EmojiText.h"

namespace tembra {

EmojiHighlighter::EmojiHighlighter(QTextDocument *document) : QSyntaxHighlighter(document) {}

void EmojiHighlighter::highlightBlock(const QString &text)
{
    if (!mayHoldEmoji(text))
        return;
    const QTextCharFormat format = emojiFormat();
    for (const EmojiRun &run : emojiRuns(text)) {
        if (run.isEmoji)
            setFormat(int(run.start), int(run.length), format);
    }
}

} // namespace tembra
