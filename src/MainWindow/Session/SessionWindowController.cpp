#include "MainWindow/Session/SessionWindowController.h"

#include "Foundation/Text/Abbreviation.h"
#include "MainWindow/Session/SessionDetailViewController.h"
#include "Model/Counterpart.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/Icons.h"
#include "Toolkit/List/PropertyObservation.h"

#include <QCloseEvent>
#include <QVBoxLayout>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize smallestSize(640, 400);
constexpr QSize usualSize(780, 560);

} // namespace

SessionWindowController::SessionWindowController(const std::shared_ptr<Session> &session,
                                                 ManagedObjectContext &context,
                                                 const JournalServices &services,
                                                 NotificationCenter &notifications)
    : sessionDetailViewController(new SessionDetailViewController(context, services, notifications))
    , containerView(new QWidget)
    , m_session(session)
{
    buildLayout();
    windowDidLoad();
}

SessionWindowController::~SessionWindowController() = default;

void SessionWindowController::buildLayout()
{
    setObjectName(u"sessionWindow"_s);
    setWindowIcon(icons::application());
    setMinimumSize(smallestSize);
    resize(usualSize);
    containerView->setObjectName(u"containerView"_s);
    auto *layout = new QVBoxLayout(containerView);
    layout->setContentsMargins({});
    setCentralWidget(containerView);
}

void SessionWindowController::windowDidLoad()
{
    containerView->layout()->addWidget(sessionDetailViewController);
    sessionDetailViewController->setProperty("session", QVariant::fromValue(m_session));
    connect(sessionDetailViewController, &SessionDetailViewController::tagBrowserRequested, this,
            &SessionWindowController::tagBrowserRequested);
    connect(m_session.get(), &Session::dateChanged, this, &SessionWindowController::updateTitle);
    connect(m_session.get(), &Session::derivedChanged, this, &SessionWindowController::updateTitle);
    connect(m_session.get(), &Session::counterpartChanged, this,
            &SessionWindowController::observeCounterpart);
    observeCounterpart();
}

void SessionWindowController::observeCounterpart()
{
    m_counterpart = m_session->counterpart();
    m_nameObservation.reset();
    if (m_counterpart)
        m_nameObservation = std::make_unique<PropertyObservation>(m_counterpart.get(), "name",
                                                                  [this] { updateTitle(); });
    updateTitle();
}

void SessionWindowController::updateTitle()
{
    QStringList parts;
    for (const QString &part :
         {m_counterpart ? singleLine(m_counterpart->name()) : QString(), m_session->dateText()}) {
        if (!part.isEmpty())
            parts.append(part);
    }
    setWindowTitle(parts.isEmpty() ? tr("Meeting", "Title of a window that shows a meeting")
                                   : displayText(parts.join(u" – "_s)));
}

void SessionWindowController::closeEvent(QCloseEvent *event)
{
    // What is being typed belongs to the meeting, whoever has it open elsewhere.
    sessionDetailViewController->endEditing();
    QMainWindow::closeEvent(event);
    Q_EMIT closed();
}

} // namespace tembra
