#include "fault.h"
#include "platform/base/bytes.h"
#include "platform/base/zstdcodec.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

template <typename T>
T readFrom(const std::string &bytes)
{
    const char *cursor = bytes.data();
    const T value = Kelm::readLittleEndian<T>(&cursor);
    EXPECT_EQ(cursor, bytes.data() + sizeof(T));
    return value;
}

TEST(Bytes, NumbersHaveTheirLittleEndianImage)
{
    std::string out;
    Kelm::appendLittleEndian(out, std::int8_t(-2));
    Kelm::appendLittleEndian(out, std::uint16_t(0x1234));
    Kelm::appendLittleEndian(out, Kelm::Long(-2));
    Kelm::appendLittleEndian(out, 1.0);
    EXPECT_EQ(out, std::string("\xFE\x34\x12\xFE\xFF\xFF\xFF\0\0\0\0\0\0\xF0\x3F", 15));

    EXPECT_EQ(readFrom<std::uint16_t>(std::string("\x34\x12", 2)), 0x1234);
    EXPECT_EQ(std::int32_t(readFrom<Kelm::Long>("\xFE\xFF\xFF\xFF")), -2);
    EXPECT_TRUE(readFrom<bool>("\x02"));
}

TEST(Bytes, AScopeEndsEveryKindOfRead)
{
    const std::string bytes = "abcd;efg";
    const Kelm::ReadScope scope(bytes.data(), 4);
    const char *cursor = bytes.data();

    EXPECT_EQ(Kelm::bytesLeft(cursor), 4u);
    EXPECT_THROW(Kelm::findByte(cursor, ';'), KRException) << "the ';' stands behind the end";
    EXPECT_THROW(Kelm::readLittleEndian<std::uint64_t>(&cursor), KRException);
    EXPECT_THROW(Kelm::readBytes(&cursor, 5), KRException);
    EXPECT_THROW(Kelm::requireBytes(cursor, std::numeric_limits<std::size_t>::max() / 4, 8),
                 KRException)
        << "a product that overflows is refused";
    EXPECT_EQ(cursor, bytes.data()) << "a refused read does not move";

    EXPECT_EQ(Kelm::readBytes(&cursor, 4), "abcd");
    EXPECT_THROW(Kelm::readTerminator(&cursor, "C", "f"), KRException);
    EXPECT_NO_THROW(Kelm::requireBytes(cursor, 0));
}

TEST(Bytes, ScopesNestAndTheTightestThatHoldsThePositionCounts)
{
    const std::string outer(100, ';'), other(10, 'x');
    const Kelm::ReadScope whole(outer.data(), outer.size());
    {
        const Kelm::ReadScope unpacked(other.data(), other.size());
        EXPECT_EQ(Kelm::bytesLeft(other.data() + 3), 7u);
        EXPECT_EQ(Kelm::bytesLeft(outer.data() + 60), 40u) << "outer bytes stay bounded";
        const Kelm::ReadScope part(outer.data() + 10, 5);
        EXPECT_EQ(Kelm::bytesLeft(outer.data() + 12), 3u);
    }
    EXPECT_EQ(Kelm::bytesLeft(outer.data() + 12), 88u);
    EXPECT_EQ(Kelm::bytesLeft(other.data()), std::numeric_limits<std::size_t>::max());
}

TEST(Bytes, AMissingTerminatorNamesItsReader)
{
    const char text[] = "x";
    const char *cursor = text;
    const Fault fault = faultOf(
        [&] { Kelm::readTerminator(&cursor, "Value::CommandSetValue", "CommandSetValue"); });
    EXPECT_EQ(fault.reason, "Command string is not terminated with ';'");
    EXPECT_EQ(fault.className, "Value::CommandSetValue");
}

TEST(ZstdCodec, ContentComesBackAndHostileFramesChangeNothing)
{
    const std::string content(5000, 'q');
    std::string packed = "kept", out = "untouched";
    Kelm::zstdCompress(content.data(), content.size(), packed);
    ASSERT_EQ(packed.substr(0, 4), "kept") << "compressing appends";
    packed.erase(0, 4);

    const struct {
        const char *name;
        std::string frame;
        std::size_t limit;
    } refused[] = {
        {"garbage", "not a frame", Kelm::kMaxUnpackedBytes},
        {"cut", packed.substr(0, packed.size() - 1), Kelm::kMaxUnpackedBytes},
        {"declares more than the limit", packed, content.size() - 1},
    };
    for (const auto &row : refused) {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(Kelm::zstdDecompress(row.frame.data(), row.frame.size(), out, row.limit));
        EXPECT_EQ(out, "untouched");
    }
    EXPECT_TRUE(Kelm::zstdDecompress(packed.data(), packed.size(), out, content.size()));
    EXPECT_EQ(out, content);
}

} // namespace
