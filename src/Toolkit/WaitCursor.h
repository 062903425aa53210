#pragma once

#include <QGuiApplication>

namespace tembra {

/// Shows the wait cursor in all windows for as long as it lives: for work that holds up the program
/// for a moment, too short for progress.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(WaitCursor)
};

} // namespace tembra
