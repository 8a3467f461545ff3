# Warnings, sanitizers and the compiler cache, for every target of this tree.
add_compile_options(-Wall -Wextra -Wconversion -Wshadow)
if(NUMALINK_STRICT)
    add_compile_options(-Werror)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    add_compile_options(-Wthread-safety)
endif()

if(NUMALINK_SANITIZE)
    add_compile_options(-fsanitize=${NUMALINK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1)
    set(CMAKE_CXX_FLAGS_DEBUG "-g1")  # lines are all that a report needs, and they build much faster
    add_link_options(-fsanitize=${NUMALINK_SANITIZE})
endif()
# Asio has fences, which the thread sanitizer doesn't see; our threads meet at locks and atomics that it does.
if(NUMALINK_SANITIZE MATCHES thread AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    add_compile_options(-Wno-tsan)
    # What it puts into moves of an optional vector hides from g++ 12 that they are checked first.
    add_compile_options(-Wno-maybe-uninitialized)
endif()
if(NUMALINK_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        add_compile_options(-fpch-preprocess)  # else a file with a precompiled header is never found in the cache
    endif()
endif()
# g++ 12 sees an overlap in std::string's own operator+ that isn't there (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_compile_options(-Wno-restrict)
endif()
