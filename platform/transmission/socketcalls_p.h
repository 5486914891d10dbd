#pragma once

#include <zmq.hpp>

#include <cerrno>
#include <vector>

namespace sbs {

/// Repeats a ZeroMQ call that a signal has interrupted. Any program may have signal handlers, and
/// ZeroMQ gives up for one even where it doesn't wait.
template <typename Call>
auto uninterrupted(Call call)
{
    for (;;) {
        try {
            return call();
        } catch (const zmq::error_t &error) {
            if (error.num() != EINTR)
                throw;
        }
    }
}

/// Sends one part of a message; false when it would have to wait.
template <typename Part>
bool sendPart(zmq::socket_t &socket, Part &&part, zmq::send_flags flags)
{
    return uninterrupted([&] { return socket.send(part, flags); }).has_value();
}

/// Whether receiveParts() would find something.
bool isReadable(zmq::socket_t &socket);

/// Receives all parts of one message without waiting; at most eight are kept. False when there is
/// none.
bool receiveParts(zmq::socket_t &socket, std::vector<zmq::message_t> &parts);

} // namespace sbs
