#pragma once

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/File/StoreOpening.h"
#include "Store/File/Transaction.h"
#include "Store/Schema/ObjectModel.h"
#include "support/FolderContents.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace tembra {

/// A small model whose schema went through up to three versions: 1 has items with a title, 2 gives
/// them a rating, 3 rebuilds their table and adds parts that refer to them.
ObjectModel itemModel(int version);

/// A folder for one test, with a store's place in it.
struct StoreFolder
{
    QTemporaryDir root{temporaryTemplate()};
    QString directory = root.filePath(QStringLiteral("data"));

    QString file() const { return directory + QLatin1String("/Vum.sqlite"); }
    QString beside(const char *suffix) const { return file() + QLatin1String(suffix); }
    /// Makes the folder and puts a file into the store's place.
    void put(const QByteArray &content) const;
};

/// Opens the store of a folder, with the model of that version.
StoreResult<OpenStore> openIn(const StoreFolder &folder, int version = 2);
/// Closes an open store; the result is then a failure.
void close(StoreResult<OpenStore> &store);
/// Makes a store of version 2 with items, closed properly.
void makeStore(const StoreFolder &folder, int items = 40);
/// The same with item 1000 only in the log that a killed process left. It died after @p lastStatements.
void makeKilledStore(const StoreFolder &folder, const QByteArray &lastStatements = "SELECT 1");
/// Overwrites some bytes of the store's file.
void patch(const StoreFolder &folder, int offset, const QByteArray &bytes);

/// The first column of the first row; nothing when there is no row or an error.
Value queryValue(Connection &connection, const QByteArray &sql);

/// Adds an item as one transaction.
Result<void> addItem(Connection &connection, qint64 key, const QString &title,
                     Transaction::Durability durability = Transaction::Durability::Durable);

} // namespace tembra
