#include "Foundation/Files/FileFault.h"

#include <QTest>

#include <cerrno>

using namespace tembra;
using namespace Qt::StringLiterals;

class tst_FileFault : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhatWhereAndWhy_data();
    void saysWhatWhereAndWhy();
    void aReaderIsToldNothingAboutWriting_data();
    void aReaderIsToldNothingAboutWriting();
};

void tst_FileFault::saysWhatWhereAndWhy_data()
{
    QTest::addColumn<int>("systemError");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("detail");
    QTest::newRow("disk full") << ENOSPC << u"The disk is full, so “/a b/%1%2” cannot be"_s
                               << u"No space left on device"_s;
    QTest::newRow("quota") << EDQUOT << u"Your share of the disk is used up, so “/a b/%1%2” "_s
                           << u"Disk quota exceeded"_s;
    QTest::newRow("too large") << EFBIG << u"“/a b/%1%2” is too large for its disk."_s
                               << u"File too large"_s;
    QTest::newRow("no permission")
        << EACCES << u"You may not read or change “/a b/%1%2”."_s << u"Permission denied"_s;
    QTest::newRow("not the owner")
        << EPERM << u"You may not read or change “/a b/%1%2”."_s << u"Operation not permitted"_s;
    QTest::newRow("read-only") << EROFS << u"The disk with “/a b/%1%2” can be read but not"_s
                               << u"Read-only file system"_s;
    QTest::newRow("disk error") << EIO << u"The disk failed while “/a b/%1%2” was being"_s
                                << u"Input/output error"_s;
    QTest::newRow("busy") << EBUSY << u"“/a b/%1%2” is in use by another program."_s
                          << u"Device or resource busy"_s;
    QTest::newRow("missing") << ENOENT << u"There is no “/a b/%1%2”."_s
                             << u"No such file or directory"_s;
    QTest::newRow("no folder") << ENOTDIR << u"“/a b/%1%2” is not a folder."_s
                               << u"Not a directory"_s;
    QTest::newRow("a folder") << EISDIR << u"“/a b/%1%2” is not a file."_s << u"Is a directory"_s;
    QTest::newRow("name too long")
        << ENAMETOOLONG << u"The name “/a b/%1%2” is too long."_s << u"File name too long"_s;
    QTest::newRow("network folder gone")
        << ESTALE << u"The disk or network folder with “/a b/%1%2” is not connected."_s
        << u"Stale file handle"_s;
    QTest::newRow("memory") << ENOMEM << u"There is not enough memory for “/a b/%1%2”."_s
                            << u"Cannot allocate memory"_s;
    QTest::newRow("open files") << EMFILE << u"Too many files are open to use “/a b/%1%2”."_s
                                << u"Too many open files"_s;
    QTest::newRow("anything else") << EDOM << u"“/a b/%1%2” could not be read or changed."_s
                                   << u"Numerical argument out of domain"_s;
    QTest::newRow("found: no file")
        << int(notRegularFile) << u"“/a b/%1%2” is not a file."_s << u"not a regular file"_s;
    QTest::newRow("found: a link")
        << int(symbolicLink) << u"“/a b/%1%2” is a link to another"_s << u"a symbolic link"_s;
    QTest::newRow("found: altered")
        << int(alteredContents)
        << u"The disk gave back something else than what was written to “/a b/%1%2”."_s
        << u"what was read back differs"_s;
    QTest::newRow("found: changed")
        << int(changedMeanwhile) << u"“/a b/%1%2” was changed while it was being read."_s
        << u"size or time of change differ"_s;
}

void tst_FileFault::saysWhatWhereAndWhy()
{
    QFETCH(int, systemError);
    QFETCH(QString, start);
    QFETCH(QString, detail);
    const Error error = fileError(u"/a b/%1%2"_s, systemError);
    QVERIFY2(error.message.startsWith(start), qPrintable(error.message));
    QVERIFY2(error.message.endsWith(u'.'), qPrintable(error.message));
    QCOMPARE(error.detail, detail);
}

void tst_FileFault::aReaderIsToldNothingAboutWriting_data()
{
    QTest::addColumn<int>("systemError");
    for (const int systemError :
         {EACCES, EPERM, EIO, EBUSY, ENOENT, ENOTDIR, EISDIR, ENAMETOOLONG, ESTALE, ENOMEM, EMFILE,
          EDOM, int(notRegularFile), int(symbolicLink), int(changedMeanwhile)})
        QTest::addRow("%d", systemError) << systemError;
}

void tst_FileFault::aReaderIsToldNothingAboutWriting()
{
    QFETCH(int, systemError);
    const QString sentence = fileError(u"/a b/%1%2"_s, systemError, FileUse::Reading).message;
    QVERIFY(sentence.contains(u"“/a b/%1%2”"_s));
    for (const QString &advice :
         {u"written"_s, u"hoose another place"_s, u"or change"_s, u"Remove"_s, u"Move it"_s})
        QVERIFY2(!sentence.contains(advice), qPrintable(sentence));
}

QTEST_GUILESS_MAIN(tst_FileFault)
#include "tst_FileFault.moc"
