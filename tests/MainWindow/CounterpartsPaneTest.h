#pragma once

#include "TwoPanes.h"

#include "Store/Objects/ManagedObjectContext.h"

namespace tembra {

/// What the tests of the teammate list share: a journal of their own each, and the two panes.
class CounterpartsPaneTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init() { m_journal = std::make_unique<JournalFixture>(); }

    void cleanup()
    {
        m_panes.reset();
        m_journal.reset();
    }

protected:
    void addThree()
    {
        for (const QString &name :
             {QStringLiteral("Ana"), QStringLiteral("Ben"), QStringLiteral("Chidi")})
            m_journal->addCounterpart(name);
    }

    void show()
    {
        m_journal->context().processPendingChanges();
        m_panes = std::make_unique<TwoPanes>(*m_journal);
        m_panes->show();
    }

    QLineEdit *startRenaming(int row)
    {
        m_panes->clickRow(row);
        QTest::keyClick(m_panes->view, Qt::Key_F2);
        return m_panes->nameEditor();
    }

    void deleteSelected()
    {
        m_panes->list->handleDeleteFromMenu();
        QTest::mouseClick(m_panes->sheet()->buttons().first(), Qt::LeftButton);
    }

    QString rowText(int row) const
    {
        return m_panes->controller().index(row, 0).data(Qt::AccessibleTextRole).toString();
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<TwoPanes> m_panes; // Goes before the journal.
};

} // namespace tembra
