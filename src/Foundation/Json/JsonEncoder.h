#pragma once

#include "Foundation/Result.h"
#include "Foundation/Time/Date.h"

#include <QByteArray>
#include <QLatin1String>

#include <memory>

namespace tembra {

/// Writes one JSON document piece by piece: compact, in UTF-8, keys in the order given.
///
/// The document grows in place, so that it is the only large thing in memory. Values out of order (a
/// second root, a value in an object without its key) are programming errors and stop the program.
class JsonEncoder
{
    Q_DISABLE_COPY_MOVE(JsonEncoder)

public:
    JsonEncoder();
    ~JsonEncoder();

    void beginArray();
    void endArray();
    void beginObject();
    /// Names the value that is written next.
    void key(QLatin1StringView key);
    void endObject();

    /// Any text, also with U+0000; a lone surrogate becomes U+FFFD. A missing (null) text is written
    /// like an empty one.
    void text(const QString &text);
    void textOrNull(const QString &text);
    void integer(qint64 value);
    /// The shortest digits that read back as the same number, whole numbers without an exponent as
    /// far as all their digits count. Infinity and what is no number make the encoding fail.
    void number(double value);
    /// The seconds of Date.
    void dateOrNull(const OptionalDate &date);
    void null();

    /// After a failure the encoder still takes values, but there will be no document.
    bool hasFailed() const;
    /// The first failure; empty when there was none.
    Error error() const;
    /// The document, once its root is complete, or the first failure. The encoder is used up then.
    Result<QByteArray> takeDocument();

private:
    struct Private;
    const std::unique_ptr<Private> d;
};

} // namespace tembra
