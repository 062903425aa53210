#include "Tags/TagField.h"

#include "Foundation/Logging.h"
#include "Foundation/Text/Abbreviation.h"
#include "Foundation/Time/Clock.h"
#include "Model/TagPasteboard.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Results/FetchedResultsController.h"
#include "Store/Undo/UndoManager.h"
#include "Tags/ParsedTagTitle.h"
#include "Tags/RecentTagsViewController.h"
#include "Toolkit/FieldEvents.h"
#include "Toolkit/FieldPopover.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QScopedValueRollback>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<Tag> asTag(const TokenField::Object &object)
{
    return std::dynamic_pointer_cast<Tag>(object);
}

QString titleOf(const TokenField::Object &object)
{
    const auto tag = asTag(object);
    return tag ? tag->titleString() : QString();
}

} // namespace

TagField::TagField(ManagedObjectContext &context, const Clock &clock, QWidget *parent)
    : TokenField(*this, parent)
    , tagsResultController(Tag::allTagsResultController(context))
    , m_context(context)
    , m_clock(clock)
    , m_candidates(*tagsResultController)
    , m_recentTags(new RecentTagsViewController(context, this))
{
    m_recentTags->hide();
    awakeFromNib();
}

TagField::~TagField()
{
    delete m_popover;
}

void TagField::awakeFromNib()
{
    setHighlightsFirstCompletion(true);
    tagEditMenu = new QMenu(this);
    tagEditMenu->setObjectName(u"tagEditMenu"_s);
    const QAction *edit = tagEditMenu->addAction(
        tr("Edit Tag", "Menu of a tag: shows it among all"));
    connect(edit, &QAction::triggered, this, &TagField::handleTagEdit);
    connect(tagsResultController.get(), &FetchedResultsController::contentDidChange, this,
            &TagField::controllerDidChangeContent);
    m_recentTags->setHandleTagSelection(
        [this](const std::shared_ptr<Tag> &tag) { addRecentTag(tag); });
    m_recentTags->setMayUseShortcuts([this] { return hasFocus(); });
    if (const auto fetched = tagsResultController->performFetch(); !fetched)
        qCWarning(tagsLog, "Could not fetch tags: %s",
                  qUtf8Printable(fetched.error().description()));
    connect(this, &TokenField::didEndEditing, this, &TagField::controlTextDidEndEditing);
    connect(this, &TokenField::tokensChanged, this, &TagField::tagsDidChange);
    connect(this, &TokenField::completionListShown, this, &TagField::placeRecentTags);
}

QString TagField::newTagPrompt() const
{
    return tr(" (Create New Tag)",
              "Follows what was typed, in the line that makes a new tag of it");
}

void TagField::setShowTag(std::function<void(const std::shared_ptr<Tag> &)> showTag)
{
    m_showTag = std::move(showTag);
}

QList<std::shared_ptr<Tag>> TagField::tags() const
{
    QList<std::shared_ptr<Tag>> tags;
    const QList<Object> objects = objectValue();
    for (const Object &object : objects) {
        if (const auto tag = asTag(object))
            tags.append(tag);
    }
    return tags;
}

QSet<const QObject *> TagField::attachedTags() const
{
    QSet<const QObject *> attached;
    const QList<Object> objects = objectValue();
    for (const Object &object : objects)
        attached.insert(object.get());
    return attached;
}

// What the field asks about its tokens

QStringList TagField::completionsForSubstring(const QString &substring, int /*indexOfToken*/)
{
    return m_candidates.completions(substring, attachedTags(), newTagPrompt());
}

bool TagField::isWholeName(const QString &substring, const QString &completion) const
{
    const std::shared_ptr<Tag> tag = m_candidates.tagTitled(completion);
    return tag && !tag->name().isNull() && tag->name().toLower() == substring.toLower();
}

TagField::Object TagField::representedObjectForEditingString(const QString &editingString)
{
    return m_candidates.tagTitled(editingString);
}

QString TagField::displayStringForRepresentedObject(const Object &object) const
{
    return singleLine(titleOf(object));
}

QString TagField::editingStringForRepresentedObject(const Object &object) const
{
    return titleOf(object);
}

QList<TagField::Object> TagField::shouldAddObjects(const QList<Proposal> &proposed, int /*index*/)
{
    if (m_session && m_session->isDeleted())
        return {}; // What is half typed for a meeting that is gone becomes no tag.
    QList<std::shared_ptr<Tag>> added;
    for (const Proposal &proposal : proposed) {
        std::shared_ptr<Tag> tag;
        if (const auto *object = std::get_if<Object>(&proposal))
            tag = asTag(*object);
        else if (m_createsNewTags)
            tag = makeTag(std::get<QString>(proposal));
        if (tag && !tag->isDeleted())
            added.append(tag);
    }
    attach(added);
    return {added.begin(), added.end()};
}

std::shared_ptr<Tag> TagField::makeTag(QString text)
{
    text.remove(newTagPrompt());
    // The prompt typed by hand loses its blank, and names nothing.
    const QString shown = text.trimmed();
    if (shown.isEmpty() || shown == newTagPrompt().trimmed())
        return {};
    const ParsedTagTitle typed = ParsedTagTitle::parse(text);
    const auto tag = m_context.insert<Tag>();
    tag->setName(typed.name);
    tag->setEmoji(typed.emoji);
    return tag;
}

void TagField::attach(const QList<std::shared_ptr<Tag>> &tags)
{
    tagsToTimeStamp.append(tags);
    if (!m_session)
        return;
    const QScopedValueRollback own(m_changesSession, true);
    for (const std::shared_ptr<Tag> &tag : tags)
        m_session->addTag(*tag);
    m_tagsOfSession = m_session->sortedTags();
}

