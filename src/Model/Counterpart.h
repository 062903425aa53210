#pragma once

#include "Foundation/Result.h"
#include "Model/JournalAttribute.h"
#include "Store/Objects/ManagedObject.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace tembra {

class FetchedResultsController;
class JsonDecoder;
class JsonEncoder;
class Session;
class Tag;
struct JournalServices;

/// A teammate whom the user meets one-on-one.
class Counterpart : public ManagedObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(tembra::OptionalDate lastUpdate READ lastUpdate WRITE setLastUpdate NOTIFY
                   lastUpdateChanged)
    Q_PROPERTY(QList<std::shared_ptr<tembra::Session>> sessions READ sessions NOTIFY sessionsChanged)
    Q_PROPERTY(int daysSinceLastSession READ daysSinceLastSession NOTIFY derivedChanged)
    Q_PROPERTY(QString recentSessionSummary READ recentSessionSummary NOTIFY derivedChanged)
    Q_PROPERTY(QString recentSessionTagSummary READ recentSessionTagSummary NOTIFY derivedChanged)

public:
    enum Property { nameProperty, emailProperty, lastUpdateProperty, sessionsProperty };
    Q_ENUM(Property)
    static constexpr std::array attributes{
        JournalAttribute{nameProperty, "name", AttributeType::Text},
        JournalAttribute{emailProperty, "email", AttributeType::Text, InBackup::No},
        JournalAttribute{lastUpdateProperty, "lastUpdate", AttributeType::Date, InBackup::No},
    };

    explicit Counterpart(const JournalServices &services);
    ~Counterpart() override;
    static QByteArray entityName() { return "Counterpart"; }

    QString name() const { return text(nameProperty); }
    void setName(const QString &name) { setText(nameProperty, name); }
    QString email() const { return text(emailProperty); }
    void setEmail(const QString &email) { setText(emailProperty, email); }
    OptionalDate lastUpdate() const { return date(lastUpdateProperty); }
    void setLastUpdate(OptionalDate lastUpdate) { setDate(lastUpdateProperty, lastUpdate); }
    /// All meetings with the teammate, in no particular order.
    QList<std::shared_ptr<Session>> sessions() const;

    /// Names the teammate in the backup it was read from; kept in memory only.
    QString importID;

    /// Writes the teammate with all meetings as it stands in a backup.
    Result<void> encode(JsonEncoder &encoder) const;
    /// Makes a teammate of the one in a backup, with all meetings. @p didDecodeSession is called
    /// after each of them, and may stop the decoder.
    static std::shared_ptr<Counterpart> decode(JsonDecoder &decoder,
                                               const std::function<void()> &didDecodeSession = {});

    /// The meeting with the latest date; null when no meeting has one.
    std::shared_ptr<Session> mostRecentSession() const;
    /// Complete days from the most recent meeting to now; -1 when there is none.
    int daysSinceLastSession() const;
    /// The most recent meeting in one line, marked when it is longer ago than the user wants;
    /// "No sessions" without one.
    QString recentSessionSummary() const;
    /// The tag emoji of the most recent meeting; empty without one.
    QString recentSessionTagSummary() const;
    /// True when the most recent meeting is longer ago than the user wants.
    bool isOverdue() const;

    /// The teammate's meetings, live, newest first; see JournalQueries::sessions(). Not yet fetched.
    std::unique_ptr<FetchedResultsController> sessionsResultController(
        const QList<std::shared_ptr<Tag>> &tags = {},
        const std::optional<QString> &searchText = {}) const;

    /// Forgets what was derived from the teammate's meetings, and says so.
    void invalidateDerived();

Q_SIGNALS:
    void nameChanged();
    void emailChanged();
    void lastUpdateChanged();
    void sessionsChanged();

protected:
    void awake() override;

private:
    std::shared_ptr<Session> fetchMostRecentSession() const;

    const JournalServices &m_services;
    /// The most recent meeting once it was asked for; the inner pointer may be null.
    mutable std::optional<std::shared_ptr<Session>> m_mostRecentSession;
};

} // namespace tembra
