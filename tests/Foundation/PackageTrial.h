#pragma once

#include "Foundation/PackageWriter.h"
#include "PackageFixture.h"

#include <QTest>

namespace tembra {

constexpr qsizetype smallSize = 500;
constexpr qsizetype largeSize = 3'000'000;

/// Adds rows for a new and an existing package, for small and large contents.
template<typename... Values>
void addRows(const QByteArray &name, const Values &...values)
{
    for (const bool exists : {false, true}) {
        for (const qsizetype size : {smallSize, largeSize}) {
            const QByteArray row = name + (exists ? ", existing, " : ", new, ")
                                   + QByteArray::number(size);
            ((QTest::newRow(row.constData()) << exists << size) << ... << values);
        }
    }
}

inline void addColumns()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<qsizetype>("size");
}

/// A folder with or without a package, and what may be there after a try to write it.
class PackageTrial
{
public:
    PackageTrial(bool exists, qsizetype size) : m_contents(sampleContents(size, 2))
    {
        if (exists)
            m_folder.putPackage(sampleContents(size + 77, 1));
        m_before = m_folder.inPlace();
    }

    Result<void> write(FileSystem &fileSystem) const
    {
        return PackageWriter(fileSystem).write(m_folder.package, m_folder.fileName, m_contents);
    }

    bool isOld() const { return m_folder.inPlace() == m_before; }

    bool isNew() const
    {
        auto expected = m_before;
        const auto found = m_folder.inPlace();
        expected.insert(m_folder.name, found.value(m_folder.name));
        expected.insert(m_folder.name + QLatin1Char('/') + m_folder.fileName,
                        "f100600 " + m_contents);
        return found == expected && found.value(m_folder.name).startsWith('d');
    }

    /// What contradicts the writer's promise; empty when nothing does.
    QByteArray broken(const Result<void> &result, bool mayLeaveTemporaries) const
    {
        if (result && !isNew())
            return "success without the new package";
        if (!isOld() && !isNew())
            return "neither the old nor the new package";
        if (!result && result.error().message.isEmpty())
            return "a failure without a sentence";
        if (!mayLeaveTemporaries && !m_folder.temporaries().isEmpty())
            return "left behind: " + m_folder.temporaries().join(QLatin1String(", ")).toUtf8();
        return {};
    }

    /// The same for another try, when everything works again.
    QByteArray brokenAfterRepair() const
    {
        const auto result = write(systemFileSystem());
        return result ? broken(result, false) : result.error().description().toUtf8();
    }

    const PackageFolder &folder() const { return m_folder; }

private:
    PackageFolder m_folder;
    QByteArray m_contents;
    QMap<QString, QByteArray> m_before;
};

} // namespace tembra
