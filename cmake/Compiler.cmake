# Warnings, sanitizers, coverage and the compiler cache, for every target of the project.

add_library(quillon_compiler INTERFACE)
target_compile_options(quillon_compiler INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
    # Clang's -Wshadow has no such level: it would also object to a local variable named like a member.
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
    # GCC 12 takes a std::string for one that may overlap a literal put into it (its bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)

if(QUILLON_SANITIZE)
    target_compile_options(quillon_compiler INTERFACE
        -fsanitize=${QUILLON_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # GCC 12 takes the sanitizers' own checks of a std::optional for uses of its value.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(quillon_compiler INTERFACE -fsanitize=${QUILLON_SANITIZE})
endif()

if(QUILLON_COVERAGE)
    target_compile_options(quillon_compiler INTERFACE --coverage -O0 -fno-inline)
    target_link_options(quillon_compiler INTERFACE --coverage)
endif()

find_program(QUILLON_CCACHE ccache DOC "Compiler cache; used when it is installed")
if(QUILLON_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${QUILLON_CCACHE})
    set(CMAKE_OBJCXX_COMPILER_LAUNCHER ${QUILLON_CCACHE})
endif()
