#pragma once

#include "platform/base/observable.h"

#include <QString>

/// What changed. The numbers travel in command strings and never change.
enum TChangeCode : int {
    CC_NONE = 0,                   ///< nobody is told; an end of a transaction in silence
    CC_NAME = 1,                   ///< the name of a value, node or item
    CC_STATE = 2,                  ///< the state; with state 1 the last word of a dying value
    CC_VALUE = 3,                  ///< the value itself
    CC_LIMITS = 4,                 ///< minimum, maximum or step; the channel grid of a map
    CC_ITEM_ADDED = 5,             ///< an item went into a list or selection
    CC_ITEM_REMOVED = 6,           ///< an item left a list
    CC_LIST_REPLACED = 7,          ///< a whole list was assigned, or one selection item deleted
    CC_LIST_CLEARED = 8,           ///< a list or selection was emptied
    CC_LIST_CLEARED2 = 9,          ///< the same as 8 for undo
    CC_MAPPING = 10,               ///< new data in a map, filter or histogram
    CC_END_OF_SCAN = 13,           ///< a scan ended
    CC_COMMIT_BEGIN = 15,          ///< a commit was opened
    CC_CHILD_ADDED = 16,           ///< a node received a child
    CC_ABOUT_TO_DELETE = 17,       ///< a tree item is about to go; a commit was closed
    CC_DELETED = 18,               ///< a tree item left its parent
    CC_SELECTION = 19,             ///< selection flags of an item map
    CC_CHANGING = 23,              ///< a value is being changed interactively
    CC_TRANSACTION_BEGIN = 24,     ///< a transaction of a connection was opened
    CC_TRANSACTION_END = 25,       ///< a transaction of a connection was closed
    CC_FAST_MAP = 26,              ///< a fast value map has recorded commands to fetch
    CC_MOVE_OVER = 28,             ///< the move-over mark of an item map
    CC_CURRENT_ITEM = 29,          ///< the current item of an item map
    CC_TRANSLATION_NAMESPACE = 57, ///< the translation namespace
};

namespace values {

/// The state of a value.
enum TValueState : int {
    VS_NORMAL = 0,
    VS_DELETED = 1,
    VS_DISABLED = 2, ///< restored values start in it
};

} // namespace values

namespace Vt {

/// "NORMAL", "DELETE", "DISABLED", and "CLEAR" for any other number.
SPECTREE_EXPORT QString getStateString(values::TValueState state);

} // namespace Vt
