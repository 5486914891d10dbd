#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace values {

// What a tree document may have at most; the writer keeps to it, too. A parser needs several times
// the memory of the text, for each element as much as for some fifty characters, and Qt's DOM some
// 1 200 bytes for one.
constexpr int kLongestDocument = 1 << 29; // characters
constexpr std::size_t kMostElements = std::size_t(1) << 23;
constexpr std::size_t kMostDomElements = std::size_t(1) << 20;
constexpr int kMostAttributes = 32; // of one element

/// A tree document in memory: its elements in one row, in their order, and all texts in one string.
/// Of an element it keeps what tree documents use.
class XmlDocument {
public:
    enum class Role : unsigned char { Other, Node, Value, LeftOut }; // the last by the reader
    struct Slice {
        int at = 0;
        int length = 0;
    };
    struct Element {
        Slice name, text, exact;
        int end = 0; // the index behind the last element below
        Role role = Role::Other;
        int madeValue = -1; // for the reader of a tree
    };

    /// \throws KRException "Parse error: ..." for what isn't well-formed, declares entities, nests
    /// too deep or goes past one of the limits above.
    explicit XmlDocument(const QString &xml);

    QStringView view(Slice slice) const { return QStringView(m_texts).mid(slice.at, slice.length); }
    QString text(Slice slice) const { return view(slice).toString(); }
    const QString &doctype() const { return m_doctype; }
    const QString &version() const { return m_version; }
    /// The root is the first one.
    std::vector<Element> &elements() { return m_elements; }
    const std::vector<Element> &elements() const { return m_elements; }

private:
    Slice store(QStringView text);

    friend class Parser;
    std::vector<Element> m_elements;
    QString m_texts, m_doctype, m_version;
};

} // namespace values
