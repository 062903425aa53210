#pragma once

#include "Model/JournalAttribute.h"
#include "Model/NoteField.h"
#include "Store/Objects/ManagedObject.h"

#include <QString>

#include <memory>
#include <optional>

namespace tembra {

class JsonDecoder;
class JsonEncoder;
class Session;
struct JournalServices;

/// The text of one note field of a meeting.
class Note : public ManagedObject
{
    Q_OBJECT
    Q_PROPERTY(qint16 identifier READ identifier WRITE setIdentifier NOTIFY identifierChanged)
    Q_PROPERTY(
        QString contentString READ contentString WRITE setContentString NOTIFY contentStringChanged)
    Q_PROPERTY(std::shared_ptr<tembra::Session> session READ session WRITE setSession NOTIFY
                   sessionChanged)
    Q_PROPERTY(QString titleString READ titleString NOTIFY identifierChanged)
    Q_PROPERTY(QString placeholderString READ placeholderString NOTIFY identifierChanged)
    Q_PROPERTY(QString lastDateString READ lastDateString NOTIFY derivedChanged)
    Q_PROPERTY(QString fullLastDateLabel READ fullLastDateLabel NOTIFY derivedChanged)

public:
    using Identifier = NoteIdentifier;
    enum Property { identifierProperty, contentStringProperty, sessionProperty };
    Q_ENUM(Property)
    static constexpr std::array attributes{
        JournalAttribute{identifierProperty, "identifier", AttributeType::Integer16},
        JournalAttribute{contentStringProperty, "contentString", AttributeType::Text},
    };

    explicit Note(const JournalServices &services);
    ~Note() override;
    static QByteArray entityName() { return "Note"; }

    qint16 identifier() const { return integer(identifierProperty); }
    void setIdentifier(qint16 identifier) { setInteger(identifierProperty, identifier); }
    QString contentString() const { return text(contentStringProperty); }
    void setContentString(const QString &content) { setText(contentStringProperty, content); }
    std::shared_ptr<Session> session() const;
    void setSession(const std::shared_ptr<Session> &session);

    QString titleString() const { return noteFieldTitle(identifier()); }
    QString placeholderString() const { return noteFieldPrompt(identifier()); }
    /// When this field was last filled in for the same teammate (this meeting included), as a date;
    /// "Never", or "Failed" when the store could not be asked.
    QString lastDateString() const;
    QString fullLastDateLabel() const;

    /// Writes the note as it stands in a backup.
    void encode(JsonEncoder &encoder) const;
    /// Makes a note, of no meeting, of the one in a backup.
    static std::shared_ptr<Note> decode(JsonDecoder &decoder);

    /// Forgets lastDateString(), and says so.
    void invalidateDerived();

    /// A teammate's latest note of a field that holds text; null when there is none.
    static std::shared_ptr<Note> lastEntry(ManagedObjectContext &context, ObjectID counterpart,
                                           qint16 identifier);

Q_SIGNALS:
    void identifierChanged();
    void contentStringChanged();
    void sessionChanged();

protected:
    void awake() override;

private:
    QString computeLastDateString() const;

    const JournalServices &m_services;
    mutable std::optional<QString> m_lastDateString;
};

} // namespace tembra
