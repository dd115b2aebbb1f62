// A minimal host built against the installed package: it starts the library and prints the
// progress texts.
#include <Core.h>

#include <cstdio>

static int Progress(char* text) {
    return std::fputs(text, stdout);
}

int main() {
    std::snprintf(path_app, sizeof(path_app), "%s", ".");
    return CoreInit(Progress) == 1 ? 0 : 1;
}
