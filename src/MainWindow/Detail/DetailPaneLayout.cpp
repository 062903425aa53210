// How the meeting pane is put together and what its texts say; what it does is in
// DetailPaneViewController.cpp.
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/Detail/SessionTimelineModel.h"
#include "MainWindow/Detail/SummaryCollectionView.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "Model/CoreDataInterface.h"
#include "Model/JournalServices.h"
#include "Model/NotificationCenter.h"
#include "Tags/TagField.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/EmptyState.h"
#include "Toolkit/Icons.h"
#include "Toolkit/List/PropertyObservation.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QFrame>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int searchFieldWidth = 260;
constexpr int longestQuotedSearch = 40;

QFrame *makeHairline()
{
    auto *line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setFixedHeight(1);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

} // namespace

DetailPaneViewController::DetailPaneViewController(ViewCoordinator &viewCoordinator,
                                                   CoreDataInterface &coreData,
                                                   const JournalServices &services,
                                                   NotificationCenter &notifications,
                                                   QWidget *parent)
    : QWidget(parent)
    , m_viewCoordinator(viewCoordinator)
    , addButton(new QPushButton)
    , detailContainerView(new QWidget)
    , tagFilterField(new TagField(coreData.viewContext(), services.clock))
    , daysSinceLastMeetingLabel(new EmojiLabel)
    , searchField(new QLineEdit)
    , summaryCollectionView(new SummaryCollectionView(services.dates))
    , m_coreData(coreData)
    , m_services(services)
    , m_notifications(notifications)
    , m_timeline(new SessionTimelineModel(this))
    , m_stripButtons(new QWidget)
    , m_deleteButton(new QPushButton)
    , m_hairline(makeHairline())
    , m_nameLabel(new EmojiLabel)
    , m_pages(new QStackedWidget)
{
    buildEmptyStates();
    buildLayout();
    connectSignals();
    viewDidLoad();
}

void DetailPaneViewController::viewDidLoad()
{
    summaryCollectionView->setTimeline(m_timeline);
    addButton->setEnabled(false);
    m_deleteButton->setEnabled(false);
    refreshLabels();
    showWhatThereIs();
}

void DetailPaneViewController::connectSignals()
{
    connect(addButton, &QPushButton::clicked, this, &DetailPaneViewController::addSession);
    connect(m_deleteButton, &QPushButton::clicked, this, &DetailPaneViewController::handleDelete);
    connect(searchField, &QLineEdit::textChanged, this,
            &DetailPaneViewController::searchTextChanged);
    connect(searchField, &QLineEdit::returnPressed, this, [this] { setFocus(); });
    connect(summaryCollectionView, &SummaryCollectionView::selectedRowChanged, this,
            &DetailPaneViewController::stripSelectionChanged);
    connect(summaryCollectionView, &SummaryCollectionView::deleteRequested, this,
            &DetailPaneViewController::handleDelete);
    connect(summaryCollectionView, &SummaryCollectionView::editRequested, this,
            [this] { sessionDetailViewController().focusNoteInput(); });
    connect(m_noTilesState, &EmptyState::triggered, this, [this] {
        if (searchInput || !filterTags.isEmpty())
            showAllTiles();
        else
            addSession();
    });
    connect(tagFilterField, &TagField::tagsDidChange, this,
            &DetailPaneViewController::filterTagsChanged);
    connect(this, &DetailPaneViewController::controlsEnabledChanged, this, [this] {
        sessionDetailViewController().setEnabled(m_controlsEnabled);
        m_deleteButton->setEnabled(m_controlsEnabled);
    });
    connect(&m_notifications, &NotificationCenter::didChangeEmoji, this,
            &DetailPaneViewController::reload);
}

