#include "MainWindow/Session/SessionDateField.h"

#include "Foundation/Time/Clock.h"
#include "MainWindow/Session/DateTextParser.h"
#include "Model/Session.h"
#include "Toolkit/Emoji/EmojiLabel.h"
#include "Toolkit/Icons.h"
#include "Toolkit/PlainToolTip.h"
#include "Toolkit/Popover.h"
#include "Toolkit/Theme.h"

#include <QAction>
#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextCharFormat>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

// Dates beyond these are shown as the nearest of them, and are not changed.
QDateTime earliestMoment()
{
    return {QDate(1, 1, 1), QTime(0, 0)};
}

QDateTime latestMoment()
{
    return {QDate(9999, 12, 31), QTime(23, 59)};
}

/// A moment whose text is about as wide as any.
QDateTime wideMoment()
{
    return {QDate(2888, 12, 28), QTime(22, 58)};
}

QDateTime dateTimeOf(Date date)
{
    const double milliseconds = std::clamp(date.toUnixMilliseconds(),
                                           double(earliestMoment().toMSecsSinceEpoch()),
                                           double(latestMoment().toMSecsSinceEpoch()));
    return QDateTime::fromMSecsSinceEpoch(qint64(milliseconds));
}

/// A part of a shown date: the letter of its field in the format, and its place in the text.
struct DatePart
{
    QChar field;
    qsizetype start;
    qsizetype length;
};

/// The parts of a text that was made with a format; fields and texts follow one another alike.
QList<DatePart> partsOf(const QString &text, const QString &format)
{
    static const QRegularExpression field(u"'[^']*'|AP|([dMyhHm])\\1*|[^\\W\\d_]+"_s,
                                          QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression part(u"\\d+|[\\p{L}\\p{M}]+"_s,
                                         QRegularExpression::UseUnicodePropertiesOption);
    QList<DatePart> parts;
    auto texts = part.globalMatch(text);
    for (auto fields = field.globalMatch(format); fields.hasNext() && texts.hasNext();) {
        const QRegularExpressionMatch match = texts.next();
        parts.append(
            {fields.next().captured().front(), match.capturedStart(), match.capturedLength()});
    }
    return parts;
}

QDateTime stepped(const QDateTime &moment, QChar field, int steps)
{
    constexpr int secondsPerHour = 3600;
    switch (field.unicode()) {
    case u'y':
        return moment.addYears(steps);
    case u'M':
        return moment.addMonths(steps);
    case u'h':
    case u'H':
        return moment.addSecs(steps * secondsPerHour);
    case u'm':
        return moment.addSecs(steps * 60);
    case u'A':
        return moment.addSecs(steps * 12 * secondsPerHour);
    default:
        return moment.addDays(steps);
    }
}

QCalendarWidget *makeCalendar(const QLocale &locale, QDate selected, QDate today)
{
    auto *calendar = new QCalendarWidget;
    calendar->setLocale(locale);
    calendar->setFirstDayOfWeek(locale.firstDayOfWeek());
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar->setDateRange(earliestMoment().date(), latestMoment().date());
    calendar->setDateEditEnabled(false);
    calendar->setSelectedDate(selected);
    QTextCharFormat todaysFormat;
    todaysFormat.setFontWeight(QFont::Bold);
    todaysFormat.setFontUnderline(true);
    calendar->setDateTextFormat(today, todaysFormat);
    return calendar;
}

} // namespace

SessionDateField::SessionDateField(const Clock &clock, QWidget *parent)
    : QStackedWidget(parent)
    , m_clock(clock)
    , m_format(DateTextParser::displayFormat(locale()))
    , m_edit(new QLineEdit)
{
    buildLayout();
    connect(m_edit, &QLineEdit::editingFinished, this, &SessionDateField::finishEditing);
}

SessionDateField::~SessionDateField() = default;

