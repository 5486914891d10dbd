#pragma once

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/tracelimit.h"
#include "scanbuffer/datasourceadapter.h"
#include "scanbuffer/messages/mdatascalar.h"
#include "scanbuffer/windowrelated.h"

#include <cmath>

namespace sbs {

template <typename Y, typename YHandler>
void WindowAdapter<Y, YHandler>::SetWindow(WindowRelated<Y, YHandler> *window)
{
    setWindowObject(window);
}

template <typename Y, typename YHandler>
WindowRelated<Y, YHandler> *WindowAdapter<Y, YHandler>::window() const
{
    return static_cast<WindowRelated<Y, YHandler> *>(windowObject());
}

/// The value of a message of type MYData<T>, or null for another class.
template <typename T>
const T *valueOf(const MData &message)
{
    const auto *carrier = dynamic_cast<const MYData<T> *>(&message);
    return carrier == nullptr ? nullptr : &carrier->GetValue();
}

/// Stores the dimension that a display asks for. One that the samples don't have is traced and
/// refused: reading it would throw in every pass from now on.
template <typename YHandler>
bool takeDimension(const MData &message, short &dimension)
{
    const short *wanted = valueOf<short>(message);
    if (wanted == nullptr)
        return false;
    try {
        if (!std::isnan(YHandler::GetDimension(*wanted, YHandler::Minimum()))) {
            dimension = *wanted;
            return true;
        }
    } catch (const KRException &) {
    }
    SPECTREE_TRACE_LIMITED(
        TraceWarnings, QStringLiteral("An adapter was asked for dimension %1, which its samples "
                                      "don't have; it keeps %2")
                           .arg(*wanted)
                           .arg(dimension));
    return false;
}

/// Takes a flag over from a message of type MYData<bool>.
inline void takeFlag(const MData &message, bool &flag)
{
    if (const bool *value = valueOf<bool>(message))
        flag = *value;
}

} // namespace sbs
