#pragma once

#include "Application/WindowManager.h"
#include "Toolkit/Emoji/RecentEmoji.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QMainWindow;

namespace tembra {

class ProgramServices;
class TagWindowController;
struct ObjectID;

/// The windows beside the main one: the tag browser, made on first use and kept, and the windows of
/// single meetings. They reach one another through here.
class AuxiliaryWindows final : public QObject
{
    Q_OBJECT

public:
    /// @p windowStateFile keeps which emoji were used last.
    AuxiliaryWindows(ProgramServices &services, const QString &windowStateFile,
                     std::function<void()> quitRequested, QObject *parent = nullptr);
    ~AuxiliaryWindows() override;

    TagWindowController &tagsWindowController();
    WindowManager &windowManager() { return m_windowManager; }
    /// Brings the tag browser forward; with a tag, this one is the only one selected there.
    void showTags(const std::shared_ptr<Tag> &tag);

    /// Edits in progress go into their records, without ending. False when one refuses.
    bool commitEditing();
    /// The same, and they end.
    void endEditing();

private:
    void prepare(QMainWindow &window);
    void reveal(const ObjectID &id);

    ProgramServices &m_services;
    RecentEmoji m_recentEmoji;
    std::function<void()> m_quitRequested;
    WindowManager m_windowManager;
    std::unique_ptr<TagWindowController> m_tags;
};

} // namespace tembra
