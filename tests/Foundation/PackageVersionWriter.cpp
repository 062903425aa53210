// Writes one version of a package after the other, and each time one is confirmed, its number as a
// line to standard output.
//
// Usage: PackageVersionWriter PACKAGE FIRST_VERSION (replaces | makes). Runs until it is killed. "makes"
// moves each package to "PACKAGE away", so that every version makes a new one.

#include "Foundation/Files/PackageWriter.h"
#include "Foundation/Precondition.h"
#include "PackageVersions.h"

#include <QCoreApplication>
#include <QDir>

#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    require(arguments.size() == 4, "Package, first version and manner are given");
    const QString &package = arguments.at(1);
    const bool makes = arguments.at(3) == u"makes";
    for (int version = arguments.at(2).toInt();; ++version) {
        const auto written = PackageWriter().write(package, u"teammates.json"_s,
                                                   packageVersion(version));
        require(written.has_value(), "The package can be written");
        const QByteArray line = QByteArray::number(version) + '\n';
        require(::write(STDOUT_FILENO, line.constData(), size_t(line.size())) == line.size(),
                "The version can be told");
        if (makes) {
            const QString away = package + u" away"_s;
            QDir(away).removeRecursively();
            require(QDir().rename(package, away), "The package can be moved away");
        }
    }
}
