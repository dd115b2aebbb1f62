// Internal: the one registry mechanism behind the six kinds of tool.
#ifndef ORVANE_CORE_TOOLS_REGISTRY_H
#define ORVANE_CORE_TOOLS_REGISTRY_H

#include <cstring>

#include "corearray.h"
#include "coreassert.h"

// Where a kind's failed allocation is reported ("newi" with this source and line).
struct RegistryReport {
    char const* file;
    int line;
};

// A heap array of non-owning tool pointers, kept in ascending name order. `NameOf` answers a
// tool's sort key (GetName() or Name(), depending on the kind).
template <class Tool, char const* (*NameOf)(Tool*)>
class ToolRegistry {
public:
    explicit constexpr ToolRegistry(RegistryReport report) : report(report) {}
    ToolRegistry(const ToolRegistry&) = delete;
    ToolRegistry& operator=(const ToolRegistry&) = delete;
    // The tools belong to their modules; only the array is freed.
    ~ToolRegistry() { Clear(); }

    // Inserts `tool` after every entry whose name is not greater than its name, in an array
    // one slot longer. Returns 0 when the array cannot be allocated.
    int Insert(Tool* tool) {
        auto** grown = static_cast<Tool**>(array_new(sizeof(Tool*) * (count + 1)));
        if (!grown) {
            MyAssertFailedLine("newi", report.file, report.line);
            return 0;
        }
        const int at = InsertionIndex(NameOf(tool));
        for (int i = 0; i < at; ++i) grown[i] = entries[i];
        grown[at] = tool;
        for (int i = at; i < count; ++i) grown[i + 1] = entries[i];
        array_delete(entries);
        entries = grown;
        ++count;
        return 1;
    }

    void Clear() {
        array_delete(entries);
        entries = nullptr;
        count = 0;
    }

    int Count() const { return count; }

    Tool* At(int index) const {
        if (!entries || index < 0 || index >= count) return nullptr;
        return entries[index];
    }

    // The first entry, in registry order, for which `match` answers true; null if none.
    template <class Match>
    Tool* FindFirst(Match match) const {
        for (int i = 0; i < count; ++i)
            if (entries[i] && match(entries[i])) return entries[i];
        return nullptr;
    }

    template <class Visit>
    void ForEach(Visit visit) const {
        for (int i = 0; i < count; ++i)
            if (entries[i]) visit(entries[i]);
    }

private:
    // The index of the first entry whose name compares greater, byte by byte as unsigned
    // characters (strcmp's order); the count when none does.
    int InsertionIndex(char const* name) const {
        for (int i = 0; i < count; ++i)
            if (std::strcmp(NameOf(entries[i]), name) > 0) return i;
        return count;
    }

    Tool** entries = nullptr;
    int count = 0;
    RegistryReport report;
};

#endif
