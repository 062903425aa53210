#pragma once

#include <QWidget>

class QButtonGroup;
class QHBoxLayout;

namespace tembra {

/// A row of buttons, one for each group of emoji. One stop for Tab; the arrows lead from group to
/// group.
class EmojiGroupBar final : public QWidget
{
    Q_OBJECT

public:
    explicit EmojiGroupBar(QWidget *parent = nullptr);

    /// @p emoji stands for the group, @p title is what it is called.
    void addGroup(const QString &emoji, const QString &title);
    /// The group that is shown; -1 for none.
    void setCurrent(int group);
    int current() const;

Q_SIGNALS:
    void groupChosen(int group);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool step(int from, int key);

    QHBoxLayout *m_layout;
    QButtonGroup *m_buttons;
};

} // namespace tembra
