// Fuzz target: the record field readers of cio_load over untrusted files.
//
// The input is written to a file and read back as a sequence of steps chosen by the input itself:
// each step reads one byte naming a field kind (or a skip, a raw read or a seek), then that field.
// Every read must either succeed within the bytes that were left or fail leaving its destination as
// it was, so a field never claims more than the file holds; the position stays within the file and
// the stream keeps agreeing with the file's length.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "ciofields.h"
#include "fuzz/fuzztarget.h"
#include "support/testsupport.h"

namespace {

enum StepKind : unsigned char {
    kInt32,
    kUInt32,
    kUInt16,
    kUInt8,
    kFloat,
    kPoint3,
    kQuat,
    kColor,
    kName64,
    kName32,
    kText,
    kSkip,
    kRead,
    kSeek,
    kOpCount
};

// The stream and the file's length, with the bytes left before the current step.
struct Step {
    cio_load& in;
    long size;
    unsigned long left;

    // Measured from the position, independently of the stream's own BytesLeft.
    unsigned long LeftNow() const { return static_cast<unsigned long>(size - in.GetPosition()); }
};

// A field read: on success it fits in the bytes that were left, on failure the destination is
// unchanged.
template <class T, class Same>
void CheckRead(int ok, unsigned long bytes, const Step& step, const T& value, const T& before,
               Same same) {
    if (ok)
        FUZZ_CHECK(bytes <= step.left);
    else
        FUZZ_CHECK(same(value, before));
}

bool SameBytes(const void* a, const void* b, std::size_t size) {
    return std::memcmp(a, b, size) == 0;
}

template <class T>
void ReadPod(const Step& step, int (*read)(cio_load&, T&), unsigned long bytes) {
    T value;
    std::memset(static_cast<void*>(&value), 0x5A, sizeof(T));
    const T before = value;
    const int ok = read(step.in, value);
    CheckRead(ok, bytes, step, value, before,
              [](const T& a, const T& b) { return SameBytes(&a, &b, sizeof(T)); });
}

void ReadNameField(const Step& step, unsigned int size) {
    std::array<char, 64> name, before;
    name.fill('z');
    before = name;
    const int ok = ReadName(step.in, name.data(), size);
    CheckRead(ok, size, step, name, before, [](auto& a, auto& b) { return a == b; });
    if (ok) FUZZ_CHECK(std::memchr(name.data(), '\0', size) != nullptr);
}

void ReadTextField(const Step& step) {
    std::string text = "unchanged";
    const int ok = ReadText(step.in, text);
    CheckRead(ok, ok ? 4 + text.size() : 0, step, text, std::string("unchanged"),
              [](auto& a, auto& b) { return a == b; });
}

void SkipBytes(const Step& step) {
    unsigned short bytes = 0;
    if (!ReadUInt16(step.in, bytes)) return;
    const unsigned long left = step.LeftNow();
    FUZZ_CHECK(step.in.Skip(bytes) == (bytes <= left ? 1 : 0));
}

void ReadRaw(const Step& step) {
    unsigned char bytes = 0;
    if (!ReadUInt8(step.in, bytes)) return;
    const unsigned long left = step.LeftNow();
    std::array<char, 256> buffer;
    FUZZ_CHECK(step.in.Read(buffer.data(), bytes) == (bytes <= left ? 1 : 0));
}

void Seek(const Step& step) {
    unsigned short offset = 0;
    if (!ReadUInt16(step.in, offset)) return;
    FUZZ_CHECK(step.in.SetPosition(offset % (step.size + 1), 0) == 0);
}

void RunStep(const Step& step, StepKind kind) {
    switch (kind) {
        case kInt32:
            return ReadPod<int>(step, ReadInt32, 4);
        case kUInt32:
            return ReadPod<unsigned int>(step, ReadUInt32, 4);
        case kUInt16:
            return ReadPod<unsigned short>(step, ReadUInt16, 2);
        case kUInt8:
            return ReadPod<unsigned char>(step, ReadUInt8, 1);
        case kFloat:
            return ReadPod<float>(step, ReadFloat, 4);
        case kPoint3:
            return ReadPod<cpoint3>(step, ReadPoint3, 12);
        case kQuat:
            return ReadPod<cquat>(step, ReadQuat, 16);
        case kColor:
            return ReadPod<ccolor>(step, ReadColor, 16);
        case kName64:
            return ReadNameField(step, NAME_FIELD_SIZE);
        case kName32:
            return ReadNameField(step, OLD_NAME_FIELD_SIZE);
        case kText:
            return ReadTextField(step);
        case kSkip:
            return SkipBytes(step);
        case kRead:
            return ReadRaw(step);
        case kSeek:
            return Seek(step);
        case kOpCount:
            return;
    }
}

const std::string& InputFile() {
    static const TempDir folder;
    static const std::string path = folder.File("input.bin");
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A fresh file each time: rewriting one in place makes some file systems flush it to disk.
    std::remove(InputFile().c_str());
    std::ofstream(InputFile(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    cio_load in;
    FUZZ_CHECK(in.Open(InputFile().c_str()) == 0);
    const long length = static_cast<long>(size);
    FUZZ_CHECK(in.Size() == length);
    // Seeks may go backwards: the step budget keeps every input finite.
    unsigned char op = 0;
    for (std::size_t budget = size + 16; budget > 0 && ReadUInt8(in, op); --budget) {
        const Step step{in, length, static_cast<unsigned long>(length - in.GetPosition())};
        RunStep(step, static_cast<StepKind>(op % kOpCount));
        const long position = in.GetPosition();
        FUZZ_CHECK(position >= 0 && position <= length);
    }
    FUZZ_CHECK(in.Size() == length);
    FUZZ_CHECK(in.BytesLeft() == static_cast<unsigned long>(length - in.GetPosition()));
    return 0;
}

namespace {

// Little-endian encoders of their own, so that the seeds do not depend on the writers.
struct SeedWriter {
    std::string bytes;
    SeedWriter& Op(StepKind kind) { return Byte(kind); }
    SeedWriter& Byte(unsigned int value) {
        bytes += static_cast<char>(value);
        return *this;
    }
    SeedWriter& Word(std::uint32_t value, int width = 4) {
        for (int b = 0; b < width; ++b) Byte((value >> (8 * b)) & 0xFF);
        return *this;
    }
    SeedWriter& Float(float value) {
        std::uint32_t bits;
        std::memcpy(&bits, &value, 4);
        return Word(bits);
    }
    SeedWriter& Name(const std::string& name, std::size_t size) {
        bytes += name + std::string(size - name.size(), '\0');
        return *this;
    }
    SeedWriter& Text(const std::string& text) {
        Word(static_cast<std::uint32_t>(text.size()));
        bytes += text;
        return *this;
    }
};

}  // namespace

std::vector<std::string> FuzzSeeds() {
    SeedWriter every;
    every.Op(kInt32).Word(0xFFFFFFFEu).Op(kUInt32).Word(7).Op(kUInt16).Word(0xBEEF, 2);
    every.Op(kUInt8).Byte(3).Op(kFloat).Float(-2.5f);
    every.Op(kPoint3).Float(1.0f).Float(2.0f).Float(3.0f);
    every.Op(kQuat).Float(0.0f).Float(0.0f).Float(0.0f).Float(1.0f);
    every.Op(kColor).Float(1.0f).Float(0.5f).Float(0.25f).Float(1.0f);
    every.Op(kName64).Name("Box01", 64).Op(kName32).Name("Material #1", 32);
    every.Op(kText).Text("notes on the box").Op(kSkip).Word(3, 2).Byte(1).Byte(2).Byte(3);
    every.Op(kRead).Byte(4).Word(0x01020304u).Op(kSeek).Word(0, 2);

    // Shaped like a node record: ids, three names, flags, vectors, notes.
    SeedWriter record;
    record.Op(kInt32).Word(2).Op(kInt32).Word(0).Op(kName64).Name("Sphere01", 64);
    record.Op(kName64).Name("", 64).Op(kName32).Name("Chrome", 32).Op(kUInt32).Word(0x2);
    record.Op(kPoint3).Float(-1.0f).Float(-1.0f).Float(-1.0f).Op(kQuat);
    record.Float(0.0f).Float(0.7071068f).Float(0.0f).Float(0.7071068f);
    record.Op(kText).Text(std::string(200, 'n')).Op(kText).Text("");

    return {every.bytes, record.bytes};
}
