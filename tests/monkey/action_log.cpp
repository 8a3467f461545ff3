#include "monkey/action_log.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace monkey {

// NOLINTNEXTLINE(cert-dcl50-cpp): as printf, whose arguments the compiler checks by the header
void logAction(std::uint64_t number, const char *format, ...) {
    constexpr unsigned hangSeconds = 150;  // a sanitized program on a busy machine is slow
    alarm(hangSeconds);
    std::fprintf(stderr, "%llu ", static_cast<unsigned long long>(number));
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
}

// NOLINTNEXTLINE(cert-dcl50-cpp): as printf, whose arguments the compiler checks by the header
void fail(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
    std::abort();
}

}  // namespace monkey
