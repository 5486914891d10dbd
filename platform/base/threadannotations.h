#pragma once

/// Clang's thread-safety annotations; empty elsewhere. CI compiles once with clang and
/// -Werror=thread-safety, so that a member read without its lock does not compile.
#if defined(__clang__)
#define SPECTREE_TSA(x) __attribute__((x))
#else
#define SPECTREE_TSA(x)
#endif

#define SPECTREE_CAPABILITY(name) SPECTREE_TSA(capability(name))
#define SPECTREE_SCOPED_CAPABILITY SPECTREE_TSA(scoped_lockable)
#define SPECTREE_GUARDED_BY(lock) SPECTREE_TSA(guarded_by(lock))
#define SPECTREE_REQUIRES(...) SPECTREE_TSA(requires_capability(__VA_ARGS__))
#define SPECTREE_REQUIRES_SHARED(...) SPECTREE_TSA(requires_shared_capability(__VA_ARGS__))
#define SPECTREE_ACQUIRE(...) SPECTREE_TSA(acquire_capability(__VA_ARGS__))
#define SPECTREE_ACQUIRE_SHARED(...) SPECTREE_TSA(acquire_shared_capability(__VA_ARGS__))
#define SPECTREE_TRY_ACQUIRE(...) SPECTREE_TSA(try_acquire_capability(__VA_ARGS__))
#define SPECTREE_RELEASE(...) SPECTREE_TSA(release_capability(__VA_ARGS__))
#define SPECTREE_RELEASE_SHARED(...) SPECTREE_TSA(release_shared_capability(__VA_ARGS__))
#define SPECTREE_RELEASE_GENERIC(...) SPECTREE_TSA(release_generic_capability(__VA_ARGS__))
#define SPECTREE_EXCLUDES(...) SPECTREE_TSA(locks_excluded(__VA_ARGS__))
#define SPECTREE_NO_THREAD_SAFETY_ANALYSIS SPECTREE_TSA(no_thread_safety_analysis)
