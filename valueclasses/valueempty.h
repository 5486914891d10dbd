#pragma once

#include "valueclasses/valuebase.h"

namespace values {

/// A value without content: a mark in the tree, and the prototype of a descriptor that has none.
class SPECTREE_EXPORT ValueEmpty : public ValueBase {
public:
    using ValueBase::ValueBase;

    /// A remark that only copies of this value carry on: no command, no notification.
    const QString &GetRemark() const { return m_remark; }
    void SetRemark(const QString &remark) { m_remark = remark; }

    ValueType GetType() const override { return VTYPE_ValueEmpty; }
    QString GetTypeName() const override { return QStringLiteral("ValueEmpty"); }
    void Assign(const ValueBase &other) override;
    bool Compare(const ValueBase *other) const override;

private:
    QString m_remark;
};

} // namespace values
