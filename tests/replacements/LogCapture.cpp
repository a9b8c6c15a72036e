#include "tests/replacements/LogCapture.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>

std::string tests::logOf(const std::function<void()>& action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

// Replaces the platform's log writer.
extern "C" int __android_log_vprint(int priority, const char* tag, const char* format,
                                    va_list args) {
    char text[4096];
    std::vsnprintf(text, sizeof(text), format, args);
    return std::fprintf(stderr, "platform %d/%s %s\n", priority, tag, text);
}
