#pragma once

#include "Model/Session.h"
#include "Tags/TagListViewModel.h"

#include <QWidget>

#include <functional>
#include <memory>

class QListView;

namespace tembra {

class ArrayController;
class FetchedResultsController;
class ManagedObjectContext;
class TagShortcutMonitor;

/// The seven tags that were used last, to be put on a meeting by a click or a shortcut. Stands in a
/// popover beside a tag field and never takes the keyboard from it.
///
/// A row whose tag the meeting has already is dimmed; a click there does nothing, its shortcut
/// still chooses the tag.
class RecentTagsViewController final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QList<std::shared_ptr<tembra::TagListViewModel>> tagListModels READ tagListModels
                   NOTIFY tagListModelsChanged)

public:
    /// Receives the chosen tag; null when it has been deleted.
    using TagHandler = std::function<void(const std::shared_ptr<Tag> &tag)>;

    explicit RecentTagsViewController(ManagedObjectContext &context, QWidget *parent = nullptr);
    ~RecentTagsViewController() override;

    /// Fetches and follows the tags, once; before that there are no rows and no shortcuts.
    void loadViewIfNeeded();

    const QList<std::shared_ptr<TagListViewModel>> &tagListModels() const
    {
        return m_tagListModels;
    }
    void setHandleTagSelection(TagHandler handler) { m_handleTagSelection = std::move(handler); }
    std::shared_ptr<Session> selectedSession() const { return m_selectedSession; }
    /// The meeting whose tags are dimmed.
    void setSelectedSession(const std::shared_ptr<Session> &session);
    /// Shortcuts work while this returns true; without it, never.
    void setMayUseShortcuts(std::function<bool()> mayUseShortcuts);

    /// Chooses the tag of a row, counted from 1, dimmed or not. False when there is none.
    bool chooseByNumber(int number);
    void rebuildRows();

    ArrayController *tagsArrayController;
    QListView *tableView;

public Q_SLOTS:
    /// Chooses the tag of the selected row unless it is dimmed, then clears the selection.
    void handleSelection();

Q_SIGNALS:
    void tagListModelsChanged();

private:
    std::unique_ptr<FetchedResultsController> recentTagsController;

    void buildLayout();
    void viewDidLoad();
    void fitHeight();

    TagHandler m_handleTagSelection;
    QList<std::shared_ptr<TagListViewModel>> m_tagListModels;
    QList<std::shared_ptr<ManagedObject>> m_tags; ///< Owned here, for the rows hold them weakly.
    std::shared_ptr<Session> m_selectedSession;
    std::unique_ptr<TagShortcutMonitor> m_monitor;
    bool m_isLoaded = false;
};

} // namespace tembra
