#pragma once

#include <QWidget>

class QModelIndex;

namespace tembra {

class EmojiGrid;
class EmojiGridModel;
struct EmojiEntry;

/// An emoji and its variants in skin tones, to choose one; the content of a small popover.
class EmojiTones final : public QWidget
{
    Q_OBJECT

public:
    /// @p base must live as long.
    explicit EmojiTones(const EmojiEntry &base, QWidget *parent = nullptr);

Q_SIGNALS:
    void chosen(const QString &emoji);
    /// The emoji that Return would choose, or that is under the pointer.
    void currentChanged(const QModelIndex &index);

private:
    EmojiGridModel *m_model;
    EmojiGrid *m_grid;
};

} // namespace tembra
