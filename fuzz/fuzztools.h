#pragma once

#include <cstdlib>

/// Stops the target where a promise doesn't hold; libFuzzer then keeps the input.
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}
