#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

class QProgressBar;
class QPushButton;
class QToolButton;

namespace tembra {

class EmojiLabel;

/// A line at the foot of the window that shows a message or the progress of a task. Hidden as long
/// as it has neither.
///
/// It keeps at most one message, the newest, and at most one task. While a task goes on, the line
/// shows the task; once the task has ended, the message that was said last comes back, or shows for
/// the first time when it was said meanwhile. A message is gone for good once it was dismissed, its
/// action was pressed, another one was said, or everything was cleared.
class StatusLine final : public QWidget
{
    Q_OBJECT

public:
    explicit StatusLine(QWidget *parent = nullptr);

    /// Shows @p text, with a button named @p actionText (a verb) if that is given. Pressing the
    /// button removes the message and then calls @p action, which may show a new one.
    void showMessage(const QString &text, const QString &actionText = {},
                     std::function<void()> action = {});
    /// Begins a task whose progress is not known yet.
    void showProgress(const QString &text, bool canBeCancelled = true);
    /// From 0 to 1; nullopt when it is not known. Without effect when no task goes on.
    void setProgress(std::optional<double> fraction);
    void endProgress();
    /// Removes the message and the task.
    void clear();

Q_SIGNALS:
    /// Emitted once per task; the task goes on until `endProgress`.
    void cancelRequested();
    /// The user took a message away.
    void messageDismissed();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void buildLayout();
    QWidget *buildMessage();
    QWidget *buildTask();
    void cancel();
    void performAction();
    void removeMessage();
    void refresh();
    void announce();
    void rememberFocusBefore(QWidget *before, QWidget *now);
    void changeKeepingFocus(const std::function<void()> &change);

    QWidget *m_messagePart = nullptr;
    EmojiLabel *m_message = nullptr;
    QPushButton *m_actionButton = nullptr;
    QToolButton *m_dismissButton = nullptr;
    QWidget *m_taskPart = nullptr;
    EmojiLabel *m_task = nullptr;
    QProgressBar *m_progressBar = nullptr;
    QPushButton *m_cancelButton = nullptr;

    std::function<void()> m_action;
    bool m_hasMessage = false;
    bool m_messageWasAnnounced = false;
    bool m_hasTask = false;
    QPointer<QWidget> m_focusBefore; ///< The widget that had the keyboard before this line.
};

} // namespace tembra
