#include "PackageVersions.h"

#include <random>

namespace tembra {

QByteArray packageVersion(int version)
{
    constexpr unsigned largestSize = 512 * 1024;
    std::minstd_rand random(unsigned(version) + 1);
    QByteArray filling(qsizetype(random() % largestSize), Qt::Uninitialized);
    for (char &byte : filling)
        byte = char('a' + random() % 26);
    return QByteArray::number(version) + '\n' + filling + "\nend\n";
}

std::optional<int> versionOf(const QByteArray &contents)
{
    bool isNumber = false;
    const int version = contents.left(contents.indexOf('\n')).toInt(&isNumber);
    if (!isNumber || contents != packageVersion(version))
        return std::nullopt;
    return version;
}

} // namespace tembra
