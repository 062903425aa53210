#include "Store/File/Statement.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/WellFormedText.h"
#include "Store/File/ConnectionPrivate.h"

#include <sqlite3.h>

namespace tembra {

namespace {

void bindTo(SQLite::Statement &statement, int index, const Value &value)
{
    if (const auto *number = std::get_if<qint64>(&value))
        statement.bind(index, int64_t(*number));
    else if (const auto *date = std::get_if<double>(&value))
        statement.bind(index, *date);
    else if (const auto *text = std::get_if<QString>(&value))
        statement.bind(index, wellFormedText(*text).toStdString());
    else
        statement.bind(index);
}

void bindTo(SQLite::Statement &statement, int index, const StoredValue &value)
{
    if (const auto *number = std::get_if<qint64>(&value))
        statement.bind(index, int64_t(*number));
    else if (const auto *date = std::get_if<double>(&value))
        statement.bind(index, *date);
    else if (const auto *text = std::get_if<QByteArrayView>(&value))
        statement.bind(index, std::string(text->data(), size_t(text->size())));
    else
        statement.bind(index);
}

/// Never null: an empty text is not a missing one.
QString decoded(QByteArrayView text)
{
    if (text.isEmpty())
        return QString(QLatin1String(""));
    const QString decoded = QString::fromUtf8(text);
    // The conversion drops a byte order mark at the start; here it is a character of the text.
    return text.startsWith("\xef\xbb\xbf") ? QChar(QChar::ByteOrderMark) + decoded : decoded;
}

} // namespace

Statement::Private::Private(Connection::Private &owner, const QByteArray &sql)
    : connection(owner)
    , statement(owner.database, sql.constData())
{
}

Error Statement::Private::failed(int sqliteCode)
{
    Error error = connection.failed(sqliteCode);
    statement.tryReset();
    return error;
}

Statement::Statement(std::unique_ptr<Private> priv) : d(std::move(priv)) {}

Statement::~Statement() = default;

template<typename Bind>
void Statement::tryBind(const Bind &bind)
{
    try {
        bind();
    } catch (const SQLite::Exception &exception) {
        if (!d->bindError)
            d->bindError = exception.getErrorCode();
    }
}

void Statement::bind(int index, const Value &value)
{
    tryBind([&] { bindTo(d->statement, index, value); });
}

void Statement::bindKey(int index, qint64 key)
{
    tryBind([&] { d->statement.bind(index, int64_t(key)); });
}

void Statement::bindStored(int index, const StoredValue &value)
{
    tryBind([&] { bindTo(d->statement, index, value); });
}

Result<bool> Statement::step()
{
    int code = std::exchange(d->bindError, 0);
    if (code == SQLITE_OK)
        code = d->statement.tryExecuteStep();
    if (code == SQLITE_ROW)
        return true;
    if (code != SQLITE_DONE)
        return failure(d->failed(code));
    d->statement.tryReset();
    return false;
}

void Statement::reset()
{
    d->statement.tryReset();
}

Result<void> Statement::run()
{
    Result<bool> more = step();
    while (more && *more)
        more = step();
    return more.map([](bool) {});
}

qint64 Statement::key(int column) const
{
    require(d->statement.hasRow() && column < d->statement.getColumnCount(),
            "a row and column to read");
    return d->statement.getColumn(column).getInt64();
}

Value Statement::value(int column) const
{
    return std::visit(
        [](const auto &stored) -> Value {
            if constexpr (std::is_same_v<std::decay_t<decltype(stored)>, QByteArrayView>)
                return decoded(stored);
            else
                return stored;
        },
        storedValue(column));
}

StoredValue Statement::storedValue(int column) const
{
    require(d->statement.hasRow() && column < d->statement.getColumnCount(),
            "a row and column to read");
    const SQLite::Column cell = d->statement.getColumn(column);
    switch (cell.getType()) {
    case SQLITE_INTEGER:
        return qint64(cell.getInt64());
    case SQLITE_FLOAT:
        return cell.getDouble();
    case SQLITE_TEXT: {
        // By its length, not up to the first U+0000.
        const char *text = cell.getText();
        return QByteArrayView(text, cell.getBytes());
    }
    default:
        return {};
    }
}

} // namespace tembra
