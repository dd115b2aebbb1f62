#include "ciofields.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "support/bytestring.h"
#include "support/testsupport.h"

namespace {

TEST(RecordFields, WriteLittleEndianBytesAndReadFloatsBitForBit) {
    // The other fields are compared byte for byte by every record's test; so is reading back.
    const std::string bytes = ByteString()
                                  .Ints({0xDEADBEEF})
                                  .Byte(0xA5)
                                  .Floats({0.5f, 0, -2.5f, 1})
                                  .Text(std::string("h\0i", 3))
                                  .bytes;
    EXPECT_EQ(Saved([&](cio_save& o) {
                  EXPECT_TRUE(WriteUInt32(o, 0xDEADBEEFu) && WriteUInt8(o, 0xA5) &&
                              WriteQuat(o, MakeQuat(0.5f, 0.0f, -2.5f, 1.0f)) &&
                              WriteText(o, std::string("h\0i", 3)));
              }),
              bytes);
    // Floats keep their bits: signed zero, quiet and signalling NaNs, infinity, denormals.
    for (const std::uint32_t bits :
         {0x80000000u, 0x7FC00001u, 0x7F800001u, 0xFF800000u, 0x00000001u}) {
        float f, back;
        std::memcpy(&f, &bits, 4);
        RecordStream one(Saved([f](cio_save& o) { WriteFloat(o, f); }));
        ASSERT_EQ(ReadFloat(one.in, back), 1);
        EXPECT_EQ(std::memcmp(&back, &bits, 4), 0) << std::hex << bits;
    }
}

TEST(RecordFields, StreamHoldsChecksCountsWithoutOverflow) {
    RecordStream b(std::string(12, '\0'));
    EXPECT_EQ(StreamHolds(b.in, 3, 4) + StreamHolds(b.in, 0, 64), 2);
    EXPECT_EQ(StreamHolds(b.in, 4, 4) + StreamHolds(b.in, -1, 4) +
                  StreamHolds(b.in, LLONG_MAX, 16) + StreamHolds(cio_load(), 1, 1),
              0);
}

// A field that straddles the end of the stream's 64 KiB block is read whole, and the stream's
// position and seeks stay those of the file.
TEST(RecordFields, FieldsAcrossTheStreamsBlockEdgeReadWhole) {
    constexpr unsigned int kBefore = 65536 - 6;
    const cquat q = MakeQuat(0.5f, -1.0f, 2.0f, 4.0f);
    RecordStream file(std::string(kBefore, 'x') + ByteString().Floats({0.5f, -1, 2, 4}).bytes +
                      ByteString().Ints({-7, 9}).bytes);
    std::string before(kBefore, '\0');
    cquat read;
    int next = 0, last = 0;
    ASSERT_EQ(file.in.Read(&before[0], kBefore), 1);
    ASSERT_EQ(ReadQuat(file.in, read), 1);
    EXPECT_EQ(std::vector<float>({read.x, read.y, read.z, read.w}),
              std::vector<float>({q.x, q.y, q.z, q.w}));
    EXPECT_EQ(file.in.GetPosition(), kBefore + 16);
    ASSERT_EQ(ReadInt32(file.in, next), 1);
    EXPECT_EQ(next, -7);
    // Back to the straddling field, then to a byte of the earlier block.
    ASSERT_EQ(file.in.SetPosition(kBefore + 12, 0), 0);
    ASSERT_TRUE(ReadFloat(file.in, read.x) && ReadInt32(file.in, next) && ReadInt32(file.in, last));
    EXPECT_EQ(std::vector<float>({read.x, static_cast<float>(next), static_cast<float>(last),
                                  static_cast<float>(file.in.BytesLeft())}),
              std::vector<float>({4, -7, 9, 0}));
    ASSERT_EQ(file.in.SetPosition(kBefore - 2, 0), 0);
    ASSERT_EQ(ReadName(file.in, &before[0], 4), 1);
    EXPECT_EQ(std::string(before.c_str()), "xx");
}

}  // namespace
