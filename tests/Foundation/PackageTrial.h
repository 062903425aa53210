#pragma once

#include "Foundation/Files/PackageWriter.h"
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
    PackageTrial(bool exists, qsizetype size) : m_contents(contentsOf(size, 2))
    {
        if (exists)
            m_folder.putPackage(contentsOf(size + 77, 1));
        m_before = m_folder.inPlace();
    }

    Result<void> write(FileSystem &fileSystem) const
    {
        return PackageWriter(fileSystem).write(m_folder.package, m_folder.fileName, m_contents);
    }

    bool isOld() const { return isOld(m_folder.inPlace()); }
    bool isNew() const { return isNew(m_folder.inPlace()); }

    /// What contradicts the writer's promise; empty when nothing does.
    QByteArray broken(const Result<void> &result, bool mayLeaveTemporaries) const
    {
        const auto found = m_folder.inPlace();
        if (result && !isNew(found))
            return "success without the new package";
        if (!isOld(found) && !isNew(found))
            return "neither the old nor the new package";
        if (!result && result.error().message.isEmpty())
            return "a failure without a sentence";
        const QStringList temporaries = m_folder.temporaries();
        if (!mayLeaveTemporaries && !temporaries.isEmpty())
            return "left behind: " + temporaries.join(QLatin1String(", ")).toUtf8();
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
    using Entries = QMap<QString, QByteArray>;

    static QByteArray contentsOf(qsizetype size, quint32 version)
    {
        static QMap<std::pair<qsizetype, quint32>, QByteArray> known;
        QByteArray &contents = known[{size, version}];
        if (contents.isEmpty())
            contents = sampleContents(size, version);
        return contents;
    }

    bool isOld(const Entries &found) const { return found == m_before; }

    bool isNew(const Entries &found) const
    {
        auto expected = m_before;
        expected.insert(m_folder.name, found.value(m_folder.name));
        expected.insert(m_folder.name + QLatin1Char('/') + m_folder.fileName,
                        "f100600 " + m_contents);
        return found == expected && found.value(m_folder.name).startsWith('d');
    }

    PackageFolder m_folder;
    QByteArray m_contents;
    Entries m_before;
};

} // namespace tembra
