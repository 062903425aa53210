#include "MainWindow/Session/SessionDetailViewController.h"

#include "MainWindow/Session/NoteFieldDelegate.h"
#include "MainWindow/Session/NotesArrayController.h"
#include "MainWindow/Session/RatingMenu.h"
#include "MainWindow/Session/SessionDateField.h"
#include "Model/JournalServices.h"
#include "Model/Note.h"
#include "Model/NoteField.h"
#include "Model/NotificationCenter.h"
#include "Model/SentimentScale.h"
#include "Preferences/InputControls/BindablePlaceholderTextField.h"
#include "Preferences/InputControls/CoachingMarkViewController.h"
#include "Tags/TagField.h"
#include "Toolkit/Emoji/EmojiComboBox.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Icons.h"
#include "Toolkit/List/PropertyObservation.h"
#include "Toolkit/PlainLabel.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Theme.h"

#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QInputMethod>
#include <QItemSelectionModel>
#include <QListView>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int widestSelector = 260;

/// As wide as the longest title of a field needs, whichever fields a meeting has.
int selectorWidth(const QListView &table)
{
    int widest = 0;
    for (const NoteIdentifier identifier : allNoteIdentifiers())
        widest = std::max(widest, table.fontMetrics().horizontalAdvance(
                                      noteFieldTitle(qint16(identifier))));
    const int scrollBar = table.verticalScrollBar()->sizeHint().width(); // In a low window.
    return std::min(widest + NoteFieldDelegate::roomBesideTitle + 2 * table.frameWidth()
                        + scrollBar,
                    widestSelector);
}

