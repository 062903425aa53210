#include "Store/Query/PredicateLexer.h"

#include <QString>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;
using Kind = PredicateToken::Kind;

namespace {

struct Spelling
{
    QLatin1StringView text;
    Kind kind;
};

constexpr Spelling keywords[] = {{"ANY"_L1, Kind::Any},
                                 {"AND"_L1, Kind::And},
                                 {"OR"_L1, Kind::Or},
                                 {"NOT"_L1, Kind::Not},
                                 {"NULL"_L1, Kind::Null}};

/// The longer of two that begin alike comes first.
constexpr Spelling symbols[] = {{"=="_L1, Kind::Operator},
                                {"!="_L1, Kind::Operator},
                                {"<="_L1, Kind::Operator},
                                {">="_L1, Kind::Operator},
                                {"<"_L1, Kind::Operator},
                                {">"_L1, Kind::Operator},
                                {"%@"_L1, Kind::ObjectPlaceholder},
                                {"%d"_L1, Kind::IntegerPlaceholder},
                                {"."_L1, Kind::Dot},
                                {"("_L1, Kind::OpeningParenthesis},
                                {")"_L1, Kind::ClosingParenthesis}};

constexpr auto containsWord = "CONTAINS"_L1;
constexpr auto containsOperator = "CONTAINS[cd]"_L1;

bool startsName(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_';
}

bool continuesName(QChar c)
{
    return startsName(c) || (c >= u'0' && c <= u'9');
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

} // namespace

PredicateLexer::PredicateLexer(QStringView format) : m_format(format) {}

PredicateToken PredicateLexer::next()
{
    while (m_offset < m_format.size() && isBlank(m_format[m_offset]))
        ++m_offset;
    if (m_offset == m_format.size())
        return token(Kind::End, 0);
    return startsName(m_format[m_offset]) ? word() : symbol();
}

PredicateToken PredicateLexer::token(Kind kind, qsizetype length)
{
    const PredicateToken made{kind, m_format.mid(m_offset, length), m_offset};
    m_offset += length;
    return made;
}

PredicateToken PredicateLexer::word()
{
    const QStringView rest = m_format.mid(m_offset);
    const auto end = std::find_if_not(rest.begin(), rest.end(), continuesName);
    const QStringView text = rest.left(end - rest.begin());
    if (text.compare(containsWord, Qt::CaseInsensitive) == 0) {
        const bool whole = rest.startsWith(containsOperator, Qt::CaseInsensitive);
        return token(whole ? Kind::Operator : Kind::Unknown,
                     whole ? containsOperator.size() : text.size());
    }
    for (const Spelling &keyword : keywords) {
        if (text.compare(keyword.text, Qt::CaseInsensitive) == 0)
            return token(keyword.kind, text.size());
    }
    return token(Kind::Name, text.size());
}

PredicateToken PredicateLexer::symbol()
{
    const QStringView rest = m_format.mid(m_offset);
    for (const Spelling &symbol : symbols) {
        if (rest.startsWith(symbol.text))
            return token(symbol.kind, symbol.text.size());
    }
    return token(Kind::Unknown, rest.front().isHighSurrogate() && rest.size() > 1 ? 2 : 1);
}

} // namespace tembra
