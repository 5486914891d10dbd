#pragma once

#include "platform/base/export.h"

#include <QString>
#include <QStringView>

namespace values {

/// Takes paths apart. A leading and a closing "/" belong to the form of a path: "/a/b/" is absolute
/// and names a node. What is cut off at one end leaves the form of the other end as it was.
class SPECTREE_EXPORT Path {
public:
    static QString GetLeft(const QString &path);   ///< the first component: "a" of "/a/b/"
    static QString GetRight(const QString &path);  ///< the last component: "b" of "/a/b/"
    static QString TrimLeft(const QString &path);  ///< without the first: "/b/" of "/a/b/"
    static QString TrimRight(const QString &path); ///< without the last: "/a/" of "/a/b/"
    /// Whether \a path lies at or under \a prefix, which has no closing "/".
    static bool IsPrefixPath(const QString &path, const QString &prefix);
};

} // namespace values

/// The rules of paths and of the names in them.
namespace TreePathHelpers {

/// The deepest path that a tree takes, in components.
constexpr int kMaximumDepth = 256;

/// ASCII letters, digits, blank and "-.:_", not beginning with a digit.
SPECTREE_EXPORT bool CheckIdentifier(QStringView name);
/// ASCII, no "//", each part an identifier, no deeper than a tree may be.
SPECTREE_EXPORT bool CheckPath(QStringView path);

} // namespace TreePathHelpers
