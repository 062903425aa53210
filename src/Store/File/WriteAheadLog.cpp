#include "Store/File/WriteAheadLog.h"

#include "Store/File/CheckpointId.h"
#include "Store/File/StoreFault.h"

#include <QFile>
#include <QtEndian>

#include <cerrno>
#include <optional>

namespace tembra {

namespace {

// The format of the log: https://www.sqlite.org/fileformat2.html#the_write_ahead_log
constexpr qsizetype logHeaderSize = 32;
constexpr qsizetype frameHeaderSize = 24;
constexpr quint32 signature = 0x377f0682; ///< The last bit says how checksums read words.
constexpr qsizetype smallestPage = 512;
constexpr qsizetype largestPage = 65536;

quint32 wordAt(const QByteArray &bytes, qsizetype offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

/// SQLite's checksum of a log, which goes on from one frame to the next.
class Checksum
{
public:
    void setBigEndian(bool isBigEndian) { m_isBigEndian = isBigEndian; }

    void add(const QByteArray &bytes, qsizetype size)
    {
        for (qsizetype offset = 0; offset < size; offset += 8) {
            m_first += word(bytes.constData() + offset) + m_second;
            m_second += word(bytes.constData() + offset + 4) + m_first;
        }
    }

    /// Whether it is the one that stands at @p offset.
    bool stands(const QByteArray &bytes, qsizetype offset) const
    {
        return wordAt(bytes, offset) == m_first && wordAt(bytes, offset + 4) == m_second;
    }

private:
    quint32 word(const char *bytes) const
    {
        return m_isBigEndian ? qFromBigEndian<quint32>(bytes) : qFromLittleEndian<quint32>(bytes);
    }

    bool m_isBigEndian = false;
    quint32 m_first = 0;
    quint32 m_second = 0;
};

/// Goes through the frames of a log that SQLite would replay.
class FrameReader
{
public:
    explicit FrameReader(QIODevice &device) : m_device(device) {}

    bool readLogHeader()
    {
        m_logHeader = m_device.read(logHeaderSize);
        if (m_logHeader.size() < logHeaderSize || (wordAt(m_logHeader, 0) & ~1U) != signature)
            return false;
        m_pageSize = wordAt(m_logHeader, 8);
        m_checksum.setBigEndian(wordAt(m_logHeader, 0) & 1U);
        m_checksum.add(m_logHeader, 24);
        return m_pageSize >= smallestPage && m_pageSize <= largestPage && m_pageSize % 8 == 0
               && m_checksum.stands(m_logHeader, 24);
    }

    /// False at the end: where the file ends, or an older log's frames begin.
    bool next()
    {
        m_header = m_device.read(frameHeaderSize);
        m_page = m_device.read(m_pageSize);
        if (m_header.size() < frameHeaderSize || m_page.size() < m_pageSize
            || m_header.mid(8, 8) != m_logHeader.mid(16, 8))
            return false;
        m_checksum.add(m_header, 8);
        m_checksum.add(m_page, m_pageSize);
        return m_checksum.stands(m_header, 16);
    }

    bool isDatabaseHeader() const { return wordAt(m_header, 0) == 1; }
    bool endsTransaction() const { return wordAt(m_header, 4) != 0; }
    const QByteArray &page() const { return m_page; }

private:
    QIODevice &m_device;
    QByteArray m_logHeader;
    QByteArray m_header;
    QByteArray m_page;
    qsizetype m_pageSize = 0;
    Checksum m_checksum;
};

} // namespace

Result<WriteAheadLog> WriteAheadLog::read(const QString &file)
{
    QFile device(file);
    if (!device.exists())
        return WriteAheadLog();
    if (!device.open(QIODevice::ReadOnly))
        return failure(fileError(file, errno));
    WriteAheadLog log;
    FrameReader frames(device);
    std::optional<quint32> id;
    for (bool more = frames.readLogHeader() && frames.next(); more; more = frames.next()) {
        if (frames.isDatabaseHeader())
            id = checkpointIdIn(frames.page());
        if (!frames.endsTransaction())
            continue;
        log.hasTransactions = true;
        if (id)
            log.checkpointIds.insert(*id);
        id.reset();
    }
    if (device.error() != QFileDevice::NoError)
        return failure(fileError(file, EIO));
    return log;
}

} // namespace tembra
