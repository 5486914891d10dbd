#include "platform/transmission/endpoint_p.h"

#include <arpa/inet.h>
#include <array>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace sbs::endpoint {
namespace {

constexpr char kTcp[] = "tcp://";

QByteArray toText(const sockaddr_in &address)
{
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
    return QByteArray(text.data());
}

/// The source address of the default route. Connecting a UDP socket sends nothing.
QByteArray addressOfDefaultRoute()
{
    const int probe = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe < 0)
        return QByteArray();
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(9);
    inet_pton(AF_INET, "192.0.2.1", &address.sin_addr); // set aside for documentation
    socklen_t size = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    const bool found =
        connect(probe, generic, size) == 0 && getsockname(probe, generic, &size) == 0;
    close(probe);
    return found ? toText(address) : QByteArray();
}

QByteArray addressOfFirstInterface()
{
    ifaddrs *all = nullptr;
    if (getifaddrs(&all) != 0)
        return QByteArray();
    QByteArray found;
    for (const ifaddrs *one = all; one && found.isEmpty(); one = one->ifa_next)
        if (one->ifa_addr && one->ifa_addr->sa_family == AF_INET && (one->ifa_flags & IFF_UP) &&
            !(one->ifa_flags & IFF_LOOPBACK))
            found = toText(*reinterpret_cast<const sockaddr_in *>(one->ifa_addr));
    freeifaddrs(all);
    return found;
}

QByteArray ownAddress()
{
    QByteArray address = addressOfDefaultRoute();
    if (address.isEmpty())
        address = addressOfFirstInterface();
    return address.isEmpty() ? QByteArrayLiteral("127.0.0.1") : address;
}

QByteArray hostOf(const QByteArray &address)
{
    const int begin = int(sizeof kTcp) - 1;
    return address.mid(begin, address.lastIndexOf(':') - begin);
}

} // namespace

QByteArray reachable(const QByteArray &bound)
{
    if (!bound.startsWith(kTcp))
        return bound;
    const QByteArray host = hostOf(bound);
    if (host != "0.0.0.0" && host != "*" && host != "[::]")
        return bound;
    return kTcp + ownAddress() + bound.mid(bound.lastIndexOf(':'));
}

bool isLoopback(const QByteArray &address)
{
    if (!address.startsWith(kTcp))
        return true; // ipc and inproc never leave the machine
    const QByteArray host = hostOf(address);
    in_addr number{}; // a name such as 127.0.0.1.example.org is no number
    const bool loopNet =
        inet_pton(AF_INET, host.constData(), &number) == 1 && ntohl(number.s_addr) >> 24 == 127;
    return loopNet || host == "localhost" || host == "[::1]" || host == "lo";
}

} // namespace sbs::endpoint
