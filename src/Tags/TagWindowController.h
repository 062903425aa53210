#pragma once

#include "Bindings/FetchedContent.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Preferences/InputControls/EmojiTextField.h"
#include "Tags/SessionViewModel.h"
#include "Tags/TagsArrayController.h"

#include <QMainWindow>

#include <functional>
#include <memory>

class QAction;
class QMenu;
class QSplitter;
class QStackedWidget;
class QToolButton;

namespace tembra {

class BrowserRowsView;
class DynamicTextField;
class EmptyState;
class FetchedResultsController;
class ManagedObjectContext;
class PopoverSourceButton;
class TagRowDelegate;

/// The tag browser: every tag on the left, to be renamed, given another emoji or deleted; on the
/// right the meetings that carry the selected one. Both follow the store.
class TagWindowController final : public QMainWindow
{
    Q_OBJECT
    Q_PROPERTY(std::shared_ptr<tembra::Tag> selectedTag READ selectedTag WRITE setSelectedTag NOTIFY
                   selectedTagChanged)
    Q_PROPERTY(QList<std::shared_ptr<tembra::SessionViewModel>> sessionViewModels READ
                   sessionViewModels WRITE setSessionViewModels NOTIFY sessionViewModelsChanged)

public:
    using OpenSession = std::function<void(const std::shared_ptr<Session> &session)>;
    static constexpr int tagColumn = TagsArrayController::NameColumn;

    /// @p context, the one of the windows, outlives this. @p openSession shows a meeting in a window
    /// of its own.
    TagWindowController(ManagedObjectContext &context,
                        EmojiTextField::CharacterPalette characterPalette, OpenSession openSession,
                        QWidget *parent = nullptr);
    ~TagWindowController() override;

    /// The tag whose meetings are shown, if any.
    std::shared_ptr<Tag> selectedTag() const { return m_selectedTag; }
    void setSelectedTag(const std::shared_ptr<Tag> &tag);
    /// Its meetings, newest first.
    const QList<std::shared_ptr<SessionViewModel>> &sessionViewModels() const
    {
        return m_sessionViewModels;
    }
    void setSessionViewModels(const QList<std::shared_ptr<SessionViewModel>> &rows);

    /// Makes a tag the only selected one and scrolls to it.
    void selectTag(const std::shared_ptr<Tag> &tag);
    /// Selects a tag as selectTag() does; one that an undo is about to insert as soon as it is listed.
    void reveal(ObjectID tag);
    /// Writes a name being typed into its tag, unless an input method is composing it; the editing
    /// goes on. Always true: no name is refused.
    bool commitEditing();
    /// Adds the commands for the selected tags to a menu of the window.
    void addTagCommandsTo(QMenu &menu);

    TagsArrayController *tagsArrayController;
    ArrayController *sessionsArrayController;
    BrowserRowsView *tagsTableView = nullptr;
    BrowserRowsView *sessionsTableView = nullptr;
    DynamicTextField *promptLabel = nullptr;
    PopoverSourceButton *helpButton = nullptr;
    QSplitter *splitter = nullptr;

public Q_SLOTS:
    void renameSelected();
    void changeEmojiOfSelected();
    /// Asks, then deletes the selected tags.
    void handleDelete();
    /// Opens the meeting of a row.
    void handleDoubleClick(const QModelIndex &clicked);
    void handleHelp();

Q_SIGNALS:
    void selectedTagChanged();
    void sessionViewModelsChanged();

private:
    std::unique_ptr<FetchedResultsController> sessionsResultController;
    std::unique_ptr<FetchedResultsController> tagsResultController;

    void buildLayout();
    QWidget *buildTags();
    QWidget *buildTagsHeader();
    void buildTagList();
    QWidget *buildMeetings();
    QWidget *buildMeetingsHeader();
    void buildMeetingsTable();
    void createActions();
    QAction *addTagAction(const QString &title, const QString &objectName,
                          const QList<QKeySequence> &shortcuts);
    void connectSignals();
    void windowDidLoad();

    void tableViewSelectionDidChange();
    void controllerDidChangeContent();
    void arrangeTags();
    void scrollToCurrentTag();
    void fetchSessions();
    void rebuildSessions();
    void updateVisiblePages();
    void clickTag(const QModelIndex &clicked);
    void editSelected(int column);

    ManagedObjectContext &m_context;
    FetchedContent m_tags;
    EmojiTextField::CharacterPalette m_characterPalette;
    OpenSession m_openSession;
    std::shared_ptr<Tag> m_selectedTag;
    QList<std::shared_ptr<ManagedObject>> m_sessions; ///< Owned here, for the rows hold them weakly.
    QList<std::shared_ptr<SessionViewModel>> m_sessionViewModels;
    TagRowDelegate *m_tagDelegate = nullptr;
    QToolButton *m_deleteButton = nullptr;
    QStackedWidget *m_windowStack = nullptr;
    QStackedWidget *m_meetingsStack = nullptr;
    EmptyState *m_noTags = nullptr;
    EmptyState *m_noSelection = nullptr;
    EmptyState *m_noMeetings = nullptr;
    QList<QAction *> m_tagActions; ///< Enabled while a tag is selected.
};

} // namespace tembra
