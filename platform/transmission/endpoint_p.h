#pragma once

#include <QByteArray>

/// Addresses as ZeroMQ writes them.
namespace sbs::endpoint {

/// \a bound with "any address" replaced by one of this machine that others can reach: the one that
/// its default route uses, else that of the first interface that is up, else loopback.
QByteArray reachable(const QByteArray &bound);
/// True when only this machine can reach it.
bool isLoopback(const QByteArray &address);

} // namespace sbs::endpoint
