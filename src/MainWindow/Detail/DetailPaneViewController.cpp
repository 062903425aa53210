#include "MainWindow/Detail/DetailPaneViewController.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Foundation/Time/Clock.h"
#include "MainWindow/Detail/SessionTimelineModel.h"
#include "MainWindow/Detail/SummaryCollectionView.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "MainWindow/Session/SessionStuffing.h"
#include "MainWindow/ViewCoordinator.h"
#include "Model/CoreDataInterface.h"
#include "Model/JournalServices.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Tags/TagField.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/List/ArrayController.h"
#include "Toolkit/List/PropertyObservation.h"

#include <QGuiApplication>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int stuffedSessions = 5000;

} // namespace

DetailPaneViewController::~DetailPaneViewController() = default;

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

// What is shown

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
    m_vacatedRow.reset();
    if (session == m_selectedSession) {
        selectAndShow();
        return;
    }
    if (m_selectedSession)
        m_selectedSession->disconnect(this);
    m_selectedSession = session;
    if (m_selectedSession) {
        connect(m_selectedSession.get(), &Session::deleted, this,
                &DetailPaneViewController::selectedSessionDeleted);
        connect(m_selectedSession.get(), &Session::derivedChanged, this,
                [this] { m_timeline->refresh(selectedRow()); });
    }
    sessionDetailViewController().setProperty("session", QVariant::fromValue(m_selectedSession));
    setControlsEnabled(m_selectedSession != nullptr);
    summaryCollectionView->deselectAll();
    selectAndShow();
    refreshLabels();
    showWhatThereIs();
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
        // After the tiles' own: when the pane hears of the end of a change, they show it already.
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
    showWhatThereIs();
}

void DetailPaneViewController::rearrangeCounterparts()
{
    // What the new order does to the list's selection is not the user's choice.
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
}

void DetailPaneViewController::stripSelectionChanged(int row)
{
    // Tiles that come and go take the selection along; it is restored when they have.
    if (!m_takingOverChanges)
        setSelectedSession(fetchedSession(row));
}

// Filtering and searching

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

// Adding and deleting

void DetailPaneViewController::addSession()
{
    if (!m_selectedCounterpart)
        return;
    ManagedObjectContext &context = m_coreData.viewContext();
    const auto session = context.insert<Session>();
    session->setCounterpart(m_selectedCounterpart);
    context.processPendingChanges(); // The list is sorted by what derives from them.
    rebuildFetch();
    summaryCollectionView->deselectAll();
    setSelectedSession(session);
}

void DetailPaneViewController::addSessionFileMenu()
{
    addSession();
}

void DetailPaneViewController::handleDelete()
{
    if (!m_selectedSession)
        return;
    const AlertContents contents{
        .messageText = tr("Do you really want to delete this session?",
                          "Asks before a meeting is deleted"),
        .informativeText = m_selectedSession->dateText()
                           + tr(" will be removed.",
                                "Follows directly upon the date of the meeting to be deleted"),
        .buttons = {tr("Delete", "Button that deletes"),
                    tr("Cancel", "Button that leaves things as they are")},
        .firstButtonDestroys = true};
    Alert::beginSheet(contents, window(),
                      [guard = QPointer(this), session = m_selectedSession](int button) {
                          if (guard && button == 0)
                              guard->deleteSession(session);
                      });
}

void DetailPaneViewController::deleteSession(const std::shared_ptr<Session> &session)
{
    if (session->isDeleted())
        return; // By someone else, while the question stood there.
    ManagedObjectContext &context = m_coreData.viewContext();
    const auto deleted = context.deleteObject(session);
    if (deleted) {
        context.processPendingChanges();
        return;
    }
    qCWarning(windowLog, "Could not delete a meeting: %s",
              qUtf8Printable(deleted.error().description()));
    Alert::beginSheet({.messageText = tr("The meeting could not be deleted.",
                                         "Alert when a deletion fails"),
                       .informativeText = deleted.error().description(),
                       .buttons = {tr("OK", "Button that closes an alert")}},
                      window(), [](int) {});
}

void DetailPaneViewController::selectedSessionDeleted()
{
    const int row = selectedRow();
    setSelectedSession({});
    if (row >= 0)
        m_vacatedRow = row; // Until the results have heard of the deletion, and know who comes next.
}

void DetailPaneViewController::stuffSessions()
{
    require(m_selectedCounterpart != nullptr, "a teammate is selected to be given meetings");
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    tembra::stuffSessions(m_coreData.viewContext(), m_selectedCounterpart, stuffedSessions,
                          m_services.clock.now());
    m_coreData.viewContext().processPendingChanges();
    rebuildFetch();
    QGuiApplication::restoreOverrideCursor();
}

// What the store tells

void DetailPaneViewController::contentWillChange()
{
    m_takingOverChanges = true;
}

void DetailPaneViewController::controllerDidChangeContent()
{
    m_takingOverChanges = false;
    if (m_vacatedRow && resultsController->count() > 0)
        setSelectedSession(fetchedSession(std::min(*m_vacatedRow, resultsController->count() - 1)));
    m_vacatedRow.reset();
    rearrangeCounterparts();
    showWhatThereIs();
}

} // namespace tembra
