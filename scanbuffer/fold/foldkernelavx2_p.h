#pragma once

#include "scanbuffer/fold/foldkernels.h"

namespace sbs::foldkernels {

/// Only for processors with AVX2 and POPCNT.
template <Number T>
bool foldAvx2(const Job<T> &job);

} // namespace sbs::foldkernels
