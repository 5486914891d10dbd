#pragma once

#include "valueclasses/xml/xmlvaluebase.h"

namespace values {

/// The handler of every kind that has none of its own: the element "State" holds the base64 of the
/// object state in mode -2, which loses nothing. Before it stands what a state doesn't hold: of
/// numbers with an offset "Offset"; of curves over frequency "Transducer", the name of their "File"
/// if they have one, and "Reduced", the base64 of their edits, if there are some.
class SPECTREE_EXPORT XmlValueState : public XmlValueBase {
public:
    void Write(ValueBase &value, XmlFieldSink &sink) const override;
    /// Reads into another value of the kind first.
    void Check(ValueBase &value, const XmlFields &fields) const override;
    /// State, timer and descriptor of the value stay what they are.
    void Read(ValueBase &value, const XmlFields &fields) const override;

    /// The element "State" alone, for handlers that need it beside their own elements.
    static void WriteState(ValueBase &value, XmlFieldSink &sink);
    static void CheckState(ValueBase &value, const XmlText &state);
    /// \a except is the id of commands that aren't executed.
    static void ReadState(ValueBase &value, const XmlText &state, const XmlFields &fields,
                          int except = 0);
};

} // namespace values
