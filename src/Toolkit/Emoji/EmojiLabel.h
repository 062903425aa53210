#pragma once

#include <QLabel>

namespace tembra {

/// One line of plain text with emoji in colour; elided where it does not fit, then with the whole
/// text as tooltip. Its accessible name is the text.
class EmojiLabel final : public QLabel
{
    Q_OBJECT

public:
    explicit EmojiLabel(QWidget *parent = nullptr);
    explicit EmojiLabel(const QString &text, QWidget *parent = nullptr);

    /// Dimmer text, still readable in every theme.
    void setSecondary(bool secondary);
    bool isElided() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_secondary = false;
};

} // namespace tembra
