#include "PackageVersions.h"

#include <QStringBuilder>

#include <random>

namespace tembra {

QByteArray packageVersion(int version)
{
    constexpr unsigned largestCount = 1000;
    constexpr qsizetype blockSize = 1000;
    std::minstd_rand random(unsigned(version) + 1);
    const auto count = qsizetype(random() % largestCount);
    // Quickly made, so that its writer spends its time on writing.
    QByteArray block(blockSize, Qt::Uninitialized);
    for (char &byte : block)
        byte = char('a' + random() % 26);
    return QByteArray::number(version) + '\n' + block.repeated(count) + "\nend\n";
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
