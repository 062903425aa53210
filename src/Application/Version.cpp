#include "Application/Version.h"

namespace tembra {

QString programVersion()
{
    return QStringLiteral(TEMBRA_VERSION);
}

} // namespace tembra
