#pragma once

#include "Model/Session.h"

#include <QPointer>
#include <QWidget>

#include <memory>

class QGridLayout;
class QLabel;
class QListView;
class QToolButton;

namespace tembra {

class BindablePlaceholderTextField;
class EmojiComboBox;
class EmojiLabel;
class NotesArrayController;
class NotificationCenter;
class PropertyObservation;
class RatingMenu;
class ManagedObjectContext;
class SessionDateField;
class Tag;
class TagField;
struct JournalServices;

/// The editor of one meeting: its three ratings, its date, its tags, and its note fields one at a
/// time.
///
/// Edits are written into the meeting at once. When another meeting is set, an edit in progress is
/// written into the meeting it belongs to, and the same note field stays shown.
class SessionDetailViewController final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(std::shared_ptr<tembra::Session> session READ session WRITE setSession NOTIFY
                   sessionChanged)
    Q_PROPERTY(
        QList<std::shared_ptr<tembra::Note>> sortedNotes READ sortedNotes NOTIFY sortedNotesChanged)

public:
    SessionDetailViewController(ManagedObjectContext &context, const JournalServices &services,
                                NotificationCenter &notifications, QWidget *parent = nullptr);
    ~SessionDetailViewController() override;

    std::shared_ptr<Session> session() const { return m_session; }
    void setSession(const std::shared_ptr<Session> &session);
    /// The meeting's notes in field order: the rows of the list.
    QList<std::shared_ptr<Note>> sortedNotes() const { return m_sortedNotes; }

    /// Shows the note field with this identifier, if the meeting has it.
    void showField(int identifier);
    /// Gives the keyboard to the text of the shown field.
    void focusNoteInput();
    /// Writes what is typed into the meeting; caret, focus and a composition stay. A half-typed tag
    /// stays half typed. False when a control refuses.
    bool commitEditing();
    /// Writes what is typed into the meeting and ends the editing; a half-typed tag becomes a tag.
    void endEditing();

public Q_SLOTS:
    void handlePreviousNoteButton();
    void handleNextNoteButton();
    void handleNoteQuestionButton();

Q_SIGNALS:
    void sessionChanged();
    void sortedNotesChanged();
    /// The user asked for the tag browser, with @p tag selected unless it is null.
    void tagBrowserRequested(const std::shared_ptr<tembra::Tag> &tag);

private:
    EmojiComboBox *meetingPopup;
    EmojiComboBox *mePopup;
    EmojiComboBox *teammatePopup;
    QListView *noteSelectorTable;
    TagField *tagField;
    NotesArrayController *notesArrayController;
    BindablePlaceholderTextField *noteInputField;
    EmojiLabel *lastNoteLabel;
    QLabel *noteTitleLabel;
    QToolButton *noteExplainerButton;
    QList<std::shared_ptr<Note>> m_sortedNotes;
    std::shared_ptr<Session> m_session;

    void buildLayout();
    QWidget *buildRatings();
    void buildTagField();
    void addLabelled(QGridLayout *grid, const QString &title, QWidget *control);
    QWidget *buildNoteArea();
    QWidget *buildNoteHeader();
    QWidget *buildNoteButtons();
    void buildNoteSelector();
    void createRatingMenus();
    void connectSignals(NotificationCenter &notifications);

    void endNoteEditing();
    void reloadNotes();
    void tableViewSelectionDidChange();
    void showNoteAt(int row);
    void showNoNote();
    void selectRow(int row);
    void refreshRatingMenus();

    const JournalServices &m_services;
    QList<RatingMenu *> m_ratingMenus;
    SessionDateField *m_dateField;
    std::unique_ptr<PropertyObservation> m_lastNoteObservation;
    int m_shownRow = 0; ///< Kept from meeting to meeting.
};

} // namespace tembra
