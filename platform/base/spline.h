#pragma once

#include "platform/base/export.h"

/// The value at \a x of the uniform cubic B-spline over \a count rising positions \a xs with the
/// control values \a ys: a smooth line that follows the values without meeting peaks whole, and
/// ends in the first and the last of them. Beyond the ends the end's value; 0 without positions.
SPECTREE_EXPORT double spline_b_val(int count, const double *xs, const double *ys, double x);
