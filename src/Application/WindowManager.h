#pragma once

#include <QList>
#include <QObject>

#include <functional>
#include <memory>
#include <vector>

class QMainWindow;

namespace tembra {

class CoreDataInterface;
class NotificationCenter;
class Session;
class SessionWindowController;
class Tag;
struct JournalServices;

/// The meetings that are open in windows of their own: at most one window each, kept while it is
/// shown, and closed when its meeting is deleted.
class WindowManager final : public QObject
{
    Q_OBJECT

public:
    /// @p prepareWindow gives each new window what all windows of the program have.
    WindowManager(CoreDataInterface &coreData, const JournalServices &services,
                  NotificationCenter &notifications,
                  std::function<void(SessionWindowController &)> prepareWindow,
                  QObject *parent = nullptr);
    ~WindowManager() override;

    /// The meeting's window: the one it has, else a new one, not yet shown.
    SessionWindowController &windowController(const std::shared_ptr<Session> &session);
    /// Shows the meeting's window in front of all others, with the keyboard in it.
    void open(const std::shared_ptr<Session> &session);
    QList<SessionWindowController *> sessionWindowControllers() const;

    /// Edits in progress go into their meetings, without ending. False when one refuses.
    bool commitEditing();
    /// The same, and they end.
    void endEditing();

Q_SIGNALS:
    /// The user wants to see a tag among all the others; absent, just those.
    void tagBrowserRequested(const std::shared_ptr<tembra::Tag> &tag);

private:
    void release(SessionWindowController *window);

    CoreDataInterface &m_coreData;
    const JournalServices &m_services;
    NotificationCenter &m_notifications;
    std::function<void(SessionWindowController &)> m_prepareWindow;
    std::vector<std::unique_ptr<SessionWindowController>> m_windows;
};

} // namespace tembra
