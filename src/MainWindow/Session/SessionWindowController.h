#pragma once

#include "Model/Session.h"

#include <QMainWindow>

#include <memory>

namespace tembra {

class ManagedObjectContext;
class NotificationCenter;
class PropertyObservation;
class SessionDetailViewController;
class Tag;
struct JournalServices;

/// A meeting in a window of its own.
class SessionWindowController final : public QMainWindow
{
    Q_OBJECT

public:
    SessionWindowController(const std::shared_ptr<Session> &session, ManagedObjectContext &context,
                            const JournalServices &services, NotificationCenter &notifications);
    ~SessionWindowController() override;

    std::shared_ptr<Session> session() const { return m_session; }
    SessionDetailViewController *sessionDetailViewController;
    QWidget *containerView;

Q_SIGNALS:
    /// The user asked for the tag browser, with @p tag selected unless it is null.
    void tagBrowserRequested(const std::shared_ptr<tembra::Tag> &tag);
    /// The window has been closed and will not come back.
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildLayout();
    void windowDidLoad();
    void observeCounterpart();
    void updateTitle();

    std::shared_ptr<Session> m_session;
    std::shared_ptr<Counterpart> m_counterpart; ///< Whose name the title shows.
    std::unique_ptr<PropertyObservation> m_nameObservation;
};

} // namespace tembra
