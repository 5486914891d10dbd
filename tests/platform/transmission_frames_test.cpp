#include "platform/transmission/frames_p.h"

#include <gtest/gtest.h>

namespace {

using namespace sbs::frames;

std::string bytes(std::initializer_list<int> values)
{
    return std::string(values.begin(), values.end());
}

const std::pair<FromConsumer, std::string> kFromConsumer[] = {
    {Hello{1, 64, "w1", "Curve", "t"},
     bytes({1,   'S', 'P', 'C', 'T', 1,   0,   64,  0,   0, 0, 2,  0,
            'w', '1', 5,   0,   'C', 'u', 'r', 'v', 'e', 1, 0, 't'})},
    {Progress{0x0102, 3}, bytes({2, 2, 1, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0})},
    {Command{}, bytes({3})},
    {RequestState{}, bytes({4})},
    {Heartbeat{}, bytes({5})},
    {Bye{}, bytes({6})},
};
const std::pair<FromServer, std::string> kFromServer[] = {
    {Ready{1, 1000}, bytes({16, 1, 0, 0xE8, 3, 0, 0})},
    {Refused{true, "no"}, bytes({17, 1, 2, 0, 'n', 'o'})},
    {State{true, 7}, bytes({18, 1, 7, 0, 0, 0, 0, 0, 0, 0})},
    {Massdata{false, 7, 9}, bytes({19, 0, 7, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0})},
    {Beat{9}, bytes({20, 9, 0, 0, 0, 0, 0, 0, 0})},
    {Farewell{"ok"}, bytes({21, 2, 0, 'o', 'k'})},
};

/// Each frame has its bytes, reads back to the same bytes, and is nothing when cut or lengthened.
template <typename Frame, std::size_t N>
void checkTable(const std::pair<Frame, std::string> (&table)[N],
                std::optional<Frame> (*parse)(const char *, std::size_t))
{
    for (const auto &[frame, image] : table) {
        SCOPED_TRACE(int(image[0]));
        EXPECT_EQ(encode(frame), image);
        const auto back = parse(image.data(), image.size());
        ASSERT_TRUE(back);
        EXPECT_EQ(back->index(), frame.index());
        EXPECT_EQ(encode(*back), image);
        for (std::size_t size = 0; size < image.size(); ++size) {
            const std::string cut(image, 0, size); // of its own, for the address sanitizer
            EXPECT_FALSE(parse(cut.data(), cut.size())) << size;
        }
        EXPECT_FALSE(parse((image + 'x').data(), image.size() + 1));
    }
}

TEST(TransmissionFrames, HaveTheirBytes)
{
    checkTable(kFromConsumer, parseFromConsumer);
    checkTable(kFromServer, parseFromServer);
}

TEST(TransmissionFrames, OneSideDoesNotTakeTheOthers)
{
    for (const auto &[frame, image] : kFromConsumer)
        EXPECT_FALSE(parseFromServer(image.data(), image.size()));
    for (const auto &[frame, image] : kFromServer)
        EXPECT_FALSE(parseFromConsumer(image.data(), image.size()));
}

TEST(TransmissionFrames, TextsAreBounded)
{
    const auto parses = [](const Hello &hello) {
        const std::string image = encode(FromConsumer(hello));
        return parseFromConsumer(image.data(), image.size()).has_value();
    };
    const std::string longest(kMaxGuid, 'g');
    EXPECT_TRUE(parses({kVersion, 1, longest, "k", "t"}));
    EXPECT_FALSE(parses({kVersion, 1, "", "k", "t"}));
    std::string image = encode(FromConsumer(Hello{kVersion, 1, longest, "k", "t"}));
    image.insert(13, "g");
    image[11] = char(kMaxGuid + 1);
    EXPECT_FALSE(parseFromConsumer(image.data(), image.size()));
}

} // namespace
