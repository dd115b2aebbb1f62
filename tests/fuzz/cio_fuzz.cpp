// Fuzz target: the record field readers of cio_load over untrusted files.
//
// The input is written to a file and read back as a sequence of steps chosen by the input itself:
// each step reads one byte naming a field kind (or a skip, a raw read or a seek), then that field.
// Every read must either succeed within the bytes that were left or fail leaving its destination as
// it was, so a field never claims more than the file holds; the position stays within the file and
// the stream keeps agreeing with the file's length.
#include <array>
#include <cstring>

#include "ciofields.h"
#include "fuzz/fuzztarget.h"
#include "support/bytestring.h"

namespace {

// The stream and the file's length, with the bytes left before the current step.
struct Step {
    cio_load& in;
    long size;
    unsigned long left;

    // Measured from the position, independently of the stream's own BytesLeft.
    unsigned long LeftNow() const { return static_cast<unsigned long>(size - in.GetPosition()); }
};

// The field type a reader fills.
template <class T>
T FieldOf(int (*)(cio_load&, T&));

// A fixed-size field, as wide in the file as in memory, read into memory filled with a marker.
template <auto Read>
void Pod(const Step& step) {
    using T = decltype(FieldOf(Read));
    std::array<unsigned char, sizeof(T)> before;
    before.fill(0x5A);
    T value;
    std::memcpy(static_cast<void*>(&value), before.data(), sizeof(T));
    const int ok = Read(step.in, value);
    FUZZ_CHECK(ok ? sizeof(T) <= step.left : std::memcmp(&value, before.data(), sizeof(T)) == 0);
}

// A name field must also come back terminated.
template <unsigned int Size>
void Name(const Step& step) {
    std::array<char, Size> name, before;
    before.fill('z');
    name = before;
    const int ok = ReadName(step.in, name.data(), Size);
    FUZZ_CHECK(ok ? Size <= step.left && std::memchr(name.data(), '\0', Size) : name == before);
}

void ReadTextField(const Step& step) {
    std::string text = "unchanged";
    const int ok = ReadText(step.in, text);
    FUZZ_CHECK(ok ? 4 + text.size() <= step.left : text == "unchanged");
}

void SkipBytes(const Step& step) {
    unsigned short bytes = 0;
    if (!ReadUInt16(step.in, bytes)) return;
    const int fits = bytes <= step.LeftNow() ? 1 : 0;
    FUZZ_CHECK(step.in.Skip(bytes) == fits);
}

void ReadRaw(const Step& step) {
    unsigned char bytes = 0;
    if (!ReadUInt8(step.in, bytes)) return;
    const int fits = bytes <= step.LeftNow() ? 1 : 0;
    std::array<char, 256> buffer;
    FUZZ_CHECK(step.in.Read(buffer.data(), bytes) == fits);
}

void Seek(const Step& step) {
    unsigned short offset = 0;
    if (ReadUInt16(step.in, offset))
        FUZZ_CHECK(step.in.SetPosition(offset % (step.size + 1), 0) == 0);
}

// The steps, chosen by an input byte modulo their number. The numbers are part of the seeds.
constexpr unsigned char kInt32 = 0, kUInt32 = 1, kUInt16 = 2, kUInt8 = 3, kFloat = 4, kPoint3 = 5,
                        kQuat = 6, kColor = 7, kName64 = 8, kName32 = 9, kText = 10, kSkip = 11,
                        kRead = 12, kSeek = 13, kStepCount = 14;
using StepFunction = void (*)(const Step&);
const StepFunction kSteps[kStepCount] = {Pod<ReadInt32>,  Pod<ReadUInt32>,
                                         Pod<ReadUInt16>, Pod<ReadUInt8>,
                                         Pod<ReadFloat>,  Pod<ReadPoint3>,
                                         Pod<ReadQuat>,   Pod<ReadColor>,
                                         Name<64>,        Name<32>,
                                         ReadTextField,   SkipBytes,
                                         ReadRaw,         Seek};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    cio_load in;
    FUZZ_CHECK(in.Open(FuzzFile(data, size).c_str()) == 0);
    const long length = static_cast<long>(size);
    FUZZ_CHECK(in.Size() == length);
    // Seeks may go backwards: the step budget keeps every input finite.
    unsigned char op = 0;
    for (std::size_t budget = size + 16; budget > 0 && ReadUInt8(in, op); --budget) {
        kSteps[op % kStepCount](
            {in, length, static_cast<unsigned long>(length - in.GetPosition())});
        const long position = in.GetPosition();
        FUZZ_CHECK(position >= 0 && position <= length);
    }
    FUZZ_CHECK(in.Size() == length);
    FUZZ_CHECK(in.BytesLeft() == static_cast<unsigned long>(length - in.GetPosition()));
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    ByteString every;
    every.Byte(kInt32).Word(0xFFFFFFFEu).Byte(kUInt32).Word(7).Byte(kUInt16).Word(0xBEEF, 2);
    every.Byte(kUInt8).Byte(3).Byte(kFloat).Floats({-2.5f}).Byte(kPoint3).Floats({1, 2, 3});
    every.Byte(kQuat).Floats({0, 0, 0, 1}).Byte(kColor).Floats({1, 0.5f, 0.25f, 1});
    every.Byte(kName64).Name("Box01", 64).Byte(kName32).Name("Material #1", 32);
    every.Byte(kText).Text("notes on the box").Byte(kSkip).Word(3, 2).Byte(1).Byte(2).Byte(3);
    every.Byte(kRead).Byte(4).Word(0x01020304u).Byte(kSeek).Word(0, 2);

    // Shaped like a node record: ids, three names, flags, vectors, notes.
    ByteString record;
    record.Byte(kInt32).Word(2).Byte(kInt32).Word(0).Byte(kName64).Name("Sphere01", 64);
    record.Byte(kName64).Name("", 64).Byte(kName32).Name("Chrome", 32).Byte(kUInt32).Word(0x2);
    record.Byte(kPoint3).Floats({-1, -1, -1}).Byte(kQuat).Floats({0, 0.7071068f, 0, 0.7071068f});
    record.Byte(kText).Text(std::string(200, 'n')).Byte(kText).Text("");
    return {every.bytes, record.bytes};
}
