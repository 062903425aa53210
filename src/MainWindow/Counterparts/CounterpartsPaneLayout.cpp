#include "MainWindow/Counterparts/CounterpartListView.h"
#include "MainWindow/Counterparts/CounterpartRowDelegate.h"
#include "MainWindow/Counterparts/CounterpartsArrayController.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "Toolkit/EmptyState.h"
#include "Toolkit/Icons.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

// How the teammate list is laid out, and the keys that work in it.

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int narrowestPane = 220;

QToolButton *segment(icons::Name icon, const QString &name, const QString &objectName)
{
    auto *button = new QToolButton;
    button->setObjectName(objectName);
    button->setIcon(icons::icon(icon));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(name);
    button->setToolTip(name);
    return button;
}

} // namespace

void CounterpartsPaneViewController::buildLayout()
{
    setObjectName(u"counterpartsPane"_s);
    setMinimumWidth(narrowestPane);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    buildList();
    buildEmptyState();
    m_stack = new QStackedWidget;
    m_stack->addWidget(m_tableView);
    m_stack->addWidget(m_emptyState);
    setFocusProxy(m_tableView);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(m_stack, 1);
    layout->addWidget(buildFooter());
}

QWidget *CounterpartsPaneViewController::buildHeader()
{
    auto *title = new QLabel(tr("Teammates", "Title of the list of teammates"));
    title->setObjectName(u"teammatesTitle"_s);
    title->setTextFormat(Qt::PlainText);
    title->setFont(theme::titleFont(font()));
    auto *header = new QWidget;
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(theme::wideMargin, theme::margin, theme::relatedSpacing,
                               theme::relatedSpacing);
    layout->addWidget(title, 1);
    layout->addWidget(buildSegments());
    return header;
}

/// What there is beside the list, about the whole team.
QWidget *CounterpartsPaneViewController::buildFooter()
{
    auto *tags = new QPushButton(tr("Tags", "Button: opens the window of all tags"));
    tags->setObjectName(u"tagsButton"_s);
    tags->setToolTip(tr("Show all tags and the meetings that carry them"));
    tags->setFocusPolicy(Qt::TabFocus);
    connect(tags, &QPushButton::clicked, this, &CounterpartsPaneViewController::handleTagsButton);
    auto *footer = new QWidget;
    auto *layout = new QHBoxLayout(footer);
    layout->setContentsMargins(theme::margin, theme::relatedSpacing, theme::margin,
                               theme::relatedSpacing);
    layout->setSpacing(theme::relatedSpacing);
    layout->addWidget(tags);
    layout->addStretch();
    return footer;
}

QWidget *CounterpartsPaneViewController::buildSegments()
{
    auto *segments = new QWidget;
    segments->setObjectName(u"addDeleteSegments"_s);
    auto *layout = new QHBoxLayout(segments);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    const QList<QToolButton *> buttons{
        segment(icons::Name::Add, tr("Add a teammate", "Tooltip and accessible name"),
                u"addTeammateButton"_s),
        segment(icons::Name::Remove,
                tr("Delete the selected teammates", "Tooltip and accessible name"),
                u"deleteTeammatesButton"_s)};
    for (int index = 0; index < buttons.size(); ++index) {
        layout->addWidget(buttons.at(index));
        connect(buttons.at(index), &QToolButton::clicked, this,
                [this, index] { handleTeammateAddDelete(index); });
    }
    return segments;
}

void CounterpartsPaneViewController::buildList()
{
    m_tableView = new CounterpartListView;
    m_tableView->setObjectName(u"tableView"_s);
    m_tableView->setAccessibleName(tr("Teammates", "Title of the list of teammates"));
    m_tableView->setModel(m_counterpartsArrayController);
    m_rowDelegate = new CounterpartRowDelegate(m_tableView);
    m_rowDelegate->postponeEmoji();
    m_tableView->setItemDelegate(m_rowDelegate);
}

void CounterpartsPaneViewController::buildEmptyState()
{
    m_emptyState = new EmptyState(tr("No teammates yet", "Stands in the empty list of teammates"),
                                  tr("Add the people you meet one-on-one.",
                                     "Stands in the empty list of teammates"),
                                  tr("Add Teammate", "Button in the empty list of teammates"));
    m_emptyState->setObjectName(u"noTeammates"_s);
    connect(m_emptyState, &EmptyState::triggered, this, [this] { handleTeammateAddDelete(0); });
}

void CounterpartsPaneViewController::createActions()
{
    m_renameAction = new QAction(tr("&Rename…", "Context menu of a teammate"), m_tableView);
    m_renameAction->setObjectName(u"renameAction"_s);
    m_renameAction->setEnabled(false);
    connect(m_renameAction, &QAction::triggered, this,
            &CounterpartsPaneViewController::renameSelected);

    auto *deleteAction = new QAction(tr("&Delete…", "Context menu of a teammate"), m_tableView);
    deleteAction->setObjectName(u"deleteAction"_s);
    deleteAction->setShortcut(QKeySequence::Delete);
    deleteAction->setShortcutContext(Qt::WidgetShortcut);
    connect(deleteAction, &QAction::triggered, this,
            &CounterpartsPaneViewController::handleDeleteFromMenu);

    m_tableView->addActions({m_renameAction, deleteAction});
    m_tableView->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, m_tableView, nullptr, nullptr, Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                &CounterpartsPaneViewController::focusMeetings);
    }
}

} // namespace tembra
