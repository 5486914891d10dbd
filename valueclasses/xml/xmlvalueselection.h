#pragma once

#include "valueclasses/xml/xmlvaluebase.h"

namespace values {

/// A selection: the name of its choice in "CurrentSelection", and "Name", "Value" and "Key" of each
/// item in a "SelectionItem". Where the name alone would choose another item, "CurrentIndex" tells
/// which one it is.
class SPECTREE_EXPORT XmlValueSelection : public XmlValueBase {
public:
    bool Fits(const ValueBase &value) const override;
    void Write(ValueBase &value, XmlFieldSink &sink) const override;
    void Check(ValueBase &value, const XmlFields &fields) const override;
    void Read(ValueBase &value, const XmlFields &fields) const override;
};

} // namespace values
