#pragma once

#include "platform/base/krexception.h"
#include "valueclasses/commands/fieldcommand.h"
#include "valueclasses/itemmaps/valueitemmapbase.h"

/// The commands of an item map: uint32 key, image of the item. docs/selections.md tells their
/// forms.
namespace values {

/// The image of an item as the last field of a command: its ";" is the command's.
template <typename T, typename F>
class ItemImageForm {
public:
    static T FromStream(const char **pos, int /*mode*/)
    {
        T item;
        if (!F::fromCharStream(pos, item))
            throw KRException("Command string is not terminated with ';'", __FILE__,
                              "CommandMapSetAt", "CommandMapSetAt", __LINE__);
        --*pos;
        return item;
    }
    static std::string ToStream(const T &item, int /*mode*/)
    {
        std::string image = F::toStandardString(item);
        image.pop_back();
        return image;
    }
};

template <typename T, typename F, typename A>
using CommandMapSetAt =
    FieldCommand<"CommandMapSetAt", 20, &ValueItemMapBase<T, F, A>::SetAt,
                 CommandFieldOf<unsigned int>, CommandFieldOf<T, ItemImageForm<T, F>>>;
template <typename T, typename F, typename A>
using CommandMapEraseAt = FieldCommand<"CommandMapEraseAt", 21, &ValueItemMapBase<T, F, A>::EraseAt,
                                       CommandFieldOf<unsigned int>>;
template <typename T, typename F, typename A>
using CommandMapClear = FieldCommand<"CommandMapClear", 22, &ValueItemMapBase<T, F, A>::Clear>;

} // namespace values
