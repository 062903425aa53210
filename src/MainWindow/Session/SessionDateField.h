#pragma once

#include "Foundation/Time/Date.h"

#include <QDateTime>
#include <QStackedWidget>

#include <memory>
#include <optional>

class QKeyEvent;
class QLineEdit;

namespace tembra {

class Clock;
class Popover;
class Session;

/// The date of a meeting: a line in which it is typed or pasted in any form of the locale, and a
/// calendar to pick the day from. A meeting without a date has a button that sets one.
///
/// A typed date is written when the field is left or Return is pressed; the line then shows how it
/// was understood. A text that is no date is refused, and the date stays. Up and Down step the part
/// of the date at the caret; Alt+Down and F4 open the calendar. The field shows minutes; a date that
/// the user does not change keeps its seconds and fractions.
class SessionDateField final : public QStackedWidget
{
    Q_OBJECT

public:
    explicit SessionDateField(const Clock &clock, QWidget *parent = nullptr);
    ~SessionDateField() override;

    /// Writes what is typed into the meeting shown before.
    void setSession(const std::shared_ptr<Session> &session);
    /// Writes what is typed, if it is a date. Leaves text, caret and focus as they are.
    void commitEditing();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildLayout();
    QWidget *buildNoDatePage();
    void finishEditing();
    bool handleKey(const QKeyEvent &event);
    void stepBy(int steps);
    void openCalendar();
    void showDate();
    void followDate();
    void showMoment(const QDateTime &moment);
    QString textOf(const QDateTime &moment) const;
    /// The moment that the text stands for; nothing when the text is no date.
    std::optional<QDateTime> typedMoment() const;
    void storeMoment(const QDateTime &moment);
    void setDateToNow();

    const Clock &m_clock;
    QString m_format;
    QLineEdit *m_edit;
    std::shared_ptr<Session> m_session;
    QDateTime m_shownMoment; ///< As the text would show it when nothing was typed.
};

} // namespace tembra
