// The 72-byte header at the start of a project file.
//
// All fields are little-endian 32-bit words:
//
//   offset  field
//   0       magic: the four bytes '#', 'O', 'R', 'V' in file order
//   4       file version, 1 to PROJECT_MAX_VERSION
//   8       offset of the node name table from the start of the file
//   12      number of names in the node name table, and of node records
//   16      offset of the material name table from the start of the file
//   20      number of names in the material name table, and of material records
//   24, 28  offset and size in bytes of the scene settings record
//   32, 36  offset and size in bytes of the material records
//   40, 44  offset and size in bytes of the node records
//   48      animation start, ticks (signed)
//   52      animation end, ticks (signed)
//   56      current animation time, ticks (signed)
//   60      ticks per frame (signed)
//   64, 68  offset and size in bytes of the node record marks; both 0 when the file has none
//
// A name table is a 32-bit count (equal to the header's count) followed by that many 64-byte,
// zero-padded name fields in the scene's order: the i-th name is the name of the i-th node
// (material) of the scene the file was written from, so records can refer to one another by
// index.
//
// The node record marks are a 32-bit stride S (at least 1) followed by the file offset of
// every S-th node record: records S, 2S, 3S ... below the node count, in order. They let a
// reader split the node records into runs that it reads in parallel.
//
// NodeList and MtlList read the tables; the records and the project file as a whole
// are read and written by LoadProjectFile and SaveProjectFile (projectfile.h).
#ifndef ORVANE_PROJECTHEADER_H
#define ORVANE_PROJECTHEADER_H

constexpr unsigned int PROJECT_HEADER_SIZE = 72;
constexpr char PROJECT_MAGIC[4] = {'#', 'O', 'R', 'V'};
constexpr unsigned long PROJECT_MAX_VERSION = 16;

constexpr unsigned int PROJECT_VERSION_AT = 4;
constexpr unsigned int PROJECT_NODE_TABLE_OFFSET_AT = 8;
constexpr unsigned int PROJECT_NODE_COUNT_AT = 12;
constexpr unsigned int PROJECT_MATERIAL_TABLE_OFFSET_AT = 16;
constexpr unsigned int PROJECT_MATERIAL_COUNT_AT = 20;
constexpr unsigned int PROJECT_SETTINGS_OFFSET_AT = 24;
constexpr unsigned int PROJECT_SETTINGS_SIZE_AT = 28;
constexpr unsigned int PROJECT_MATERIAL_RECORDS_OFFSET_AT = 32;
constexpr unsigned int PROJECT_MATERIAL_RECORDS_SIZE_AT = 36;
constexpr unsigned int PROJECT_NODE_RECORDS_OFFSET_AT = 40;
constexpr unsigned int PROJECT_NODE_RECORDS_SIZE_AT = 44;
constexpr unsigned int PROJECT_ANIM_START_AT = 48;
constexpr unsigned int PROJECT_ANIM_END_AT = 52;
constexpr unsigned int PROJECT_ANIM_TIME_AT = 56;
constexpr unsigned int PROJECT_ANIM_TPF_AT = 60;
constexpr unsigned int PROJECT_NODE_MARKS_OFFSET_AT = 64;
constexpr unsigned int PROJECT_NODE_MARKS_SIZE_AT = 68;

// Bytes per name in a name table.
constexpr unsigned int PROJECT_TABLE_NAME_SIZE = 64;

#endif
