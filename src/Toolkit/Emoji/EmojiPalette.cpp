#include "Toolkit/Emoji/EmojiPalette.h"

#include "Toolkit/Emoji/EmojiCatalogue.h"
#include "Toolkit/Emoji/EmojiGrid.h"
#include "Toolkit/Emoji/EmojiGridModel.h"
#include "Toolkit/Emoji/EmojiGroupBar.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Emoji/EmojiSearch.h"
#include "Toolkit/Emoji/RecentEmoji.h"
#include "Toolkit/Emoji/SkinTonePicker.h"
#include "Toolkit/EmptyState.h"
#include "Toolkit/Icons.h"
#include "Toolkit/Popover.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QHash>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStackedLayout>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QList<const EmojiEntry *> entriesOf(const EmojiGroup &group)
{
    QList<const EmojiEntry *> entries;
    for (const EmojiEntry &entry : group.emoji)
        entries.append(&entry);
    return entries;
}

QList<const EmojiEntry *> knownOf(const EmojiCatalogue &catalogue, const QStringList &emoji)
{
    QList<const EmojiEntry *> entries;
    for (const QString &text : emoji) {
        if (const EmojiEntry *entry = catalogue.find(text))
            entries.append(entry);
    }
    return entries;
}

/// Keys that lead from the search field into the grid. Within a text those along the line stay.
bool movesInGrid(const QKeyEvent *event, bool hasText)
{
    static constexpr std::array always = {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp,
                                          Qt::Key_PageDown};
    static constexpr std::array whileEmpty = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Home,
                                              Qt::Key_End};
    const auto isAmong = [event](const auto &keys) {
        return std::ranges::find(keys, event->key()) != keys.end();
    };
    return isAmong(always) || (!hasText && isAmong(whileEmpty));
}

bool isTypedText(const QKeyEvent *event)
{
    const Qt::KeyboardModifiers others = event->modifiers()
                                         & (Qt::ControlModifier | Qt::AltModifier
                                            | Qt::MetaModifier);
    if (event->key() == Qt::Key_Backspace)
        return true;
    // Alt and Control together are how some keyboards type.
    const bool isShortcut = others && others != (Qt::ControlModifier | Qt::AltModifier);
    return !isShortcut && !event->text().isEmpty() && event->text().front().isPrint();
}

constexpr int gridColumns = 9;
constexpr int gridRows = 8;

} // namespace

EmojiPalette::EmojiPalette(RecentEmoji &recent, QWidget *parent)
    : QWidget(parent)
    , m_recent(recent)
    , m_catalogue(EmojiCatalogue::inLanguage(QLocale().uiLanguages()))
{
    buildLayout();
    connectSignals();
    showGroups();
}

EmojiPalette::~EmojiPalette() = default;

Popover *EmojiPalette::orderFrontCharacterPalette(QWidget *sender, RecentEmoji &recent,
                                                  std::function<void(const QString &)> insert)
{
    auto *popover = new Popover(sender);
    auto *palette = new EmojiPalette(recent);
    popover->setContent(palette);
    connect(popover, &Popover::closed, popover, &QObject::deleteLater);
    connect(palette, &EmojiPalette::emojiChosen, sender,
            [popover, insert = std::move(insert)](const QString &emoji) {
                popover->close();
                insert(emoji);
            });
    // Before it is shown: so the sender learns that a popup has taken the keyboard.
    palette->m_field->setFocus();
    popover->showRelativeTo(sender, Qt::BottomEdge);
    return popover;
}

void EmojiPalette::connectSignals()
{
    connect(m_field, &QLineEdit::textChanged, this, &EmojiPalette::search);
    connect(m_nothingFound, &EmptyState::triggered, m_field, &QLineEdit::clear);
    connect(m_groupBar, &EmojiGroupBar::groupChosen, this, &EmojiPalette::goToGroup);
    connect(m_grid, &EmojiGrid::chosen, this, &EmojiPalette::choose);
    connect(m_grid, &EmojiGrid::skinTonesRequested, this, &EmojiPalette::showSkinTones);
    connect(m_grid, &EmojiGrid::pointedAt, this, [this](const QModelIndex &index) {
        showName(index.isValid() ? index : m_grid->currentIndex());
    });
    connect(m_grid, &EmojiGrid::leftUpwards, m_field, qOverload<>(&QWidget::setFocus));
    connect(m_grid, &EmojiGrid::scrolled, this, &EmojiPalette::followScrolling);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &EmojiPalette::showName);
}

