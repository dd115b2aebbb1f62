// Internal: free-text notes kept in an array_new buffer (zero-terminated, or null), shared by
// nodes and the scene. Owners pass `report(ok, text)` so that an allocation report names their
// own source file.
#ifndef ORVANE_CORE_RUNTIME_NOTESTEXT_H
#define ORVANE_CORE_RUNTIME_NOTESTEXT_H

#include <algorithm>
#include <cstring>

#include "corearray.h"

// Intended: notes hold at most 8192 characters.
constexpr int NOTES_MAX_CHARS = 8192;

// A terminated buffer for `length` characters from array_new, reported as `what` when it
// cannot be had (null then).
template <class Report>
char* NewNotesBuffer(int length, char const* what, Report report) {
    auto* text = static_cast<char*>(array_new(static_cast<unsigned long>(length) + 1));
    report(text != nullptr, what);
    if (text) text[length] = '\0';
    return text;
}

inline void ClearNotesText(char*& notes) {
    array_delete(notes);
    notes = nullptr;
}

inline int NotesTextSize(char const* notes) {
    return notes ? static_cast<int>(std::strlen(notes)) : 0;
}

// Replaces `notes` by at most `length` (and at most NOTES_MAX_CHARS) characters of `text`,
// stopping at its terminator; null or empty text or a length of 0 or less is ignored.
// Reports "notes" when the buffer cannot be allocated.
template <class Report>
void CopyNotesText(char*& notes, char const* text, int length, Report report) {
    if (!text || !*text || length <= 0) return;
    const int copied = static_cast<int>(strnlen(text, std::min(length, NOTES_MAX_CHARS)));
    // The text may lie inside the old notes, so they are freed only once it is copied.
    char* copy = NewNotesBuffer(copied, "notes", report);
    if (copy) std::memcpy(copy, text, static_cast<size_t>(copied));
    ClearNotesText(notes);
    notes = copy;
}

// Appends at most `length` characters of `text`, never past NOTES_MAX_CHARS in all; without
// notes it is CopyNotesText. Reports "nnotes" when the buffer cannot be allocated.
template <class Report>
void AddNotesText(char*& notes, char const* text, int length, Report report) {
    if (!text || !*text || length <= 0) return;
    if (!notes) return CopyNotesText(notes, text, length, report);
    const int current = NotesTextSize(notes);
    const int room = NOTES_MAX_CHARS - current;
    if (room <= 0) return;
    const int added = static_cast<int>(strnlen(text, std::min(length, room)));
    char* joined = NewNotesBuffer(current + added, "nnotes", report);
    if (!joined) return;
    std::memcpy(joined, notes, static_cast<size_t>(current));
    std::memcpy(joined + current, text, static_cast<size_t>(added));
    array_delete(notes);
    notes = joined;
}

#endif
