// note.cpp: what the file itself tells of the module, beside its 26 names: a note of ELF, as the build's ids are.
//
// Name "zetstopngo", type 1. Four bytes, the distance from themselves to the pointer to the kernels in force, of which
// the first member is their name; then the version, ended by a zero. `readelf -n` shows it without running anything.
// In assembly: no constant of the language can be the distance between two objects.
#include "kernels/kernels.h"

static_assert(offsetof(KernelTable, Name) == 0);

__asm__(
    ".pushsection .note.zetstopngo, \"a\", %note\n"
    ".balign 4\n"
    ".long 2f - 1f\n"
    ".long 4f - 3f\n"
    ".long 1\n"
    "1: .asciz \"zetstopngo\"\n"
    "2: .balign 4\n"
    "3: .long KernelsInForce - .\n"
    ".asciz \"" STOPNGO_VERSION
    "\"\n"
    "4: .balign 4\n"
    ".popsection\n");
