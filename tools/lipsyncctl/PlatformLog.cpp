// The library logs to standard error and to the platform's log. On Linux the platform's log also
// writes to standard error; this replacement drops those duplicates.

#ifndef __ANDROID__

#include <android/log.h>

extern "C" __attribute__((visibility("default"))) int __android_log_vprint(int, const char*,
                                                                           const char*, va_list) {
    return 1;
}

#endif
