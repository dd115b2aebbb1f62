// The smoothing normals of a vertex: one accumulator per group of smoothing masks.
#include "cmesh.h"

#include <new>

#include "runtime/check.h"

namespace {

bool SharesBit(std::uint32_t a, std::uint32_t b) {
    return (a & b) != 0;
}

}  // namespace

csmnormal::csmnormal(const csmnormal& other) {
    *this = other;
}

csmnormal& csmnormal::operator=(const csmnormal& other) {
    if (this == &other) return *this;
    Clear();
    // Appending at the tail keeps the source's order, newest first.
    csmgroup** tail = &head;
    for (const csmgroup* g = other.head; g; g = g->next) {
        csmgroup* copy = new (std::nothrow) csmgroup(*g);
        CORE_CHECK(copy != nullptr, "smgroup");
        if (!copy) break;
        copy->next = nullptr;
        *tail = copy;
        tail = &copy->next;
        ++count;
    }
    return *this;
}

csmnormal::~csmnormal() {
    Clear();
}

void csmnormal::Clear() {
    for (csmgroup** list : {&head, &spare}) {
        while (*list) {
            csmgroup* next = (*list)->next;
            delete *list;
            *list = next;
        }
    }
    count = 0;
}

void csmnormal::Recycle() {
    while (head) {
        csmgroup* next = head->next;
        head->next = spare;
        spare = head;
        head = next;
    }
    count = 0;
}

int csmnormal::AddNormal(const cpoint3& n, std::uint32_t mask) {
    int position = 0;
    for (csmgroup* g = head; g; g = g->next, ++position) {
        if (!SharesBit(g->mask, mask)) continue;
        g->normal[0] += n.x;
        g->normal[1] += n.y;
        g->normal[2] += n.z;
        g->mask |= mask;
        ++g->count;
        return position;
    }
    csmgroup* g = spare;
    if (g) {
        spare = g->next;
    } else {
        g = new (std::nothrow) csmgroup;
        CORE_CHECK(g != nullptr, "smgroup");
        if (!g) return -1;
    }
    g->normal[0] = n.x;
    g->normal[1] = n.y;
    g->normal[2] = n.z;
    g->mask = mask;
    g->count = 1;
    g->next = head;
    head = g;
    ++count;
    // Intended: a new node reports the node count - 1, not its position at the head.
    return count - 1;
}

void csmnormal::Normalize() {
    for (csmgroup* g = head; g; g = g->next) {
        if (g->count <= 0) continue;
        cpoint3 n = g->GetNormal() / static_cast<float>(g->count);
        n.Normalize();
        g->normal[0] = n.x;
        g->normal[1] = n.y;
        g->normal[2] = n.z;
    }
}

int csmnormal::GetNormal(cpoint3& normal, std::uint32_t mask) const {
    for (const csmgroup* g = head; g; g = g->next) {
        if (!SharesBit(g->mask, mask)) continue;
        normal = g->GetNormal();
        return 1;
    }
    return 0;
}

int csmnormal::FindSM(std::uint32_t mask) const {
    int position = 0;
    for (const csmgroup* g = head; g; g = g->next, ++position)
        if (SharesBit(g->mask, mask)) return position;
    return -1;
}

void CopySMnormal(csmnormal& destination, const csmnormal& source) {
    destination = source;
}
