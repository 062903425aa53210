#include "Toolkit/Alert.h"

#include "Foundation/Precondition.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Icons.h"
#include "Toolkit/PlainLabel.h"
#include "Toolkit/Theme.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int textWidth = 340;

icons::AlertIcon iconOf(AlertContents::Style style)
{
    switch (style) {
    case AlertContents::Style::Informational:
        return icons::AlertIcon::Information;
    case AlertContents::Style::Critical:
        return icons::AlertIcon::Error;
    case AlertContents::Style::Warning:
        break;
    }
    return icons::AlertIcon::Warning;
}

QLabel *textLabel(const QString &text, const QString &objectName, const QFont &font)
{
    auto *label = new PlainLabel(displayText(text));
    label->setObjectName(objectName);
    label->setWordWrap(true);
    label->setFont(hasEmoji(text) ? emojiSafeFont(font) : font);
    // Wrapped labels ask for a narrow column by themselves; this is the measure of the whole box.
    label->setFixedWidth(textWidth);
    return label;
}

} // namespace

Alert *Alert::beginSheet(const AlertContents &contents, QWidget *window,
                         std::function<void(int buttonIndex)> finished)
{
    auto *alert = new Alert(contents, window);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    connect(alert, &QDialog::finished, alert,
            [alert, callback = std::move(finished)] { callback(alert->m_pressedButton); });
    alert->open();
    return alert;
}

int Alert::runModal(const AlertContents &contents, QWidget *parent)
{
    // The parent may go while the box is open, and takes it along.
    QPointer<Alert> alert = new Alert(contents, parent);
    const int cancelButton = alert->m_cancelButton;
    alert->exec();
    if (!alert)
        return cancelButton;
    const int pressed = alert->m_pressedButton;
    delete alert;
    return pressed;
}

Alert::Alert(const AlertContents &contents, QWidget *parent)
    : QDialog(parent)
    , m_cancelButton(contents.cancelButton)
{
    require(!contents.buttons.isEmpty(), "An alert has a button");
    if (m_cancelButton < 0)
        m_cancelButton = int(contents.buttons.size()) - 1;
    m_pressedButton = m_cancelButton;
    setObjectName(u"alert"_s);
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setAccessibleName(contents.messageText);
    setAccessibleDescription(contents.informativeText);
    buildLayout(contents);
    QPushButton *returnButton = m_buttons.at(contents.firstButtonDestroys ? m_cancelButton : 0);
    returnButton->setDefault(true);
    returnButton->setFocus();
}

void Alert::buildLayout(const AlertContents &contents)
{
    auto *icon = new PlainLabel;
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(
        icons::alert(iconOf(contents.style)).pixmap(QSize(size, size), devicePixelRatioF()));
    auto *upper = new QHBoxLayout;
    upper->setSpacing(theme::groupSpacing);
    upper->addWidget(icon, 0, Qt::AlignTop);
    upper->addWidget(buildTexts(contents), 1, Qt::AlignTop);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::wideMargin, theme::wideMargin, theme::wideMargin,
                               theme::wideMargin);
    layout->setSpacing(theme::groupSpacing);
    layout->addLayout(upper);
    layout->addWidget(buildButtons(contents));
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QWidget *Alert::buildTexts(const AlertContents &contents)
{
    auto *texts = new QWidget;
    auto *layout = new QVBoxLayout(texts);
    layout->setContentsMargins({});
    layout->setSpacing(theme::relatedSpacing);
    layout->addWidget(
        textLabel(contents.messageText, u"messageText"_s, theme::semiboldFont(font())));
    if (!contents.informativeText.isEmpty())
        layout->addWidget(textLabel(contents.informativeText, u"informativeText"_s, font()));
    return texts;
}

QWidget *Alert::buildButtons(const AlertContents &contents)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->setSpacing(theme::relatedSpacing);
    layout->addStretch();
    for (const QString &title : contents.buttons) {
        auto *button = new QPushButton(title);
        const int index = int(m_buttons.size());
        button->setObjectName(u"alertButton"_s + QString::number(index));
        connect(button, &QPushButton::clicked, this, [this, index] { press(index); });
        layout->addWidget(button);
        m_buttons.append(button);
    }
    return row;
}

void Alert::press(int buttonIndex)
{
    m_pressedButton = buttonIndex;
    done(buttonIndex);
}

void Alert::reject()
{
    press(m_cancelButton);
}

} // namespace tembra
