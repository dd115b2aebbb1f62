// The project file: MainScene (its nodes, materials and settings) and the animation clock in
// one file, so that no host has to write its own.
//
// The file is a 72-byte header (projectheader.h), the node and material name tables, the scene
// settings record, the material records and the node records, parents before children. The
// complete byte layout is in docs/file-format.md.
#ifndef ORVANE_PROJECTFILE_H
#define ORVANE_PROJECTFILE_H

#include "coreapi.h"
#include "projectheader.h"

// The version SaveProjectFile writes.
constexpr unsigned long PROJECT_VERSION = PROJECT_MAX_VERSION;

// Writes MainScene and the animation clock (range, current time, ticks per frame) to the file
// `path` at version 16. The file is written beside `path` first and replaces it only once it
// is complete, so a failed save leaves an existing file as it was. Returns 1; 0 when the file
// cannot be written, or when the scene could not be read back from it: a node's parent chain
// loops, or a node's parent is outside the scene while a later node bears its name. Selection
// is not saved; hidden nodes stay hidden.
CORE_API int SaveProjectFile(char const* path);

// Reads the project file `path` (versions 1 to 16) and, on success, replaces MainScene's nodes
// and materials with the file's (the old ones are destroyed without node messages, as Clear
// does), its colours, fog and notes with the file's, forgets the background image, sets the
// animation clock from the file (through the clock's setters, which keep it in range) and
// re-evaluates every node at the new time. Names are kept exactly as stored and the nodes
// take the order of the file's name table. Returns 1.
// Returns 0 when the file cannot be opened or is not a sound project file: a wrong magic, a
// version outside 1..16, a section or record that runs outside its bounds, a node record of a
// type the library cannot create, a record whose parent comes later in the file (a parent
// cycle), records that do not bear the table's names. MainScene and the clock are then exactly
// as they were before the call.
// While the file loads, NodeList and MtlList hold its name tables; afterwards they hold none.
// The host drops its own references to the old nodes (views, undo history) after a load that
// returned 1.
CORE_API int LoadProjectFile(char const* path);

// Sets how many threads LoadProjectFile reads node records with, and returns the previous
// setting: 1 reads them on the calling thread alone; 0, the default, uses as many threads as
// the machine runs at once; at most 8 are used. Only files with record marks (every file
// SaveProjectFile writes) are read in parallel, and the result is the same either way: the
// calling thread links the nodes in file order and makes every failed check's report.
CORE_API int SetProjectLoadThreads(int count);

// What a project file's header says, read without loading anything.
struct ProjectInfo {
    unsigned long version;  // 1 to 16
    int numNodes;
    int numMaterials;
    int animStart;  // ticks, as stored
    int animEnd;
    int animTime;
    int animTPF;  // ticks per frame, as stored
};

// Reads the header of the project file `path` into `info`. Returns 1 when the header is sound
// (magic "#ORV", version 1 to 16, every table and section inside the file); 0 otherwise,
// leaving `info` unchanged. The records themselves are not checked: LoadProjectFile does that.
CORE_API int ReadProjectInfo(char const* path, ProjectInfo* info);

#endif
