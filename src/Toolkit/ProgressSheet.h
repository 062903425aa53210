#pragma once

#include "Toolkit/InputBlocker.h"

#include <QDialog>
#include <QPointer>
#include <QTimer>

class QProgressBar;
class QPushButton;

namespace tembra {

class EmojiLabel;

/// A sheet that shows the progress of a task and lets the user cancel it. From its construction to
/// its destruction no other window of the application takes input; it becomes visible only when the
/// task takes longer than 300 ms.
///
/// Escape and closing the sheet mean Cancel. Object names: "progressSheet", "progressText",
/// "progressBar", "progressCancelButton".
class ProgressSheet final : public QDialog
{
    Q_OBJECT

public:
    /// @p text says what is being done.
    ProgressSheet(const QString &text, QWidget *window);
    /// The window that was active before is active again.
    ~ProgressSheet() override;

    /// From 0 to 1; before the first call the bar shows that the length is unknown.
    void setProgress(double fraction);
    void reject() override;

Q_SIGNALS:
    /// Emitted once; the task goes on until it notices.
    void cancelRequested();

private:
    void buildLayout(const QString &text);
    void showAboveWindow();

    EmojiLabel *m_text = nullptr;
    QProgressBar *m_bar = nullptr;
    QPushButton *m_cancelButton = nullptr;
    QPointer<QWidget> m_activeBefore;
    QTimer m_showTimer;
    InputBlocker m_inputBlocker;
};

} // namespace tembra