void DetailPaneViewController::buildEmptyStates()
{
    m_noCounterpartState = new EmptyState(
        tr("No teammate selected"),
        tr("Choose a teammate in the list, or add one, to see your meetings."));
    m_noCounterpartState->setObjectName(u"noCounterpartState"_s);
    m_noTilesState = new EmptyState({}, {});
    m_noTilesState->setObjectName(u"noTilesState"_s);
    m_noSelectionState = new EmptyState(tr("No meeting selected"),
                                        tr("Choose a meeting above to read it and to write."));
    m_noSelectionState->setObjectName(u"noSelectionState"_s);
}

void DetailPaneViewController::buildLayout()
{
    detailContainerView->setObjectName(u"detailContainerView"_s);
    auto *container = new QVBoxLayout(detailContainerView);
    container->setContentsMargins({});

    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(buildHeader());
    column->addWidget(buildStripRow());
    column->addWidget(m_hairline);
    column->addWidget(detailContainerView, 1);
    column->addWidget(m_noSelectionState, 1);

    m_pages->addWidget(m_noCounterpartState);
    m_pages->addWidget(content);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_pages);
}

QWidget *DetailPaneViewController::buildHeader()
{
    m_nameLabel->setObjectName(u"counterpartNameLabel"_s);
    m_nameLabel->setFont(theme::titleFont(font()));
    daysSinceLastMeetingLabel->setObjectName(u"daysSinceLastMeetingLabel"_s);
    daysSinceLastMeetingLabel->setSecondary(true);
    buildSearchField();
    auto *upper = new QHBoxLayout;
    upper->setSpacing(theme::groupSpacing);
    upper->addWidget(m_nameLabel, 1);
    upper->addWidget(searchField);
    auto *header = new QWidget;
    auto *layout = new QVBoxLayout(header);
    layout->setContentsMargins(theme::wideMargin, theme::margin, theme::wideMargin, theme::margin);
    layout->setSpacing(theme::gridUnit);
    buildTagFilterField();
    auto *lower = new QHBoxLayout;
    lower->setSpacing(theme::groupSpacing);
    lower->addWidget(daysSinceLastMeetingLabel, 1);
    lower->addWidget(tagFilterField);
    layout->addLayout(upper);
    layout->addLayout(lower);
    return header;
}

void DetailPaneViewController::focusSearchField()
{
    searchField->setFocus(Qt::ShortcutFocusReason);
    searchField->selectAll();
}

void DetailPaneViewController::buildSearchField()
{
    searchField->setObjectName(u"searchField"_s);
    searchField->setClearButtonEnabled(true);
    searchField->setFixedWidth(searchFieldWidth);
    searchField->setAccessibleName(tr("Search notes"));
    searchField->addAction(icons::icon(icons::Name::Search), QLineEdit::LeadingPosition);
    auto *escape = new QShortcut(Qt::Key_Escape, searchField);
    escape->setContext(Qt::WidgetShortcut);
    connect(escape, &QShortcut::activated, searchField, &QLineEdit::clear);
}

void DetailPaneViewController::buildTagFilterField()
{
    tagFilterField->setObjectName(u"tagFilterField"_s);
    tagFilterField->setAccessibleName(tr("Filter by tags"));
    tagFilterField->setPlaceholderText(tr("Filter by tags"));
    tagFilterField->setWraps(false);
    tagFilterField->setFixedWidth(searchFieldWidth);
    tagFilterField->setShowTag(
        [this](const std::shared_ptr<Tag> &tag) { Q_EMIT tagBrowserRequested(tag); });
}

QWidget *DetailPaneViewController::buildStripRow()
{
    addButton->setObjectName(u"addButton"_s);
    addButton->setText(tr("Add Meeting", "Button: adds a meeting with the teammate"));
    addButton->setIcon(icons::icon(icons::Name::Add));
    m_deleteButton->setObjectName(u"deleteButton"_s);
    m_deleteButton->setText(tr("Delete…", "Button: asks, then deletes the selected meeting"));
    m_deleteButton->setIcon(icons::icon(icons::Name::Remove));
    m_deleteButton->setToolTip(tr("Delete the selected meeting"));
    summaryCollectionView->setObjectName(u"summaryCollectionView"_s);
    summaryCollectionView->setAccessibleName(tr("Meetings"));
    auto *buttons = new QVBoxLayout(m_stripButtons);
    buttons->setContentsMargins({});
    buttons->setSpacing(theme::relatedSpacing);
    buttons->addWidget(addButton);
    buttons->addWidget(m_deleteButton);
    buttons->addStretch();
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(theme::wideMargin, 0, theme::wideMargin, theme::relatedSpacing);
    layout->setSpacing(theme::margin);
    layout->addWidget(m_stripButtons);
    layout->addWidget(summaryCollectionView, 1);
    layout->addWidget(m_noTilesState, 1);
    return row;
}

