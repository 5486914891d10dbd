#include "platform/transmission/socketcalls_p.h"

namespace sbs {

bool isReadable(zmq::socket_t &socket)
{
    return uninterrupted([&] { return (socket.get(zmq::sockopt::events) & ZMQ_POLLIN) != 0; });
}

bool receiveParts(zmq::socket_t &socket, std::vector<zmq::message_t> &parts)
{
    constexpr std::size_t kMaxParts = 8;
    parts.clear();
    for (bool more = true; more;) {
        zmq::message_t part;
        if (!uninterrupted([&] { return socket.recv(part, zmq::recv_flags::dontwait); }))
            return false;
        more = part.more();
        if (parts.size() < kMaxParts)
            parts.push_back(std::move(part));
    }
    return true;
}

} // namespace sbs
