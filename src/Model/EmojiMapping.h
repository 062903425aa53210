#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace tembra {

/// One row of the emoji customiser: a value of a scale, its default emoji and the user's own.
class EmojiMapping : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString labelText MEMBER labelText)
    Q_PROPERTY(QString defaultEmoji MEMBER defaultEmoji)
    Q_PROPERTY(std::optional<QString> emojiOverride READ emojiOverride WRITE setEmojiOverride NOTIFY
                   emojiOverrideChanged)

public:
    using MappingClosure =
        std::function<void(int identifier, const std::optional<QString> &emojiOverride)>;

    using QObject::QObject;

    QString labelText;
    std::optional<int> identifier; ///< The raw value the row stands for.
    QString defaultEmoji;
    bool enabled = true; ///< A disabled row accepts edits but reports none.
    MappingClosure mappingClosure;

    std::optional<QString> emojiOverride() const { return m_emojiOverride; }
    /// Stores the emoji in the row, and reports it where the row is enabled and has a closure
    /// (then it must have an identifier).
    void setEmojiOverride(const std::optional<QString> &emojiOverride);

Q_SIGNALS:
    void emojiOverrideChanged();

private:
    std::optional<QString> m_emojiOverride;
};

} // namespace tembra
