// Storage of the host callback table and the other data the host writes.
#include "coreinterface.h"

char path_app[256] = "";
void (*_AbortApp)() = nullptr;
void (*Application_InformDeleted)(cnode*) = nullptr;

char* GetAppPath() {
    return path_app;
}

// The 86 callback pointers are one contiguous, pointer-aligned block in table order, each
// slot its own exported symbol. Separate C++ variables could be reordered or padded by the
// compiler (and by the address sanitizer), so the block is laid out in assembly.
#define CORE_STRINGIFY_(x) #x
#define CORE_STRINGIFY(x) CORE_STRINGIFY_(x)
#define CORE_POINTER_SIZE CORE_STRINGIFY(__SIZEOF_POINTER__)
#define CORE_DEFINE_HOST_SLOT(ret, name, params)     \
    ".globl " #name                                  \
    "\n"                                             \
    ".type " #name                                   \
    ", %object\n"                                    \
    ".size " #name ", " CORE_POINTER_SIZE "\n" #name \
    ":\n"                                            \
    ".dc.a 0\n"

asm(".pushsection .data\n"
    ".balign " CORE_POINTER_SIZE "\n" CORE_HOST_CALLBACKS(CORE_DEFINE_HOST_SLOT) ".popsection\n");
