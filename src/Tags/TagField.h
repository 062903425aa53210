#pragma once

#include "Model/Session.h"
#include "Model/Tag.h"
#include "Tags/TagCandidates.h"
#include "Toolkit/Token/TokenField.h"

#include <QPointer>
#include <QSet>

#include <functional>
#include <memory>

namespace tembra {

class Clock;
class FetchedResultsController;
class FieldPopover;
class ManagedObjectContext;
class RecentTagsViewController;

/// Puts tags on a meeting: each token is one tag. Offers the tags there are while a name is typed,
/// and to make a new one; when it gets the keyboard, the ones used last.
///
/// Tags that come in are put on the meeting at once; those that go, when editing ends, which also
/// notes when the new ones were used. What the meeting loses or gets elsewhere shows here at once.
/// Without a meeting the tags are simply those of the field.
class TagField final : public TokenField, private TokenFieldDelegate
{
    Q_OBJECT

public:
    using Object = TokenField::Object;

    TagField(ManagedObjectContext &context, const Clock &clock, QWidget *parent = nullptr);
    ~TagField() override;

    std::shared_ptr<Session> session() const { return m_session; }
    /// Editing ends in the meeting it belongs to.
    void setSession(const std::shared_ptr<Session> &session);
    /// Whether a text that names no tag becomes a new one; else it is dropped.
    void setCreatesNewTags(bool creates) { m_createsNewTags = creates; }
    /// What follows the typed text in the completion that makes a new tag of it.
    QString newTagPrompt() const;
    /// Called when editing has ended and the tags are with the meeting.
    void setAddedTagHandler(std::function<void()> handler)
    {
        m_addedTagHandler = std::move(handler);
    }
    /// Shows a tag among all the others, to be edited; absent, just those.
    void setShowTag(std::function<void(const std::shared_ptr<Tag> &)> showTag);

    /// The tags of the tokens, in their order.
    QList<std::shared_ptr<Tag>> tags() const;
    RecentTagsViewController &recentTagsViewController() const { return *m_recentTags; }
    std::shared_ptr<Tag> tagToEdit() const { return m_tagToEdit; }

    bool rejectInsertion = false; ///< Has no effect.

public Q_SLOTS:
    void handleTagEdit();

Q_SIGNALS:
    void tagsDidChange();

protected:
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QStringList completionsForSubstring(const QString &substring, int indexOfToken) override;
    bool isWholeName(const QString &substring, const QString &completion) const override;
    Object representedObjectForEditingString(const QString &editingString) override;
    QString displayStringForRepresentedObject(const Object &object) const override;
    QString editingStringForRepresentedObject(const Object &object) const override;
    QList<Object> shouldAddObjects(const QList<Proposal> &proposed, int index) override;
    bool hasMenuForRepresentedObject(const Object &object) const override;
    QMenu *menuForRepresentedObject(const Object &object) override;
    bool writeRepresentedObjects(const QList<Object> &objects, QMimeData &mimeData) const override;
    bool canReadFromPasteboard(const QMimeData &mimeData) const override;
    QList<Object> readFromPasteboard(const QMimeData &mimeData) override;

    std::unique_ptr<FetchedResultsController> tagsResultController;
    QMenu *tagEditMenu = nullptr;
    QList<std::shared_ptr<Tag>> tagsToTimeStamp;

    void awakeFromNib();
    void controlTextDidEndEditing();
    void controllerDidChangeContent();

    std::shared_ptr<Tag> makeTag(QString text);
    void attach(const QList<std::shared_ptr<Tag>> &tags);
    void addRecentTag(const std::shared_ptr<Tag> &tag);
    void replaceTagsOfSession();
    void stampTags();
    void sessionTagsChanged();
    QSet<const QObject *> attachedTags() const;
    void showRecentTags();
    void placeRecentTags();

    ManagedObjectContext &m_context;
    const Clock &m_clock;
    TagCandidates m_candidates;
    std::shared_ptr<Session> m_session;
    QList<std::shared_ptr<Tag>> m_tagsOfSession; ///< As this field knows them.
    std::shared_ptr<Tag> m_tagToEdit;
    RecentTagsViewController *m_recentTags;
    QPointer<FieldPopover> m_popover;
    std::function<void()> m_addedTagHandler;
    std::function<void(const std::shared_ptr<Tag> &)> m_showTag;
    bool m_createsNewTags = false;
    bool m_changesSession = false;
};

} // namespace tembra
