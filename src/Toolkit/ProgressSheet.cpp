#include "Toolkit/ProgressSheet.h"

#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Theme.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace tembra {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto timeWithoutProgress = 300ms;
constexpr int progressSteps = 1000;
constexpr int sheetWidth = 420;

} // namespace

/// Not modal to the toolkit, which would keep the window manager from closing the other windows.
ProgressSheet::ProgressSheet(const QString &text, QWidget *window)
    : QDialog(window)
    , m_activeBefore(QApplication::activeWindow())
    , m_inputBlocker(*this)
{
    setObjectName(u"progressSheet"_s);
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setAccessibleName(text);
    buildLayout(text);
    m_showTimer.setSingleShot(true);
    connect(&m_showTimer, &QTimer::timeout, this, &ProgressSheet::showAboveWindow);
    m_showTimer.start(timeWithoutProgress);
}

ProgressSheet::~ProgressSheet()
{
    if (!isVisible())
        return;
    hide();
    if (QWidget *next = m_activeBefore ? m_activeBefore.data() : parentWidget())
        next->activateWindow();
}

void ProgressSheet::buildLayout(const QString &text)
{
    m_text = new EmojiLabel;
    m_text->setObjectName(u"progressText"_s);
    m_text->setText(text);
    m_bar = new QProgressBar;
    m_bar->setObjectName(u"progressBar"_s);
    m_bar->setAccessibleName(text);
    m_bar->setTextVisible(false);
    m_bar->setRange(0, 0);
    m_cancelButton = new QPushButton(tr("Cancel", "Button that ends the task in progress"));
    m_cancelButton->setObjectName(u"progressCancelButton"_s);
    // So that Return, typed into another window a moment before, does not cancel.
    m_cancelButton->setAutoDefault(false);
    connect(m_cancelButton, &QPushButton::clicked, this, &ProgressSheet::reject);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancelButton);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::wideMargin, theme::wideMargin, theme::wideMargin,
                               theme::wideMargin);
    layout->setSpacing(theme::groupSpacing);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    layout->addLayout(buttons);
    setFixedWidth(sheetWidth);
}

void ProgressSheet::showAboveWindow()
{
    show();
    raise();
    activateWindow();
    m_cancelButton->setFocus();
}

void ProgressSheet::setProgress(double fraction)
{
    if (std::isnan(fraction))
        return;
    m_bar->setRange(0, progressSteps);
    m_bar->setValue(int(std::lround(std::clamp(fraction, 0.0, 1.0) * progressSteps)));
}

void ProgressSheet::reject()
{
    if (!m_cancelButton->isEnabled())
        return;
    m_text->setText(tr("Cancelling…", "Said of the task in progress once it is to end early"));
    m_cancelButton->setEnabled(false);
    Q_EMIT cancelRequested();
}

} // namespace tembra
