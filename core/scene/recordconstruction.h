// Internal: constructing a node that its record is about to fill.
//
// A node starts with a key at time 0 on its track, and a light or camera with a default key
// on its parameter track; loading a record replaces those keys at once. While a
// RecordConstruction lives on a thread, nodes constructed on that thread leave those tracks
// empty instead, and those constructed without a colour draw no random one. Load gives every
// track that its record leaves empty the default key, so a loaded node ends with its keys
// exactly as one constructed the usual way. A node constructed under a RecordConstruction is
// loaded or destroyed, never used otherwise.
#ifndef ORVANE_CORE_SCENE_RECORDCONSTRUCTION_H
#define ORVANE_CORE_SCENE_RECORDCONSTRUCTION_H

#include "coreapi.h"
#include "runtime/threadsetting.h"

// Exported for the library's tests only; no public header declares it.
class CORE_API RecordConstruction : ThreadSetting<bool> {
public:
    RecordConstruction();

    // Whether the calling thread constructs nodes for their records.
    static bool Active();
};

#endif
