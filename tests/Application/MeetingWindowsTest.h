#pragma once

#include "Application/WindowManager.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "MainWindow/Session/SessionWindowController.h"
#include "Model/Note.h"
#include "Preferences/InputControls/BindablePlaceholderTextField.h"
#include "ProgramInProcess.h"
#include "Store/Undo/UndoManager.h"
#include "Tags/BrowserRowsView.h"
#include "Tags/TagField.h"
#include "Tags/TagWindowController.h"
#include "Toolkit/Emoji/EmojiComboBox.h"

#include <QTemporaryDir>

namespace tembra {

/// The program with a teammate, Ana, and two meetings of hers; the newer one is in the editor.
class MeetingWindowsTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    ManagedObjectContext &context() const { return m_program->services.coreData.viewContext(); }
    WindowManager &windows() const { return m_program->delegate->windowManager(); }
    TagWindowController &browser() const { return m_program->delegate->tagsWindowController(); }
    DetailPaneViewController &pane() const { return m_program->window->detailPaneViewController(); }
    SessionDetailViewController *mainEditor() const
    {
        return &pane().sessionDetailViewController();
    }

    std::shared_ptr<Session> addMeeting(double daysAgo) const;
    std::shared_ptr<Tag> addTag(const std::shared_ptr<Session> &session, const QString &name,
                                const QString &emoji) const;

    /// Tells now what changed, saves, and forgets the steps that led here.
    void settle();
    /// Ends the turn: what has changed is told, and is one step of undo.
    void tell() const
    {
        context().processPendingChanges();
        QCoreApplication::processEvents();
    }
    void undo() const { context().undoManager()->undo(); }

    SessionWindowController *open(const std::shared_ptr<Session> &session) const;
    void activate(QWidget *window) const
    {
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    /// A key as it comes from the keyboard: to whatever has the focus in the window.
    void press(QWidget *window, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        activate(window);
        QTest::keyClick(window->focusWidget() ? window->focusWidget() : window, key, modifiers);
    }
    void focus(QWidget *widget) const
    {
        activate(widget->window());
        widget->setFocus();
        QTRY_VERIFY(widget->hasFocus());
    }

    BindablePlaceholderTextField *noteField(const SessionDetailViewController *editor) const
    {
        return editor->findChild<BindablePlaceholderTextField *>();
    }
    TagField *tagField(const SessionDetailViewController *editor) const
    {
        return editor->findChild<TagField *>(u"tagField"_s);
    }
    TagField *filterField() const { return pane().findChild<TagField *>(u"tagFilterField"_s); }
    EmojiComboBox *popup(const SessionDetailViewController *editor, const QString &name) const
    {
        return editor->findChild<EmojiComboBox *>(name);
    }

    static QStringList titlesOf(const QList<std::shared_ptr<Tag>> &tags)
    {
        QStringList titles;
        for (const auto &tag : tags)
            titles.append(tag->titleString());
        return titles;
    }
    /// All tags there are.
    QStringList allTags() const
    {
        return titlesOf(
            context()
                .fetch<Tag>({.entityName = Tag::entityName(), .returnsObjectsAsFaults = false})
                .value());
    }
    /// The text of the note that the editor shows, as the meeting has it.
    static QString shownNote(const std::shared_ptr<Session> &session)
    {
        return session->sortedNotes().first()->contentString();
    }

    /// Quits without a word and starts again; the meetings are the ones of before.
    void restart();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ProgramInProcess> m_program;
    std::unique_ptr<UndoManager::Suspension> m_setup; ///< Until settle().
    std::shared_ptr<Counterpart> m_ana;
    std::shared_ptr<Session> m_meeting;
    std::shared_ptr<Session> m_older;

private:
    void forgetRecords();
};

} // namespace tembra
