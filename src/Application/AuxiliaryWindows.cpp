#include "Application/AuxiliaryWindows.h"

#include "Application/ProgramServices.h"
#include "MainWindow/JournalMenus.h"
#include "MainWindow/Session/SessionWindowController.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"
#include "Tags/TagWindowController.h"
#include "Toolkit/Emoji/EmojiPalette.h"
#include "Toolkit/WindowActivation.h"

#include <QMenu>
#include <QMenuBar>

namespace tembra {

AuxiliaryWindows::AuxiliaryWindows(ProgramServices &services, const QString &windowStateFile,
                                   std::function<void()> quitRequested, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_recentEmoji(windowStateFile)
    , m_quitRequested(std::move(quitRequested))
    , m_windowManager(services.coreData, services.journal, services.notifications,
                      [this](SessionWindowController &window) { prepare(window); })
{
    connect(&m_windowManager, &WindowManager::tagBrowserRequested, this,
            &AuxiliaryWindows::showTags);
    connect(services.coreData.viewContext().undoManager(), &UndoManager::willChangeObject, this,
            [this](const ObjectID &id, int) { reveal(id); });
}

AuxiliaryWindows::~AuxiliaryWindows() = default;

void AuxiliaryWindows::prepare(QMainWindow &window)
{
    addJournalMenus(
        window, m_services.coreData, [this] { return m_services.coreData.commitEditing(); },
        m_quitRequested);
}

TagWindowController &AuxiliaryWindows::tagsWindowController()
{
    if (m_tags)
        return *m_tags;
    m_tags = std::make_unique<TagWindowController>(
        m_services.coreData.viewContext(),
        [this](QWidget *sender, const std::function<void(const QString &)> &insert) {
            EmojiPalette::orderFrontCharacterPalette(sender, m_recentEmoji, insert);
        },
        [this](const std::shared_ptr<Session> &session) { m_windowManager.open(session); });
    prepare(*m_tags);
    m_tags->addTagCommandsTo(
        *m_tags->menuBar()->addMenu(TagWindowController::tr("&Tag", "Menu of the tag window")));
    return *m_tags;
}

void AuxiliaryWindows::showTags(const std::shared_ptr<Tag> &tag)
{
    TagWindowController &window = tagsWindowController();
    bringToFront(window);
    if (tag)
        window.selectTag(tag);
}

void AuxiliaryWindows::reveal(const ObjectID &id)
{
    const ObjectModel &model = m_services.coreData.persistentContainer().model();
    if (m_tags && m_tags->isVisible() && id.entity == model.entityIndex(Tag::entityName()))
        m_tags->reveal(id);
}

bool AuxiliaryWindows::commitEditing()
{
    const bool tagsCommitted = !m_tags || m_tags->commitEditing();
    return m_windowManager.commitEditing() && tagsCommitted;
}

void AuxiliaryWindows::endEditing()
{
    m_windowManager.endEditing();
    if (m_tags)
        m_tags->commitEditing();
}

} // namespace tembra
