#include "MainWindow/Session/SessionDetailViewController.h"

#include "MainWindow/Session/NotesArrayController.h"
#include "MainWindow/Session/RatingMenu.h"
#include "MainWindow/Session/SessionDateField.h"
#include "Model/Note.h"
#include "Preferences/InputControls/BindablePlaceholderTextField.h"
#include "Preferences/InputControls/CoachingMarkViewController.h"
#include "Tags/TagField.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/List/PropertyObservation.h"
#include "Toolkit/Popover.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QItemSelectionModel>
#include <QLabel>
#include <QListView>
#include <QScopedValueRollback>
#include <QToolButton>

#include <algorithm>

namespace tembra {

SessionDetailViewController::~SessionDetailViewController() = default;

void SessionDetailViewController::setSession(const std::shared_ptr<Session> &session)
{
    if (session == m_session)
        return;
    endNoteEditing();
    if (m_session)
        m_session->disconnect(this);
    m_session = session;
    if (m_session)
        connect(m_session.get(), &Session::notesChanged, this,
                &SessionDetailViewController::reloadNotes);
    for (RatingMenu *menu : std::as_const(m_ratingMenus))
        menu->setSession(m_session);
    m_dateField->setSession(m_session);
    tagField->setSession(m_session);
    reloadNotes();
    Q_EMIT sessionChanged();
}

void SessionDetailViewController::endEditing()
{
    endNoteEditing();
    tagField->endEditing();
}

void SessionDetailViewController::endNoteEditing()
{
    // A word half composed belongs to the meeting it was typed into.
    if (noteInputField->hasFocus())
        QGuiApplication::inputMethod()->commit();
    commitEditing();
}

bool SessionDetailViewController::commitEditing()
{
    noteInputField->commitEditing();
    m_dateField->commitEditing();
    return true;
}

void SessionDetailViewController::reloadNotes()
{
    const int row = m_shownRow;
    m_sortedNotes = m_session ? m_session->sortedNotes() : QList<std::shared_ptr<Note>>();
    notesArrayController->setContent({m_sortedNotes.begin(), m_sortedNotes.end()});
    Q_EMIT sortedNotesChanged();
    if (m_sortedNotes.isEmpty()) {
        showNoNote();
        m_shownRow = row; // For the next meeting that has notes.
        return;
    }
    const int shown = std::min(row, int(m_sortedNotes.size()) - 1);
    selectRow(shown);
    // The same row can hold another note now, of which the selection says nothing.
    showNoteAt(shown);
}

void SessionDetailViewController::selectRow(int row)
{
    noteSelectorTable->selectionModel()->setCurrentIndex(notesArrayController->index(row, 0),
                                                         QItemSelectionModel::ClearAndSelect);
}

void SessionDetailViewController::tableViewSelectionDidChange()
{
    const QModelIndexList rows = noteSelectorTable->selectionModel()->selectedIndexes();
    if (!rows.isEmpty())
        showNoteAt(rows.first().row());
}

void SessionDetailViewController::showNoteAt(int row)
{
    if (row < 0 || row >= m_sortedNotes.size())
        return;
    m_shownRow = row;
    Note *note = m_sortedNotes.at(row).get();
    if (noteInputField->boundObject() != note) {
        endNoteEditing();
        noteInputField->bind(BindablePlaceholderTextField::Binding::Text, note, "contentString",
                             {.nullPlaceholder = note->placeholderString()});
        m_lastNoteObservation = std::make_unique<PropertyObservation>(
            note, "fullLastDateLabel",
            [this, note] { lastNoteLabel->setText(note->fullLastDateLabel()); });
    }
    lastNoteLabel->setText(note->fullLastDateLabel());
    noteTitleLabel->setText(note->titleString());
    noteInputField->setAccessibleName(note->titleString());
    noteInputField->setRowIndex(row);
    noteInputField->setEnabled(true);
    noteExplainerButton->setHidden(note->placeholderString().isNull());
}

void SessionDetailViewController::showNoNote()
{
    noteInputField->unbind(BindablePlaceholderTextField::Binding::Text);
    m_lastNoteObservation.reset();
    noteInputField->setEnabled(false);
    lastNoteLabel->clear();
    noteTitleLabel->clear();
    noteExplainerButton->hide();
}

void SessionDetailViewController::showField(int identifier)
{
    const auto note = std::ranges::find(m_sortedNotes, identifier,
                                        [](const auto &each) { return int(each->identifier()); });
    if (note != m_sortedNotes.end())
        selectRow(int(note - m_sortedNotes.begin()));
}

void SessionDetailViewController::focusNoteInput()
{
    noteInputField->setFocus(Qt::OtherFocusReason);
}

void SessionDetailViewController::handlePreviousNoteButton()
{
    const int count = int(m_sortedNotes.size());
    if (count > 0)
        selectRow((m_shownRow + count - 1) % count);
}

void SessionDetailViewController::handleNextNoteButton()
{
    const int count = int(m_sortedNotes.size());
    if (count > 0)
        selectRow((m_shownRow + 1) % count);
}

void SessionDetailViewController::handleNoteQuestionButton()
{
    if (m_shownRow >= m_sortedNotes.size())
        return;
    const std::shared_ptr<Note> note = m_sortedNotes.at(m_shownRow);
    if (note->identifier() > maximumNoteIdentifier)
        return;
    auto *popover = new Popover(this);
    auto *coachingMark = new CoachingMarkViewController;
    coachingMark->label->setText(note->placeholderString());
    popover->setContent(coachingMark);
    connect(popover, &Popover::closed, popover, &QObject::deleteLater);
    popover->showRelativeTo(noteExplainerButton, Qt::BottomEdge);
}

void SessionDetailViewController::refreshRatingMenus()
{
    for (RatingMenu *menu : std::as_const(m_ratingMenus))
        menu->refresh();
}

} // namespace tembra
