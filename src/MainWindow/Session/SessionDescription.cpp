#include "MainWindow/Session/SessionDescription.h"

#include "Model/SentimentScale.h"
#include "Model/Session.h"

namespace tembra {

using namespace Qt::StringLiterals;

QString SessionDescription::toolTip(const Session &session)
{
    return parts(session).join(u'\n');
}

QString SessionDescription::accessibleText(const Session &session)
{
    return parts(session).join(u", "_s);
}

QStringList SessionDescription::parts(const Session &session)
{
    const QString date = session.dateText();
    QStringList parts{date.isEmpty() ? tr("No date", "A meeting without a date") : date};
    const auto appendRating = [&parts](const QString &pattern, const SentimentScale &scale,
                                       int value) {
        if (scale.contains(value))
            parts.append(pattern.arg(scale.label(value)));
    };
    appendRating(tr("Me: %1", "The user's own mood"), SentimentScale::personal(),
                 session.personalSentiment());
    appendRating(tr("Meeting: %1", "The quality of a meeting"), SentimentScale::meeting(),
                 session.meetingSentiment());
    appendRating(tr("Teammate: %1", "The teammate's mood"), SentimentScale::personal(),
                 session.counterpartSentiment());
    return parts;
}

} // namespace tembra
