// The 72-byte header at the start of a project file, as far as the library reads it.
//
// All fields are little-endian 32-bit words:
//
//   offset  field
//   0       magic: the four bytes '#', 'O', 'R', 'V' in file order
//   4       file version, at most PROJECT_MAX_VERSION
//   8       offset of the node name table from the start of the file
//   12      number of names in the node name table
//   16      offset of the material name table from the start of the file
//   20      number of names in the material name table
//   24..71  the host's own project fields; the library does not read them
//
// A name table is a 32-bit count (equal to the header's count) followed by that many 64-byte,
// zero-padded name fields: the i-th name is the name of the i-th node (material) whose record
// the file holds, so records can refer to one another by index.
#ifndef ORVANE_PROJECTHEADER_H
#define ORVANE_PROJECTHEADER_H

constexpr unsigned int PROJECT_HEADER_SIZE = 72;
constexpr char PROJECT_MAGIC[4] = {'#', 'O', 'R', 'V'};
constexpr unsigned long PROJECT_MAX_VERSION = 16;

constexpr unsigned int PROJECT_NODE_TABLE_OFFSET_AT = 8;
constexpr unsigned int PROJECT_NODE_COUNT_AT = 12;
constexpr unsigned int PROJECT_MATERIAL_TABLE_OFFSET_AT = 16;
constexpr unsigned int PROJECT_MATERIAL_COUNT_AT = 20;

// Bytes per name in a name table.
constexpr unsigned int PROJECT_TABLE_NAME_SIZE = 64;

#endif
