// Test helper: project files built byte by byte, independently of the library's readers.
#ifndef ORVANE_TESTS_SCENE_PROJECTFILE_H
#define ORVANE_TESTS_SCENE_PROJECTFILE_H

#include <cstdint>
#include <string>
#include <vector>

// The header as the host writes it: magic, version, node table offset and count, material
// table offset and count, then 48 bytes of the host's own; the node table and the material
// table follow, each a count and 64-byte names.
struct ProjectFile {
    std::string magic = "#ORV";
    std::uint32_t version = 16;
    std::vector<std::string> nodes;
    std::vector<std::string> materials;

    static void PutWord(std::string& bytes, std::uint32_t value) {
        for (int b = 0; b < 4; ++b) bytes += static_cast<char>((value >> (8 * b)) & 0xFF);
    }
    static void SetWord(std::string& bytes, std::size_t at, std::uint32_t value) {
        for (int b = 0; b < 4; ++b) bytes[at + b] = static_cast<char>((value >> (8 * b)) & 0xFF);
    }
    static std::string Table(const std::vector<std::string>& names) {
        std::string table;
        PutWord(table, static_cast<std::uint32_t>(names.size()));
        for (const std::string& name : names) {
            std::string field = name.substr(0, 64);
            field.resize(64, '\0');
            table += field;
        }
        return table;
    }

    // The whole file; the node table starts at byte 72 (after the header) and the material
    // table right after it.
    std::string Bytes() const {
        const std::string nodeTable = Table(nodes), materialTable = Table(materials);
        std::string bytes = magic.substr(0, 4);
        PutWord(bytes, version);
        PutWord(bytes, 72);
        PutWord(bytes, static_cast<std::uint32_t>(nodes.size()));
        PutWord(bytes, static_cast<std::uint32_t>(72 + nodeTable.size()));
        PutWord(bytes, static_cast<std::uint32_t>(materials.size()));
        bytes.resize(72, 'h');
        return bytes + nodeTable + materialTable;
    }
};

// Header positions, for tests that corrupt a field.
constexpr std::size_t kNodeOffsetAt = 8, kNodeCountAt = 12, kMaterialOffsetAt = 16,
                      kMaterialCountAt = 20;

#endif
