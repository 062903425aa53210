#include "MainWindow/SaveFailureBanner.h"

#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/PlainLabel.h"
#include "Toolkit/Theme.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

namespace tembra {

using namespace Qt::StringLiterals;

SaveFailureBanner::SaveFailureBanner(QWidget *parent) : QWidget(parent)
{
    buildLayout();
    hide();
}

void SaveFailureBanner::buildLayout()
{
    setObjectName(u"saveFailureBanner"_s);
    const QString message = tr("Changes could not be saved", "Shown as long as saving fails");
    setAccessibleName(message);
    auto *label = new PlainLabel(message);
    label->setObjectName(u"saveFailureLabel"_s);
    auto *button = new QPushButton(
        tr("Save again", "Button beside \"Changes could not be saved\""));
    button->setObjectName(u"saveAgainButton"_s);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, &SaveFailureBanner::saveAgainRequested);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(theme::wideMargin, theme::relatedSpacing, theme::wideMargin,
                               theme::relatedSpacing);
    layout->setSpacing(theme::relatedSpacing);
    layout->addWidget(new EmojiLabel(u"⚠️"_s));
    layout->addWidget(label);
    layout->addStretch();
    layout->addWidget(button);
}

void SaveFailureBanner::setFailing(bool failing)
{
    setVisible(failing);
    if (failing) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void SaveFailureBanner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(0, 0, width(), 1, theme::hairline(palette()));
}

} // namespace tembra
