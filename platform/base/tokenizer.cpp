#include "platform/base/tokenizer.h"

namespace Kelm {

QString Tokenizer::Next()
{
    if (!HasMore())
        return {};
    int end = m_text.indexOf(m_delimiter, m_pos);
    if (end < 0)
        end = m_text.size();
    const QString word = m_text.mid(m_pos, end - m_pos);
    m_pos = end + 1;
    return word;
}

QString Tokenizer::Rest()
{
    const QString rest = m_text.mid(m_pos);
    m_pos = m_text.size() + 1;
    return rest;
}

int CTokenizer::Split(std::initializer_list<QString *> words) const
{
    Tokenizer tokens(m_text, m_delimiter);
    for (QString *word : words)
        *word = tokens.Next();
    return 1 + m_text.count(m_delimiter);
}

} // namespace Kelm
