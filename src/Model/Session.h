#pragma once

#include "Foundation/Result.h"
#include "Model/JournalAttribute.h"
#include "Store/Objects/ManagedObject.h"

#include <QString>

#include <functional>
#include <memory>

namespace tembra {

class Counterpart;
class JsonDecoder;
class JsonEncoder;
class Note;
class Tag;
struct JournalServices;

/// One meeting with a teammate.
class Session : public ManagedObject
{
    Q_OBJECT
    Q_PROPERTY(tembra::OptionalDate date READ date WRITE setDate NOTIFY dateChanged)
    Q_PROPERTY(qint16 flag READ flag WRITE setFlag NOTIFY flagChanged)
    Q_PROPERTY(qint16 personalSentiment READ personalSentiment WRITE setPersonalSentiment NOTIFY
                   personalSentimentChanged)
    Q_PROPERTY(qint16 meetingSentiment READ meetingSentiment WRITE setMeetingSentiment NOTIFY
                   meetingSentimentChanged)
    Q_PROPERTY(qint16 counterpartSentiment READ counterpartSentiment WRITE setCounterpartSentiment
                   NOTIFY counterpartSentimentChanged)
    Q_PROPERTY(std::shared_ptr<tembra::Counterpart> counterpart READ counterpart WRITE
                   setCounterpart NOTIFY counterpartChanged)
    Q_PROPERTY(QList<std::shared_ptr<tembra::Note>> notes READ notes NOTIFY notesChanged)
    Q_PROPERTY(QList<std::shared_ptr<tembra::Tag>> tags READ tags NOTIFY tagsChanged)
    Q_PROPERTY(QString emojiSummary READ emojiSummary NOTIFY derivedChanged)
    Q_PROPERTY(QString emojiColumn READ emojiColumn NOTIFY derivedChanged)
    Q_PROPERTY(QString sessionSummary READ sessionSummary NOTIFY derivedChanged)
    Q_PROPERTY(QString tagEmojiSummary READ tagEmojiSummary NOTIFY derivedChanged)

public:
    enum Property {
        dateProperty,
        flagProperty,
        counterpartSentimentProperty,
        meetingSentimentProperty,
        personalSentimentProperty,
        counterpartProperty,
        notesProperty,
        tagsProperty
    };
    Q_ENUM(Property)
    static constexpr std::array attributes{
        JournalAttribute{dateProperty, "date", AttributeType::Date},
        JournalAttribute{flagProperty, "flag", AttributeType::Integer16},
        JournalAttribute{counterpartSentimentProperty, "counterpartSentiment",
                         AttributeType::Integer16},
        JournalAttribute{meetingSentimentProperty, "meetingSentiment", AttributeType::Integer16},
        JournalAttribute{personalSentimentProperty, "personalSentiment", AttributeType::Integer16},
    };

    explicit Session(const JournalServices &services);
    ~Session() override;
    static QByteArray entityName() { return "Session"; }

    OptionalDate date() const { return ManagedObject::date(dateProperty); }
    void setDate(OptionalDate date) { ManagedObject::setDate(dateProperty, date); }
    /// Non-zero marks the meeting in journals of old; flags become tags at the next start.
    qint16 flag() const { return integer(flagProperty); }
    void setFlag(qint16 flag) { setInteger(flagProperty, flag); }
    /// The user's own mood, a value of SentimentScale::personal().
    qint16 personalSentiment() const { return integer(personalSentimentProperty); }
    void setPersonalSentiment(qint16 value) { setInteger(personalSentimentProperty, value); }
    /// The quality of the meeting, a value of SentimentScale::meeting().
    qint16 meetingSentiment() const { return integer(meetingSentimentProperty); }
    void setMeetingSentiment(qint16 value) { setInteger(meetingSentimentProperty, value); }
    /// The teammate's mood, a value of SentimentScale::personal().
    qint16 counterpartSentiment() const { return integer(counterpartSentimentProperty); }
    void setCounterpartSentiment(qint16 value) { setInteger(counterpartSentimentProperty, value); }

    std::shared_ptr<Counterpart> counterpart() const;
    void setCounterpart(const std::shared_ptr<Counterpart> &counterpart);
    /// The notes, in no particular order; see sortedNotes().
    QList<std::shared_ptr<Note>> notes() const;
    /// The tags, in no particular order; see sortedTags().
    QList<std::shared_ptr<Tag>> tags() const;
    void addTag(const Tag &tag);
    void removeTag(const Tag &tag);

    /// Names the meeting in the backup it was read from; kept in memory only.
    QString importID;

    /// Writes the meeting with its notes and tags as it stands in a backup.
    Result<void> encode(JsonEncoder &encoder) const;
    /// Makes a meeting, of no teammate, of the one in a backup, with its notes and tags.
    static std::shared_ptr<Session> decode(JsonDecoder &decoder);

    /// Called when the meeting is about to be deleted. While one is set the object stays in memory.
    const std::function<void()> &onDeletion() const { return m_onDeletion; }
    void setOnDeletion(std::function<void()> onDeletion);

    /// The three ratings' emoji with a blank between them; nothing for a value off its scale.
    QString emojiSummary() const;
    /// The same, one below the other.
    QString emojiColumn() const;
    /// Date and ratings in one line.
    QString sessionSummary() const;
    /// The meeting's date in the user's words; empty when missing.
    QString dateText() const;
    /// The notes by field.
    QList<std::shared_ptr<Note>> sortedNotes() const;
    /// The tags by name, then emoji, in code-point order, missing first.
    QList<std::shared_ptr<Tag>> sortedTags() const;
    /// The emoji of sortedTags(), one after the other.
    QString tagEmojiSummary() const;

    /// Says that the derived texts may read differently.
    void invalidateDerived();

Q_SIGNALS:
    void dateChanged();
    void flagChanged();
    void personalSentimentChanged();
    void meetingSentimentChanged();
    void counterpartSentimentChanged();
    void counterpartChanged();
    void notesChanged();
    void tagsChanged();

protected:
    void awakeFromInsert() override;
    void awake() override;
    void prepareForDeletion() override;

private:
    QString joinedEmoji(QChar separator) const;

    const JournalServices &m_services;
    std::function<void()> m_onDeletion;
};

} // namespace tembra