void SessionDateField::buildLayout()
{
    m_edit->setObjectName(u"dateField"_s);
    m_edit->setAccessibleName(tr("Date of the meeting"));
    m_edit->installEventFilter(this);
    auto *calendar = new QAction(icons::icon(icons::Name::Calendar),
                                 tr("Show Calendar", "Button in the field for a date"), m_edit);
    calendar->setObjectName(u"showCalendarAction"_s);
    connect(calendar, &QAction::triggered, this, &SessionDateField::openCalendar);
    m_edit->addAction(calendar, QLineEdit::TrailingPosition);
    const int button = m_edit->sizeHint().height();
    m_edit->setFixedWidth(m_edit->fontMetrics().horizontalAdvance(textOf(wideMoment())) + button
                          + 2 * theme::relatedSpacing);
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

QString SessionDateField::textOf(const QDateTime &moment) const
{
    return locale().toString(moment, m_format);
}

void SessionDateField::showMoment(const QDateTime &moment)
{
    m_shownMoment = moment;
    m_edit->setText(textOf(moment));
}

void SessionDateField::showDate()
{
    const OptionalDate date = m_session ? m_session->date() : OptionalDate();
    setCurrentIndex(date || !m_session ? 0 : 1);
    if (date)
        showMoment(dateTimeOf(*date));
    else
        m_edit->clear();
}

void SessionDateField::followDate()
{
    // A text that stands for this date already is not set again, which would move the caret.
    const OptionalDate date = m_session->date();
    const auto typed = currentIndex() == 0 ? typedMoment() : std::nullopt;
    if (date && typed && textOf(*typed) == textOf(dateTimeOf(*date)))
        m_shownMoment = dateTimeOf(*date);
    else
        showDate();
}

std::optional<QDateTime> SessionDateField::typedMoment() const
{
    if (m_edit->text() == textOf(m_shownMoment))
        return m_shownMoment;
    const int year = dateTimeOf(m_clock.now()).date().year();
    const auto parsed = DateTextParser(locale(), year).parse(m_edit->text());
    if (!parsed)
        return std::nullopt;
    const QTime shown = m_shownMoment.time();
    const QTime time = parsed->time.value_or(shown);
    const bool isSameMinute = time == QTime(shown.hour(), shown.minute());
    return QDateTime(parsed->date, isSameMinute ? shown : time);
}

void SessionDateField::storeMoment(const QDateTime &moment)
{
    if (m_session && m_session->date() && moment != dateTimeOf(*m_session->date()))
        m_session->setDate(Date::fromUnixMilliseconds(double(moment.toMSecsSinceEpoch())));
}

void SessionDateField::commitEditing()
{
    if (!m_session || !m_session->date())
        return;
    if (const auto moment = typedMoment())
        storeMoment(*moment);
}

void SessionDateField::finishEditing()
{
    if (!m_session || !m_session->date())
        return;
    if (const auto moment = typedMoment())
        storeMoment(*moment);
    else
        showPlainToolTip(mapToGlobal(rect().bottomLeft()),
                         tr("This is no date. Dates are written as in %1.",
                            "Shown when a typed date is refused; %1 is a date")
                             .arg(textOf(m_shownMoment)),
                         m_edit);
    const OptionalDate date = m_session->date();
    if (date && m_edit->text() != textOf(dateTimeOf(*date)))
        showDate();
}

void SessionDateField::setDateToNow()
{
    m_session->setDate(m_clock.now());
    m_edit->setFocus();
}

bool SessionDateField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_edit && event->type() == QEvent::KeyPress)
        return handleKey(*static_cast<QKeyEvent *>(event));
    return QStackedWidget::eventFilter(watched, event);
}

bool SessionDateField::handleKey(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool isPlain = modifiers == Qt::NoModifier;
    const bool opensCalendar = event.key() == Qt::Key_Down && modifiers == Qt::AltModifier;
    if (opensCalendar || (event.key() == Qt::Key_F4 && isPlain))
        openCalendar();
    else if (isPlain && event.key() == Qt::Key_Up)
        stepBy(1);
    else if (isPlain && event.key() == Qt::Key_Down)
        stepBy(-1);
    else if (isPlain && event.key() == Qt::Key_Escape && m_edit->isModified())
        showDate();
    else
        return false;
    return true;
}

void SessionDateField::stepBy(int steps)
{
    finishEditing();
    const qsizetype caret = m_edit->hasSelectedText() ? m_edit->selectionStart()
                                                      : m_edit->cursorPosition();
    const QList<DatePart> parts = partsOf(m_edit->text(), m_format);
    const auto part = std::ranges::find_if(parts, [caret](const DatePart &each) {
        return caret <= each.start + each.length;
    });
    const QDateTime moment = stepped(m_shownMoment, part == parts.end() ? u'd' : part->field,
                                     steps);
    if (moment < earliestMoment() || moment > latestMoment())
        return;
    storeMoment(moment);
    showDate();
    if (part == parts.end())
        return;
    const DatePart after = partsOf(m_edit->text(), m_format).value(part - parts.begin());
    m_edit->setSelection(int(after.start), int(after.length));
}

void SessionDateField::openCalendar()
{
    finishEditing();
    if (!m_session || !m_session->date())
        return;
    QCalendarWidget *calendar = makeCalendar(locale(), m_shownMoment.date(),
                                             dateTimeOf(m_clock.now()).date());
    calendar->setAccessibleName(tr("Calendar", "Accessible name of the calendar of a date field"));
    auto *popover = new Popover(this);
    popover->setContent(calendar);
    const auto choose = [this, popover](QDate date) {
        storeMoment(QDateTime(date, m_shownMoment.time()));
        showDate();
        popover->close();
    };
    connect(calendar, &QCalendarWidget::activated, this, choose);
    connect(calendar, &QCalendarWidget::clicked, this, choose);
    connect(popover, &Popover::closed, popover, &QObject::deleteLater);
    popover->showRelativeTo(m_edit, Qt::BottomEdge);
    calendar->setFocus();
}

} // namespace tembra
