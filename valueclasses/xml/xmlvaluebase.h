#pragma once

#include "valueclasses/valuebase.h"
#include "valueclasses/xml/xmlfields.h"

#include <QDomDocument>
#include <QDomElement>

#include <optional>

namespace values {

/// Converts values of one kind to the elements of a tree document, and back.
///
/// Handlers have no state; one serves every value of its kind. Application thread.
/// Errors: KRException from Check and FromXml, with the value as it was.
class SPECTREE_EXPORT XmlValueBase {
public:
    virtual ~XmlValueBase() = default;
    /// Checks, then reads.
    virtual void FromXml(ValueBase *value, QDomElement &element) const;
    virtual void ToXml(ValueBase *value, QDomElement &element, QDomDocument &document) const;
    /// Appends an element with one text to \a parent.
    virtual void CreateXmlElement(QDomElement &parent, const QString &tag, const QString &text,
                                  QDomDocument &document) const;
    /// TextIn the first element of that name.
    virtual QString GetXmlValueByName(const QDomElement &element, const QString &tag) const;

    /// The text that \a element begins with: what stands before any other child.
    static QString TextIn(const QDomElement &element);

    /// Whether this handler can write and read \a value: a class that an application derives may
    /// have the type number of another one.
    virtual bool Fits(const ValueBase &) const { return true; }
    /// The type name, and the key of the descriptor if there is one.
    virtual void Write(ValueBase &value, XmlFieldSink &sink) const;
    /// \throws KRException when the fields can't be read into \a value, which isn't touched.
    /// Whoever writes or reads without a check asks Fits first.
    virtual void Check(ValueBase &value, const XmlFields &fields) const;
    /// Takes the fields over, which Check has let pass; each change notifies. The descriptor goes
    /// where the fields name none that is known.
    virtual void Read(ValueBase &value, const XmlFields &fields) const;
    /// The kind that the fields are of, when they name another one than that of \a value:
    /// VTYPE_Unknown for a name that isn't registered.
    static std::optional<ValueType> OtherKind(const ValueBase &value, const XmlFields &fields);

protected:
    /// Whether the fields of another kind will do.
    virtual bool ReadsType(ValueType) const { return false; }
    static void ReadDescriptor(ValueBase &value, const XmlFields &fields);
    [[noreturn]] static void fail(const ValueBase &value, const QString &reason);

private:
    void requireFit(const ValueBase &value) const;
};

} // namespace values
