#pragma once

#include <QSyntaxHighlighter>

namespace tembra {

/// Shows the emoji of a document in colour, whatever font its text has; the text stays untouched.
class EmojiHighlighter final : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    explicit EmojiHighlighter(QTextDocument *document);

protected:
    void highlightBlock(const QString &text) override;
};

} // namespace tembra
