#include "ciofields.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "support/testsupport.h"

namespace {

// Bytes from space-separated hexadecimal pairs: "fe ff" -> "\xfe\xff".
std::string Hex(const std::string& digits) {
    std::istringstream pairs(digits);
    std::string bytes;
    unsigned int value = 0;
    while (pairs >> std::hex >> value) bytes += static_cast<char>(value);
    return bytes;
}

// Reads one field, expecting success.
template <class T>
T ReadBack(cio_load& in, int (*read)(cio_load&, T&)) {
    T value{};
    EXPECT_EQ(read(in, value), 1);
    return value;
}

TEST(RecordFields, WriteAndReadLittleEndianBytes) {
    const std::string bytes =
        Hex("fe ff ff ff 00 00 00 80 ef be ad de ef be a5 00 00 20 c0 "
            "00 00 80 3f 00 00 20 c0 00 00 00 3f "
            "00 00 00 3f 00 00 00 00 00 00 20 c0 00 00 80 3f "
            "00 00 00 3f 00 00 80 3e 00 00 80 3f 00 00 00 00 03 00 00 00 68 00 69 00 00 00 00");
    const cquat q = MakeQuat(0.5f, 0.0f, -2.5f, 1.0f);
    EXPECT_EQ(Saved([&](cio_save& o) {
                  EXPECT_TRUE(WriteInt32(o, -2) && WriteInt32(o, INT_MIN) &&
                              WriteUInt32(o, 0xDEADBEEFu) && WriteUInt16(o, 0xBEEF) &&
                              WriteUInt8(o, 0xA5) && WriteFloat(o, -2.5f) &&
                              WritePoint3(o, cpoint3(1.0f, -2.5f, 0.5f)) && WriteQuat(o, q) &&
                              WriteColor(o, ccolor(0.5f, 0.25f, 1.0f, 0.0f)) &&
                              WriteText(o, std::string("h\0i", 3)) && WriteText(o, ""));
              }),
              bytes);

    RecordStream b(bytes);
    EXPECT_EQ(ReadBack(b.in, ReadInt32), -2);
    EXPECT_EQ(ReadBack(b.in, ReadInt32), INT_MIN);
    EXPECT_EQ(ReadBack(b.in, ReadUInt32), 0xDEADBEEFu);
    EXPECT_EQ(ReadBack(b.in, ReadUInt16), 0xBEEF);
    EXPECT_EQ(ReadBack(b.in, ReadUInt8), 0xA5);
    EXPECT_EQ(ReadBack(b.in, ReadFloat), -2.5f);
    EXPECT_EQ(ReadBack(b.in, ReadPoint3), cpoint3(1.0f, -2.5f, 0.5f));
    const cquat r = ReadBack(b.in, ReadQuat);
    EXPECT_TRUE(r.x == q.x && r.y == q.y && r.z == q.z && r.w == q.w);
    EXPECT_EQ(ReadBack(b.in, ReadColor), ccolor(0.5f, 0.25f, 1.0f, 0.0f));
    EXPECT_EQ(ReadBack(b.in, ReadText), std::string("h\0i", 3));
    std::string empty = "kept";
    EXPECT_EQ(ReadText(b.in, empty), 1);  // a length of 0 with nothing left
    EXPECT_EQ(empty, "");
}

TEST(RecordFields, FloatsRoundTripBitForBit) {
    const std::uint32_t patterns[] = {0x80000000u, 0x7FC00001u, 0xFFBADBADu,
                                      0x7F800001u, 0xFF800000u, 0x00000001u};
    RecordStream b(Saved([&](cio_save& o) {
        for (std::uint32_t bits : patterns) {
            float f;
            std::memcpy(&f, &bits, 4);
            WriteFloat(o, f);
        }
    }));
    for (std::uint32_t bits : patterns) {
        const float f = ReadBack(b.in, ReadFloat);
        EXPECT_EQ(std::memcmp(&f, &bits, 4), 0) << std::hex << bits;
    }
}

TEST(RecordFields, NamesAreZeroPaddedAndKeepATerminator) {
    EXPECT_EQ(Saved([](cio_save& o) { WriteName(o, nullptr, 32); }), std::string(32, '\0'));
    const std::string seventy(70, 'n');
    EXPECT_EQ(Saved([&](cio_save& o) { WriteName(o, seventy.c_str(), 64); }),
              std::string(63, 'n') + '\0');
    EXPECT_EQ(Saved([](cio_save& o) { EXPECT_EQ(WriteName(o, "x", 0), 0); }), "");

    RecordStream full(std::string(64, 'a') + "Old" + std::string(29, '\0'));
    char name[64];
    EXPECT_EQ(ReadName(full.in, name, 64), 1);
    EXPECT_EQ(std::string(name), std::string(63, 'a'));
    EXPECT_EQ(ReadName(full.in, name, NameFieldSize(12)), 1);
    EXPECT_STREQ(name, "Old");
    EXPECT_EQ(ReadName(full.in, name, 0), 0);
    EXPECT_EQ(NameFieldSize(13), 64u);
}

TEST(RecordFields, TruncatedFieldsFailAndKeepTheDestination) {
    int i = 7;
    cpoint3 p(1.0f, 2.0f, 3.0f);
    char name[64] = "kept";
    std::string text = "kept";
    RecordStream three(Hex("01 02 03")), eleven(std::string(11, '\0')),
        shortName(std::string(63, 'n'));
    RecordStream shortText(Hex("06 00 00 00") + "12345"), shortLength(Hex("05 00"));
    EXPECT_EQ(ReadInt32(three.in, i), 0);
    EXPECT_EQ(ReadPoint3(eleven.in, p), 0);
    EXPECT_EQ(ReadName(shortName.in, name, 64), 0);
    EXPECT_EQ(ReadText(shortText.in, text), 0);
    EXPECT_EQ(ReadText(shortLength.in, text), 0);
    EXPECT_EQ(i, 7);
    EXPECT_EQ(p, cpoint3(1.0f, 2.0f, 3.0f));
    EXPECT_STREQ(name, "kept");
    EXPECT_EQ(text, "kept");
}

TEST(RecordFields, StreamHoldsChecksCountsWithoutOverflow) {
    RecordStream b(std::string(12, '\0'));
    EXPECT_EQ(StreamHolds(b.in, 3, 4), 1);
    EXPECT_EQ(StreamHolds(b.in, 4, 4), 0);
    EXPECT_EQ(StreamHolds(b.in, -1, 4), 0);
    EXPECT_EQ(StreamHolds(b.in, 0, 64), 1);
    EXPECT_EQ(StreamHolds(b.in, LLONG_MAX, 16), 0);
    EXPECT_EQ(StreamHolds(cio_load(), 1, 1), 0);
}

// Caps the address space at 64 MB above what the process uses, then reads a text whose length
// is 2^32 - 1: an attempt to allocate for it would fail and end the process abnormally.
int ReadHugeTextUnderAddressCap() {
    RecordStream b(Hex("ff ff ff ff") + "tail");
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t cap = static_cast<rlim_t>(pages * sysconf(_SC_PAGESIZE)) + (64ul << 20);
    const rlimit limit = {cap, cap};
    setrlimit(RLIMIT_AS, &limit);
    std::string text = "kept";
    return ReadText(b.in, text) == 0 && text == "kept" ? 0 : 1;
}

TEST(RecordFieldsDeathTest, HugeTextLengthFailsBeforeAllocating) {
    EXPECT_EXIT(std::exit(ReadHugeTextUnderAddressCap()), ::testing::ExitedWithCode(0), "");
}

}  // namespace
