#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// What the sample journal is written with.
namespace tembra::SampleTexts {

struct Teammate
{
    QString name;
    int daysSinceLastMeeting = 0;
    int daysBetweenMeetings = 0; ///< 0: never met.
};
QList<Teammate> teammates();

struct TagText
{
    QString name;
    QString emoji;
};
QList<TagText> tags();

/// Some notes for a field.
QStringList notes(qint16 identifier);

} // namespace tembra::SampleTexts
