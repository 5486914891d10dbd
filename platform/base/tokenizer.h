#pragma once

#include "platform/base/export.h"

#include <QString>

#include <initializer_list>

namespace Kelm {

/// Takes a text apart at a delimiter, one word after the other. Words are taken as they stand,
/// blanks and empty ones too: "a,,b" has three words, "" has one.
class SPECTREE_EXPORT Tokenizer {
public:
    Tokenizer(const QString &text, QChar delimiter) : m_text(text), m_delimiter(delimiter) {}

    bool HasMore() const { return m_pos <= m_text.size(); }
    /// The next word; empty behind the last one.
    QString Next();
    /// All that is left, delimiters included.
    QString Rest();

private:
    QString m_text;
    QChar m_delimiter;
    int m_pos = 0; // behind the text: nothing is left
};

/// Splits a text into a fixed number of words.
class SPECTREE_EXPORT CTokenizer {
public:
    CTokenizer(const QString &text, QChar delimiter) : m_text(text), m_delimiter(delimiter) {}

    /// Fills \a words in order, with nothing where the text has fewer words. Returns how many words
    /// the text has, which may be more than were asked for.
    int Split(std::initializer_list<QString *> words) const;

private:
    QString m_text;
    QChar m_delimiter;
};

} // namespace Kelm
