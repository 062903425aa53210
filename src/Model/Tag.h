#pragma once

#include "Model/JournalAttribute.h"
#include "Store/Objects/ManagedObject.h"

#include <QString>

#include <memory>

namespace tembra {

class FetchedResultsController;
class JsonDecoder;
class JsonEncoder;
class Session;
struct JournalServices;

/// A label with an emoji, attached to meetings.
class Tag : public ManagedObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QString emoji READ emoji WRITE setEmoji NOTIFY emojiChanged)
    Q_PROPERTY(tembra::OptionalDate lastUse READ lastUse WRITE setLastUse NOTIFY lastUseChanged)
    Q_PROPERTY(QList<std::shared_ptr<tembra::Session>> sessions READ sessions NOTIFY sessionsChanged)
    Q_PROPERTY(QString titleString READ titleString NOTIFY titleStringChanged)

public:
    enum Property { emojiProperty, nameProperty, lastUseProperty, sessionsProperty };
    Q_ENUM(Property)
    static constexpr std::array attributes{
        JournalAttribute{emojiProperty, "emoji", AttributeType::Text},
        JournalAttribute{nameProperty, "name", AttributeType::Text},
        JournalAttribute{lastUseProperty, "lastUse", AttributeType::Date, InBackup::No},
    };

    explicit Tag(const JournalServices &services);
    static QByteArray entityName() { return "Tag"; }

    QString name() const { return text(nameProperty); }
    void setName(const QString &name) { setText(nameProperty, name); }
    QString emoji() const { return text(emojiProperty); }
    void setEmoji(const QString &emoji) { setText(emojiProperty, emoji); }
    /// When the tag was last put on a meeting.
    OptionalDate lastUse() const { return date(lastUseProperty); }
    void setLastUse(OptionalDate lastUse) { setDate(lastUseProperty, lastUse); }
    QList<std::shared_ptr<Session>> sessions() const;
    void addSession(const Session &session);

    /// Name, one blank, emoji; kept current with both.
    QString titleString() const;

    /// Writes the tag as it stands in a backup.
    void encode(JsonEncoder &encoder) const;
    /// Makes a tag of the one in a backup; it is not merged with others.
    static std::shared_ptr<Tag> decode(JsonDecoder &decoder);
    /// What a new tag has until it is told otherwise.
    static QString defaultEmoji();
    /// The order of tags: by name, then emoji, in code-point order, missing before all else.
    static bool comesBefore(const QString &name, const QString &emoji, const QString &otherName,
                            const QString &otherEmoji);

    /// All meetings that carry the tag, live, newest first. Not yet fetched.
    std::unique_ptr<FetchedResultsController> sessionsResultController() const;

    /// The tag with this name and emoji (both may be missing): the one that is there, else a new one.
    static std::shared_ptr<Tag> findOrCreate(ManagedObjectContext &context, const QString &name,
                                             const QString &emoji);
    /// Every tag, live. Not yet fetched.
    static std::unique_ptr<FetchedResultsController> allTagsResultController(
        ManagedObjectContext &context);

Q_SIGNALS:
    void nameChanged();
    void emojiChanged();
    void lastUseChanged();
    void sessionsChanged();
    void titleStringChanged();

protected:
    void awakeFromInsert() override;
    void awake() override;

private:
    void updateTitleString();

    QString m_titleString;
    QMetaObject::Connection m_nameObservation;
    QMetaObject::Connection m_emojiObservation;
};

} // namespace tembra
