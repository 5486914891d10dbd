#pragma once

#include <atomic>

/// The thread check for the library's own hot paths: one compare, without a call.
namespace Kelm::Detail {

// Hidden and of this model, so that an access is a plain load; constant-initialised, so that a
// check before and after all constructors is sound.
#define SPECTREE_OWN __attribute__((visibility("hidden")))
extern constinit SPECTREE_OWN std::atomic<const void *> appThread;
// The address of a thread-local is unique among living threads.
extern constinit thread_local SPECTREE_OWN char threadMark
    __attribute__((tls_model("initial-exec")));
#undef SPECTREE_OWN

inline bool isAcceptableThread()
{
    const void *const known = appThread.load(std::memory_order_relaxed);
    return known == nullptr || known == &threadMark;
}

} // namespace Kelm::Detail
