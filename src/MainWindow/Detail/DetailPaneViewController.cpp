#include "MainWindow/Detail/DetailPaneViewController.h"

#include "Bindings/RecordDeletion.h"
#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Foundation/Text/Abbreviation.h"
#include "Foundation/Time/Clock.h"
#include "MainWindow/Detail/SessionTimelineModel.h"
#include "MainWindow/Detail/SummaryCollectionView.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "MainWindow/Session/SessionGenerator.h"
#include "MainWindow/ViewCoordinator.h"
#include "Model/CoreDataInterface.h"
#include "Model/JournalServices.h"
#include "Model/NotificationCenter.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Tags/TagField.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/EmptyState.h"
#include "Toolkit/Icons.h"
#include "Toolkit/List/ArrayController.h"
#include "Toolkit/List/PropertyObservation.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"
#include "Toolkit/WaitCursor.h"

#include <QAction>
#include <QFrame>
#include <QHBoxLayout>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

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

constexpr int generatedSessions = 5000;

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
    buildLayout();
    connectSignals();
    viewDidLoad();
}

DetailPaneViewController::~DetailPaneViewController() = default;

void DetailPaneViewController::buildLayout()
{
    buildEmptyStates();
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
    connect(searchField, &QLineEdit::textChanged, this,
            &DetailPaneViewController::updateSearchFont);
}

