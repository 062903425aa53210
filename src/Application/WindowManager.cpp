#include "Application/WindowManager.h"

#include "MainWindow/Session/SessionDetailViewController.h"
#include "MainWindow/Session/SessionWindowController.h"
#include "Model/CoreDataInterface.h"
#include "Model/Session.h"
#include "Toolkit/WindowActivation.h"

#include <algorithm>

namespace tembra {

WindowManager::WindowManager(CoreDataInterface &coreData, const JournalServices &services,
                             NotificationCenter &notifications,
                             std::function<void(SessionWindowController &)> prepareWindow,
                             QObject *parent)
    : QObject(parent)
    , m_coreData(coreData)
    , m_services(services)
    , m_notifications(notifications)
    , m_prepareWindow(std::move(prepareWindow))
{
}

WindowManager::~WindowManager() = default;

SessionWindowController &WindowManager::windowController(const std::shared_ptr<Session> &session)
{
    const auto known = std::ranges::find(m_windows, session,
                                         [](const auto &window) { return window->session(); });
    if (known != m_windows.end())
        return **known;
    auto window = std::make_unique<SessionWindowController>(session, m_coreData.viewContext(),
                                                            m_services, m_notifications);
    connect(window.get(), &SessionWindowController::closed, this,
            [this, closed = window.get()] { release(closed); });
    connect(window.get(), &SessionWindowController::tagBrowserRequested, this,
            &WindowManager::tagBrowserRequested);
    // Once it is gone, so that nothing half typed is made for it any more.
    connect(session.get(), &Session::deleted, window.get(), &QWidget::close);
    m_prepareWindow(*window);
    m_windows.push_back(std::move(window));
    return *m_windows.back();
}

void WindowManager::open(const std::shared_ptr<Session> &session)
{
    bringToFront(windowController(session));
}

void WindowManager::release(SessionWindowController *window)
{
    const auto known = std::ranges::find(m_windows, window,
                                         [](const auto &each) { return each.get(); });
    if (known == m_windows.end())
        return;
    // It is still in the middle of closing.
    known->release()->deleteLater();
    m_windows.erase(known);
}

QList<SessionWindowController *> WindowManager::sessionWindowControllers() const
{
    QList<SessionWindowController *> windows;
    for (const auto &window : m_windows)
        windows.append(window.get());
    return windows;
}

bool WindowManager::commitEditing()
{
    bool committed = true;
    for (const auto &window : m_windows)
        committed = window->sessionDetailViewController->commitEditing() && committed;
    return committed;
}

void WindowManager::endEditing()
{
    for (const auto &window : m_windows)
        window->sessionDetailViewController->endEditing();
}

} // namespace tembra
