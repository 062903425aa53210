#pragma once

#include "Foundation/Result.h"
#include "Store/File/StoredValue.h"
#include "Store/Schema/Value.h"

#include <memory>

namespace tembra {

/// A prepared statement, kept by its Connection and used again. Reset after use: a cursor left
/// open would keep the connection from writing.
class Statement
{
public:
    ~Statement();

    /// Binds to the place holder @p index, counted from 1. Texts may hold U+0000; a lone surrogate
    /// is stored as U+FFFD. A value that cannot be bound makes the next step() or run() fail.
    void bind(int index, const Value &value);
    void bindKey(int index, qint64 key);
    /// Binds what storedValue() of a statement gave out, byte for byte.
    void bindStored(int index, const StoredValue &value);

    /// True while there is a row to read; false at the end (the statement is then reset).
    Result<bool> step();
    /// Ready to run again, with the same values bound.
    void reset();
    /// Steps to the end, for statements without rows.
    Result<void> run();

    // The current row; columns are counted from 0.
    qint64 key(int column) const; ///< 0 when it is NULL.
    Value value(int column) const;
    StoredValue storedValue(int column) const; ///< A text is valid until the next step.

private:
    friend class Connection;
    struct Private;
    template<typename Bind>
    void tryBind(const Bind &bind);
    explicit Statement(std::unique_ptr<Private> d);
    std::unique_ptr<Private> d;
};

} // namespace tembra