/// Fonts with emoji take a while to load, so they wait for a text that has some.
void DetailPaneViewController::updateSearchFont()
{
    const bool showsEmoji = hasEmoji(searchField->text())
                            || hasEmoji(searchField->placeholderText());
    searchField->setFont(showsEmoji ? emojiSafeFont(font()) : QFont());
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
    setPlainToolTip(m_deleteButton, tr("Delete the selected meeting"));
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
            clearSearchOrFilter();
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

void DetailPaneViewController::viewDidLoad()
{
    summaryCollectionView->setTimeline(m_timeline);
    addButton->setEnabled(false);
    m_deleteButton->setEnabled(false);
    refreshLabels();
    updateVisibleViews();
}

void DetailPaneViewController::focusSearchField()
{
    searchField->setFocus(Qt::ShortcutFocusReason);
    searchField->selectAll();
}

void DetailPaneViewController::refreshLabels()
{
    const QString name = m_selectedCounterpart ? singleLine(m_selectedCounterpart->name())
                                               : QString();
    const int days = m_selectedCounterpart ? m_selectedCounterpart->daysSinceLastSession() : -1;
    m_nameLabel->setText(name.isEmpty() ? tr("Unnamed teammate") : name);
    searchField->setPlaceholderText(tr("Search notes for", "Followed by a teammate's name") + u' '
                                    + displayText(name));
    updateSearchFont();
    if (days < 0 && !m_selectedSession)
        daysSinceLastMeetingLabel->clear();
    else
        daysSinceLastMeetingLabel->setText(
            tr("Days since last meeting with", "Followed by a teammate's name") + u' ' + name
            + u": " + QString::number(days));
}

/// Sets the text that stands in the empty strip, and the title of its button.
void DetailPaneViewController::updateNoTilesState()
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

/// Clears the search, or without one the tag filter.
void DetailPaneViewController::clearSearchOrFilter()
{
    if (searchInput)
        searchField->clear();
    else
        tagFilterField->setObjectValue({});
}

void DetailPaneViewController::updateVisibleViews()
{
    const bool hasTiles = resultsController && resultsController->count() > 0;
    const bool hasEditor = m_selectedSession != nullptr;
    const bool isNarrowed = searchInput || !filterTags.isEmpty();
    updateNoTilesState();
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

bool DetailPaneViewController::commitEditing()
{
    return !m_sessionDetailViewController || m_sessionDetailViewController->commitEditing();
}

void DetailPaneViewController::endEditing()
{
    tagFilterField->endEditing();
    if (m_sessionDetailViewController)
        m_sessionDetailViewController->endEditing();
}

SessionDetailViewController &DetailPaneViewController::sessionDetailViewController()
{
    if (!m_sessionDetailViewController) {
        m_sessionDetailViewController = new SessionDetailViewController(m_coreData.viewContext(),
                                                                        m_services,
                                                                        m_notifications);
        connect(m_sessionDetailViewController, &SessionDetailViewController::tagBrowserRequested,
                this, &DetailPaneViewController::tagBrowserRequested);
        m_sessionDetailViewController->setEnabled(m_controlsEnabled);
        detailContainerView->layout()->addWidget(m_sessionDetailViewController);
    }
    return *m_sessionDetailViewController;
}

void DetailPaneViewController::setSelectedCounterpart(
    const std::shared_ptr<Counterpart> &counterpart)
{
    if (counterpart == m_selectedCounterpart)
        return;
    if (m_selectedCounterpart)
        m_selectedCounterpart->disconnect(this);
    nameObservation.reset();
    m_selectedCounterpart = counterpart;
    rebuildFetch();
    setSelectedSession(fetchedSession(0));
    addButton->setEnabled(m_selectedCounterpart != nullptr);
    observeCounterpart();
    refreshLabels();
    Q_EMIT selectedCounterpartChanged();
}

void DetailPaneViewController::observeCounterpart()
{
    if (!m_selectedCounterpart)
        return;
    nameObservation = std::make_unique<PropertyObservation>(m_selectedCounterpart.get(), "name",
                                                            [this] { refreshLabels(); });
    connect(m_selectedCounterpart.get(), &Counterpart::derivedChanged, this,
            &DetailPaneViewController::refreshLabels);
    connect(m_selectedCounterpart.get(), &Counterpart::deleted, this,
            [this] { setSelectedCounterpart({}); });
}

void DetailPaneViewController::setSelectedSession(const std::shared_ptr<Session> &session)
{
    m_rowLeftBySelectedSession.reset();
    if (session == m_selectedSession) {
        selectAndShow();
        return;
    }
    if (m_selectedSession)
        m_selectedSession->disconnect(this);
    m_selectedSession = session;
    if (m_selectedSession) {
        connect(m_selectedSession.get(), &Session::deleted, this,
                &DetailPaneViewController::selectNextSession);
        connect(m_selectedSession.get(), &Session::counterpartChanged, this, [this] {
            if (m_selectedSession->counterpart() != m_selectedCounterpart)
                selectNextSession();
        });
        connect(m_selectedSession.get(), &Session::derivedChanged, this,
                [this] { m_timeline->refresh(selectedRow()); });
    }
    sessionDetailViewController().setProperty("session", QVariant::fromValue(m_selectedSession));
    setControlsEnabled(m_selectedSession != nullptr);
    selectAndShow();
    refreshLabels();
    updateVisibleViews();
    Q_EMIT selectedSessionChanged();
}

void DetailPaneViewController::setControlsEnabled(bool enabled)
{
    if (enabled == m_controlsEnabled)
        return;
    m_controlsEnabled = enabled;
    Q_EMIT controlsEnabledChanged();
}

std::shared_ptr<Session> DetailPaneViewController::fetchedSession(int row) const
{
    if (!resultsController || row < 0 || row >= resultsController->count())
        return {};
    return std::static_pointer_cast<Session>(resultsController->objectAt(row));
}

void DetailPaneViewController::rebuildFetch()
{
    m_timeline->setResultsController(nullptr);
    resultsController.reset();
    if (m_selectedCounterpart) {
        resultsController = m_selectedCounterpart->sessionsResultController(filterTags,
                                                                            searchInput);
        if (const auto fetched = resultsController->performFetch(); !fetched)
            qCWarning(windowLog, "Failed to fetch entities: %s",
                      qUtf8Printable(fetched.error().description()));
        m_timeline->setResultsController(resultsController.get());
        // Connected after the tiles' model, so that the tiles are up to date in the pane's slots.
        connect(resultsController.get(), &FetchedResultsController::contentWillChange, this,
                &DetailPaneViewController::contentWillChange);
        connect(resultsController.get(), &FetchedResultsController::contentDidChange, this,
                &DetailPaneViewController::controllerDidChangeContent);
    }
    reload();
}

void DetailPaneViewController::reload()
{
    m_timeline->refreshAll();
    rearrangeCounterparts();
    updateVisibleViews();
}

void DetailPaneViewController::rearrangeCounterparts()
{
    // A selection that changes by the new order is not the user's choice.
    const QScopedValueRollback suspended(m_viewCoordinator.suspendSync, true);
    require(m_viewCoordinator.counterpartsArrayController, "the pane knows the list of teammates");
    m_viewCoordinator.counterpartsArrayController->rearrangeObjects();
    refreshLabels();
    selectAndShow();
}

int DetailPaneViewController::selectedRow() const
{
    if (!resultsController || !m_selectedSession)
        return -1;
    return resultsController->rowOf(m_selectedSession->objectID());
}

void DetailPaneViewController::selectAndShow()
{
    const int row = selectedRow();
    if (row >= 0)
        summaryCollectionView->selectAndShow(row);
    else // A view selects the neighbour of a row that is removed.
        summaryCollectionView->deselectAll();
}

void DetailPaneViewController::stripSelectionChanged(int row)
{
    // Tiles that come and go take the selection along; it is restored when they have.
    if (!m_isUpdatingTiles)
        setSelectedSession(fetchedSession(row));
}

void DetailPaneViewController::filterTagsChanged()
{
    filterTags = tagFilterField->tags();
    rebuildFetch();
}

void DetailPaneViewController::searchTextChanged()
{
    if (searchField->text().isEmpty())
        searchFieldDidEndSearching();
    else
        searchFieldDidStartSearching();
}

void DetailPaneViewController::searchFieldDidStartSearching()
{
    searchInput = searchField->text();
    rebuildFetch();
}

void DetailPaneViewController::searchFieldDidEndSearching()
{
    searchInput.reset();
    rebuildFetch();
}

void DetailPaneViewController::addSession()
{
    if (!m_selectedCounterpart)
        return;
    ManagedObjectContext &context = m_coreData.viewContext();
    const auto session = context.insert<Session>();
    session->setCounterpart(m_selectedCounterpart);
    context.processPendingChanges(); // The list is sorted by what derives from them.
    rebuildFetch();
    setSelectedSession(session);
    sessionDetailViewController().focusNoteInput();
}

void DetailPaneViewController::addSessionFileMenu()
{
    addSession();
}

void DetailPaneViewController::handleDelete()
{
    if (!m_selectedSession)
        return;
    const DeletionTexts texts{
        .question = tr("Do you really want to delete this session?",
                       "Asks before a meeting is deleted"),
        .details = m_selectedSession->dateText()
                   + tr(" will be removed.",
                        "Follows directly upon the date of the meeting to be deleted"),
        .failure = tr("The meeting could not be deleted.", "Alert when a deletion fails")};
    confirmDeletion(*this, m_coreData.viewContext(), {m_selectedSession}, texts);
}

void DetailPaneViewController::selectNextSession()
{
    const int row = selectedRow();
    setSelectedSession({});
    if (row >= 0)
        m_rowLeftBySelectedSession = row; // The results do not know the change yet.
}

void DetailPaneViewController::stuffSessions()
{
    require(m_selectedCounterpart != nullptr, "a teammate is selected to be given meetings");
    const WaitCursor waiting;
    generateSessions(m_coreData.viewContext(), m_selectedCounterpart, generatedSessions,
                     m_services.clock.now());
    m_coreData.viewContext().processPendingChanges();
    rebuildFetch();
}

void DetailPaneViewController::contentWillChange()
{
    m_isUpdatingTiles = true;
}

void DetailPaneViewController::controllerDidChangeContent()
{
    m_isUpdatingTiles = false;
    if (m_rowLeftBySelectedSession && resultsController->count() > 0)
        setSelectedSession(
            fetchedSession(std::min(*m_rowLeftBySelectedSession, resultsController->count() - 1)));
    m_rowLeftBySelectedSession.reset();
    rearrangeCounterparts();
    updateVisibleViews();
}

} // namespace tembra
