#include "MainWindow/Session/RatingMenu.h"

#include "Model/SentimentScale.h"
#include "Model/Session.h"
#include "Toolkit/Emoji/EmojiComboBox.h"
#include "Toolkit/Emoji/EmojiItemDelegate.h"
#include "Toolkit/List/PropertyObservation.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QEvent>

#include <algorithm>

namespace tembra {

namespace {

constexpr int labelRole = Qt::UserRole;
constexpr int emojiRowHeight = 28;
constexpr int closedWidth = 72;

/// Writes the word for a rating beside its emoji.
class RatingDelegate final : public EmojiItemDelegate
{
public:
    using EmojiItemDelegate::EmojiItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QSize size = EmojiItemDelegate::sizeHint(option, index);
        return {size.width() + theme::groupSpacing, std::max(size.height(), emojiRowHeight)};
    }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        EmojiItemDelegate::initStyleOption(option, index);
        option->text = option->text + QStringLiteral("  ") + index.data(labelRole).toString();
    }
};

} // namespace

RatingMenu::RatingMenu(EmojiComboBox *popup, const SentimentScale &scale,
                       const QByteArray &property, const DefaultsManager &defaults)
    : QObject(popup)
    , m_popup(popup)
    , m_scale(scale)
    , m_property(property)
    , m_defaults(defaults)
{
    m_popup->setItemDelegate(new RatingDelegate(m_popup));
    m_popup->setMaxVisibleItems(int(scale.allValues().size()));
    m_popup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_popup->setMinimumContentsLength(1);
    m_popup->setMinimumWidth(closedWidth);
    m_popup->setFocusPolicy(Qt::StrongFocus);
    m_popup->installEventFilter(this);
    connect(m_popup, &QComboBox::activated, this, &RatingMenu::storeRating);
    refresh();
    m_popup->setCurrentIndex(-1);
    describe();
}

RatingMenu::~RatingMenu() = default;

void RatingMenu::setSession(std::shared_ptr<Session> session)
{
    m_observation.reset();
    m_session = std::move(session);
    if (m_session)
        m_observation = std::make_unique<PropertyObservation>(m_session.get(), m_property,
                                                              [this] { showRating(); });
    showRating();
}

void RatingMenu::refresh()
{
    const int remembered = m_popup->currentIndex();
    m_popup->clear();
    const QList<int> values = m_scale.allValues();
    for (const int value : values) {
        const QString label = m_scale.label(value);
        m_popup->addItem(m_scale.emoji(value, m_defaults), label);
        m_popup->setItemData(value, plainToolTip(label), Qt::ToolTipRole);
        m_popup->setItemData(value, label, Qt::AccessibleTextRole);
    }
    m_popup->setCurrentIndex(remembered < m_popup->count() ? remembered : -1);
    m_popup->updateGeometry();
}

void RatingMenu::showRating()
{
    const int value = m_session ? m_session->property(m_property.constData()).toInt() : -1;
    m_popup->setCurrentIndex(m_scale.contains(value) ? value : -1);
    describe();
}

void RatingMenu::storeRating(int index)
{
    if (m_session && m_scale.contains(index))
        m_session->setProperty(m_property.constData(), QVariant::fromValue(qint16(index)));
    describe();
}

void RatingMenu::describe()
{
    const int index = m_popup->currentIndex();
    const QString label = index < 0 ? QString() : m_scale.label(index);
    setPlainToolTip(m_popup, label);
    m_popup->setAccessibleDescription(label);
}

bool RatingMenu::eventFilter(QObject *watched, QEvent *event)
{
    // Turning the wheel over the menu in passing must not change a rating.
    if (event->type() == QEvent::Wheel && !m_popup->hasFocus()) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace tembra
