#pragma once

#include <QFrame>
#include <QStringList>

class QKeyEvent;
class QListView;

namespace tembra {

class TokenCompletionModel;

/// The list of completions below the text being typed. The keyboard stays with the field, which
/// hands over the keys that are the list's.
class TokenCompletionList final : public QFrame
{
    Q_OBJECT

public:
    explicit TokenCompletionList(QWidget *field);

    /// Whether new entries come with the first one highlighted, so that Return takes it; else nothing
    /// is highlighted then.
    void setHighlightsFirst(bool highlightsFirst) { m_highlightsFirst = highlightsFirst; }
    void setEntries(const QStringList &entries);
    /// Shows the list below @p anchor (on the screen), or above it where there is no room below.
    void showBeside(const QRect &anchor);
    /// The entry that the keys lead to.
    bool hasHighlight() const;
    void takeHighlighted();
    /// Moves the highlight if the key is one that does.
    bool handleKey(const QKeyEvent *event);

Q_SIGNALS:
    /// The user chose this entry.
    void taken(const QString &entry);
    void shown(bool shown);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    int rowFor(int key) const;
    void highlight(int row);
    QSize wantedSize() const;

    TokenCompletionModel *m_model;
    QListView *m_view;
    bool m_highlightsFirst = false;
    bool m_isLedByKeys = false; ///< The highlight is where the user moved it.
};

} // namespace tembra
