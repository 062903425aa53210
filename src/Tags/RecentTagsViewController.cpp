#include "Tags/RecentTagsViewController.h"

#include "Foundation/Logging.h"
#include "Foundation/Text/Abbreviation.h"
#include "Model/JournalQueries.h"
#include "Store/Results/FetchedResultsController.h"
#include "Tags/RecentTagDelegate.h"
#include "Tags/RecentTagsArrayController.h"
#include "Tags/TagShortcutMonitor.h"
#include "Toolkit/List/ArrayController.h"
#include "Toolkit/PlainLabel.h"
#include "Toolkit/Theme.h"

#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QListView>
#include <QVBoxLayout>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int listWidth = 260;

bool carries(const std::shared_ptr<Session> &session, const std::shared_ptr<ManagedObject> &tag)
{
    return session && !session->isDeleted() && session->tags().contains(tag);
}

} // namespace

RecentTagsViewController::RecentTagsViewController(ManagedObjectContext &context, QWidget *parent)
    : QWidget(parent)
    , tagsArrayController(new RecentTagsArrayController(this))
    , tableView(new QListView)
    , recentTagsController(
          std::make_unique<FetchedResultsController>(context, JournalQueries::recentTags()))
    , m_monitor(std::make_unique<TagShortcutMonitor>(*this))
{
    buildLayout();
}

RecentTagsViewController::~RecentTagsViewController() = default;

void RecentTagsViewController::buildLayout()
{
    setObjectName(u"recentTags"_s);
    tableView->setObjectName(u"recentTagsTable"_s);
    tableView->setAccessibleName(tr("Recent tags"));
    tableView->setModel(tagsArrayController);
    tableView->setItemDelegate(new RecentTagDelegate(tableView));
    tableView->setSelectionMode(QListView::SingleSelection);
    tableView->setEditTriggers(QListView::NoEditTriggers);
    tableView->setFrameShape(QFrame::NoFrame);
    tableView->setMouseTracking(true);
    // The keyboard stays in the field.
    tableView->setFocusPolicy(Qt::NoFocus);
    tableView->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tableView->setFixedWidth(listWidth);
    tableView->viewport()->setAutoFillBackground(false);
    tagsArrayController->bindSelection(tableView->selectionModel());
    auto *legend = new PlainLabel(
        tr("⌥⌘ is Alt+Ctrl here", "Says which keys a shortcut stands for"));
    legend->setObjectName(u"shortcutLegend"_s);
    legend->setFont(theme::secondaryFont(font()));
    QPalette dim = palette();
    dim.setColor(QPalette::WindowText, theme::secondaryText(dim, QPalette::Window));
    legend->setPalette(dim);
#ifdef Q_OS_MACOS
    legend->hide();
#endif
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::gridUnit, theme::gridUnit, theme::gridUnit,
                               theme::relatedSpacing);
    layout->setSpacing(theme::gridUnit);
    layout->addWidget(tableView);
    layout->addWidget(legend);
    legend->setContentsMargins(theme::relatedSpacing, 0, theme::relatedSpacing, 0);
}

void RecentTagsViewController::loadViewIfNeeded()
{
    if (m_isLoaded)
        return;
    m_isLoaded = true;
    viewDidLoad();
}

void RecentTagsViewController::viewDidLoad()
{
    connect(recentTagsController.get(), &FetchedResultsController::contentDidChange, this,
            &RecentTagsViewController::rebuildRows);
    if (const auto fetched = recentTagsController->performFetch(); !fetched)
        qCWarning(tagsLog, "Could not fetch recent tags: %s",
                  qUtf8Printable(fetched.error().description()));
    connect(tableView, &QListView::clicked, this, &RecentTagsViewController::handleSelection);
    m_monitor->start();
    rebuildRows();
}

void RecentTagsViewController::setSelectedSession(const std::shared_ptr<Session> &session)
{
    if (m_selectedSession)
        m_selectedSession->disconnect(this);
    m_selectedSession = session;
    if (m_selectedSession)
        connect(m_selectedSession.get(), &Session::tagsChanged, this,
                &RecentTagsViewController::rebuildRows);
    rebuildRows();
}

void RecentTagsViewController::setMayUseShortcuts(std::function<bool()> mayUseShortcuts)
{
    m_monitor->setCondition(std::move(mayUseShortcuts));
}

void RecentTagsViewController::rebuildRows()
{
    if (!m_isLoaded)
        return;
    if (auto tags = recentTagsController->fetchedObjects())
        m_tags = std::move(*tags);
    else
        qCWarning(tagsLog, "Could not fetch recent tags: %s",
                  qUtf8Printable(tags.error().description()));
    m_tagListModels.clear();
    for (const std::shared_ptr<ManagedObject> &object : std::as_const(m_tags)) {
        const auto tag = std::static_pointer_cast<Tag>(object);
        const auto row = std::make_shared<TagListViewModel>();
        row->setTitle(singleLine(tag->titleString()));
        row->setTag(tag);
        row->setShortcut(u"⌥⌘"_s + QString::number(m_tagListModels.size() + 1));
        row->setEnabled(!carries(m_selectedSession, tag));
        m_tagListModels.append(row);
    }
    tagsArrayController->setContent({m_tagListModels.begin(), m_tagListModels.end()});
    tagsArrayController->setSelectedObjects({});
    fitHeight();
    Q_EMIT tagListModelsChanged();
}

void RecentTagsViewController::fitHeight()
{
    int height = 0;
    for (int row = 0; row < tagsArrayController->rowCount(); ++row)
        height += tableView->sizeHintForRow(row);
    tableView->setFixedHeight(height);
    updateGeometry();
}

bool RecentTagsViewController::chooseByNumber(int number)
{
    if (number < 1 || number > m_tagListModels.size() || !m_handleTagSelection)
        return false;
    const std::shared_ptr<Tag> tag = m_tagListModels.at(number - 1)->tag();
    if (!tag)
        return false;
    m_handleTagSelection(tag);
    return true;
}

void RecentTagsViewController::handleSelection()
{
    const auto selected = tagsArrayController->selectedObjects();
    const auto row = selected.isEmpty()
                         ? nullptr
                         : std::dynamic_pointer_cast<TagListViewModel>(selected.first());
    if (m_handleTagSelection && row && row->isEnabled()) {
        m_handleTagSelection(row->tag());
        rebuildRows();
    }
    tagsArrayController->setSelectedObjects({});
}

} // namespace tembra
