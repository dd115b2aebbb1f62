// Selecting, hiding and finding mesh elements. Every flag change goes through the setters,
// which keep the counters; the selection centres are rebuilt afterwards because deselecting
// shrinks the boxes.
#include <cstdint>

#include "cmesh.h"
#include "mesh/mesheditor.h"

namespace {

// How a set operation changes one element's flags.
enum class Change { Select, Deselect, Invert, Hide, Unhide };

unsigned short Changed(unsigned short flags, Change change) {
    switch (change) {
        case Change::Select:
            return static_cast<unsigned short>(flags | ELEMENT_SELECTED);
        case Change::Deselect:
            return static_cast<unsigned short>(flags & ~ELEMENT_SELECTED);
        case Change::Invert:
            return static_cast<unsigned short>(flags ^ ELEMENT_SELECTED);
        case Change::Hide:
            return static_cast<unsigned short>(flags | ELEMENT_HIDDEN);
        case Change::Unhide:
            return static_cast<unsigned short>(flags & ~ELEMENT_HIDDEN);
    }
    return flags;
}

// Applies `change` to the members of `level` (all elements when `set` is null); hidden
// elements are never selected.
void ChangeElements(cmesh& m, int level, const cbitarray* set, Change change) {
    const int count = m.GetNumElements(static_cast<unsigned int>(level));
    const int* members = set ? set->GetData() : nullptr;
    const int setSize = set ? set->GetSize() : 0;
    for (int i = 0; i < count; ++i) {
        if (set && (i >= setSize || !members[i])) continue;
        const unsigned short flags = level == 1   ? m.GetVertFlags(i)
                                     : level == 2 ? m.GetFaceFlags(i)
                                                  : m.GetEdgeFlags(i);
        const bool selecting = change == Change::Select || change == Change::Invert;
        if (selecting && (flags & ELEMENT_HIDDEN)) continue;
        const unsigned short next = Changed(flags, change);
        if (next == flags) continue;
        if (level == 1) m.SetVertFlags(i, next);
        if (level == 2) m.SetFaceFlags(i, next);
        if (level == 3) m.SetEdgeFlags(i, next);
    }
    m.CalcSelVertsCenter();
    m.CalcSelFacesCenter();
    m.CalcSelEdgesCenter();
}

int SelectSet(cmesh& m, int level, const cbitarray& set, int select) {
    if (m.GetNumElements(static_cast<unsigned int>(level)) == 0) return 0;
    ChangeElements(m, level, &set, select ? Change::Select : Change::Deselect);
    return 1;
}

int HideSet(cmesh& m, int level, const cbitarray& set) {
    if (m.GetNumElements(static_cast<unsigned int>(level)) == 0) return 0;
    ChangeElements(m, level, &set, Change::Hide);
    return 1;
}

// The first face after `start` holding the directed edge a -> b and no flag of `skipFlags`.
int FindDirected(const cmesh& m, int a, int b, int start, unsigned short skipFlags) {
    const cface* faces = m.GetFaces();
    for (int f = start < 0 ? 0 : start + 1; f < m.NumFaces(); ++f) {
        if (faces[f].flags & skipFlags) continue;
        const int k = faces[f].FindVert(a);
        if (k >= 0 && faces[f].v[(k + 1) % 3] == b) return f;
    }
    return -1;
}

}  // namespace

int cmesh::SelectVertSet(const cbitarray& set, int select) {
    return SelectSet(*this, 1, set, select);
}

int cmesh::SelectFaceSet(const cbitarray& set, int select) {
    return SelectSet(*this, 2, set, select);
}

int cmesh::SelectEdgeSet(const cbitarray& set, int select) {
    return SelectSet(*this, 3, set, select);
}

void cmesh::SelectAllVerts() {
    ChangeElements(*this, 1, nullptr, Change::Select);
}

void cmesh::SelectAllFaces() {
    ChangeElements(*this, 2, nullptr, Change::Select);
}

void cmesh::SelectAllEdges() {
    ChangeElements(*this, 3, nullptr, Change::Select);
}

void cmesh::DeselectAllVerts() {
    ChangeElements(*this, 1, nullptr, Change::Deselect);
}

void cmesh::DeselectAllFaces() {
    ChangeElements(*this, 2, nullptr, Change::Deselect);
}

void cmesh::DeselectAllEdges() {
    ChangeElements(*this, 3, nullptr, Change::Deselect);
}

void cmesh::InvertSelVerts() {
    ChangeElements(*this, 1, nullptr, Change::Invert);
}

void cmesh::InvertSelFaces() {
    ChangeElements(*this, 2, nullptr, Change::Invert);
}

void cmesh::InvertSelEdges() {
    ChangeElements(*this, 3, nullptr, Change::Invert);
}

int cmesh::HideVertSet(const cbitarray& set) {
    return HideSet(*this, 1, set);
}

int cmesh::HideFaceSet(const cbitarray& set) {
    return HideSet(*this, 2, set);
}

int cmesh::HideEdgeSet(const cbitarray& set) {
    return HideSet(*this, 3, set);
}

void cmesh::UnhideAllVerts() {
    ChangeElements(*this, 1, nullptr, Change::Unhide);
}

void cmesh::UnhideAllFaces() {
    ChangeElements(*this, 2, nullptr, Change::Unhide);
}

void cmesh::UnhideAllEdges() {
    ChangeElements(*this, 3, nullptr, Change::Unhide);
}

void cmesh::HideSelected() {
    const int level = GetSubLevel();
    if (level < 1 || level > 3) return;
    const int count = GetNumElements(static_cast<unsigned int>(level));
    cbitarray set(count);
    for (int i = 0; i < count; ++i) {
        const unsigned short flags = level == 1   ? GetVertFlags(i)
                                     : level == 2 ? GetFaceFlags(i)
                                                  : GetEdgeFlags(i);
        if (flags & ELEMENT_SELECTED) set.Set(i);
    }
    HideSet(*this, level, set);
}

int cmesh::FindFaceFromEdge(int a, int b, int start, unsigned short skipFlags) const {
    return FindDirected(*this, a, b, start, skipFlags);
}

int cmesh::FindAdjacentFaceFromEdge(int a, int b, int start, unsigned short skipFlags) const {
    return FindDirected(*this, b, a, start, skipFlags);
}
