#pragma once

#include <QComboBox>

namespace tembra {

/// A pop-up menu whose titles are or hold emoji: in colour when closed and in the list.
///
/// With AdjustToMinimumContentsLengthWithIcon it is as wide as that many emoji.
class EmojiComboBox final : public QComboBox
{
    Q_OBJECT

public:
    explicit EmojiComboBox(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void showPopup() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QSize contentSize() const;
};

} // namespace tembra
