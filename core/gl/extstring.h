// Matching a name against an OpenGL extension string.
#ifndef ORVANE_CORE_GL_EXTSTRING_H
#define ORVANE_CORE_GL_EXTSTRING_H

#include <cstring>

// 1 when the first occurrence of `name` in the blank-separated `list` is followed by a blank
// or the end of the list. Intended: only the first occurrence is examined and the character
// before it is never looked at, so a name that first appears as the tail or the head of a
// longer name is not found.
inline int ExtensionListed(char const* list, char const* name) {
    if (!list || !name) return 0;
    char const* found = std::strstr(list, name);
    if (!found) return 0;
    char const after = found[std::strlen(name)];
    return after == ' ' || after == '\0';
}

#endif
