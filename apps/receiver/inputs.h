#pragma once

#include "apps/receiver/options.h"

#include <memory>

namespace receiver {

/// Opens the input that the command line asks for, cut to its --ranges. Sentences about what was
/// tolerated go to \a note, now and while scans are read.
/// \throws Failure when it can't be opened or the options don't fit it
std::unique_ptr<Input> openInput(const Options &options, const Note &note);

} // namespace receiver
