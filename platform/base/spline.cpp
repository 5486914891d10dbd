#include "platform/base/spline.h"

#include <algorithm>

double spline_b_val(int count, const double *xs, const double *ys, double x)
{
    if (count < 1)
        return 0.0;
    if (count == 1 || x <= xs[0])
        return ys[0];
    const int last = count - 1;
    if (x >= xs[last])
        return ys[last];
    // A position that is no number is above none of them.
    const int left = std::min(int(std::upper_bound(xs, xs + count, x) - xs), last) - 1;
    // A value mirrored at either end makes the line end in the outermost one.
    const auto control = [&](int i) {
        if (i < 0)
            return 2.0 * ys[0] - ys[1];
        return i > last ? 2.0 * ys[last] - ys[last - 1] : ys[i];
    };
    const double u = (x - xs[left]) / (xs[left + 1] - xs[left]), v = 1.0 - u;
    return (v * v * v * control(left - 1) + (4.0 - 6.0 * u * u + 3.0 * u * u * u) * control(left) +
            (4.0 - 6.0 * v * v + 3.0 * v * v * v) * control(left + 1) +
            u * u * u * control(left + 2)) /
           6.0;
}
