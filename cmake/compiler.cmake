# Warnings, sanitizers and the compiler cache, for every target of this tree.
add_compile_options(-Wall -Wextra -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    add_compile_options(-Wthread-safety)
endif()

if(NUMALINK_SANITIZE)
    add_compile_options(-fsanitize=${NUMALINK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1)
    add_link_options(-fsanitize=${NUMALINK_SANITIZE})
endif()
if(NUMALINK_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
# g++ 12 sees an overlap in std::string's own operator+ that isn't there (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_compile_options(-Wno-restrict)
endif()
