#include "tools/lipsyncctl/Commands.h"

#include <android/log.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <iostream>

namespace lipsyncctl {

void dropLog() {
    // The library writes its lines to the C stream `stderr`, which is an ordinary variable in the
    // GNU C library. Descriptor 2 stays as it is, so what does not go through this variable still
    // reaches the user: std::cerr, and the messages of sanitizers and of the C library.
    if (std::FILE* const nowhere = std::fopen("/dev/null", "we")) {
        stderr = nowhere;
    }
}

} // namespace lipsyncctl

#ifndef __ANDROID__

// The library also sends every line to the platform's log, which writes to standard error on Linux.
// This replacement drops these duplicates. But if the library aborts, its fatal line must be seen.
extern "C" __attribute__((visibility("default"))) int __android_log_vprint(int priority,
                                                                           const char* tag,
                                                                           const char* format,
                                                                           va_list args) {
    if (fileno(stderr) != STDERR_FILENO && priority == ANDROID_LOG_FATAL) {
        char text[512];
        std::vsnprintf(text, sizeof(text), format, args);
        std::cerr << "F/" + std::string(tag) + ' ' + text + '\n';
    }
    return 1;
}

#endif
