#include "MainWindow/StatusLine.h"

#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Icons.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int progressSteps = 1000;
constexpr int progressBarWidth = 240;
constexpr int narrowestProgressBar = 80;
constexpr int progressBarHeight = 3 * theme::gridUnit;

QHBoxLayout *rowOf(QWidget *part)
{
    auto *layout = new QHBoxLayout(part);
    layout->setContentsMargins({});
    layout->setSpacing(theme::relatedSpacing);
    return layout;
}

QPushButton *verbButton(const QString &objectName, const QString &text = {})
{
    auto *button = new QPushButton(text);
    button->setObjectName(objectName);
    button->setAutoDefault(false);
    return button;
}

} // namespace

StatusLine::StatusLine(QWidget *parent) : QWidget(parent)
{
    buildLayout();
    connect(qApp, &QApplication::focusChanged, this, &StatusLine::rememberFocusBefore);
    hide();
}

void StatusLine::buildLayout()
{
    setObjectName(u"statusLine"_s);
    m_messagePart = buildMessage();
    m_taskPart = buildTask();
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(theme::wideMargin, theme::relatedSpacing, theme::wideMargin,
                               theme::relatedSpacing);
    layout->addWidget(m_messagePart);
    layout->addWidget(m_taskPart);
    // Message and task, with a button or without, are equally high, so that nothing above moves.
    const int height = std::max(m_messagePart->sizeHint().height(),
                                m_taskPart->sizeHint().height());
    m_messagePart->setMinimumHeight(height);
    m_taskPart->setMinimumHeight(height);
}

QWidget *StatusLine::buildMessage()
{
    m_message = new EmojiLabel;
    m_message->setObjectName(u"statusMessage"_s);
    m_actionButton = verbButton(u"statusActionButton"_s);
    connect(m_actionButton, &QPushButton::clicked, this, &StatusLine::performAction);
    m_dismissButton = new QToolButton;
    m_dismissButton->setObjectName(u"statusDismissButton"_s);
    m_dismissButton->setIcon(icons::icon(icons::Name::Close));
    m_dismissButton->setAutoRaise(true);
    const QString name = tr("Dismiss message",
                            "Button with an icon that takes the message in the status line away");
    m_dismissButton->setAccessibleName(name);
    setPlainToolTip(m_dismissButton, name);
    connect(m_dismissButton, &QToolButton::clicked, this, [this] {
        removeMessage();
        Q_EMIT messageDismissed();
    });
    auto *part = new QWidget;
    QHBoxLayout *row = rowOf(part);
    row->addWidget(m_message, 1);
    row->addWidget(m_actionButton);
    row->addWidget(m_dismissButton);
    return part;
}

QWidget *StatusLine::buildTask()
{
    m_task = new EmojiLabel;
    m_task->setObjectName(u"statusTask"_s);
    m_progressBar = new QProgressBar;
    m_progressBar->setObjectName(u"statusProgressBar"_s);
    m_progressBar->setTextVisible(false);
    m_progressBar->setMinimumWidth(narrowestProgressBar);
    m_progressBar->setMaximumSize(progressBarWidth, progressBarHeight);
    m_cancelButton = verbButton(u"statusCancelButton"_s,
                                tr("Cancel", "Button that ends the task in progress"));
    connect(m_cancelButton, &QPushButton::clicked, this, &StatusLine::cancel);
    auto *part = new QWidget;
    QHBoxLayout *row = rowOf(part);
    row->setSpacing(theme::groupSpacing);
    row->addWidget(m_task, 1);
    row->addWidget(m_progressBar, 1);
    row->addWidget(m_cancelButton);
    return part;
}

void StatusLine::showMessage(const QString &text, const QString &actionText,
                             std::function<void()> action)
{
    m_message->setText(text);
    m_actionButton->setText(actionText);
    m_action = std::move(action);
    m_hasMessage = true;
    m_messageWasAnnounced = false;
    refresh();
}

void StatusLine::showProgress(const QString &text, bool canBeCancelled)
{
    m_task->setText(text);
    m_progressBar->setAccessibleName(text);
    m_cancelButton->setEnabled(true);
    m_cancelButton->setVisible(canBeCancelled);
    m_hasTask = true;
    setProgress({});
    refresh();
    announce();
}

void StatusLine::setProgress(std::optional<double> fraction)
{
    if (!m_hasTask)
        return;
    if (!fraction || std::isnan(*fraction)) {
        m_progressBar->setRange(0, 0);
        return;
    }
    m_progressBar->setRange(0, progressSteps);
    m_progressBar->setValue(int(std::lround(std::clamp(*fraction, 0.0, 1.0) * progressSteps)));
}

void StatusLine::cancel()
{
    m_task->setText(tr("Cancelling…", "Said of the task in progress once it is to end early"));
    changeKeepingFocus([this] { m_cancelButton->setEnabled(false); });
    refresh();
    announce();
    Q_EMIT cancelRequested();
}

void StatusLine::endProgress()
{
    m_hasTask = false;
    refresh();
}

void StatusLine::clear()
{
    m_hasTask = false;
    removeMessage();
}

void StatusLine::removeMessage()
{
    m_hasMessage = false;
    m_action = nullptr;
    refresh();
}

void StatusLine::performAction()
{
    const std::function<void()> action = std::move(m_action);
    removeMessage();
    if (action)
        action();
}

/// Shows the task or else the message, and announces a message when it is shown for the first time.
void StatusLine::refresh()
{
    const bool showsMessage = m_hasMessage && !m_hasTask;
    setAccessibleName(m_hasTask ? m_task->text() : m_message->text());
    changeKeepingFocus([this, showsMessage] {
        m_messagePart->setVisible(showsMessage);
        m_actionButton->setVisible(!m_actionButton->text().isEmpty());
        m_taskPart->setVisible(m_hasTask);
        setVisible(showsMessage || m_hasTask);
    });
    if (showsMessage && !m_messageWasAnnounced) {
        m_messageWasAnnounced = true;
        announce();
    }
}

void StatusLine::announce()
{
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void StatusLine::rememberFocusBefore(QWidget *before, QWidget *now)
{
    if (before && before->window() == window() && isAncestorOf(now) && !isAncestorOf(before))
        m_focusBefore = before;
}

/// Returns the keyboard to where it came from when @p change hides the button that has it. The next
/// widget in the tab order could be a button that does something else.
void StatusLine::changeKeepingFocus(const std::function<void()> &change)
{
    const QWidget *focus = window()->focusWidget();
    const bool isInside = focus && isAncestorOf(focus);
    change();
    if (isInside && m_focusBefore && !(focus->isVisible() && focus->isEnabled()))
        m_focusBefore->setFocus();
}

void StatusLine::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(0, 0, width(), 1, theme::hairline(palette()));
}

} // namespace tembra
