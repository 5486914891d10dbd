#pragma once

#include "platform/base/export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

/// The frames between consumer and server, as docs/transmission.md tells them: pure functions from
/// bytes to structures and back. All numbers are little-endian; a frame is exactly as long as its
/// fields. State, mass data and commands have a second frame behind this one, which is the message.
namespace sbs::frames {

inline constexpr std::uint16_t kVersion = 1;
/// Mass data that a consumer may have under way at most, whatever it grants.
inline constexpr std::uint32_t kMaxCredits = 1024;
inline constexpr std::uint32_t kMagic = 0x54435053; // "SPCT"
inline constexpr std::size_t kMaxGuid = 256, kMaxKind = 64, kMaxToken = 64, kMaxReason = 1024;

enum class Type : std::uint8_t {
    hello = 1,
    progress = 2,
    command = 3,
    requestState = 4,
    heartbeat = 5,
    bye = 6,
    ready = 16,
    refused = 17,
    state = 18,
    massdata = 19,
    beat = 20,
    farewell = 21,
};

// From the consumer.
struct Hello {
    std::uint16_t version = kVersion; ///< of another version nothing else is read
    std::uint32_t credits = 0;
    std::string windowGuid, kind, token;
};
struct Progress {
    std::uint64_t granted = 0;   ///< mass data messages that may be sent on this link in all
    std::uint64_t stateSeen = 0; ///< number of the last state taken in
};
struct Command {};
struct RequestState {};
struct Heartbeat {};
struct Bye {};

// From the server.
struct Ready {
    std::uint16_t version = kVersion;
    std::uint32_t heartbeatMs = 0;
};
struct Refused {
    bool final = true; ///< trying again is of no use
    std::string reason;
};
struct State {
    bool full = false;
    std::uint64_t number = 0; ///< rises by one with each state of the link, from 1
};
struct Massdata {
    bool stateIndependent = false;
    std::uint64_t state = 0; ///< number of the state that the data belong to
    std::uint64_t lost = 0;  ///< mass data dropped on this link so far
};
struct Beat {
    std::uint64_t lost = 0;
};
struct Farewell {
    std::string reason;
};

using FromConsumer = std::variant<Hello, Progress, Command, RequestState, Heartbeat, Bye>;
using FromServer = std::variant<Ready, Refused, State, Massdata, Beat, Farewell>;

/// Nothing for bytes that are no such frame. Never reads past the end, never throws.
SPECTREE_EXPORT std::optional<FromConsumer> parseFromConsumer(const char *data, std::size_t size);
SPECTREE_EXPORT std::optional<FromServer> parseFromServer(const char *data, std::size_t size);

/// The fixed frames of the hot path need no memory.
SPECTREE_EXPORT std::array<char, 10> encode(const State &frame);
SPECTREE_EXPORT std::array<char, 18> encode(const Massdata &frame);
/// Texts longer than their limit are cut.
SPECTREE_EXPORT std::string encode(const FromConsumer &frame);
SPECTREE_EXPORT std::string encode(const FromServer &frame);

} // namespace sbs::frames
