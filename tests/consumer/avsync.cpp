// A minimal program that uses the headers in avsync/ of an installed library.

#include <cstdio>

#include "avsync/Controller.h"
#include "avsync/Ntp.h"
#include "lipsyncapi/Service.h"

namespace avsync = velta::zub::avsync;

int main(int argc, char** argv) {
    velta::zub::lipsyncapi::Service service;
    velta::zub::common::LipSyncNtpTimestamps audio;
    auto result = service.connect(argc > 1 ? argv[1] : service.defaultLipsyncSocketName);
    if (result.isSuccess()) {
        result = service.getAudioTimestamps(audio);
    }
    avsync::RtpClock rtpClock(90000);
    rtpClock.addReport(avsync::ntpNow(), 9000);
    const auto captured = rtpClock.captured(0);
    avsync::Reading reading;
    reading.audioLatencyMs =
        avsync::ntpMsBetween(audio.audioCaptureTimestamp, audio.audioRenderingTimestamp);
    reading.pictureLatencyMs = captured ? avsync::ntpMsBetween(*captured, avsync::ntpNow()) : 0;
    avsync::Controller controller(20, 100);
    const auto now = avsync::Controller::Time::clock::now();
    const auto correction = controller.update(now, reading, avsync::Correction());
    std::printf("%s: margin %lu ms\n", result.format().c_str(), correction.marginMs);
    return result.isSuccess() ? 0 : 1;
}