bool TagField::hasMenuForRepresentedObject(const Object & /*object*/) const
{
    return true;
}

QMenu *TagField::menuForRepresentedObject(const Object &object)
{
    if (const auto tag = asTag(object))
        m_tagToEdit = tag;
    return tagEditMenu;
}

void TagField::handleTagEdit()
{
    if (m_showTag)
        m_showTag(m_tagToEdit && !m_tagToEdit->isDeleted() ? m_tagToEdit : nullptr);
}

bool TagField::writeRepresentedObjects(const QList<Object> &objects, QMimeData &mimeData) const
{
    QList<std::shared_ptr<Tag>> tags;
    for (const Object &object : objects) {
        if (const auto tag = asTag(object))
            tags.append(tag);
    }
    if (const QByteArray encoded = TagPasteboard::encode(tags); !encoded.isEmpty())
        mimeData.setData(TagPasteboard::type, encoded);
    return true;
}

bool TagField::canReadFromPasteboard(const QMimeData &mimeData) const
{
    return mimeData.hasFormat(TagPasteboard::type);
}

QList<TagField::Object> TagField::readFromPasteboard(const QMimeData &mimeData)
{
    const QSet<const QObject *> attached = attachedTags();
    QList<Object> read;
    const auto tags = TagPasteboard::decode(mimeData.data(TagPasteboard::type), m_context);
    for (const std::shared_ptr<Tag> &tag : tags) {
        if (!attached.contains(tag.get()) && !read.contains(tag))
            read.append(tag);
    }
    return read;
}

// The meeting

void TagField::setSession(const std::shared_ptr<Session> &session)
{
    if (session == m_session)
        return;
    endEditing();
    if (m_session)
        m_session->disconnect(this);
    m_session = session;
    m_recentTags->setSelectedSession(session);
    m_tagsOfSession.clear();
    if (m_session) {
        connect(m_session.get(), &Session::tagsChanged, this, &TagField::sessionTagsChanged);
        connect(m_session.get(), &Session::deleted, this, [this] { setSession({}); });
        m_tagsOfSession = m_session->sortedTags();
    }
    setObjectValue({m_tagsOfSession.begin(), m_tagsOfSession.end()});
}

void TagField::sessionTagsChanged()
{
    if (m_changesSession)
        return;
    const QList<std::shared_ptr<Tag>> before = std::exchange(m_tagsOfSession,
                                                             m_session->sortedTags());
    if (!isEditing()) {
        setObjectValue({m_tagsOfSession.begin(), m_tagsOfSession.end()});
        return;
    }
    // What the user has taken off here still is on the meeting, and must not come back.
    for (const std::shared_ptr<Tag> &tag : before) {
        if (!m_tagsOfSession.contains(tag))
            removeObject(tag);
    }
    for (const std::shared_ptr<Tag> &tag : std::as_const(m_tagsOfSession)) {
        if (!before.contains(tag) && !attachedTags().contains(tag.get()))
            appendObject(tag);
    }
}

void TagField::controllerDidChangeContent()
{
    m_candidates.invalidate();
    const auto current = tags();
    for (const std::shared_ptr<Tag> &tag : current) {
        if (tag->isDeleted())
            removeObject(tag);
    }
    if (const auto edited = asTag(editor().editedObject()); edited && edited->isDeleted())
        removeObject(edited);
    refreshTokens();
}

void TagField::controlTextDidEndEditing()
{
    if (m_popover)
        m_popover->hide();
    if (m_session && !m_session->isDeleted())
        replaceTagsOfSession();
    stampTags();
    m_candidates.invalidate(); // Nobody completes before the next editing.
    if (m_addedTagHandler)
        m_addedTagHandler();
}

void TagField::replaceTagsOfSession()
{
    const QScopedValueRollback own(m_changesSession, true);
    const auto current = tags();
    const auto before = m_session->tags();
    for (const std::shared_ptr<Tag> &tag : before) {
        if (!current.contains(tag))
            m_session->removeTag(*tag);
    }
    for (const std::shared_ptr<Tag> &tag : current)
        m_session->addTag(*tag);
    m_tagsOfSession = m_session->sortedTags();
}

void TagField::stampTags()
{
    // When a tag was used is nothing that the user would take back.
    const UndoManager::Suspension notUndoable(*m_context.undoManager());
    const auto added = std::exchange(tagsToTimeStamp, {});
    for (const std::shared_ptr<Tag> &tag : added)
        tag->setLastUse(m_clock.now());
}

// The recent tags

void TagField::addRecentTag(const std::shared_ptr<Tag> &tag)
{
    if (!tag)
        return;
    attach({tag});
    appendObject(tag);
}

void TagField::focusInEvent(QFocusEvent *event)
{
    TokenField::focusInEvent(event);
    if (!isTemporaryFocusChange(event->reason()))
        showRecentTags();
}

void TagField::showRecentTags()
{
    if (!m_session || tagsResultController->count() == 0)
        return;
    m_recentTags->loadViewIfNeeded();
    m_recentTags->rebuildRows();
    if (!m_popover) {
        m_popover = new FieldPopover(this);
        m_popover->setContent(m_recentTags);
        m_recentTags->show();
    }
    placeRecentTags();
}

void TagField::placeRecentTags()
{
    if (!m_popover)
        return;
    // Both stand below the field; what is being typed matters more.
    if (hasFocus() && !isCompletionListShown())
        m_popover->showRelativeTo(this, Qt::BottomEdge);
    else
        m_popover->hide();
}

void TagField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && !isCompletionListShown() && m_popover
        && m_popover->isVisible()) {
        m_popover->hide();
        return;
    }
    TokenField::keyPressEvent(event);
}

} // namespace tembra
