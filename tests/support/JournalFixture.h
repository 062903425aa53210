#pragma once

#include "Foundation/Time/CalendarArithmetic.h"
#include "Foundation/Time/DateFormatting.h"
#include "Model/CoreDataInterface.h"
#include "Model/Counterpart.h"
#include "Model/DefaultsManager.h"
#include "Model/DerivedTexts.h"
#include "Model/JournalServices.h"
#include "Model/Note.h"
#include "Model/NotificationCenter.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Undo/UndoManager.h"
#include "support/FixedClock.h"

#include <QTemporaryDir>

#include <memory>

namespace tembra {

/// A moment of the Gregorian calendar in UTC.
Date utc(int year, int month, int day, int hour = 12, int minute = 0);

constexpr double secondsPerDay = 86400;

/// A whole journal in a temporary folder, as the program makes one: settings, a real store and the
/// services around it, in US English and UTC, at a time that stands still.
class JournalFixture
{
public:
    /// @p vfs is the SQLite file system the store is on; empty for the usual one.
    explicit JournalFixture(Date now = utc(2026, 11, 20), const QByteArray &vfs = {});
    ~JournalFixture();
    Q_DISABLE_COPY_MOVE(JournalFixture)

    CoreDataInterface &coreData() const { return *m_coreData; }
    ManagedObjectContext &context() const { return m_coreData->viewContext(); }
    /// The path of a file in the journal's folder.
    QString filePath(const QString &name) const { return directory.filePath(name); }

    /// Closes the store and opens it again, as quitting and starting do. Records, views and
    /// anything else over the store must be gone by then.
    void reopen();

    std::shared_ptr<Counterpart> addCounterpart(const QString &name) const;
    std::shared_ptr<Session> addSession(const std::shared_ptr<Counterpart> &counterpart,
                                        Date date) const;
    /// A meeting that many days before now.
    std::shared_ptr<Session> addSessionDaysAgo(const std::shared_ptr<Counterpart> &counterpart,
                                               double days) const;
    /// Puts a tag on a meeting: the one of this name and emoji, made where there is none.
    std::shared_ptr<Tag> addTag(const std::shared_ptr<Session> &session, const QString &name,
                                const QString &emoji) const;
    std::shared_ptr<Note> note(const std::shared_ptr<Session> &session,
                               NoteIdentifier identifier) const;
    void write(const std::shared_ptr<Session> &session, NoteIdentifier identifier,
               const QString &text) const;
    /// All teammates as the store has them now, by name.
    QList<std::shared_ptr<Counterpart>> counterparts() const;
    /// Tells now what changed and saves: the start of a test. Only from the first call on are edits
    /// recorded for undo.
    void settle();

    QTemporaryDir directory;
    FixedClock clock;
    NotificationCenter notifications;
    DefaultsManager defaults;
    CalendarArithmetic calendar;
    DateFormatting dates;
    DerivedTexts derivedTexts;
    JournalServices services;

private:
    void open();

    QByteArray m_vfs;
    std::unique_ptr<CoreDataInterface> m_coreData;
    std::unique_ptr<UndoManager::Suspension> m_setup; ///< Until settle().
};

} // namespace tembra
