#pragma once

#include "Foundation/Result.h"
#include "Foundation/Time/Date.h"

#include <QByteArrayView>
#include <QVariantHash>

#include <memory>
#include <optional>

namespace tembra {

class JsonCursor;

/// Reads one JSON document from the front to the back, as the caller asks for its values.
///
/// The caller keeps the document. The first failure stays: from then on nothing is read, so that
/// code that reads a record need not look for failures until its end. What is left unread is
/// skipped, but must be JSON as well.
///
///     decoder.readArray(tr("teammate"), [&] {
///         decoder.readObject([&](QByteArrayView key) {
///             if (key == "name")
///                 name = decoder.readText();
///         });
///     });
///     decoder.finish();
///     if (decoder.hasFailed())
///         return failure(decoder.error());
class JsonDecoder
{
    Q_DISABLE_COPY_MOVE(JsonDecoder)

public:
    /// How deep arrays and objects may be nested in each other.
    static constexpr int maximumDepth = 64;

    /// @p document is UTF-8, with or without a byte-order mark.
    explicit JsonDecoder(QByteArrayView document);
    ~JsonDecoder();

    /// Calls @p readElement() for each element; it reads that one value at most once.
    /// @p elementLabel is the user's word for an element, for the place of a failure ("session 12").
    template<typename Function>
    void readArray(const QString &elementLabel, Function readElement)
    {
        beginArray(elementLabel);
        while (nextElement())
            readElement();
    }

    /// Calls @p readMember(QByteArrayView key) for each member, in the order of the document and as
    /// often as a key comes; it reads that one value at most once. The key is UTF-8 and is valid
    /// until @p readMember returns.
    template<typename Function>
    void readObject(Function readMember)
    {
        beginObject();
        while (nextMember())
            readMember(key());
    }

    /// Whether null comes next, which is then read.
    bool readNull();

    // Nothing when null comes next, and after a failure. A value of another type is a failure.
    std::optional<QString> readText();
    std::optional<double> readNumber();
    /// Also accepts a whole number that is written with a fraction or an exponent (1.0, 1e2).
    std::optional<qint16> readInt16();
    /// A number of seconds, as Date counts.
    OptionalDate readDate();

    /// To be called at the end: nothing but blanks may follow.
    void finish();

    bool hasFailed() const;
    /// The first failure, with its place in the user's words; empty when there was none.
    Error error() const;
    /// Stops the reading. The first failure stays.
    void fail(const Error &error);

    /// How much of the document is read, from 0 to 1.
    double progress() const;

    /// What the functions that read records are given on their way; the decoder does not look at it.
    QVariantHash &userInfo() { return m_userInfo; }

private:
    void beginArray(const QString &elementLabel);
    bool nextElement();
    void beginObject();
    bool nextMember();
    QByteArrayView key() const;

    const std::unique_ptr<JsonCursor> m_cursor;
    QVariantHash m_userInfo;
};

} // namespace tembra
