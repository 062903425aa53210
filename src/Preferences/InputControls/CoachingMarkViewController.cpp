#include "Preferences/InputControls/CoachingMarkViewController.h"

#include "Toolkit/PlainLabel.h"
#include "Toolkit/Popover.h"
#include "Toolkit/Theme.h"

#include <QVBoxLayout>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int textWidth = 280;

} // namespace

CoachingMarkViewController::CoachingMarkViewController(QWidget *parent)
    : QWidget(parent)
    , label(new PlainLabel({}, this))
{
    buildLayout();
}

void CoachingMarkViewController::buildLayout()
{
    label->setObjectName(u"label"_s);
    label->setWordWrap(true);
    label->setFixedWidth(textWidth);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin, theme::margin, theme::margin, theme::margin);
    layout->addWidget(label);
}

void CoachingMarkViewController::showBelow(QWidget &button, const QString &text)
{
    auto *popover = new Popover(button.window());
    auto *coachingMark = new CoachingMarkViewController;
    coachingMark->label->setText(text);
    popover->setContent(coachingMark);
    connect(popover, &Popover::closed, popover, &QObject::deleteLater);
    popover->showRelativeTo(&button, Qt::BottomEdge);
}

} // namespace tembra
