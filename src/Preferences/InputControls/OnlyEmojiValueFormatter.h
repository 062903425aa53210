#pragma once

#include <QValidator>
#include <QVariant>

namespace tembra {

/// Keeps plain words out of a field for emoji: a text of nothing but letters, marks and numbers is
/// refused, and so is one of nothing but punctuation. Everything else is let in, also mixtures.
class OnlyEmojiValueFormatter final : public QValidator
{
    Q_OBJECT

public:
    using QValidator::QValidator;

    static bool isPartialStringValid(const QString &text);

    /// The value of a text is the text itself; there is always one.
    static bool getObjectValue(QVariant &object, const QString &text);
    /// The text that shows a value: itself if it is a text, else nothing.
    static QString stringForObjectValue(const QVariant &object);

    State validate(QString &text, int &position) const override;
};

} // namespace tembra
