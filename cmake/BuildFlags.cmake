# Warnings, sanitizers and coverage, the same for every target of the project.

add_compile_options(
    -Wall -Wextra -Werror -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
    -Wformat=2 -Wimplicit-fallthrough -Wundef)

# The standard library and GoogleTest wrap on purpose, in hashing for example.
set(wrap_ignorelist -fsanitize-ignorelist=${CMAKE_SOURCE_DIR}/cmake/intsan-ignorelist.txt)

if(AVI_SANITIZE STREQUAL "address")
    set(sanitizer_flags
        -fsanitize=address,undefined,unsigned-integer-overflow ${wrap_ignorelist}
        -fno-sanitize-recover=all)
elseif(AVI_SANITIZE STREQUAL "integer")
    # What the platform compiles extractors with: an unnamed wrap is a trap.
    set(sanitizer_flags
        -fsanitize=signed-integer-overflow,unsigned-integer-overflow
        -fsanitize-trap=signed-integer-overflow,unsigned-integer-overflow
        ${wrap_ignorelist})
elseif(AVI_SANITIZE STREQUAL "fuzz")
    set(sanitizer_flags
        -fsanitize=fuzzer-no-link,address,undefined,unsigned-integer-overflow ${wrap_ignorelist}
        -fno-sanitize-recover=all)
elseif(AVI_SANITIZE STREQUAL "thread")
    set(sanitizer_flags -fsanitize=thread)
elseif(AVI_SANITIZE)
    message(FATAL_ERROR "AVI_SANITIZE is '${AVI_SANITIZE}': expected address, fuzz, integer or thread")
endif()

if(AVI_SANITIZE MATCHES "address|fuzz")
    # The plug-in and the media foundation have no RTTI, as on the device; tests do, and would miss
    # the types of their objects.
    list(APPEND sanitizer_flags -fno-sanitize=vptr)
endif()

if(sanitizer_flags)
    # Enough for readable reports, and quick to build.
    add_compile_options(${sanitizer_flags} -O1 -fno-omit-frame-pointer -gline-tables-only)
    add_link_options(${sanitizer_flags})
endif()

if(AVI_COVERAGE)
    add_compile_options(--coverage -O0 -g)
    add_link_options(--coverage)
endif()

# Calls through pointers and of virtual functions go where their type allows, also between libraries.
# Tests are built so too: the linker cannot mix inline functions of both kinds.
if(AVI_CFI)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang" OR AVI_SANITIZE)
        message(FATAL_ERROR "AVI_CFI takes clang and no sanitizer")
    endif()
    set(cfi_flags -fsanitize=cfi -fsanitize-cfi-cross-dso -flto=thin)
    add_compile_options(${cfi_flags})
    add_link_options(${cfi_flags} -fuse-ld=lld)
endif()

# avi_harden(): what the current folder holds is built as the platform builds its libraries. For what is
# installed; sanitizers watch the same and more.
function(avi_harden)
    if(AVI_SANITIZE OR AVI_COVERAGE)
        return()
    endif()
    # The checks of FORTIFY need optimised code.
    add_compile_options(-fstack-protector-strong
        $<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
    add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
    if(AVI_CFI)
        add_link_options(-Wl,--version-script=${CMAKE_SOURCE_DIR}/cmake/cfi-exports.map.txt)
    endif()
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
        add_link_options(-Wl,-z,max-page-size=16384)  # devices may have pages of 16 KiB
    endif()
endfunction()
