#pragma once

#include <QCoreApplication>
#include <QStringList>

namespace tembra {

class Session;

/// Describes a meeting in words instead of emoji.
class SessionDescription
{
    Q_DECLARE_TR_FUNCTIONS(tembra::SessionDescription)

public:
    /// The date and each rating that lies on its scale, one a line.
    static QString toolTip(const Session &session);
    /// The same parts in one line, for assistive technology.
    static QString accessibleText(const Session &session);

private:
    static QStringList parts(const Session &session);
};

} // namespace tembra
