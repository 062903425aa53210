#pragma once

#include "TwoPanes.h"

#include "MainWindow/Detail/SessionTimelineModel.h"
#include "MainWindow/Detail/SummaryCollectionView.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "Preferences/InputControls/BindablePlaceholderTextField.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Toolkit/EmptyState.h"

#include <QLineEdit>

namespace tembra {

using namespace Qt::StringLiterals;

/// The pane of a teammate's meetings beside the list of teammates, and a teammate named Ana.
class MeetingPaneTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void initTestCase() { qputenv("TZ", "UTC"); }

    void init()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_ana = m_journal->addCounterpart(u"Ana"_s);
    }

    void cleanup()
    {
        m_panes.reset();
        m_sessions.clear();
        m_ana.reset();
        m_journal.reset();
    }

protected:
    void addSessions(int count, double firstDaysAgo = 0)
    {
        for (int day = 0; day < count; ++day)
            m_sessions.append(m_journal->addSessionDaysAgo(m_ana, firstDaysAgo + day));
    }

    void show()
    {
        m_journal->settle();
        m_panes = std::make_unique<TwoPanes>(*m_journal);
        m_panes->show();
    }

    void showAna()
    {
        show();
        m_panes->clickRow(int(m_panes->names().indexOf(u"Ana"_s)));
        QCOMPARE(pane()->selectedCounterpart(), m_ana);
    }

    void confirmDeletion() const
    {
        QTest::mouseClick(deleteButton(), Qt::LeftButton);
        QVERIFY(m_panes->sheet());
        QTest::mouseClick(m_panes->sheet()->buttons().at(0), Qt::LeftButton);
        QTRY_VERIFY(!m_panes->sheet());
    }

    DetailPaneViewController *pane() const { return m_panes->detail; }
    SessionDetailViewController *editor() const { return &pane()->sessionDetailViewController(); }
    SummaryCollectionView *strip() const { return pane()->findChild<SummaryCollectionView *>(); }
    QPushButton *addButton() const { return pane()->findChild<QPushButton *>(u"addButton"_s); }
    QPushButton *deleteButton() const
    {
        return pane()->findChild<QPushButton *>(u"deleteButton"_s);
    }
    QLineEdit *searchField() const { return pane()->findChild<QLineEdit *>(u"searchField"_s); }
    QWidget *editorContainer() const
    {
        return pane()->findChild<QWidget *>(u"detailContainerView"_s);
    }
    BindablePlaceholderTextField *noteField() const
    {
        return pane()->findChild<BindablePlaceholderTextField *>();
    }
    EmptyState *state(const QString &name) const { return pane()->findChild<EmptyState *>(name); }
    QString stateTitle(const QString &name) const
    {
        return state(name)->findChild<QLabel *>(u"emptyStateTitle"_s)->text();
    }
    QString daysLabel() const
    {
        return pane()->findChild<QLabel *>(u"daysSinceLastMeetingLabel"_s)->text();
    }

    QRect tile(int row) const { return strip()->visualRect(strip()->model()->index(row, 0)); }
    void clickTile(int row) const
    {
        QTest::mouseClick(strip()->viewport(), Qt::LeftButton, {}, tile(row).center());
    }

    QList<std::shared_ptr<Session>> shown(int most = 1000) const
    {
        const auto *model = static_cast<const SessionTimelineModel *>(strip()->model());
        QList<std::shared_ptr<Session>> sessions;
        for (int row = 0; row < std::min(most, model->rowCount()); ++row)
            sessions.append(model->sessionAt(row));
        return sessions;
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::shared_ptr<Counterpart> m_ana;
    QList<std::shared_ptr<Session>> m_sessions; ///< Of Ana; the newest first.
    std::unique_ptr<TwoPanes> m_panes;
};

} // namespace tembra
