// Test helper: material records built byte by byte for any file version, independently of the
// library's record code.
#ifndef ORVANE_TESTS_SUPPORT_MATERIALRECORD_H
#define ORVANE_TESTS_SUPPORT_MATERIALRECORD_H

#include <array>
#include <cstdint>
#include <string>

#include "support/bytestring.h"

// One map sub-record's fields.
struct MapRecordBytes {
    std::string path;
    std::int32_t startFrame = 0;
    float frameRate = 1.0f;
    std::int32_t framesFlag = 0, freezeFlag = 0, keyFlag = 0;
    unsigned char key[3] = {0, 0, 0};
    std::int32_t alphaFlag = 1;
};

// A material record; the defaults are those of a new material. `shininess` is written as it
// is: files below version 8 hold 128 minus the shininess.
struct MaterialRecordBytes {
    std::string name = "Mat1";
    float ambient[4] = {0.5f, 0.5f, 0.5f, 1}, diffuse[4] = {1, 1, 1, 1};
    float specular[4] = {0, 0, 0, 0}, emissive[4] = {0, 0, 0, 0}, transColor[4] = {0, 0, 0, 0};
    std::int32_t transColorFlag = 0, alphaFlag = 1, oglfxFlag = 0;
    float shininess = 100.0f;
    std::int32_t amounts[6] = {100, 100, 100, 0, 100, 0};
    std::int32_t envMapType = 1;
    std::array<MapRecordBytes, 6> maps;

    static void Color(ByteString& b, const float (&c)[4]) { b.Floats({c[0], c[1], c[2], c[3]}); }

    std::string Bytes(std::uint32_t version) const {
        ByteString b;
        b.Name(name, version >= 13 ? 64 : 32);
        for (const auto* c : {&ambient, &diffuse, &specular, &emissive}) Color(b, *c);
        if (version >= 3) Color(b.Ints({transColorFlag}), transColor);
        if (version >= 12) b.Ints({alphaFlag, oglfxFlag});
        b.Floats({shininess});
        for (std::int32_t amount : amounts) b.Ints({amount});
        if (version > 4) b.Ints({envMapType});
        for (const MapRecordBytes& m : maps) {
            b.Name(m.path, version >= 13 ? 512 : 256);
            if (version > 1)
                b.Ints({m.startFrame}).Floats({m.frameRate}).Ints({m.framesFlag, m.freezeFlag});
            if (version >= 10) b.Ints({m.keyFlag}).Byte(m.key[0]).Byte(m.key[1]).Byte(m.key[2]);
            if (version >= 12) b.Ints({m.alphaFlag});
        }
        return b.bytes;
    }
};

// The record of a new material named `name` at `version`, shininess as the file stores it.
inline std::string DefaultMaterialRecord(const std::string& name, std::uint32_t version) {
    MaterialRecordBytes record;
    record.name = name;
    if (version < 8) record.shininess = 28.0f;
    return record.Bytes(version);
}

#endif
