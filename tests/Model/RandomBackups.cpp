// Prints the documents of random journals, one a line, for programs that look at what is written.

#include "BackupFixture.h"
#include "RandomJournal.h"

#include <QCoreApplication>

#include <cstdio>

using namespace tembra;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("Usage: RandomBackups COUNT\n", stderr);
        return 2;
    }
    const unsigned count = QByteArray(argv[1]).toUInt();
    for (unsigned seed = 0; seed < count; ++seed) {
        const JournalFixture journal;
        writeRandomJournal(journal, seed);
        const Result<QByteArray> document = writeBackup(journal);
        if (!document) {
            std::fprintf(stderr, "RandomBackups: %s\n", qPrintable(document.error().description()));
            return 1;
        }
        std::puts(document->constData());
    }
    return 0;
}
