#pragma once

#include "MainWindow/Session/NotesArrayController.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "Preferences/InputControls/BindablePlaceholderTextField.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"
#include "Toolkit/Emoji/EmojiComboBox.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

namespace tembra {

using namespace Qt::StringLiterals;

/// The editor of a meeting in a window of its own, in US English and UTC.
///
/// The meeting is of November 14, 2026, 9:30 and some fractions of a second; the other one, of the
/// same teammate, a week older.
class EditorTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void initTestCase()
    {
        qputenv("TZ", "UTC");
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_counterpart = m_journal->addCounterpart(u"Ana"_s);
        m_session = m_journal->addSession(m_counterpart,
                                          Date{utc(2026, 11, 14, 9, 30).secondsSinceReferenceDate
                                               + 12.345678});
        m_other = m_journal->addSession(m_counterpart, utc(2026, 11, 7));
        m_journal->settle();
    }

    void cleanup()
    {
        m_editor.reset();
        m_session.reset();
        m_other.reset();
        m_counterpart.reset();
        m_journal.reset();
    }

protected:
    void show()
    {
        m_journal->settle();
        m_editor = std::make_unique<SessionDetailViewController>(m_journal->context(),
                                                                 m_journal->services,
                                                                 m_journal->notifications);
        m_editor->resize(680, 460);
        m_editor->setSession(m_session);
        m_editor->show();
        QVERIFY(QTest::qWaitForWindowActive(m_editor.get()));
    }

    EmojiComboBox *popup(const QString &name) const
    {
        return m_editor->findChild<EmojiComboBox *>(name);
    }
    QLineEdit *dateField() const { return m_editor->findChild<QLineEdit *>(u"dateField"_s); }
    QListView *table() const { return m_editor->findChild<QListView *>(u"noteSelectorTable"_s); }
    BindablePlaceholderTextField *noteField() const
    {
        return m_editor->findChild<BindablePlaceholderTextField *>();
    }
    QToolButton *questionButton() const
    {
        return m_editor->findChild<QToolButton *>(u"noteExplainerButton"_s);
    }
    QString title() const { return m_editor->findChild<QLabel *>(u"noteTitleLabel"_s)->text(); }
    QString lastNote() const { return m_editor->findChild<QLabel *>(u"lastNoteLabel"_s)->text(); }
    int shownRow() const { return table()->currentIndex().row(); }

    void clickRow(int row) const
    {
        const QRect rect = table()->visualRect(table()->model()->index(row, 0));
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, rect.center());
    }

    void step(const QString &button) const
    {
        QTest::mouseClick(m_editor->findChild<QPushButton *>(button), Qt::LeftButton);
    }

    QList<int> filledRows() const
    {
        QList<int> rows;
        for (int row = 0; row < table()->model()->rowCount(); ++row) {
            if (table()->model()->index(row, 0).data(NotesArrayController::IsFilledRole).toBool())
                rows.append(row);
        }
        return rows;
    }

    QImage rowImage(int row) const
    {
        const QRect rect = table()->visualRect(table()->model()->index(row, 0));
        return table()->viewport()->grab(rect).toImage();
    }

    void verifyDateUntouched() const
    {
        QCOMPARE(m_session->date()->secondsSinceReferenceDate,
                 utc(2026, 11, 14, 9, 30).secondsSinceReferenceDate + 12.345678);
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::shared_ptr<Counterpart> m_counterpart;
    std::shared_ptr<Session> m_session;
    std::shared_ptr<Session> m_other;
    std::unique_ptr<SessionDetailViewController> m_editor;
};

} // namespace tembra
