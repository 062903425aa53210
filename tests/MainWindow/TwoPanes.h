#pragma once

#include "MainWindow/Counterparts/CounterpartListView.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/ViewCoordinator.h"
#include "Preferences/InputControls/AutoEditArrayController.h"
#include "support/GuiTest.h"
#include "support/JournalFixture.h"
#include "Toolkit/Alert.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTest>

namespace tembra {

/// The teammate list and the meeting pane beside it, joined by a coordinator, in a window of their own.
class TwoPanes
{
public:
    explicit TwoPanes(JournalFixture &journal)
    {
        list = new CounterpartsPaneViewController(coordinator, journal.coreData(),
                                                  journal.notifications);
        detail = new DetailPaneViewController(coordinator, journal.coreData(), journal.services,
                                              journal.notifications);
        coordinator.counterpartsArrayController = &list->counterpartsArrayController();
        coordinator.detailPaneViewController = detail;
        coordinator.masterViewController = list;
        view = list->findChild<CounterpartListView *>();
        window.addWidget(list);
        window.addWidget(detail);
        window.resize(1000, 600);
    }

    void show()
    {
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        list->setFocus();
    }

    ArrayController &controller() const { return list->counterpartsArrayController(); }

    QStringList names() const
    {
        QStringList names;
        for (const std::shared_ptr<Counterpart> &counterpart : list->counterparts())
            names.append(counterpart->name());
        return names;
    }

    QString selectedName() const
    {
        return detail->selectedCounterpart() ? detail->selectedCounterpart()->name() : QString();
    }

    QPoint middleOf(int row) const { return view->visualRect(controller().index(row, 0)).center(); }

    void clickRow(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, middleOf(row));
    }

    /// The field of the row whose name is being typed; null when none is.
    QLineEdit *nameEditor() const
    {
        return view->findChild<QLineEdit *>(QStringLiteral("nameEditor"));
    }

    QAbstractButton *button(const QString &objectName) const
    {
        return list->findChild<QAbstractButton *>(objectName);
    }

    /// The alert that is shown; null when none is.
    Alert *sheet() const { return gui::sheetOf(window); }

    QString sheetText(const QString &label) const
    {
        return sheet()->findChild<QLabel *>(label)->text();
    }

    ViewCoordinator coordinator;
    QSplitter window;
    CounterpartsPaneViewController *list;
    DetailPaneViewController *detail;
    CounterpartListView *view;
};

/// Counts how often a view is painted.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget)
    {
        QTest::qWait(50); // What is due already does not count.
        widget->installEventFilter(this);
    }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++count;
        return false;
    }
};

} // namespace tembra
