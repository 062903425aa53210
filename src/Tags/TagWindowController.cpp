#include "Tags/TagWindowController.h"

#include "Bindings/RecordDeletion.h"
#include "Foundation/Logging.h"
#include "Foundation/Text/Abbreviation.h"
#include "Preferences/InputControls/CoachingMarkViewController.h"
#include "Preferences/InputControls/DynamicTextField.h"
#include "Preferences/InputControls/PopoverSourceButton.h"
#include "Preferences/InputControls/RowNameEditor.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "Tags/BrowserRowDelegate.h"
#include "Tags/BrowserRowsView.h"
#include "Tags/TagRowDelegate.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/EmptyState.h"
#include "Toolkit/Icons.h"
#include "Toolkit/PlainLabel.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

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

TagWindowController::TagWindowController(ManagedObjectContext &context,
                                         EmojiTextField::CharacterPalette characterPalette,
                                         OpenSession openSession, QWidget *parent)
    : QMainWindow(parent)
    , tagsArrayController(new TagsArrayController(this))
    , sessionsArrayController(new ArrayController(this))
    , tagsResultController(Tag::allTagsResultController(context))
    , m_context(context)
    , m_tags(*tagsResultController, *tagsArrayController)
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
    // The views emit signals when their editors close, and members are destroyed before children.
    delete takeCentralWidget();
}

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
    auto *title = new PlainLabel(tr("Tags", "Title of the tag browser"));
    title->setObjectName(u"tagsTitle"_s);
    title->setFont(theme::titleFont(font()));
    m_deleteButton = new QToolButton;
    m_deleteButton->setObjectName(u"deleteTagsButton"_s);
    m_deleteButton->setIcon(icons::icon(icons::Name::Remove));
    m_deleteButton->setAutoRaise(true);
    m_deleteButton->setFocusPolicy(Qt::TabFocus);
    const QString name = tr("Delete the selected tags", "Tooltip and accessible name");
    setPlainToolTip(m_deleteButton, name);
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
    setPlainToolTip(helpButton, tr("What are tags for?", "Tooltip of the help button"));
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
    // The shortcuts work in the list only, not in a field or a table elsewhere in the window.
    action->setShortcutContext(Qt::WidgetShortcut);
    m_tagActions.append(action);
    return action;
}

void TagWindowController::connectSignals()
{
    connect(&m_tags, &FetchedContent::readErrorChanged, this, [this] {
        if (m_tags.readError())
            qCWarning(tagsLog, "Could not fetch tags: %s",
                      qUtf8Printable(m_tags.readError()->description()));
    });
    connect(&m_tags, &FetchedContent::contentChanged, this, &TagWindowController::arrangeTags);
    connect(&m_tags, &FetchedContent::pendingRecordsSelected, this,
            &TagWindowController::scrollToCurrentTag);
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
    m_tags.fetch();
    setWindowTitle(tr("Tags", "Title of the tag browser"));
    tagsArrayController->bindSelection(tagsTableView->selectionModel());
    sessionsArrayController->bindSelection(sessionsTableView->selectionModel());
    tableViewSelectionDidChange();
    updateVisiblePages();
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
    updateVisiblePages();
    if (m_selectedTag && m_selectedTag->isDeleted())
        setProperty("selectedTag", QVariant::fromValue(std::shared_ptr<Tag>()));
    else
        rebuildSessions();
}

void TagWindowController::arrangeTags()
{
    // A row does not move while its name is being typed.
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
    if (sessionsResultController) {
        if (auto fetched = sessionsResultController->fetchedObjects())
            sessions = std::move(*fetched);
        else
            qCWarning(tagsLog, "Could not fetch sessions for tag: %s",
                      qUtf8Printable(fetched.error().description()));
    }
    // One query for all rows; if it fails, each row loads its own tags.
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
    promptLabel->setText(
        QString::number(rows.size()) + u' ' + tr("tagged", "As in: 3 tagged: Goal (…)") + u": "_s
        + (m_selectedTag ? singleLine(m_selectedTag->titleString()) : QString()) + u" ("_s
        + tr("double-click a session for more detail",
             "Hint above the meetings of a tag, in parentheses")
        + u')');
    updateVisiblePages();
}

void TagWindowController::setSessionViewModels(const QList<std::shared_ptr<SessionViewModel>> &rows)
{
    if (rows == m_sessionViewModels)
        return;
    m_sessionViewModels = rows;
    sessionsArrayController->updateContent({rows.begin(), rows.end()});
    sessionsArrayController->rearrangeObjects();
    Q_EMIT sessionViewModelsChanged();
}

void TagWindowController::selectTag(const std::shared_ptr<Tag> &tag)
{
    // A tag inserted in this turn is not in the results yet.
    m_context.processPendingChanges();
    if (tagsArrayController->rowOf(tag.get()) < 0)
        return;
    tagsArrayController->setSelectedObjects({tag});
    scrollToCurrentTag();
}

void TagWindowController::reveal(ObjectID tag)
{
    if (const auto object = m_context.object<Tag>(tag))
        selectTag(object);
    else
        m_tags.selectWhenListed(tag);
}

bool TagWindowController::commitEditing()
{
    m_tagDelegate->commitOpenEditor();
    return true;
}

void TagWindowController::updateVisiblePages()
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
    // The keyboard does not stay in a hidden view.
    if (hasTags && hadFocus && !m_windowStack->isAncestorOf(QApplication::focusWidget()))
        tagsTableView->setFocus();
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
    if (row >= 0)
        editInPlace(*tagsTableView, tagsArrayController->index(row, column));
}

void TagWindowController::handleDelete()
{
    const QList<std::shared_ptr<Tag>> tags = tagsArrayController->selectedTags();
    if (tags.isEmpty())
        return;
    QStringList titles;
    for (const std::shared_ptr<Tag> &tag : tags)
        titles.append(tag->titleString());
    const DeletionTexts texts{
        .question = tr("Do you really want to delete these tags?", "Asks before tags are deleted"),
        .details = tr("%1 will be removed.", "Titles of the tags to be deleted")
                       .arg(titles.join(u", "_s)),
        .failure = tr("The tags could not be deleted.", "Alert when a deletion fails")};
    confirmDeletion(*this, m_context, {tags.begin(), tags.end()}, texts,
                    [this] { tagsTableView->viewport()->update(); });
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
    CoachingMarkViewController::showBelow(
        *helpButton,
        tr("Where helpful, use tags to organize your meetings. You can assign tags to discover "
           "themes across teammates, to track the topics and projects that define your everyday "
           "work, to flag things for followup—or anything else that helps you make sense of your "
           "data. You'll always be able to see all meetings with a given tag in this window.",
           "Explains what tags are for"));
}

} // namespace tembra
