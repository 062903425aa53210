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
/// Everything goes straight into the meeting. What is being edited when another meeting comes ends
/// in the one it belongs to; the field that was shown stays the one that is shown.
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
    /// What is typed goes into the meeting, without ending the edit, moving the caret or breaking a
    /// composition. False when a control refuses.
    /// A tag that is half typed stays so.
    bool commitEditing();
    /// What is typed goes into the meeting, half a tag as well, and its editing ends.
    void endEditing();

public Q_SLOTS:
    void handlePreviousNoteButton();
    void handleNextNoteButton();
    void handleNoteQuestionButton();

Q_SIGNALS:
    void sessionChanged();
    void sortedNotesChanged();
    /// The user wants to see a tag among all the others; absent, just those.
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
