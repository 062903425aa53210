#pragma once

#include "Toolkit/Token/TokenField.h"

namespace tembra {

/// One change of a token field, however many steps it takes: what came of it is told once, at the
/// end of the outermost one.
class TokenField::Change
{
public:
    explicit Change(TokenField &field, Author author = Author::User)
        : m_field(field)
        , m_author(author)
    {
        ++m_field.m_changeDepth;
    }
    ~Change()
    {
        if (--m_field.m_changeDepth == 0)
            m_field.tellChanges(m_author);
    }
    Q_DISABLE_COPY_MOVE(Change)

private:
    TokenField &m_field;
    Author m_author;
};

} // namespace tembra
