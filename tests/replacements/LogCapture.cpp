#include "tests/replacements/LogCapture.h"

#include <android/log.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace tests {

namespace {

std::mutex mutex;
bool isCaptured = false;
std::vector<std::string> captured;

void store(const std::string& record) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (isCaptured) {
        captured.push_back(record);
    } else {
        std::fprintf(stderr, "platform %s\n", record.c_str());
    }
}

} // namespace

LogCapture::LogCapture() {
    captured.clear();
    isCaptured = true;
    testing::internal::CaptureStderr();
}

LogCapture::~LogCapture() {
    isCaptured = false;
    if (_capturing) {
        standardError();
    }
}

const std::vector<std::string>& LogCapture::records() const {
    return captured;
}

std::string LogCapture::standardError() {
    _capturing = false;
    return testing::internal::GetCapturedStderr();
}

} // namespace tests

// Takes the place of the platform's log writer.
extern "C" int __android_log_vprint(int priority, const char* tag, const char* format,
                                    va_list args) {
    char text[4096];
    std::vsnprintf(text, sizeof(text), format, args);
    tests::store(std::to_string(priority) + '/' + tag + ' ' + text);
    return 1;
}
