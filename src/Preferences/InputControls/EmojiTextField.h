#pragma once

#include <QLineEdit>
#include <QPointer>

#include <functional>

namespace tembra {

/// A field for one emoji.
///
/// Getting the keyboard empties it and opens the character palette; the first text it accepts, be
/// it chosen there, typed or pasted, is the new emoji and ends the editing. Left without one (Escape
/// gives up) it shows the old emoji again. While it has the keyboard a click, Return, F4 or an arrow
/// up or down opens the palette anew. The text of the base class is what is shown; what was chosen
/// is `emoji`, to the last variation selector.
class EmojiTextField final : public QLineEdit
{
    Q_OBJECT
    Q_PROPERTY(QString emoji READ emoji WRITE setEmoji NOTIFY emojiChanged)

public:
    /// Opens a palette beside @p sender that gives what is chosen to @p insert.
    using CharacterPalette =
        std::function<void(QWidget *sender, std::function<void(const QString &)> insert)>;

    explicit EmojiTextField(QWidget *parent = nullptr);

    /// Without one, emoji are typed and pasted.
    void setCharacterPalette(CharacterPalette palette);

    QString emoji() const { return m_emoji; }
    void setEmoji(const QString &emoji);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void emojiChanged(const QString &emoji);
    /// The user entered an emoji, possibly the old one.
    void emojiCommitted(const QString &emoji);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void awakeFromNib();
    void becomeFirstResponder();
    void orderFrontCharacterPalette();
    void insertFromPalette(const QString &emoji);
    void textDidChange(const QString &text);
    void endEditing();
    void display(const QString &text);
    bool focusNeighbour(bool next);

    CharacterPalette m_palette;
    QString m_emoji;
    bool m_editing = false;
    bool m_showing = false; ///< The text is changed by the field itself.
    QPointer<QWidget> m_window; ///< Watched for Tab while no widget has the keyboard.
};

} // namespace tembra
