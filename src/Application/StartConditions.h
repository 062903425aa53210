#pragma once

#include "Application/CommandLine.h"

#include <QByteArrayList>
#include <QString>

#include <QtGlobal>

namespace tembra {

/// A sentence about the first name among the arguments, or of a folder that the start is going to use,
/// that is not UTF-8 text; empty when all are. Qt would take such a name for another one.
QString complaintAboutNames(const QByteArrayList &arguments, const CommandLine &commandLine);

/// Ends the program with a sentence and exit status 1 where the toolkit, which is made while this
/// lives, finds no display and would abort.
class DisplayGuard
{
public:
    DisplayGuard();
    ~DisplayGuard();
    Q_DISABLE_COPY_MOVE(DisplayGuard)
};

} // namespace tembra
