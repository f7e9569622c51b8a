// Assembles the files of data/builtin into the library's read-only data, so
// the bytes exist once, in the files the generator writes. Each file gets a
// start symbol and a 32-bit size computed by the assembler.
#include "colormodels/builtin_data.h"

#ifndef KTCLR_BUILTIN_DIR
#error "KTCLR_BUILTIN_DIR must name the data/builtin directory"
#endif

// GNU assembler syntax (GCC and Clang); the ELF form restores the section
// the compiler was in.
#if defined(__APPLE__)
#define KT_SYM(name) "_" #name
#define KT_RODATA ".const_data"
#define KT_DONE ".text"
#define KT_HIDDEN ".private_extern "
#else
#define KT_SYM(name) #name
#define KT_RODATA ".pushsection .rodata"
#define KT_DONE ".popsection"
#define KT_HIDDEN ".hidden "
#endif

// Emits `name` (the bytes of `file`) and `name_size`.
#define KT_EMBED(name, file)                                                     \
    asm(KT_RODATA "\n"                                                           \
        ".globl " KT_SYM(name) "\n" KT_HIDDEN KT_SYM(name) "\n"                  \
        ".balign 16\n" KT_SYM(name) ":\n"                                        \
        ".incbin \"" KTCLR_BUILTIN_DIR "/" file "\"\n"                           \
        "1:\n"                                                                   \
        ".balign 4\n"                                                            \
        ".globl " KT_SYM(name##_size) "\n" KT_HIDDEN KT_SYM(name##_size) "\n"    \
        KT_SYM(name##_size) ":\n"                                                \
        ".long 1b - " KT_SYM(name) "\n" KT_DONE "\n");                           \
    extern "C" const unsigned char name[];                                       \
    extern "C" const std::uint32_t name##_size

KT_EMBED(ktclr_builtin_rgb_display, "rgb_display.icc");
KT_EMBED(ktclr_builtin_lab, "lab.icc");
KT_EMBED(ktclr_builtin_press, "cmyk_press.icc");
KT_EMBED(ktclr_builtin_cmy, "cmy.icc");
KT_EMBED(ktclr_builtin_grids, "emulation_grids.bin");

namespace kt::color::data {
namespace {

// The CMY profile's file runs past its header's size field (its copyright
// tag lies beyond it); lcms2 is given the declared size, callers the file.
Blob Make(const unsigned char* bytes, std::uint32_t size) {
    const std::uint32_t declared = (std::uint32_t{bytes[0]} << 24) | (std::uint32_t{bytes[1]} << 16) |
                                   (std::uint32_t{bytes[2]} << 8) | std::uint32_t{bytes[3]};
    return {bytes, size, declared};
}

}  // namespace

Blob RgbDisplayProfile() noexcept { return Make(ktclr_builtin_rgb_display, ktclr_builtin_rgb_display_size); }
Blob LabProfile() noexcept { return Make(ktclr_builtin_lab, ktclr_builtin_lab_size); }
Blob PressProfile() noexcept { return Make(ktclr_builtin_press, ktclr_builtin_press_size); }
Blob CmyProfile() noexcept { return Make(ktclr_builtin_cmy, ktclr_builtin_cmy_size); }
const std::uint8_t* EmulationGrids() noexcept { return ktclr_builtin_grids; }

}  // namespace kt::color::data
