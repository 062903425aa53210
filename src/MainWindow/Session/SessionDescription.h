#pragma once

#include <QCoreApplication>
#include <QStringList>

namespace tembra {

class Session;

/// A meeting in words, for those to whom its emoji say too little.
class SessionDescription
{
    Q_DECLARE_TR_FUNCTIONS(tembra::SessionDescription)

public:
    /// Several lines: the date, then each rating that lies on its scale.
    static QString toolTip(const Session &session);
    /// The same in one line, to be read aloud.
    static QString spoken(const Session &session);

private:
    static QStringList parts(const Session &session);
};

} // namespace tembra
