#pragma once

#include "AlertReader.h"
#include "Application/AppDelegate.h"
#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Application/UnixSignals.h"
#include "MainWindow/MainWindow.h"
#include "Model/Counterpart.h"
#include "Model/JournalModel.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "support/FaultVfs.h"
#include "Toolkit/ProgressSheet.h"

#include <QElapsedTimer>

namespace tembra {

/// The program from its services up, in this process, on a disk that can be told to fail.
class ProgramInProcess
{
public:
    static constexpr int goesOn = 99;
    /// For an alert that is to come, in milliseconds.
    static constexpr int longestWait = 10'000;

    /// @p beforeLaunch may break the disk once the store is open.
    explicit ProgramInProcess(const QString &directory,
                              const std::function<void(FaultVfs &)> &beforeLaunch = {})
        : m_folder(*DataFolder::forOptions({.dataDirectory = directory}))
        , services(m_folder)
    {
        auto container = std::make_unique<PersistentContainer>(
            u"Vum"_s, makeJournalModel(services.journal),
            PersistentContainer::Options{.directory = directory,
                                         .clock = &services.clock,
                                         .vfs = disk.name()});
        if (!container->loadPersistentStores())
            qFatal("The store does not open");
        services.coreData.setPersistentContainer(std::move(container));
        delegate = std::make_unique<AppDelegate>(services, m_folder);
        QObject::connect(&m_signals, &UnixSignals::terminationRequested, delegate.get(),
                         &AppDelegate::terminate);
        if (beforeLaunch)
            beforeLaunch(disk);
        delegate->applicationDidFinishLaunching();
        window = delegate->window();
    }

    /// Runs the program, does @p action and answers alerts, until nothing more comes. The exit status,
    /// or goesOn.
    int run(const std::function<void()> &action, const QList<AlertReader::Answer> &answers = {})
    {
        alerts = std::make_unique<AlertReader>(answers, nullptr);
        QTimer::singleShot(0, window, action);
        QElapsedTimer running;
        QElapsedTimer calm;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, window, [&] {
            const bool isAwaited = alerts->messages.size() < answers.size()
                                   && !running.hasExpired(longestWait);
            if (QApplication::activeModalWidget() || window->findChild<ProgressSheet *>())
                calm.start();
            else if (calm.hasExpired(300) && !isAwaited)
                QCoreApplication::exit(goesOn);
        });
        running.start();
        calm.start();
        watch.start(50);
        return QCoreApplication::exec();
    }

    void addTeammate(const QString &name)
    {
        services.coreData.viewContext().insert<Counterpart>()->setName(name);
    }
    void breakDisk() { disk.failAt(1, FaultVfs::Fault::DiskFull, FaultVfs::Lasting::ForGood); }
    bool hasChanges() { return services.coreData.viewContext().hasChanges(); }
    template<typename Child>
    Child *find(const QString &name)
    {
        return window->findChild<Child *>(name);
    }

    FaultVfs disk;

private:
    DataFolder m_folder;
    UnixSignals m_signals;

public:
    ProgramServices services;
    std::unique_ptr<AppDelegate> delegate;
    MainWindow *window = nullptr;
    std::unique_ptr<AlertReader> alerts;
};

} // namespace tembra
