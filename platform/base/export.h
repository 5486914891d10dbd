#pragma once

/// Marks what users of the shared library may link against; everything else stays hidden.
#if defined(SPECTREE_BUILDING_LIBRARY)
#define SPECTREE_EXPORT __attribute__((visibility("default")))
#else
#define SPECTREE_EXPORT
#endif
