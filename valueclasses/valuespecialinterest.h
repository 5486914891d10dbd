#pragma once

#include "valueclasses/records/sequencekinds.h"

namespace values {

/// The list of who is interested in which file. An element is known by its GUID and file name.
class SPECTREE_EXPORT ValueSpecialInterest : public ValueList<SpecialInterest> {
public:
    using ValueList::ValueList;

    QString GetTypeName() const override;
    /// Sets the interest of the element with the same GUID and file name, as one command (id 50),
    /// code CC_VALUE; appends \a item where there is none.
    void ChangeInterest(const SpecialInterest &item, IObserver *source);

    using CommandChangeInterest =
        FieldCommand<"ValueSpecialInterest::CommandChangeInterest", 50,
                     &ValueSpecialInterest::ChangeInterest, CommandFieldOf<SpecialInterest>>;

protected:
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;
};

} // namespace values
