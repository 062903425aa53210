#include "Tags/TagWindowController.h"

#include "Foundation/Logging.h"
#include "Preferences/InputControls/DynamicTextField.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "Tags/BrowserRowsView.h"
#include "Tags/TagRowDelegate.h"

#include <QAction>
#include <QScrollBar>
#include <QSet>
#include <QToolButton>

#include <utility>

// What the tag browser shows: the tags there are, and the meetings of one of them.

namespace tembra {

using namespace Qt::StringLiterals;

TagWindowController::TagWindowController(ManagedObjectContext &context,
                                         EmojiTextField::CharacterPalette characterPalette,
                                         OpenSession openSession, QWidget *parent)
    : QMainWindow(parent)
    , tagsArrayController(new TagsArrayController(this))
    , sessionsArrayController(new ArrayController(this))
    , tagsResultController(Tag::allTagsResultController(context))
    , m_context(context)
    , m_characterPalette(std::move(characterPalette))
    , m_openSession(std::move(openSession))
{
    buildLayout();
    createActions();
    connectSignals();
    windowDidLoad();
}

TagWindowController::~TagWindowController()
{
    // The views tell of what ends with them, and members go before children do.
    delete takeCentralWidget();
}

void TagWindowController::connectSignals()
{
    connect(tagsResultController.get(), &FetchedResultsController::contentDidChange, this,
            &TagWindowController::controllerDidChangeContent);
    connect(tagsArrayController, &ArrayController::selectionChanged, this,
            &TagWindowController::tableViewSelectionDidChange);
    connect(m_tagDelegate, &TagRowDelegate::renamingEnded, this, &TagWindowController::arrangeTags);
    connect(tagsTableView, &QAbstractItemView::clicked, this, &TagWindowController::clickTag);
    connect(tagsTableView, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex &clicked) {
                if (clicked.column() == tagColumn)
                    renameSelected();
            });
    connect(sessionsTableView, &QAbstractItemView::doubleClicked, this,
            &TagWindowController::handleDoubleClick);
}

void TagWindowController::windowDidLoad()
{
    if (const auto fetched = tagsResultController->performFetch(); !fetched)
        qCWarning(tagsLog, "Could not fetch tags: %s",
                  qUtf8Printable(fetched.error().description()));
    setWindowTitle(tr("Tags", "Title of the tag browser"));
    tagsArrayController->setDeleteObjects(
        [this](const ArrayController::ObjectList &tags) { removeFromStore(tags); });
    tagsArrayController->bindSelection(tagsTableView->selectionModel());
    sessionsArrayController->bindSelection(sessionsTableView->selectionModel());
    followTags();
    tableViewSelectionDidChange();
    showWhatThereIs();
}

void TagWindowController::tableViewSelectionDidChange()
{
    const auto selected = tagsArrayController->selectedObjects();
    for (QAction *action : std::as_const(m_tagActions))
        action->setEnabled(!selected.isEmpty());
    m_deleteButton->setEnabled(!selected.isEmpty());
    if (!selected.isEmpty())
        setProperty("selectedTag",
                    QVariant::fromValue(std::static_pointer_cast<Tag>(selected.first())));
}

void TagWindowController::setSelectedTag(const std::shared_ptr<Tag> &tag)
{
    if (tag == m_selectedTag)
        return;
    m_selectedTag = tag;
    sessionsTableView->scrollToTop();
    fetchSessions();
    Q_EMIT selectedTagChanged();
}

void TagWindowController::fetchSessions()
{
    sessionsResultController.reset();
    if (m_selectedTag && !m_selectedTag->isDeleted()) {
        sessionsResultController = m_selectedTag->sessionsResultController();
        connect(sessionsResultController.get(), &FetchedResultsController::contentDidChange, this,
                &TagWindowController::controllerDidChangeContent);
        if (const auto fetched = sessionsResultController->performFetch(); !fetched)
            qCWarning(tagsLog, "Could not fetch sessions for tag: %s",
                      qUtf8Printable(fetched.error().description()));
    }
    rebuildSessions();
}

void TagWindowController::controllerDidChangeContent()
{
    followTags();
    if (m_selectedTag && m_selectedTag->isDeleted())
        setProperty("selectedTag", QVariant::fromValue(std::shared_ptr<Tag>()));
    else
        rebuildSessions();
}