QPushButton *makeStepButton(const QString &title, const QString &objectName, const QString &hint,
                            icons::Name iconName)
{
    auto *button = new QPushButton(icons::icon(iconName), title);
    button->setObjectName(objectName);
    setPlainToolTip(button, hint);
    // A click leaves the keyboard in the text, so that typing goes on in the field that comes.
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

SessionDetailViewController::SessionDetailViewController(ManagedObjectContext &context,
                                                         const JournalServices &services,
                                                         NotificationCenter &notifications,
                                                         QWidget *parent)
    : QWidget(parent)
    , meetingPopup(new EmojiComboBox)
    , mePopup(new EmojiComboBox)
    , teammatePopup(new EmojiComboBox)
    , noteSelectorTable(new QListView)
    , tagField(new TagField(context, services.clock))
    , notesArrayController(new NotesArrayController(this))
    , noteInputField(new BindablePlaceholderTextField)
    , lastNoteLabel(new EmojiLabel)
    , noteTitleLabel(new PlainLabel)
    , noteExplainerButton(new QToolButton)
    , m_services(services)
    , m_dateField(new SessionDateField(services.clock))
{
    buildLayout();
    createRatingMenus();
    connectSignals(notifications);
    showNoNote();
}

SessionDetailViewController::~SessionDetailViewController() = default;

void SessionDetailViewController::buildLayout()
{
    buildNoteSelector();
    auto *columns = new QHBoxLayout;
    columns->setSpacing(theme::groupSpacing);
    columns->addWidget(noteSelectorTable);
    columns->addWidget(buildNoteArea(), 1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::wideMargin, theme::margin, theme::wideMargin,
                               theme::wideMargin);
    layout->setSpacing(theme::groupSpacing);
    layout->addWidget(buildRatings());
    layout->addLayout(columns, 1);
}

QWidget *SessionDetailViewController::buildRatings()
{
    mePopup->setObjectName(u"mePopup"_s);
    meetingPopup->setObjectName(u"meetingPopup"_s);
    teammatePopup->setObjectName(u"teammatePopup"_s);
    auto *row = new QWidget;
    auto *grid = new QGridLayout(row);
    grid->setContentsMargins({});
    grid->setHorizontalSpacing(theme::groupSpacing);
    grid->setVerticalSpacing(theme::gridUnit);
    addLabelled(grid, tr("&Me", "Label of the user's own mood"), mePopup);
    addLabelled(grid, tr("Meet&ing", "Label of the quality of a meeting"), meetingPopup);
    addLabelled(grid, tr("&Teammate", "Label of the teammate's mood"), teammatePopup);
    addLabelled(grid, tr("D&ate", "Label of a meeting's date"), m_dateField);
    buildTagField();
    addLabelled(grid, tr("Ta&gs", "Label of a meeting's tags"), tagField);
    grid->setColumnStretch(grid->columnCount() - 1, 1);
    return row;
}

void SessionDetailViewController::addLabelled(QGridLayout *grid, const QString &title,
                                              QWidget *control)
{
    auto *label = new PlainLabel(title);
    label->setFont(theme::secondaryFont(font()));
    label->setBuddy(control);
    const int column = grid->count() == 0 ? 0 : grid->columnCount();
    grid->addWidget(label, 0, column);
    // Tags take what room there is, and grow downwards.
    const bool grows = control == tagField;
    grid->addWidget(control, 1, column, grows ? Qt::AlignTop : Qt::AlignLeading | Qt::AlignTop);
}

void SessionDetailViewController::buildTagField()
{
    tagField->setObjectName(u"tagField"_s);
    tagField->setAccessibleName(tr("Tags"));
    tagField->setPlaceholderText(tr("Add tags"));
    tagField->setWraps(true);
    tagField->setCreatesNewTags(true);
    tagField->setShowTag(
        [this](const std::shared_ptr<Tag> &tag) { Q_EMIT tagBrowserRequested(tag); });
}

void SessionDetailViewController::buildNoteSelector()
{
    noteSelectorTable->setObjectName(u"noteSelectorTable"_s);
    noteSelectorTable->setAccessibleName(tr("Note fields"));
    noteSelectorTable->setModel(notesArrayController);
    noteSelectorTable->setItemDelegate(new NoteFieldDelegate(noteSelectorTable));
    noteSelectorTable->setEditTriggers(QListView::NoEditTriggers);
    noteSelectorTable->setSelectionMode(QListView::SingleSelection);
    noteSelectorTable->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    noteSelectorTable->setMouseTracking(true);
    noteSelectorTable->setFixedWidth(selectorWidth(*noteSelectorTable));
    noteInputField->setTableView(noteSelectorTable);
}

QWidget *SessionDetailViewController::buildNoteArea()
{
    noteInputField->setObjectName(u"noteInputField"_s);
    noteInputField->document()->setDocumentMargin(theme::relatedSpacing);
    auto *area = new QWidget;
    auto *layout = new QVBoxLayout(area);
    layout->setContentsMargins({});
    layout->setSpacing(theme::relatedSpacing);
    layout->addWidget(buildNoteHeader());
    layout->addWidget(noteInputField, 1);
    layout->addWidget(buildNoteButtons());
    return area;
}

QWidget *SessionDetailViewController::buildNoteHeader()
{
    noteTitleLabel->setObjectName(u"noteTitleLabel"_s);
    noteTitleLabel->setFont(theme::semiboldFont(font()));
    noteExplainerButton->setObjectName(u"noteExplainerButton"_s);
    noteExplainerButton->setIcon(icons::icon(icons::Name::Help));
    noteExplainerButton->setAutoRaise(true);
    noteExplainerButton->setFocusPolicy(Qt::TabFocus);
    setPlainToolTip(noteExplainerButton, tr("What belongs into this field?"));
    noteExplainerButton->setAccessibleName(tr("Explain this field"));
    lastNoteLabel->setObjectName(u"lastNoteLabel"_s);
    lastNoteLabel->setSecondary(true);
    lastNoteLabel->setFont(theme::secondaryFont(font()));
    auto *header = new QWidget;
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins({});
    layout->setSpacing(theme::gridUnit);
    layout->addWidget(noteTitleLabel);
    layout->addWidget(noteExplainerButton);
    layout->addStretch();
    layout->addWidget(lastNoteLabel);
    // The row keeps its height when the button is not there.
    header->setMinimumHeight(noteExplainerButton->sizeHint().height());
    return header;
}

QWidget *SessionDetailViewController::buildNoteButtons()
{
    QPushButton *previous = makeStepButton(tr("&Previous", "Button: shows the previous note field"),
                                           u"previousNoteButton"_s, tr("Previous note field"),
                                           icons::Name::Previous);
    connect(previous, &QPushButton::clicked, this,
            &SessionDetailViewController::handlePreviousNoteButton);
    QPushButton *next = makeStepButton(tr("&Next", "Button: shows the next note field"),
                                       u"nextNoteButton"_s, tr("Next note field"),
                                       icons::Name::Next);
    connect(next, &QPushButton::clicked, this, &SessionDetailViewController::handleNextNoteButton);
    auto *buttons = new QWidget;
    auto *layout = new QHBoxLayout(buttons);
    layout->setContentsMargins({});
    layout->setSpacing(theme::relatedSpacing);
    layout->addStretch();
    layout->addWidget(previous);
    layout->addWidget(next);
    return buttons;
}

void SessionDetailViewController::createRatingMenus()
{
    const auto create = [this](EmojiComboBox *popup, const SentimentScale &scale,
                               const QByteArray &property) {
        m_ratingMenus.append(new RatingMenu(popup, scale, property, m_services.defaults));
    };
    create(mePopup, SentimentScale::personal(), "personalSentiment");
    create(meetingPopup, SentimentScale::meeting(), "meetingSentiment");
    create(teammatePopup, SentimentScale::personal(), "counterpartSentiment");
}

void SessionDetailViewController::connectSignals(NotificationCenter &notifications)
{
    connect(&notifications, &NotificationCenter::didChangeEmoji, this,
            &SessionDetailViewController::refreshRatingMenus);
    connect(noteSelectorTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &SessionDetailViewController::tableViewSelectionDidChange);
    connect(noteSelectorTable, &QListView::activated, this,
            &SessionDetailViewController::focusNoteInput);
    // The list paints its first column only, and would not see that a text came or went.
    connect(notesArrayController, &QAbstractItemModel::dataChanged, noteSelectorTable->viewport(),
            qOverload<>(&QWidget::update));
    connect(noteExplainerButton, &QToolButton::clicked, this,
            &SessionDetailViewController::handleNoteQuestionButton);
}

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
    CoachingMarkViewController::showBelow(*noteExplainerButton, note->placeholderString());
}

void SessionDetailViewController::refreshRatingMenus()
{
    for (RatingMenu *menu : std::as_const(m_ratingMenus))
        menu->refresh();
}

} // namespace tembra
