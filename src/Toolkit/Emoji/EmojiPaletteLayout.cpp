#include "Toolkit/Emoji/EmojiPalette.h"

#include "Toolkit/Emoji/EmojiCatalogue.h"
#include "Toolkit/Emoji/EmojiGrid.h"
#include "Toolkit/Emoji/EmojiGridModel.h"
#include "Toolkit/Emoji/EmojiGroupBar.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Emoji/EmojiSearch.h"
#include "Toolkit/EmptyState.h"
#include "Toolkit/Icons.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QEvent>
#include <QHash>
#include <QLineEdit>
#include <QStackedLayout>
#include <QToolButton>
#include <QVBoxLayout>

// How the palette looks.

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int gridColumns = 9;
constexpr int gridRows = 8;

} // namespace

/// What a group is called; a group that came with later data keeps its English title.
QString EmojiPalette::groupTitle(const QString &title)
{
    static const QHash<QString, const char *> titles = {
        {u"Smileys & Emotion"_s, QT_TR_NOOP("Smileys & Emotion")},
        {u"People & Body"_s, QT_TR_NOOP("People & Body")},
        {u"Animals & Nature"_s, QT_TR_NOOP("Animals & Nature")},
        {u"Food & Drink"_s, QT_TR_NOOP("Food & Drink")},
        {u"Travel & Places"_s, QT_TR_NOOP("Travel & Places")},
        {u"Activities"_s, QT_TR_NOOP("Activities")},
        {u"Objects"_s, QT_TR_NOOP("Objects")},
        {u"Symbols"_s, QT_TR_NOOP("Symbols")},
        {u"Flags"_s, QT_TR_NOOP("Flags")},
    };
    const char *known = titles.value(title);
    return known ? tr(known) : title;
}

void EmojiPalette::addGroups()
{
    static const QHash<QString, QString> standIns = {
        {u"People & Body"_s, u"👋"_s}, {u"Animals & Nature"_s, u"🐻"_s},
        {u"Food & Drink"_s, u"🍔"_s},  {u"Travel & Places"_s, u"✈"_s},
        {u"Activities"_s, u"⚽"_s},    {u"Objects"_s, u"💡"_s},
        {u"Symbols"_s, u"🔣"_s},       {u"Flags"_s, u"🏁"_s},
    };
    m_groupBar->addGroup(u"🕘"_s, tr("Recently used", "Heading of emoji"));
    for (const EmojiGroup &group : m_catalogue.groups()) {
        m_groupBar->addGroup(standIns.value(group.title, group.emoji.front().text),
                             groupTitle(group.title));
    }
    for (QToolButton *button : m_groupBar->findChildren<QToolButton *>())
        button->installEventFilter(this);
}

void EmojiPalette::buildLayout()
{
    m_model = new EmojiGridModel(gridColumns, this);
    m_field = new QLineEdit;
    m_field->setObjectName(u"emojiSearch"_s);
    m_field->setPlaceholderText(tr("Search emoji", "Placeholder of a search field"));
    m_field->setAccessibleName(m_field->placeholderText());
    m_field->setClearButtonEnabled(true);
    m_field->addAction(icons::icon(icons::Name::Search), QLineEdit::LeadingPosition);
    m_field->installEventFilter(this);
    m_groupBar = new EmojiGroupBar;
    m_groupBar->setObjectName(u"emojiGroups"_s);
    addGroups();
    m_grid = new EmojiGrid(*m_model);
    m_grid->setObjectName(u"emojiGrid"_s);
    m_grid->setAccessibleName(tr("Emoji", "Name of the grid to choose an emoji from"));
    m_grid->setVisibleRows(gridRows);
    m_grid->installEventFilter(this);
    m_nothingFound = new EmptyState(tr("No emoji found"), {},
                                    tr("Clear Search", "Button: shows all emoji again"));
    m_nothingFound->setObjectName(u"emojiNothingFound"_s);
    m_name = new EmojiLabel;
    m_name->setObjectName(u"emojiName"_s);
    m_name->setSecondary(true);
    m_name->setFont(theme::secondaryFont(font()));
    // A long name does not make the palette wider.
    m_name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);

    m_results = new QStackedLayout;
    m_results->addWidget(m_grid);
    m_results->addWidget(m_nothingFound);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin, theme::margin, theme::margin, theme::margin);
    layout->setSpacing(theme::relatedSpacing);
    layout->addWidget(m_field);
    layout->addWidget(m_groupBar);
    layout->addLayout(m_results);
    layout->addWidget(m_name);
}

void EmojiPalette::applyTheme()
{
    QPalette dimmed = m_field->palette();
    dimmed.setColor(QPalette::PlaceholderText, theme::secondaryText(palette(), QPalette::Base));
    m_field->setPalette(dimmed);
}

void EmojiPalette::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyTheme();
}

} // namespace tembra
