#pragma once

#include <QWidget>

#include <functional>
#include <memory>

class QKeyEvent;
class QLineEdit;
class QModelIndex;
class QStackedLayout;

namespace tembra {

class EmojiCatalogue;
class EmojiGrid;
class EmojiGridModel;
class EmojiGroupBar;
class EmojiLabel;
class EmojiSearch;
class EmptyState;
class Popover;
class RecentEmoji;

/// Lets the user choose an emoji: among those used last, among all by group, or by a search for name
/// and keyword.
///
/// Typing searches wherever the keyboard is; the arrows move among the emoji; Return, or a click,
/// chooses. Emoji that come in skin tones offer them on the Menu key, Alt+Down, a right click or a
/// long press.
class EmojiPalette final : public QWidget
{
    Q_OBJECT

public:
    /// @p recent, which is shown and added to, must live as long.
    explicit EmojiPalette(RecentEmoji &recent, QWidget *parent = nullptr);
    ~EmojiPalette() override;

    /// Opens a palette beside @p sender. What is chosen closes it, then goes to @p insert; neither
    /// Escape nor a click elsewhere inserts anything. The popover deletes itself once closed;
    /// @p recent must live as long as @p sender.
    static Popover *orderFrontCharacterPalette(QWidget *sender, RecentEmoji &recent,
                                               std::function<void(const QString &)> insert);

Q_SIGNALS:
    void emojiChosen(const QString &emoji);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static QString groupTitle(const QString &title);
    void buildLayout();
    void connectSignals();
    void addGroups();
    void showGroups();
    void search(const QString &text);
    void goToGroup(int group);
    void followScrolling();
    void showName(const QModelIndex &index);
    void showSkinTones(const QModelIndex &index);
    void choose(const QString &emoji);
    bool handleSearchKey(QKeyEvent *event);
    bool handleTypedKey(QKeyEvent *event);

    RecentEmoji &m_recent;
    const EmojiCatalogue &m_catalogue;
    std::unique_ptr<EmojiSearch> m_search; ///< Made for the first search.
    EmojiGridModel *m_model;
    QLineEdit *m_field;
    EmojiGroupBar *m_groupBar;
    EmojiGrid *m_grid;
    EmptyState *m_nothingFound;
    EmojiLabel *m_name;
    QStackedLayout *m_results;
};

} // namespace tembra
