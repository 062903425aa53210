#include "Tags/SessionViewModel.h"

#include "Foundation/Text/Abbreviation.h"
#include "Model/Counterpart.h"
#include "Model/Tag.h"

#include <QVariant>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString titleOf(const Session &session, const Counterpart *counterpart)
{
    return (counterpart ? singleLine(counterpart->name()) : QString()) + u' '
           + session.emojiSummary();
}

QString titlesOfTags(const Session &session)
{
    QStringList titles;
    for (const std::shared_ptr<Tag> &tag : session.sortedTags())
        titles.append(singleLine(tag->titleString()));
    return titles.join(u", "_s);
}

} // namespace

SessionViewModel::SessionViewModel(const std::shared_ptr<Session> &session, QObject *parent)
    : QObject(parent)
    , m_session(session)
{
    refresh();
    connect(session.get(), &ManagedObject::derivedChanged, this, &SessionViewModel::refresh);
}

std::shared_ptr<Session> SessionViewModel::session() const
{
    const auto session = m_session.lock();
    return session && !session->isDeleted() ? session : nullptr;
}

void SessionViewModel::refresh()
{
    const auto meeting = session();
    if (!meeting)
        return;
    observe(meeting->counterpart());
    setProperty("title", titleOf(*meeting, m_counterpart.get()));
    setProperty("dateString", meeting->dateText());
    setProperty("tagSummary", titlesOfTags(*meeting));
}

/// A meeting does not tell of its teammate's new name.
void SessionViewModel::observe(const std::shared_ptr<Counterpart> &counterpart)
{
    if (counterpart == m_counterpart)
        return;
    if (m_counterpart)
        disconnect(m_counterpart.get(), nullptr, this, nullptr);
    m_counterpart = counterpart;
    if (m_counterpart)
        connect(m_counterpart.get(), &Counterpart::nameChanged, this, &SessionViewModel::refresh);
}

void SessionViewModel::setTitle(const QString &title)
{
    if (title == m_title)
        return;
    m_title = title;
    Q_EMIT titleChanged();
}

void SessionViewModel::setDateString(const QString &dateString)
{
    if (dateString == m_dateString)
        return;
    m_dateString = dateString;
    Q_EMIT dateStringChanged();
}

void SessionViewModel::setTagSummary(const QString &tagSummary)
{
    if (tagSummary == m_tagSummary)
        return;
    m_tagSummary = tagSummary;
    Q_EMIT tagSummaryChanged();
}

} // namespace tembra