void DetailPaneViewController::refreshLabels()
{
    const QString name = m_selectedCounterpart ? m_selectedCounterpart->name() : QString();
    const int days = m_selectedCounterpart ? m_selectedCounterpart->daysSinceLastSession() : -1;
    m_nameLabel->setText(name.isEmpty() ? tr("Unnamed teammate") : name);
    searchField->setPlaceholderText(tr("Search notes for", "Followed by a teammate's name") + u' '
                                    + name);
    if (days < 0 && !m_selectedSession)
        daysSinceLastMeetingLabel->clear();
    else
        daysSinceLastMeetingLabel->setText(
            tr("Days since last meeting with", "Followed by a teammate's name") + u' ' + name
            + u": " + QString::number(days));
}

/// What the empty strip says, and what its button does.
void DetailPaneViewController::describeNoTiles()
{
    if (searchInput) {
        QString quoted = searchInput->left(longestQuotedSearch);
        if (quoted.size() < searchInput->size())
            quoted += u'…';
        m_noTilesState->setTitle(tr("No meetings match “%1”").arg(quoted));
        m_noTilesState->setSentence(
            filterTags.isEmpty()
                ? tr("No note of a meeting with this teammate holds this text.")
                : tr("No note of a meeting with this teammate and these tags holds this text."));
        m_noTilesState->setButtonTitle(tr("Clear Search"));
    } else if (!filterTags.isEmpty()) {
        m_noTilesState->setTitle(tr("No meetings with these tags"));
        m_noTilesState->setSentence(
            tr("No meeting with this teammate carries all the tags that you filter by."));
        m_noTilesState->setButtonTitle(tr("Clear Filter"));
    } else {
        m_noTilesState->setTitle(tr("No meetings yet"));
        m_noTilesState->setSentence(tr("Add one to rate it and to take notes."));
        m_noTilesState->setButtonTitle(tr("Add Meeting"));
    }
}

/// Takes back what narrows the strip, the search first.
void DetailPaneViewController::showAllTiles()
{
    if (searchInput)
        searchField->clear();
    else
        tagFilterField->setObjectValue({});
}

void DetailPaneViewController::showWhatThereIs()
{
    const bool hasTiles = resultsController && resultsController->count() > 0;
    const bool hasEditor = m_selectedSession != nullptr;
    const bool isNarrowed = searchInput || !filterTags.isEmpty();
    describeNoTiles();
    // Above an editor the empty place is no higher than the tiles were, so that nothing jumps.
    const int stripHeight = summaryCollectionView->height();
    m_noTilesState->setMinimumHeight(stripHeight);
    m_noTilesState->setMaximumHeight(hasEditor ? stripHeight : QWIDGETSIZE_MAX);
    m_stripButtons->setVisible(hasTiles || hasEditor || isNarrowed);
    m_hairline->setVisible(hasTiles || hasEditor);
    summaryCollectionView->setVisible(hasTiles);
    m_noTilesState->setVisible(!hasTiles);
    detailContainerView->setVisible(hasEditor);
    m_noSelectionState->setVisible(hasTiles && !hasEditor);
    m_pages->setCurrentIndex(m_selectedCounterpart ? 1 : 0);
    setFocusProxy(hasTiles ? static_cast<QWidget *>(summaryCollectionView)
                           : m_noTilesState->button());
}

} // namespace tembra
