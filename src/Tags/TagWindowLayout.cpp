#include "Preferences/InputControls/DynamicTextField.h"
#include "Preferences/InputControls/PopoverSourceButton.h"
#include "Tags/BrowserRowDelegate.h"
#include "Tags/BrowserRowsView.h"
#include "Tags/TagRowDelegate.h"
#include "Tags/TagWindowController.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/EmptyState.h"
#include "Toolkit/Icons.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

// How the tag browser is laid out.

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize smallestSize(720, 440);
constexpr QSize usualSize(900, 560);
constexpr int usualListWidth = 280;
constexpr int narrowestList = 200;
constexpr int narrowestMeetings = 360;

int widthOf(const QString &text, const QFont &font)
{
    return int(std::ceil(emojiTextSize(text, font).width())) + 2 * theme::relatedSpacing;
}

QWidget *pane(QWidget *header, QWidget *content)
{
    auto *pane = new QWidget;
    pane->setAutoFillBackground(true);
    pane->setBackgroundRole(QPalette::Base);
    auto *layout = new QVBoxLayout(pane);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(header);
    layout->addWidget(content, 1);
    return pane;
}

} // namespace

void TagWindowController::buildLayout()
{
    setObjectName(u"tagWindow"_s);
    setWindowIcon(icons::application());
    setMinimumSize(smallestSize);
    resize(usualSize);
    splitter = new QSplitter(Qt::Horizontal);
    splitter->setObjectName(u"splitter"_s);
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(1);
    splitter->addWidget(buildTags());
    splitter->addWidget(buildMeetings());
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({usualListWidth, usualSize.width() - usualListWidth});
    m_noTags = new EmptyState(
        tr("No tags yet", "Stands in the empty tag browser"),
        tr("Tags organize your meetings by theme, topic or project. Put one on a meeting, in its "
           "tag field, and it is listed here.",
           "Stands in the empty tag browser"));
    m_noTags->setObjectName(u"noTags"_s);
    m_noTags->setAutoFillBackground(true);
    m_noTags->setBackgroundRole(QPalette::Base);
    m_windowStack = new QStackedWidget;
    m_windowStack->addWidget(splitter);
    m_windowStack->addWidget(m_noTags);
    setCentralWidget(m_windowStack);
    tagsTableView->setFocus();
}

QWidget *TagWindowController::buildTags()
{
    buildTagList();
    QWidget *tags = pane(buildTagsHeader(), tagsTableView);
    tags->setMinimumWidth(narrowestList);
    return tags;
}

QWidget *TagWindowController::buildTagsHeader()
{
    auto *title = new QLabel(tr("Tags", "Title of the tag browser"));
    title->setObjectName(u"tagsTitle"_s);
    title->setTextFormat(Qt::PlainText);
    title->setFont(theme::titleFont(font()));
    m_deleteButton = new QToolButton;
    m_deleteButton->setObjectName(u"deleteTagsButton"_s);
    m_deleteButton->setIcon(icons::icon(icons::Name::Remove));
    m_deleteButton->setAutoRaise(true);
    m_deleteButton->setFocusPolicy(Qt::TabFocus);
    const QString name = tr("Delete the selected tags", "Tooltip and accessible name");
    m_deleteButton->setToolTip(name);
    m_deleteButton->setAccessibleName(name);
    connect(m_deleteButton, &QToolButton::clicked, this, &TagWindowController::handleDelete);
    auto *header = new QWidget;
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(theme::wideMargin, theme::margin, theme::relatedSpacing,
                               theme::relatedSpacing);
    layout->addWidget(title, 1);
    layout->addWidget(m_deleteButton);
    return header;
}

void TagWindowController::buildTagList()
{
    tagsTableView = new BrowserRowsView;
    tagsTableView->setObjectName(u"tagsTableView"_s);
    tagsTableView->setAccessibleName(tr("Tags", "Title of the tag browser"));
    tagsTableView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tagsTableView->setHeaderHidden(true);
    tagsTableView->setModel(tagsArrayController);
    m_tagDelegate = new TagRowDelegate(m_characterPalette, tagsTableView);
    tagsTableView->setItemDelegate(m_tagDelegate);
    QHeaderView *columns = tagsTableView->header();
    columns->setMinimumSectionSize(0);
    columns->setStretchLastSection(true);
    columns->setSectionResizeMode(TagsArrayController::EmojiColumn, QHeaderView::Fixed);
    columns->resizeSection(TagsArrayController::EmojiColumn,
                           widthOf(u"🏷"_s, font()) + 2 * theme::gridUnit);
}

