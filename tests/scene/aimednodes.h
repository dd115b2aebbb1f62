// Helpers of the node tests: node base records written by hand, record loading and saving,
// and checks of a node's position and facing.
#ifndef ORVANE_TESTS_SCENE_AIMEDNODES_H
#define ORVANE_TESTS_SCENE_AIMEDNODES_H

#include <cmath>

#include "cnode.h"
#include "cscene.h"
#include "support/animclockfixture.h"
#include "support/bytestring.h"
#include "support/testsupport.h"

// The clock fixture, with MainScene emptied after every test.
class SceneClockTest : public AnimClockTest {
protected:
    void TearDown() override {
        MainScene.Clear();
        AnimClockTest::TearDown();
    }
};

// The arguments as floats, for comparing many values of a node in one expectation.
template <class... T>
std::vector<float> Values(T... values) {
    return {static_cast<float>(values)...};
}

// The base record of an untransformed node without parent, material, notes or flags, with
// the defaults of a new node (IK block, one identity key at time 0) in the layout of
// `version`: 32-byte names below 13, no IK block below 7, no see-through word below 15.
inline std::string BaseRecord(std::uint32_t type, std::uint32_t subType, const std::string& name,
                              const ccolor& color, unsigned long version) {
    const std::size_t nameSize = version >= 13 ? 64 : 32;
    ByteString r;
    r.Word(type).Word(subType).Name(name, nameSize).Name("", nameSize).Name("", nameSize);
    r.Word(0).Word(0).Floats({color.r, color.g, color.b, color.a, 0, 0, 0, 0, 0, 0});
    r.Floats({0, 0, 0, 0, 0, 0, 1, 1, 1, 1}).Word(1).Word(1);
    if (version >= 7) {
        r.Word(0).Word(0).Word(0).Floats({10, -180, -180, -180, 180, 180, 180, 0, 0, 0, 1});
        r.Word(100).Word(2);
    }
    if (version >= 15) r.Word(0);
    r.Word(0);  // no notes
    r.Word(1).Word(0).Word(0).Word(0).Floats({0, 0, 0, 0, 0, 0, 1, 1, 1, 1});
    return r.bytes;
}

// Loads `bytes` as a record of `version` into `node`; -1 when the stream cannot open.
inline int LoadRecord(cnode& node, const std::string& bytes, unsigned long version) {
    RecordStream record(bytes);
    if (!record.opened) return -1;
    return node.Load(record.in, version);
}

// Whether `bytes` loads as a record of `version` into `node` and the load stops at its end.
inline ::testing::AssertionResult LoadsWhole(cnode& node, const std::string& bytes,
                                             unsigned long version) {
    RecordStream record(bytes + "next");
    const int loaded = record.opened ? node.Load(record.in, version) : -1;
    if (loaded == 1 && record.in.BytesLeft() == 4) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "loaded " << loaded << ", " << record.in.BytesLeft() << " bytes left, not 4";
}

inline std::string SavedRecord(const cnode& node) {
    return Saved([&](cio_save& out) { EXPECT_EQ(node.Save(out), 1); });
}

inline ::testing::AssertionResult Near3(const cpoint3& a, const cpoint3& b, float eps = 1e-4f) {
    if (std::fabs(a.x - b.x) <= eps && std::fabs(a.y - b.y) <= eps && std::fabs(a.z - b.z) <= eps)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") vs ("
                                         << b.x << ", " << b.y << ", " << b.z << ")";
}

// The unit direction in which `node`'s local Z axis (its matrix's row 2), which a target
// draws towards itself, points at `time`.
inline cpoint3 Facing(const cnode& node, int time) {
    return Normalize(node.GetNodeTM(time, TM_ROT).GetRow3(2));
}

#endif
