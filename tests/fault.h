#pragma once

#include "platform/base/krexception.h"

/// What an act threw, to be compared as a value; all empty when it threw nothing.
struct Fault {
    std::string reason{}, className{}, functionName{};
};

template <typename Act>
Fault faultOf(Act &&act)
{
    try {
        act();
    } catch (const KRException &error) {
        return {error.what(), error.GetClassName(), error.GetFunctionName()};
    }
    return {};
}
