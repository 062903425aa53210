#pragma once

#include <QMetaType>

namespace tembra {

/// One step from the rows before a change to the rows after it.
///
/// Within a batch: deletions carry old rows and come in descending order; then insertions and
/// moves carry new rows in ascending order (a move's `row` is its old row); then updates carry new
/// rows. A consumer that keeps a list of its own takes out what is deleted or moved, then puts in
/// what is inserted or moved, each at its new row, and ends with the new rows.
struct RowChange
{
    enum class Type { Insert, Delete, Move, Update };

    Type type;
    int row; ///< Insert, Update: new row. Delete, Move: old row.
    int newRow = -1; ///< Move only.
    qint64 key = 0;

    friend bool operator==(const RowChange &, const RowChange &) = default;
};

} // namespace tembra

Q_DECLARE_METATYPE(tembra::RowChange)