/// The sections follow the buttons of the group bar: what was used last, then the groups.
void EmojiPalette::showGroups()
{
    QList<EmojiSection> sections;
    sections.append(
        {tr("Recently used", "Heading of emoji"), knownOf(m_catalogue, m_recent.emoji())});
    for (const EmojiGroup &group : m_catalogue.groups())
        sections.append({groupTitle(group.title), entriesOf(group)});
    if (sections.constFirst().emoji.isEmpty())
        sections.first().title.clear();
    m_model->setSections(sections);
    m_results->setCurrentWidget(m_grid);
    m_grid->setCurrentIndex(m_model->first());
    m_grid->scrollToTop();
    followScrolling();
}

void EmojiPalette::search(const QString &text)
{
    if (text.trimmed().isEmpty()) {
        showGroups();
        return;
    }
    if (!m_search)
        m_search = std::make_unique<EmojiSearch>(m_catalogue);
    const QList<const EmojiEntry *> found = m_search->find(text);
    m_model->setSections({{.title = {}, .emoji = found}});
    m_groupBar->setCurrent(-1);
    m_grid->setCurrentIndex(m_model->first());
    m_grid->scrollToTop();
    if (found.isEmpty()) {
        m_nothingFound->setSentence(
            tr("No name or keyword has “%1” in it.", "%1 is what was searched for")
                .arg(text.trimmed()));
        m_results->setCurrentWidget(m_nothingFound);
        showName({});
    } else {
        m_results->setCurrentWidget(m_grid);
    }
}

void EmojiPalette::goToGroup(int group)
{
    m_field->clear();
    const QModelIndex first = m_model->firstOf(group);
    if (!first.isValid()) {
        // Nothing was used yet.
        showGroups();
        return;
    }
    m_grid->setCurrentIndex(first);
    m_grid->scrollToRow(m_model->firstRow(group));
    m_groupBar->setCurrent(group);
}

void EmojiPalette::followScrolling()
{
    const bool isSearching = !m_field->text().trimmed().isEmpty();
    m_groupBar->setCurrent(isSearching ? -1 : m_model->sectionAt(m_grid->rowAt(0)));
}

void EmojiPalette::showName(const QModelIndex &index)
{
    m_name->setText(index.data(Qt::AccessibleTextRole).toString());
}

void EmojiPalette::showSkinTones(const QModelIndex &index)
{
    const EmojiEntry *base = m_catalogue.base(m_model->entry(index));
    auto *popover = new Popover(this);
    auto *tones = new SkinTonePicker(*base);
    popover->setContent(tones);
    connect(popover, &Popover::closed, this, [this, popover] {
        showName(m_grid->currentIndex());
        popover->deleteLater();
    });
    connect(tones, &SkinTonePicker::currentChanged, this, &EmojiPalette::showName);
    connect(tones, &SkinTonePicker::chosen, this, [this, popover](const QString &emoji) {
        popover->close();
        choose(emoji);
    });
    tones->setFocus();
    popover->showRelativeTo(m_grid->viewport(), m_grid->visualRect(index), Qt::BottomEdge);
}

void EmojiPalette::choose(const QString &emoji)
{
    m_recent.add(emoji);
    Q_EMIT emojiChosen(emoji);
}

bool EmojiPalette::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto *key = static_cast<QKeyEvent *>(event);
    return watched == m_field ? handleSearchKey(key) : handleTypedKey(key);
}

/// While a text is searched for, the keyboard stays in the field and still reaches the emoji.
bool EmojiPalette::handleSearchKey(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn && !movesInGrid(event, !m_field->text().isEmpty()))
        return false;
    if (!m_grid->isVisible())
        return true;
    if (!isReturn && event->key() != Qt::Key_Up && !(event->modifiers() & Qt::AltModifier))
        m_grid->setFocus(Qt::OtherFocusReason);
    if (event->key() != Qt::Key_Up)
        QCoreApplication::sendEvent(m_grid, event);
    return true;
}

/// Whatever is typed goes into the search.
bool EmojiPalette::handleTypedKey(QKeyEvent *event)
{
    const bool isBlank = event->key() == Qt::Key_Space && m_field->text().isEmpty();
    const bool pressesButton = event->key() == Qt::Key_Space && !m_grid->hasFocus();
    if (isBlank || pressesButton || !isTypedText(event))
        return false;
    m_field->setFocus(Qt::OtherFocusReason);
    m_field->deselect();
    m_field->end(false);
    QCoreApplication::sendEvent(m_field, event);
    return true;
}

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

} // namespace tembra
