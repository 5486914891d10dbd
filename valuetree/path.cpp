#include "valuetree/path.h"

#include <algorithm>

namespace values {

namespace {

/// A path without the "/" at its ends, and which of them it had.
struct Form {
    explicit Form(const QString &path)
        : inner(path), absolute(path.startsWith('/')), closed(path.size() > 1 && path.endsWith('/'))
    {
        if (absolute)
            inner = inner.mid(1);
        if (closed)
            inner.chop(1);
    }
    QString with(QStringView rest) const
    {
        QString path;
        if (absolute)
            path += '/';
        path += rest;
        if (closed && !rest.isEmpty())
            path += '/';
        return path;
    }
    QStringView inner;
    bool absolute, closed;
};

} // namespace

QString Path::GetLeft(const QString &path)
{
    const QStringView inner = Form(path).inner;
    const auto cut = inner.indexOf(QChar('/'));
    return (cut < 0 ? inner : inner.left(cut)).toString();
}

QString Path::GetRight(const QString &path)
{
    const QStringView inner = Form(path).inner;
    return inner.mid(inner.lastIndexOf(QChar('/')) + 1).toString();
}

QString Path::TrimLeft(const QString &path)
{
    const Form form(path);
    const auto cut = form.inner.indexOf(QChar('/'));
    return form.with(cut < 0 ? QStringView() : form.inner.mid(cut + 1));
}

QString Path::TrimRight(const QString &path)
{
    const Form form(path);
    const auto cut = form.inner.lastIndexOf(QChar('/'));
    return form.with(cut < 0 ? QStringView() : form.inner.left(cut));
}

bool Path::IsPrefixPath(const QString &path, const QString &prefix)
{
    return path.startsWith(prefix) &&
           (path.size() == prefix.size() || path[prefix.size()] == QChar('/'));
}

} // namespace values

namespace TreePathHelpers {

namespace {

bool isDigit(QChar c) { return c >= QChar('0') && c <= QChar('9'); }

bool isAllowed(QChar c)
{
    return (c >= QChar('a') && c <= QChar('z')) || (c >= QChar('A') && c <= QChar('Z')) ||
           isDigit(c) || c == QChar(' ') || c == QChar('-') || c == QChar('.') || c == QChar(':') ||
           c == QChar('_');
}

} // namespace

bool CheckIdentifier(QStringView name)
{
    return !name.isEmpty() && !isDigit(name.front()) &&
           std::all_of(name.begin(), name.end(), isAllowed);
}

bool CheckPath(QStringView path)
{
    if (path.isEmpty() || path.contains(u"//"))
        return false;
    QStringView rest = path.front() == QChar('/') ? path.mid(1) : path;
    if (!rest.isEmpty() && rest.back() == QChar('/'))
        rest.chop(1);
    for (int depth = 0; !rest.isNull() && !(depth == 0 && rest.isEmpty()); ++depth) {
        const auto cut = rest.indexOf(QChar('/'));
        if (depth == kMaximumDepth || !CheckIdentifier(cut < 0 ? rest : rest.left(cut)))
            return false;
        rest = cut < 0 ? QStringView() : rest.mid(cut + 1);
    }
    return true;
}

} // namespace TreePathHelpers
