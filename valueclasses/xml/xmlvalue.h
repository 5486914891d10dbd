#pragma once

#include "valueclasses/value.h"
#include "valueclasses/xml/xmlvaluebase.h"

namespace values {

/// One scalar: its text in the element "Value". A double that six decimals don't hold, and a text
/// that XML can't bear, have their lossless form in the attribute "exact"; a text for which that
/// would be too long has its "State".
template <typename T, typename F = DefaultFormat<T>>
class SPECTREE_EXPORT XmlValue : public XmlValueBase {
public:
    bool Fits(const ValueBase &value) const override;
    void Write(ValueBase &value, XmlFieldSink &sink) const override;
    void Check(ValueBase &value, const XmlFields &fields) const override;
    void Read(ValueBase &value, const XmlFields &fields) const override;

protected:
    /// Another kind with a "Value" will do, so that a value may change its kind between versions.
    bool ReadsType(ValueType type) const override;
    static void writeField(QStringView tag, const T &value, XmlFieldSink &sink);
    static T fieldOf(const XmlText &field);
    /// Whether the fields have a "State" of this kind.
    static bool hasState(const ValueBase &value, const XmlFields &fields);
};

/// With limits: "Max", "Min" and "Step" behind "Value", each read singly; one that is missing stays
/// as it is. A value outside of its limits, which reading would clip, has its "State" too.
template <typename T, typename F = DefaultFormat<T>>
class SPECTREE_EXPORT XmlValueNumeric : public XmlValue<T, F> {
public:
    bool Fits(const ValueBase &value) const override;
    void Write(ValueBase &value, XmlFieldSink &sink) const override;
    void Check(ValueBase &value, const XmlFields &fields) const override;
    void Read(ValueBase &value, const XmlFields &fields) const override;

private:
    static T limitOf(const std::optional<ValueType> &otherKind, const XmlText &field);
};

/// The kinds with these handlers: T.
#define SPECTREE_FOR_EACH_XML_SCALAR(X)                                                            \
    X(int) X(unsigned int) X(double) X(QString) X(std::int64_t) X(bool)
#define SPECTREE_FOR_EACH_XML_NUMERIC(X) X(int) X(double) X(std::int64_t)
#define SPECTREE_DECLARE(T) extern template class SPECTREE_EXPORT XmlValue<T>;
SPECTREE_FOR_EACH_XML_SCALAR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE
#define SPECTREE_DECLARE(T) extern template class SPECTREE_EXPORT XmlValueNumeric<T>;
SPECTREE_FOR_EACH_XML_NUMERIC(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace values
