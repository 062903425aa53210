#pragma once

#include "Model/Counterpart.h"
#include "Model/Session.h"
#include "Store/Results/FetchedResultsController.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <optional>

class QLineEdit;
class QPushButton;
class QStackedWidget;

namespace tembra {

class CoreDataInterface;
class EmojiLabel;
class EmptyState;
class NotificationCenter;
class PropertyObservation;
class SessionDetailViewController;
class SessionTimelineModel;
class SummaryCollectionView;
class Tag;
class TagField;
class ViewCoordinator;
struct JournalServices;

/// The right part of the main window: a teammate's meetings as a strip of tiles, newest first, and
/// below it the editor of the selected one.
///
/// The selected meeting need not be among the tiles: a search or a filter leaves the editor alone, and
/// no tile is selected then. A meeting that is deleted or moved to another teammate leaves the editor
/// at once, and the tile that takes its place in the strip (the next older meeting, else the next
/// newer) becomes the selection.
class DetailPaneViewController : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(std::shared_ptr<tembra::Counterpart> selectedCounterpart READ selectedCounterpart
                   WRITE setSelectedCounterpart NOTIFY selectedCounterpartChanged)
    Q_PROPERTY(std::shared_ptr<tembra::Session> selectedSession READ selectedSession WRITE
                   setSelectedSession NOTIFY selectedSessionChanged)
    Q_PROPERTY(bool controlsEnabled READ controlsEnabled NOTIFY controlsEnabledChanged)

public:
    DetailPaneViewController(ViewCoordinator &viewCoordinator, CoreDataInterface &coreData,
                             const JournalServices &services, NotificationCenter &notifications,
                             QWidget *parent = nullptr);
    ~DetailPaneViewController() override;

    std::shared_ptr<Counterpart> selectedCounterpart() const { return m_selectedCounterpart; }
    void setSelectedCounterpart(const std::shared_ptr<Counterpart> &counterpart);
    std::shared_ptr<Session> selectedSession() const { return m_selectedSession; }
    void setSelectedSession(const std::shared_ptr<Session> &session);
    /// True exactly when a meeting is selected.
    bool controlsEnabled() const { return m_controlsEnabled; }

    /// Made when it is first asked for; a window that opens does without.
    SessionDetailViewController &sessionDetailViewController();

    /// Writes edits in progress into their records; caret, focus and a composition stay. False when
    /// a control refuses.
    bool commitEditing();
    /// Commits edits in progress and ends the editing; a half-typed tag becomes a tag.
    void endEditing();
    void focusSearchField();

public Q_SLOTS:
    /// Adds a meeting with the teammate, if there is one, and puts the caret into its note.
    void addSession();
    void addSessionFileMenu();
    /// Asks, then deletes the selected meeting. Without one nothing is asked.
    void handleDelete();
    /// Adds 5000 made-up meetings to the teammate; there must be one.
    void stuffSessions();

Q_SIGNALS:
    void selectedCounterpartChanged();
    void selectedSessionChanged();
    void controlsEnabledChanged();
    /// The user asked for the tag browser, with @p tag selected unless it is null.
    void tagBrowserRequested(const std::shared_ptr<tembra::Tag> &tag);

private:
    std::unique_ptr<PropertyObservation> nameObservation;
    ViewCoordinator &m_viewCoordinator;
    QPushButton *addButton;
    QWidget *detailContainerView;
    TagField *tagFilterField;
    EmojiLabel *daysSinceLastMeetingLabel;
    QLineEdit *searchField;
    QList<std::shared_ptr<Tag>> filterTags;
    std::shared_ptr<Session> m_selectedSession;
    bool m_controlsEnabled = false;
    SummaryCollectionView *summaryCollectionView;
    SessionDetailViewController *m_sessionDetailViewController = nullptr;
    std::unique_ptr<FetchedResultsController> resultsController;
    std::shared_ptr<Counterpart> m_selectedCounterpart;
    std::optional<QString> searchInput;

    void buildLayout();
    QWidget *buildHeader();
    QWidget *buildStripRow();
    void buildSearchField();
    void buildTagFilterField();
    void buildEmptyStates();
    void connectSignals();
    void viewDidLoad();

    void filterTagsChanged();
    void searchTextChanged();
    void searchFieldDidStartSearching();
    void searchFieldDidEndSearching();

    void rebuildFetch();
    void reload();
    void rearrangeCounterparts();
    void refreshLabels();
    void updateSearchFont();
    void selectAndShow();
    void updateVisibleViews();
    void updateNoTilesState();
    void clearSearchOrFilter();
    void setControlsEnabled(bool enabled);
    std::shared_ptr<Session> fetchedSession(int row) const;
    /// The row of the selected meeting; −1 when it is not among the fetched ones.
    int selectedRow() const;

    void stripSelectionChanged(int row);
    void contentWillChange();
    void controllerDidChangeContent();
    /// Selects the meeting whose tile takes the place of the selected one, once this is gone.
    void selectNextSession();
    void observeCounterpart();

    CoreDataInterface &m_coreData;
    const JournalServices &m_services;
    NotificationCenter &m_notifications;
    SessionTimelineModel *m_timeline;
    QWidget *m_stripButtons = nullptr;
    QPushButton *m_deleteButton = nullptr;
    QWidget *m_hairline = nullptr;
    EmojiLabel *m_nameLabel = nullptr;
    QStackedWidget *m_pages = nullptr;
    EmptyState *m_noCounterpartState = nullptr;
    EmptyState *m_noTilesState = nullptr;
    EmptyState *m_noSelectionState = nullptr;
    bool m_isUpdatingTiles = false;
    std::optional<int> m_rowLeftBySelectedSession; ///< Until the results change.
};

} // namespace tembra
