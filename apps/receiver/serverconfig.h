#pragma once

#include "apps/receiver/options.h"

namespace receiver {

/// Puts endpoint and keys of the command line into the configuration, before a server is made.
/// \throws Failure when a key file can't be read or holds no key
void configureServer(const Options &options);

} // namespace receiver
