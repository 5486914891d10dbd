#include "valueclasses/valueempty.h"

namespace values {

void ValueEmpty::Assign(const ValueBase &other)
{
    const auto &same = CastForAssign<ValueEmpty>(other);
    if (PostAssignIfForeign(same))
        return;
    m_remark = same.m_remark;
    ValueBase::operator=(other);
}

bool ValueEmpty::Compare(const ValueBase *other) const
{
    const auto *same = dynamic_cast<const ValueEmpty *>(other);
    return same != nullptr && (same == this || ValueBase::Compare(other));
}

} // namespace values
