#include "Foundation/Logging.h"
#include "Preferences/InputControls/CoachingMarkViewController.h"
#include "Preferences/InputControls/PopoverSourceButton.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "Tags/BrowserRowsView.h"
#include "Tags/TagRowDelegate.h"
#include "Tags/TagWindowController.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Popover.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QShortcut>

// What can be done in the tag browser.

namespace tembra {

using namespace Qt::StringLiterals;

void TagWindowController::createActions()
{
    QAction *rename = addTagAction(tr("&Rename…", "Menu of a tag"), u"renameTagAction"_s,
                                   {Qt::Key_F2, Qt::Key_Return, Qt::Key_Enter});
    connect(rename, &QAction::triggered, this, &TagWindowController::renameSelected);
    QAction *changeEmoji = addTagAction(tr("Change &Emoji…", "Menu of a tag"),
                                        u"changeEmojiAction"_s, {Qt::CTRL | Qt::Key_E});
    connect(changeEmoji, &QAction::triggered, this, &TagWindowController::changeEmojiOfSelected);
    QAction *remove = addTagAction(tr("&Delete…", "Menu of a tag"), u"deleteTagAction"_s,
                                   {QKeySequence::Delete});
    connect(remove, &QAction::triggered, this, &TagWindowController::handleDelete);
    tagsTableView->addActions(m_tagActions);
    tagsTableView->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, sessionsTableView, nullptr, nullptr,
                                       Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                [this] { handleDoubleClick(sessionsTableView->currentIndex()); });
    }
}

QAction *TagWindowController::addTagAction(const QString &title, const QString &objectName,
                                           const QList<QKeySequence> &shortcuts)
{
    auto *action = new QAction(title, this);
    action->setObjectName(objectName);
    action->setShortcuts(shortcuts);
    // The keys mean the list, not a field or a table elsewhere in the window.
    action->setShortcutContext(Qt::WidgetShortcut);
    m_tagActions.append(action);
    return action;
}

void TagWindowController::addTagCommandsTo(QMenu &menu)
{
    menu.addActions(m_tagActions);
}

void TagWindowController::clickTag(const QModelIndex &clicked)
{
    if (clicked.column() == TagsArrayController::EmojiColumn && !QApplication::keyboardModifiers())
        changeEmojiOfSelected();
}

void TagWindowController::renameSelected()
{
    editSelected(tagColumn);
}

void TagWindowController::changeEmojiOfSelected()
{
    editSelected(TagsArrayController::EmojiColumn);
}

void TagWindowController::editSelected(int column)
{
    const int row = tagsArrayController->selectionIndex();
    if (row < 0)
        return;
    const QModelIndex index = tagsArrayController->index(row, column);
    if (tagsTableView->isPersistentEditorOpen(index))
        return;
    tagsTableView->scrollTo(index);
    tagsTableView->setFocus();
    tagsTableView->edit(index);
}

void TagWindowController::handleDelete()
{
    const QList<std::shared_ptr<Tag>> tags = tagsArrayController->selectedTags();
    if (tags.isEmpty())
        return;
    QStringList titles;
    for (const std::shared_ptr<Tag> &tag : tags)
        titles.append(tag->titleString());
    const AlertContents contents{.messageText = tr("Do you really want to delete these tags?",
                                                   "Asks before tags are deleted"),
                                 .informativeText = tr("%1 will be removed.",
                                                       "Titles of the tags to be deleted")
                                                        .arg(titles.join(u", "_s)),
                                 .buttons = {tr("Delete", "Button that deletes"),
                                             tr("Cancel", "Button that leaves things as they are")},
                                 .firstButtonDestroys = true};
    Alert::beginSheet(contents, this, [guard = QPointer(this), tags](int button) {
        if (guard && button == 0)
            guard->deleteTags(tags);
    });
}

void TagWindowController::deleteTags(const QList<std::shared_ptr<Tag>> &tags)
{
    // Those that were named, whatever became of the selection in the meantime.
    tagsArrayController->setSelectedObjects({tags.begin(), tags.end()});
    tagsArrayController->remove();
    tagsTableView->viewport()->update();
}

void TagWindowController::removeFromStore(const ArrayController::ObjectList &tags)
{
    QList<std::shared_ptr<ManagedObject>> records;
    for (const ArrayController::Object &object : tags)
        records.append(std::static_pointer_cast<Tag>(object));
    const auto removed = m_context.deleteObjects(records);
    if (removed)
        return;
    tagsArrayController->addObjects(tags);
    tagsArrayController->rearrangeObjects();
    tagsArrayController->setSelectedObjects(tags);
    showWhatThereIs();
    qCWarning(tagsLog, "Could not delete tags: %s", qUtf8Printable(removed.error().description()));
    Alert::beginSheet({.messageText = tr("The tags could not be deleted.",
                                         "Alert when a deletion fails"),
                       .informativeText = removed.error().description(),
                       .buttons = {tr("OK", "Button that closes an alert")}},
                      this, [](int) {});
}

void TagWindowController::handleDoubleClick(const QModelIndex &clicked)
{
    const std::shared_ptr<SessionViewModel> row = m_sessionViewModels.value(
        clicked.isValid() ? clicked.row() : -1);
    if (const auto session = row ? row->session() : nullptr)
        m_openSession(session);
}

void TagWindowController::handleHelp()
{
    auto *popover = new Popover(this);
    auto *coachingMark = new CoachingMarkViewController;
    coachingMark->label->setText(
        tr("Where helpful, use tags to organize your meetings. You can assign tags to discover "
           "themes across teammates, to track the topics and projects that define your everyday "
           "work, to flag things for followup—or anything else that helps you make sense of your "
           "data. You'll always be able to see all meetings with a given tag in this window.",
           "Explains what tags are for"));
    popover->setContent(coachingMark);
    connect(popover, &Popover::closed, popover, &QObject::deleteLater);
    popover->showRelativeTo(helpButton, Qt::BottomEdge);
}

} // namespace tembra
