#include "ciofields.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "support/testsupport.h"

namespace {

// The bytes a sequence of Write calls puts into a fresh file.
std::string Written(const std::function<void(cio_save&)>& write) {
    TempDir dir;
    cio_save out;
    if (out.Open(dir.File("fields.bin").c_str()) != 0) return "<open failed>";
    write(out);
    out.Close();
    return ReadFileBytes(dir.File("fields.bin"));
}

// A stream reading the given bytes from a file that lives as long as it does.
struct Bytes {
    explicit Bytes(const std::string& bytes) {
        std::ofstream(dir.File("in.bin"), std::ios::binary) << bytes;
        in.Open(dir.File("in.bin").c_str());
    }
    TempDir dir;
    cio_load in;
};

// Bytes from space-separated hexadecimal pairs: "fe ff" -> "\xfe\xff".
std::string Hex(const std::string& digits) {
    std::istringstream pairs(digits);
    std::string bytes;
    unsigned int value = 0;
    while (pairs >> std::hex >> value) bytes += static_cast<char>(value);
    return bytes;
}

std::uint32_t BitsOf(float f) {
    std::uint32_t bits;
    std::memcpy(&bits, &f, 4);
    return bits;
}

float FloatOf(std::uint32_t bits) {
    float f;
    std::memcpy(&f, &bits, 4);
    return f;
}

TEST(RecordFields, WriteLittleEndianBytes) {
    EXPECT_EQ(Written([](cio_save& o) { WriteInt32(o, -2); }), Hex("fe ff ff ff"));
    EXPECT_EQ(Written([](cio_save& o) { WriteInt32(o, 0x12345678); }), Hex("78 56 34 12"));
    EXPECT_EQ(Written([](cio_save& o) { WriteUInt32(o, 0xDEADBEEFu); }), Hex("ef be ad de"));
    EXPECT_EQ(Written([](cio_save& o) { WriteUInt16(o, 0xBEEF); }), Hex("ef be"));
    EXPECT_EQ(Written([](cio_save& o) { WriteUInt8(o, 0xA5); }), Hex("a5"));
    EXPECT_EQ(Written([](cio_save& o) { WriteFloat(o, -2.5f); }), Hex("00 00 20 c0"));
    EXPECT_EQ(Written([](cio_save& o) { WritePoint3(o, cpoint3(1.0f, -2.5f, 0.5f)); }),
              Hex("00 00 80 3f 00 00 20 c0 00 00 00 3f"));
    cquat q;
    q.x = 0.5f, q.y = 0.0f, q.z = -2.5f, q.w = 1.0f;
    EXPECT_EQ(Written([&](cio_save& o) { WriteQuat(o, q); }),
              Hex("00 00 00 3f 00 00 00 00 00 00 20 c0 00 00 80 3f"));
    EXPECT_EQ(Written([](cio_save& o) { WriteColor(o, ccolor(0.5f, 0.25f, 1.0f, 0.0f)); }),
              Hex("00 00 00 3f 00 00 80 3e 00 00 80 3f 00 00 00 00"));
    EXPECT_EQ(Written([](cio_save& o) { WriteText(o, std::string("h\0i", 3)); }),
              Hex("03 00 00 00 68 00 69"));
    EXPECT_EQ(Written([](cio_save& o) { WriteText(o, ""); }), Hex("00 00 00 00"));
}

TEST(RecordFields, NamesAreZeroPaddedAndKeepATerminator) {
    EXPECT_EQ(Written([](cio_save& o) { WriteName(o, "Box01", 64); }),
              "Box01" + std::string(59, '\0'));
    EXPECT_EQ(Written([](cio_save& o) { WriteName(o, nullptr, 32); }), std::string(32, '\0'));
    const std::string seventy(70, 'n');
    EXPECT_EQ(Written([&](cio_save& o) { WriteName(o, seventy.c_str(), 64); }),
              std::string(63, 'n') + '\0');
    EXPECT_EQ(Written([](cio_save& o) { EXPECT_EQ(WriteName(o, "x", 0), 0); }), "");

    Bytes full(std::string(64, 'a') + "Old" + std::string(29, '\0'));
    char name[64];
    std::memset(name, 'z', sizeof(name));
    EXPECT_EQ(ReadName(full.in, name, 64), 1);
    EXPECT_EQ(std::string(name), std::string(63, 'a'));
    EXPECT_EQ(ReadName(full.in, name, NameFieldSize(12)), 1);
    EXPECT_STREQ(name, "Old");
    EXPECT_EQ(ReadName(full.in, name, 0), 0);
    EXPECT_EQ(NameFieldSize(13), 64u);
}

TEST(RecordFields, ReadDecodesLittleEndianBytes) {
    Bytes b(
        Hex("fe ff ff ff 00 00 00 80 ef be ad de ef be a5 00 00 20 c0 "
            "00 00 80 3f 00 00 20 c0 00 00 00 3f "
            "00 00 00 3f 00 00 00 00 00 00 20 c0 00 00 80 3f "
            "00 00 00 3f 00 00 80 3e 00 00 80 3f 00 00 00 00 02 00 00 00 68 69"));
    int i = 0, min = 0;
    unsigned int u = 0;
    unsigned short s = 0;
    unsigned char c = 0;
    float f = 0.0f;
    cpoint3 p;
    cquat q;
    ccolor col;
    std::string text;
    ASSERT_TRUE(ReadInt32(b.in, i) && ReadInt32(b.in, min) && ReadUInt32(b.in, u) &&
                ReadUInt16(b.in, s) && ReadUInt8(b.in, c) && ReadFloat(b.in, f) &&
                ReadPoint3(b.in, p) && ReadQuat(b.in, q) && ReadColor(b.in, col) &&
                ReadText(b.in, text));
    EXPECT_EQ(i, -2);
    EXPECT_EQ(min, INT_MIN);
    EXPECT_EQ(u, 0xDEADBEEFu);
    EXPECT_EQ(s, 0xBEEF);
    EXPECT_EQ(c, 0xA5);
    EXPECT_EQ(f, -2.5f);
    EXPECT_EQ(p, cpoint3(1.0f, -2.5f, 0.5f));
    EXPECT_TRUE(q.x == 0.5f && q.y == 0.0f && q.z == -2.5f && q.w == 1.0f);
    EXPECT_EQ(col, ccolor(0.5f, 0.25f, 1.0f, 0.0f));
    EXPECT_EQ(text, "hi");
    EXPECT_EQ(b.in.BytesLeft(), 0u);
}

TEST(RecordFields, FloatsRoundTripBitForBit) {
    const std::uint32_t patterns[] = {0x80000000u, 0x7FC00001u, 0xFFBADBADu, 0x7F800001u,
                                      0xFF800000u, 0x00000001u, 0x3F800000u};
    std::string expected;
    for (std::uint32_t bits : patterns)
        for (int b = 0; b < 4; ++b) expected += static_cast<char>(bits >> (8 * b));
    const std::string written = Written([&](cio_save& o) {
        for (std::uint32_t bits : patterns) WriteFloat(o, FloatOf(bits));
    });
    EXPECT_EQ(written, expected);
    Bytes b(written);
    for (std::uint32_t bits : patterns) {
        float f = 0.0f;
        EXPECT_EQ(ReadFloat(b.in, f), 1);
        EXPECT_EQ(BitsOf(f), bits);
    }
}

TEST(RecordFields, TruncatedFieldsFailAndKeepTheDestination) {
    int i = 7;
    Bytes three(Hex("01 02 03"));
    EXPECT_EQ(ReadInt32(three.in, i), 0);
    EXPECT_EQ(i, 7);
    cpoint3 p(1.0f, 2.0f, 3.0f);
    Bytes eleven(std::string(11, '\0'));
    EXPECT_EQ(ReadPoint3(eleven.in, p), 0);
    EXPECT_EQ(p, cpoint3(1.0f, 2.0f, 3.0f));
    char name[64] = "kept";
    Bytes shortName("short" + std::string(58, '\0'));
    EXPECT_EQ(ReadName(shortName.in, name, 64), 0);
    EXPECT_STREQ(name, "kept");
    std::string text = "kept";
    Bytes shortText(Hex("0a 00 00 00") + "12345"), shortLength(Hex("05 00"));
    EXPECT_EQ(ReadText(shortText.in, text), 0);
    EXPECT_EQ(ReadText(shortLength.in, text), 0);
    EXPECT_EQ(text, "kept");
    Bytes exact(Hex("05 00 00 00") + "12345");
    EXPECT_EQ(ReadText(exact.in, text), 1);
    EXPECT_EQ(text, "12345");
}

TEST(RecordFields, StreamHoldsChecksCountsWithoutOverflow) {
    Bytes b(std::string(12, '\0'));
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
    Bytes b(Hex("ff ff ff ff") + "tail");
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