QWidget *TagWindowController::buildMeetings()
{
    buildMeetingsTable();
    m_noSelection = new EmptyState(tr("No tag selected",
                                      "Stands where the meetings of a tag would"),
                                   tr("Select a tag to see the meetings that carry it.",
                                      "Stands where the meetings of a tag would"));
    m_noSelection->setObjectName(u"noSelection"_s);
    m_noMeetings = new EmptyState(
        tr("No meetings with this tag", "Stands where the meetings of a tag would"),
        tr("Put the tag on a meeting, in its tag field, and the meeting is listed here.",
           "Stands where the meetings of a tag would"));
    m_noMeetings->setObjectName(u"noMeetings"_s);
    m_meetingsStack = new QStackedWidget;
    m_meetingsStack->addWidget(sessionsTableView);
    m_meetingsStack->addWidget(m_noSelection);
    m_meetingsStack->addWidget(m_noMeetings);
    QWidget *meetings = pane(buildMeetingsHeader(), m_meetingsStack);
    meetings->setMinimumWidth(narrowestMeetings);
    return meetings;
}

QWidget *TagWindowController::buildMeetingsHeader()
{
    promptLabel = new DynamicTextField;
    promptLabel->setObjectName(u"promptLabel"_s);
    helpButton = new PopoverSourceButton;
    helpButton->setObjectName(u"helpButton"_s);
    helpButton->setIcon(icons::icon(icons::Name::Help));
    helpButton->setFlat(true);
    helpButton->setFocusPolicy(Qt::TabFocus);
    helpButton->setToolTip(tr("What are tags for?", "Tooltip of the help button"));
    helpButton->setAccessibleName(tr("Explain tags", "Accessible name of the help button"));
    connect(helpButton, &QAbstractButton::clicked, this, &TagWindowController::handleHelp);
    auto *header = new QWidget;
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(theme::wideMargin, theme::margin, theme::relatedSpacing,
                               theme::relatedSpacing);
    layout->addWidget(promptLabel, 1);
    layout->addWidget(helpButton, 0, Qt::AlignTop | Qt::AlignTrailing);
    return header;
}

void TagWindowController::buildMeetingsTable()
{
    sessionsArrayController->setColumns({"title", "dateString", "tagSummary"});
    sessionsArrayController->setHeaderTitles({tr("Meeting", "Column of the meetings of a tag"),
                                              tr("Date", "Column of the meetings of a tag"),
                                              tr("Tags", "Column of the meetings of a tag")});
    sessionsTableView = new BrowserRowsView;
    sessionsTableView->setObjectName(u"sessionsTableView"_s);
    sessionsTableView->setAccessibleName(
        tr("Meetings", "Accessible name of the list of a tag's meetings"));
    sessionsTableView->setSelectionMode(QAbstractItemView::SingleSelection);
    sessionsTableView->setModel(sessionsArrayController);
    sessionsTableView->setItemDelegate(new BrowserRowDelegate(sessionsTableView));
    QHeaderView *columns = sessionsTableView->header();
    columns->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    columns->setStretchLastSection(false);
    for (const int stretched : {0, 2})
        columns->setSectionResizeMode(stretched, QHeaderView::Stretch);
    columns->setSectionResizeMode(1, QHeaderView::Fixed);
    columns->resizeSection(1, widthOf(u"00. September 0000"_s, font()));
}

void TagWindowController::showWhatThereIs()
{
    const bool hasTags = tagsArrayController->rowCount() > 0;
    const bool hadFocus = m_windowStack->isAncestorOf(QApplication::focusWidget());
    m_windowStack->setCurrentWidget(hasTags ? static_cast<QWidget *>(splitter) : m_noTags);
    QWidget *meetings = sessionsTableView;
    if (!m_selectedTag)
        meetings = m_noSelection;
    else if (m_sessionViewModels.isEmpty())
        meetings = m_noMeetings;
    m_meetingsStack->setCurrentWidget(meetings);
    promptLabel->setVisible(m_selectedTag != nullptr);
    // Whoever worked in what is hidden now goes on in the list.
    if (hasTags && hadFocus && !m_windowStack->isAncestorOf(QApplication::focusWidget()))
        tagsTableView->setFocus();
}

} // namespace tembra
