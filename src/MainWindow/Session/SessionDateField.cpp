#include "MainWindow/Session/SessionDateField.h"

#include "Foundation/Time/Clock.h"
#include "Model/Session.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Theme.h"

#include <QDateTimeEdit>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

// The moments the control can show; others appear as the nearest of these, and are not changed.
QDateTime earliestMoment()
{
    return {QDate(100, 1, 1), QTime(0, 0)};
}

QDateTime latestMoment()
{
    return {QDate(9999, 12, 31), QTime(23, 59)};
}

QDateTime shownMoment(Date date)
{
    const double milliseconds = std::clamp(date.toUnixMilliseconds(),
                                           double(earliestMoment().toMSecsSinceEpoch()),
                                           double(latestMoment().toMSecsSinceEpoch()));
    return QDateTime::fromMSecsSinceEpoch(qint64(milliseconds));
}

/// The locale's short format, but with the whole year and without seconds.
QString displayFormat(const QLocale &locale)
{
    QString format = locale.dateTimeFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"_L1))
        format.replace("yy"_L1, "yyyy"_L1);
    return format.remove(":ss"_L1);
}

} // namespace

/// Lets its owner read what is typed without ending the edit.
class SessionDateTimeEdit final : public QDateTimeEdit
{
public:
    using QDateTimeEdit::QDateTimeEdit;

    /// What the text says, should it be a whole date; else what was shown before.
    QDateTime typedMoment() const
    {
        QString typed = text();
        int position = lineEdit()->cursorPosition();
        return validate(typed, position) == QValidator::Acceptable ? dateTimeFromText(typed)
                                                                   : dateTime();
    }

protected:
    void wheelEvent(QWheelEvent *event) override
    {
        // Turning the wheel over the field in passing must not change the date.
        if (hasFocus())
            QDateTimeEdit::wheelEvent(event);
        else
            event->ignore();
    }
};

SessionDateField::SessionDateField(const Clock &clock, QWidget *parent)
    : QStackedWidget(parent)
    , m_clock(clock)
    , m_edit(new SessionDateTimeEdit)
{
    buildLayout();
    // A date counts when it is whole: each digit on its own would reorder the meetings.
    connect(m_edit, &QDateTimeEdit::dateTimeChanged, this, &SessionDateField::storeDate);
}

SessionDateField::~SessionDateField() = default;

void SessionDateField::buildLayout()
{
    m_edit->setObjectName(u"dateField"_s);
    m_edit->setKeyboardTracking(false);
    m_edit->setCalendarPopup(true);
    m_edit->setFocusPolicy(Qt::StrongFocus);
    m_edit->setDateTimeRange(earliestMoment(), latestMoment());
    m_edit->setDisplayFormat(displayFormat(locale()));
    m_edit->setAccessibleName(tr("Date of the meeting"));
    addWidget(m_edit);
    addWidget(buildNoDatePage());
    setFocusPolicy(m_edit->focusPolicy()); // Else the label's mnemonic would not lead here.
    setFocusProxy(m_edit);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

QWidget *SessionDateField::buildNoDatePage()
{
    auto *page = new QWidget;
    auto *label = new EmojiLabel(tr("No date", "A meeting without a date"));
    label->setSecondary(true);
    auto *button = new QPushButton(tr("Set Date", "Button: gives a meeting without a date one"));
    button->setObjectName(u"setDateButton"_s);
    connect(button, &QPushButton::clicked, this, &SessionDateField::setDateToNow);
    auto *layout = new QHBoxLayout(page);
    layout->setContentsMargins({});
    layout->setSpacing(theme::relatedSpacing);
    layout->addWidget(label, 1);
    layout->addWidget(button);
    return page;
}

void SessionDateField::setSession(const std::shared_ptr<Session> &session)
{
    commitEditing();
    if (m_session)
        m_session->disconnect(this);
    m_session = session;
    if (m_session)
        connect(m_session.get(), &Session::dateChanged, this, &SessionDateField::followDate);
    showDate();
}

void SessionDateField::showDate()
{
    const OptionalDate date = m_session ? m_session->date() : OptionalDate();
    setCurrentIndex(date || !m_session ? 0 : 1);
    if (!date)
        return;
    const QSignalBlocker blocker(m_edit);
    m_edit->setDateTime(shownMoment(*date));
}

void SessionDateField::followDate()
{
    // What stands there already is not set again: that would move the caret.
    const OptionalDate date = m_session->date();
    if (!date || currentIndex() != 0 || shownMoment(*date) != m_edit->typedMoment())
        showDate();
}

void SessionDateField::storeDate(const QDateTime &moment)
{
    // What is shown is what the meeting's date looks like here: only another moment is a change.
    if (!m_session || !m_session->date() || moment == shownMoment(*m_session->date()))
        return;
    m_session->setDate(Date::fromUnixMilliseconds(double(moment.toMSecsSinceEpoch())));
}

void SessionDateField::commitEditing()
{
    if (m_session && m_session->date())
        storeDate(m_edit->typedMoment());
}

void SessionDateField::setDateToNow()
{
    m_session->setDate(m_clock.now());
    m_edit->setFocus();
}

} // namespace tembra
