#pragma once

#include "Model/Session.h"

#include <QObject>
#include <QString>

#include <memory>

namespace tembra {

class Counterpart;

/// One row of the meetings in the tag browser. Its texts follow the meeting, its teammate and its
/// tags as long as another owner holds the meeting.
class SessionViewModel final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(QString dateString READ dateString WRITE setDateString NOTIFY dateStringChanged)
    Q_PROPERTY(QString tagSummary READ tagSummary WRITE setTagSummary NOTIFY tagSummaryChanged)
    Q_PROPERTY(std::shared_ptr<tembra::Session> session READ session CONSTANT)

public:
    explicit SessionViewModel(const std::shared_ptr<Session> &session, QObject *parent = nullptr);

    /// The teammate's name, a blank, and the ratings' emoji.
    QString title() const { return m_title; }
    void setTitle(const QString &title);
    /// The meeting's date in the user's words; empty without a date.
    QString dateString() const { return m_dateString; }
    void setDateString(const QString &dateString);
    /// The titles of the meeting's tags, in their order.
    QString tagSummary() const { return m_tagSummary; }
    void setTagSummary(const QString &tagSummary);
    /// Null once the meeting was deleted, or no other owner holds it.
    std::shared_ptr<Session> session() const;

Q_SIGNALS:
    void titleChanged();
    void dateStringChanged();
    void tagSummaryChanged();

private:
    void refresh();
    void observe(const std::shared_ptr<Counterpart> &counterpart);

    QString m_title;
    QString m_dateString;
    QString m_tagSummary;
    std::weak_ptr<Session> m_session;
    std::shared_ptr<Counterpart> m_counterpart; ///< Owned, for its name is observed.
};

} // namespace tembra
