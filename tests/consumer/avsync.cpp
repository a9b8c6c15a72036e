// A minimal program that uses the headers in avsync/ of an installed library.

#include <chrono>
#include <cstdio>
#include <thread>

#include "avsync/LipSync.h"
#include "avsync/RtpClock.h"

namespace avsync = velta::zub::avsync;

int main(int argc, char** argv) {
    avsync::LipSync::Options options;
    options.socket = argc > 1 ? argv[1] : options.socket;
    options.interval = std::chrono::milliseconds(10);
    avsync::LipSync lipSync(options);
    avsync::RtpClock rtpClock(90000);
    rtpClock.addReport(avsync::ntpNow(), 9000);
    for (int i = 0; i < 1000 && !lipSync.status().isSteered; ++i) {
        lipSync.setPicture(*rtpClock.captured(0), avsync::ntpNow(), lipSync.pictureDelayMs());
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const auto status = lipSync.status();
    std::printf("skew %.1f ms %s\n", status.skewMs, status.message.c_str());
    return status.isSteered ? 0 : 1;
}
