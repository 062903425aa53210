#pragma once

#include <QFrame>

class QListView;

namespace tembra {

class TokenCompletion;

/// The list that shows completions below the text being typed. The keyboard stays with the field.
class TokenCompletionList final : public QFrame
{
    Q_OBJECT

public:
    /// @p completion must live as long.
    TokenCompletionList(TokenCompletion &completion, QWidget *field);

    /// Shows the list below @p anchor (on the screen), or above it where there is no room below.
    void showBeside(const QRect &anchor);
    /// How many rows are seen at once.
    int rowsPerPage() const;

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void showHighlight();
    QSize wantedSize() const;

    TokenCompletion &m_completion;
    QListView *m_view;
};

} // namespace tembra
