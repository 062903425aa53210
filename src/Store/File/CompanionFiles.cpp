#include "Store/File/CompanionFiles.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace tembra {

namespace {

qint64 sizeOf(const QString &file)
{
    const QFileInfo info(file);
    return info.exists() ? info.size() : -1;
}

} // namespace

CompanionFiles::CompanionFiles(const QString &file)
    : m_log(file + QLatin1String("-wal"))
    , m_index(file + QLatin1String("-shm"))
    , m_logSize(sizeOf(m_log))
    , m_indexSize(sizeOf(m_index))
{
    QFile index(m_index);
    if (m_indexSize > 0 && index.open(QIODevice::ReadOnly))
        m_indexContent = index.readAll();
}

void CompanionFiles::restore() const
{
    if (m_logSize < 0)
        ::unlink(QFile::encodeName(m_log).constData());
    else if (sizeOf(m_log) > m_logSize)
        (void)::truncate(QFile::encodeName(m_log).constData(), m_logSize);
    if (m_indexSize < 0)
        ::unlink(QFile::encodeName(m_index).constData());
    QFile index(m_index);
    if (m_indexSize >= 0 && index.open(QIODevice::ReadWrite)) {
        index.write(m_indexContent);
        index.resize(m_indexSize);
    }
}

} // namespace tembra
