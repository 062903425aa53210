#pragma once

#include <QWidget>

class QModelIndex;

namespace tembra {

class EmojiGrid;
class EmojiGridModel;
struct EmojiEntry;

/// Lets the user choose among an emoji and its variants in skin tones, in a small popover.
class SkinTonePicker final : public QWidget
{
    Q_OBJECT

public:
    /// @p base must live as long.
    explicit SkinTonePicker(const EmojiEntry &base, QWidget *parent = nullptr);

Q_SIGNALS:
    void chosen(const QString &emoji);
    /// The emoji that Return would choose, or that is under the pointer.
    void currentChanged(const QModelIndex &index);

private:
    EmojiGridModel *m_model;
    EmojiGrid *m_grid;
};

} // namespace tembra