void TagWindowController::followTags()
{
    const auto tags = tagsResultController->fetchedObjects();
    QSet<const QObject *> present;
    for (const std::shared_ptr<ManagedObject> &tag : tags)
        present.insert(tag.get());
    ArrayController::ObjectList vanished = tagsArrayController->content();
    vanished.removeIf([&present](const auto &tag) { return present.contains(tag.get()); });
    tagsArrayController->removeObjects(vanished);
    // Those that are listed already are left out.
    tagsArrayController->addObjects({tags.begin(), tags.end()});
    arrangeTags();
    const ObjectID awaited = std::exchange(m_awaited, {});
    if (!awaited.isNull())
        selectListed(m_context.object<Tag>(awaited));
    showWhatThereIs();
}

void TagWindowController::arrangeTags()
{
    // A row does not run away from whoever types in it.
    if (m_tagDelegate->isRenaming())
        return;
    const auto before = tagsArrayController->arrangedObjects();
    tagsArrayController->rearrangeObjects();
    if (tagsArrayController->arrangedObjects() != before)
        scrollToCurrentTag();
}

void TagWindowController::scrollToCurrentTag()
{
    const int row = tagsArrayController->selectionIndex();
    if (row >= 0)
        tagsTableView->scrollTo(tagsArrayController->index(row, tagColumn));
}

void TagWindowController::rebuildSessions()
{
    QHash<const Session *, std::shared_ptr<SessionViewModel>> known;
    for (const std::shared_ptr<SessionViewModel> &row : std::as_const(m_sessionViewModels))
        known.insert(row->session().get(), row);
    QList<std::shared_ptr<ManagedObject>> sessions;
    if (sessionsResultController)
        sessions = sessionsResultController->fetchedObjects();
    // Read together; if that fails, each row asks for itself.
    (void)m_context.prefetch(sessions, {"tags"});
    QList<std::shared_ptr<SessionViewModel>> rows;
    rows.reserve(sessions.size());
    for (const std::shared_ptr<ManagedObject> &object : std::as_const(sessions)) {
        const auto session = std::static_pointer_cast<Session>(object);
        const std::shared_ptr<SessionViewModel> row = known.value(session.get());
        rows.append(row ? row : std::make_shared<SessionViewModel>(session));
    }
    m_sessions = sessions;
    setProperty("sessionViewModels", QVariant::fromValue(rows));
    promptLabel->setText(QString::number(rows.size()) + u' '
                         + tr("tagged", "As in: 3 tagged: Goal (…)") + u": "_s
                         + (m_selectedTag ? m_selectedTag->titleString() : QString()) + u" ("_s
                         + tr("double-click a session for more detail",
                              "Hint above the meetings of a tag, in parentheses")
                         + u')');
    showWhatThereIs();
}

void TagWindowController::setSessionViewModels(const QList<std::shared_ptr<SessionViewModel>> &rows)
{
    if (rows == m_sessionViewModels)
        return;
    m_sessionViewModels = rows;
    // A new content scrolls to the top.
    const int scrolledTo = sessionsTableView->verticalScrollBar()->value();
    sessionsArrayController->setContent({rows.begin(), rows.end()});
    sessionsTableView->verticalScrollBar()->setValue(scrolledTo);
    Q_EMIT sessionViewModelsChanged();
}

void TagWindowController::selectTag(const std::shared_ptr<Tag> &tag)
{
    // One that was made just now may not be listed yet.
    m_context.processPendingChanges();
    selectListed(tag);
}

void TagWindowController::selectListed(const std::shared_ptr<Tag> &tag)
{
    if (tagsArrayController->rowOf(tag.get()) < 0)
        return;
    tagsArrayController->setSelectedObjects({tag});
    scrollToCurrentTag();
}

void TagWindowController::reveal(ObjectID tag)
{
    const auto object = m_context.object<Tag>(tag);
    if (object)
        selectTag(object);
    else
        m_awaited = tag;
}

bool TagWindowController::commitEditing()
{
    m_tagDelegate->commitOpenEditor();
    return true;
}

} // namespace tembra
