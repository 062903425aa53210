#pragma once

#include "Preferences/InputControls/DynamicTextField.h"
#include "Preferences/InputControls/PopoverSourceButton.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Undo/UndoManager.h"
#include "support/GuiTest.h"
#include "support/JournalFixture.h"
#include "Tags/BrowserRowsView.h"
#include "Tags/TagWindowController.h"
#include "Toolkit/Alert.h"
#include "Toolkit/EmptyState.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace tembra {

/// What the tests of the tag browser share: a journal of their own each, and the window.
class TagBrowserTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init() { m_journal = std::make_unique<JournalFixture>(); }

    void cleanup()
    {
        m_opened.clear();
        m_insertEmoji = nullptr;
        m_window.reset();
        m_journal.reset();
    }

protected:
    void show()
    {
        showWith([this](QWidget *, std::function<void(const QString &)> insert) {
            m_insertEmoji = std::move(insert);
        });
    }

    void showWith(EmojiTextField::CharacterPalette palette)
    {
        m_journal->settle();
        m_window = std::make_unique<TagWindowController>(
            m_journal->context(), std::move(palette),
            [this](const std::shared_ptr<Session> &session) { m_opened.append(session); });
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    std::shared_ptr<Tag> addTag(const QString &name, const QString &emoji) const
    {
        return Tag::findOrCreate(m_journal->context(), name, emoji);
    }

    /// Tags without meetings.
    void addThreeTags() const
    {
        addTag(QStringLiteral("Goal"), QStringLiteral("🎯"));
        addTag(QStringLiteral("Zebra"), QStringLiteral("🦓"));
        addTag(QStringLiteral("Blocked"), QStringLiteral("⛔"));
    }

    /// Lets what has changed be told, as the end of an event loop's turn does.
    void tell() const { m_journal->context().processPendingChanges(); }

    TagsArrayController &tags() const { return *m_window->tagsArrayController; }
    BrowserRowsView *list() const { return m_window->tagsTableView; }
    BrowserRowsView *meetings() const { return m_window->sessionsTableView; }
    QString prompt() const { return m_window->promptLabel->text(); }

    QStringList names() const
    {
        QStringList names;
        for (int row = 0; row < tags().rowCount(); ++row)
            names.append(tags().tagAt(row)->name());
        return names;
    }

    /// The texts of a column of the meetings.
    QStringList column(int column) const
    {
        QStringList texts;
        for (int row = 0; row < meetings()->model()->rowCount(); ++row)
            texts.append(meetings()->model()->index(row, column).data().toString());
        return texts;
    }

    QPoint middleOf(int row, int column = TagWindowController::tagColumn) const
    {
        return list()->visualRect(tags().index(row, column)).center();
    }

    void clickTag(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, modifiers, middleOf(row));
    }

    void clickEmoji(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, modifiers,
                          middleOf(row, TagsArrayController::EmojiColumn));
    }

    /// The field of the row whose name is being typed; null when none is.
    QLineEdit *nameEditor() const
    {
        return list()->findChild<QLineEdit *>(QStringLiteral("nameEditor"));
    }

    EmojiTextField *emojiEditor() const { return list()->findChild<EmojiTextField *>(); }

    QLineEdit *startRenaming(int row) const
    {
        clickTag(row);
        QTest::keyClick(list(), Qt::Key_F2);
        return nameEditor();
    }

    bool isShown(const QString &objectName) const
    {
        return m_window->findChild<QWidget *>(objectName)->isVisible();
    }

    QAction *action(const QString &objectName) const
    {
        return m_window->findChild<QAction *>(objectName);
    }

    /// The alert that is shown; null when none is.
    Alert *sheet() const { return gui::sheetOf(*m_window); }

    QString sheetText(const QString &label) const
    {
        return sheet()->findChild<QLabel *>(label)->text();
    }

    void press(int button) const
    {
        QTest::mouseClick(sheet()->buttons().at(button), Qt::LeftButton);
    }

    void undo() const { m_journal->context().undoManager()->undo(); }
    void redo() const { m_journal->context().undoManager()->redo(); }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<TagWindowController> m_window;
    QList<std::shared_ptr<Session>> m_opened;
    std::function<void(const QString &)> m_insertEmoji; ///< Set while a palette would be open.
};

} // namespace tembra
