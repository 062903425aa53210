#include "Toolkit/EmptyState.h"

#include "Toolkit/PlainLabel.h"
#include "Toolkit/Theme.h"

#include <QEvent>
#include <QPushButton>
#include <QVBoxLayout>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int sentenceWidth = 300;

QLabel *centredLabel(const QString &objectName, const QString &text)
{
    auto *label = new PlainLabel(text);
    label->setObjectName(objectName);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

EmptyState::EmptyState(const QString &title, const QString &sentence, const QString &buttonTitle,
                       QWidget *parent)
    : QWidget(parent)
    , m_title(centredLabel(u"emptyStateTitle"_s, title))
    , m_sentence(centredLabel(u"emptyStateSentence"_s, sentence))
    , m_button(new QPushButton(buttonTitle))
{
    m_button->setObjectName(u"emptyStateButton"_s);
    connect(m_button, &QPushButton::clicked, this, &EmptyState::triggered);
    buildLayout();
    m_button->setHidden(buttonTitle.isEmpty());
    applyTheme();
}

void EmptyState::buildLayout()
{
    auto *middle = new QWidget;
    middle->setMaximumWidth(sentenceWidth);
    auto *column = new QVBoxLayout(middle);
    column->setContentsMargins({});
    column->setSpacing(theme::relatedSpacing);
    column->addStretch(2);
    column->addWidget(m_title);
    column->addWidget(m_sentence);
    column->addSpacing(theme::gridUnit);
    column->addWidget(m_button, 0, Qt::AlignHCenter);
    column->addStretch(3);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(theme::wideMargin, theme::wideMargin, theme::wideMargin,
                               theme::wideMargin);
    layout->addStretch(1);
    layout->addWidget(middle, 1000);
    layout->addStretch(1);
}

void EmptyState::setTitle(const QString &title)
{
    m_title->setText(title);
}

void EmptyState::setSentence(const QString &sentence)
{
    m_sentence->setText(sentence);
}

void EmptyState::setButtonTitle(const QString &buttonTitle)
{
    m_button->setText(buttonTitle);
    m_button->setHidden(buttonTitle.isEmpty());
}

void EmptyState::applyTheme()
{
    m_title->setFont(theme::titleFont(font()));
    QPalette dimmed;
    dimmed.setColor(m_sentence->foregroundRole(),
                    theme::secondaryText(palette(), backgroundRole()));
    m_sentence->setPalette(dimmed);
}

void EmptyState::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        applyTheme();
}

void EmptyState::showEvent(QShowEvent *event)
{
    // What it stands on is known now.
    applyTheme();
    QWidget::showEvent(event);
}

} // namespace tembra
