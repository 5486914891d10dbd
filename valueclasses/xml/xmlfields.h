#pragma once

#include "platform/base/export.h"

#include <QString>
#include <QStringView>

#include <functional>

namespace values {

/// The text of an element, and its lossless form when the text alone would lose something.
struct XmlText {
    QString text;
    QString exact;
    bool present = false;
};

/// The elements of one value in a document, as a handler reads them.
class SPECTREE_EXPORT XmlFields {
public:
    virtual ~XmlFields() = default;
    /// The first element of that name.
    virtual XmlText Find(QStringView tag) const = 0;
    /// Whether the text of that element is \a text; false when there is no such element.
    virtual bool Holds(QStringView tag, QStringView text) const
    {
        const XmlText found = Find(tag);
        return found.present && found.text == text;
    }
    /// Each group element of that name, in the order of the document.
    virtual void ForEach(QStringView tag,
                         const std::function<void(const XmlFields &)> &visit) const = 0;
    /// Whether an observer has destroyed the value since reading began.
    virtual bool IsTargetGone() const { return false; }
};

/// Where a handler writes the elements of one value.
class SPECTREE_EXPORT XmlFieldSink {
public:
    virtual ~XmlFieldSink() = default;
    virtual void Text(QStringView tag, QStringView text, QStringView exact) = 0;
    virtual void BeginGroup(QStringView tag) = 0;
    virtual void EndGroup() = 0;
};

} // namespace values
