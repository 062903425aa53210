#pragma once

#include <QComboBox>

namespace tembra {

/// A pop-up menu whose titles are or hold emoji: in colour when closed and in the list.
class EmojiComboBox final : public QComboBox
{
    Q_OBJECT

public:
    explicit EmojiComboBox(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tembra
