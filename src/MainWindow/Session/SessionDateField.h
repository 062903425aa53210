#pragma once

#include "Foundation/Time/Date.h"

#include <QStackedWidget>

#include <memory>

namespace tembra {

class Clock;
class Session;
class SessionDateTimeEdit;

/// The date of a meeting, to look at and to change; where it is missing, a way to set one.
///
/// The control counts whole minutes. A date that the user does not change keeps what lies below.
class SessionDateField final : public QStackedWidget
{
    Q_OBJECT

public:
    explicit SessionDateField(const Clock &clock, QWidget *parent = nullptr);
    ~SessionDateField() override;

    /// What is typed into the field so far goes into the meeting shown before.
    void setSession(const std::shared_ptr<Session> &session);
    /// Writes what is typed, if it is a whole date. Leaves text, caret and focus as they are.
    void commitEditing();

private:
    void buildLayout();
    QWidget *buildNoDatePage();
    void showDate();
    void followDate();
    void storeDate(const QDateTime &moment);
    void setDateToNow();

    const Clock &m_clock;
    SessionDateTimeEdit *m_edit;
    std::shared_ptr<Session> m_session;
};

} // namespace tembra
