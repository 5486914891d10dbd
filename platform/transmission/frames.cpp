#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "platform/transmission/frames_p.h"

#include <algorithm>

namespace sbs::frames {
namespace {

class Reader {
public:
    Reader(const char *data, std::size_t size)
        : m_scope(data, size), m_cursor(data), m_end(data + size)
    {
    }

    template <typename T>
    T number()
    {
        return Kelm::readLittleEndian<T>(&m_cursor);
    }
    bool flag()
    {
        const auto value = number<std::uint8_t>();
        m_valid = m_valid && value <= 1;
        return value != 0;
    }
    std::string text(std::size_t limit, std::size_t least = 0)
    {
        const std::size_t size = number<std::uint16_t>();
        m_valid = m_valid && size >= least && size <= limit;
        return Kelm::readBytes(&m_cursor, size);
    }
    void skipRest() { m_cursor = m_end; }
    void require(bool condition) { m_valid = m_valid && condition; }
    bool complete() const { return m_valid && m_cursor == m_end; }

private:
    Kelm::ReadScope m_scope;
    const char *m_cursor;
    const char *m_end;
    bool m_valid = true;
};

Hello readHello(Reader &in)
{
    Hello hello;
    in.require(in.number<std::uint32_t>() == kMagic);
    hello.version = in.number<std::uint16_t>();
    if (hello.version != kVersion) {
        in.skipRest();
        return hello;
    }
    hello.credits = in.number<std::uint32_t>();
    hello.windowGuid = in.text(kMaxGuid, 1);
    hello.kind = in.text(kMaxKind, 1);
    hello.token = in.text(kMaxToken, 1);
    return hello;
}

std::optional<FromConsumer> readFromConsumer(Reader &in)
{
    switch (in.number<Type>()) {
    case Type::hello:
        return readHello(in);
    case Type::progress: {
        Progress frame;
        frame.granted = in.number<std::uint64_t>();
        frame.stateSeen = in.number<std::uint64_t>();
        return frame;
    }
    case Type::command:
        return Command{};
    case Type::requestState:
        return RequestState{};
    case Type::heartbeat:
        return Heartbeat{};
    case Type::bye:
        return Bye{};
    default:
        return std::nullopt;
    }
}

std::optional<FromServer> readFromServer(Reader &in)
{
    switch (in.number<Type>()) {
    case Type::ready: {
        Ready frame;
        frame.version = in.number<std::uint16_t>();
        frame.heartbeatMs = in.number<std::uint32_t>();
        return frame;
    }
    case Type::refused: {
        Refused frame;
        frame.final = in.flag();
        frame.reason = in.text(kMaxReason);
        return frame;
    }
    case Type::state: {
        State frame;
        frame.full = in.flag();
        frame.number = in.number<std::uint64_t>();
        return frame;
    }
    case Type::massdata: {
        Massdata frame;
        frame.stateIndependent = in.flag();
        frame.state = in.number<std::uint64_t>();
        frame.lost = in.number<std::uint64_t>();
        return frame;
    }
    case Type::beat:
        return Beat{in.number<std::uint64_t>()};
    case Type::farewell:
        return Farewell{in.text(kMaxReason)};
    default:
        return std::nullopt;
    }
}

template <typename Frame>
std::optional<Frame> parse(const char *data, std::size_t size,
                           std::optional<Frame> (*read)(Reader &))
{
    try {
        Reader in(data, size);
        std::optional<Frame> frame = read(in);
        return in.complete() ? frame : std::nullopt;
    } catch (const KRException &) {
        return std::nullopt; // the bytes ended too early
    }
}

class Writer {
public:
    explicit Writer(Type type) { number(type); }

    template <typename T>
    Writer &number(T value)
    {
        Kelm::appendLittleEndian(m_bytes, value);
        return *this;
    }
    Writer &text(const std::string &value, std::size_t limit)
    {
        const std::size_t size = std::min(value.size(), limit);
        number(std::uint16_t(size));
        m_bytes.append(value, 0, size);
        return *this;
    }
    std::string take() { return std::move(m_bytes); }

private:
    std::string m_bytes;
};

struct Encoder {
    std::string operator()(const Hello &frame) const
    {
        return Writer(Type::hello)
            .number(kMagic)
            .number(frame.version)
            .number(frame.credits)
            .text(frame.windowGuid, kMaxGuid)
            .text(frame.kind, kMaxKind)
            .text(frame.token, kMaxToken)
            .take();
    }
    std::string operator()(const Progress &frame) const
    {
        return Writer(Type::progress).number(frame.granted).number(frame.stateSeen).take();
    }
    std::string operator()(const Command &) const { return Writer(Type::command).take(); }
    std::string operator()(const RequestState &) const { return Writer(Type::requestState).take(); }
    std::string operator()(const Heartbeat &) const { return Writer(Type::heartbeat).take(); }
    std::string operator()(const Bye &) const { return Writer(Type::bye).take(); }
    std::string operator()(const Ready &frame) const
    {
        return Writer(Type::ready).number(frame.version).number(frame.heartbeatMs).take();
    }
    std::string operator()(const Refused &frame) const
    {
        return Writer(Type::refused).number(frame.final).text(frame.reason, kMaxReason).take();
    }
    std::string operator()(const State &frame) const
    {
        const auto bytes = encode(frame);
        return std::string(bytes.data(), bytes.size());
    }
    std::string operator()(const Massdata &frame) const
    {
        const auto bytes = encode(frame);
        return std::string(bytes.data(), bytes.size());
    }
    std::string operator()(const Beat &frame) const
    {
        return Writer(Type::beat).number(frame.lost).take();
    }
    std::string operator()(const Farewell &frame) const
    {
        return Writer(Type::farewell).text(frame.reason, kMaxReason).take();
    }
};

} // namespace

std::optional<FromConsumer> parseFromConsumer(const char *data, std::size_t size)
{
    return parse<FromConsumer>(data, size, readFromConsumer);
}

std::optional<FromServer> parseFromServer(const char *data, std::size_t size)
{
    return parse<FromServer>(data, size, readFromServer);
}

std::array<char, 10> encode(const State &frame)
{
    std::array<char, 10> bytes;
    char *end = Kelm::putLittleEndian(bytes.data(), Type::state);
    end = Kelm::putLittleEndian(end, frame.full);
    Kelm::putLittleEndian(end, frame.number);
    return bytes;
}

std::array<char, 18> encode(const Massdata &frame)
{
    std::array<char, 18> bytes;
    char *end = Kelm::putLittleEndian(bytes.data(), Type::massdata);
    end = Kelm::putLittleEndian(end, frame.stateIndependent);
    end = Kelm::putLittleEndian(end, frame.state);
    Kelm::putLittleEndian(end, frame.lost);
    return bytes;
}

std::string encode(const FromConsumer &frame) { return std::visit(Encoder(), frame); }
std::string encode(const FromServer &frame) { return std::visit(Encoder(), frame); }

} // namespace sbs::frames
