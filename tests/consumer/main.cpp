// A minimal program that uses an installed library.

#include <cstdio>

#include "comms/Client.h"
#include "lipsyncapi/Service.h"
#include "lipsyncapi/Version.h"

#if ZUBLIPSYNCAPI_VERSION / 10000 != ZUBLIPSYNCAPI_VERSION_MAJOR
#error "the number of the version does not begin with its first part"
#endif

int main(int argc, char** argv) {
    velta::zub::lipsyncapi::Service service;
    velta::zub::common::LipSyncNtpTimestamps timestamps;
    auto result = service.connect(argc > 1 ? argv[1] : service.defaultLipsyncSocketName);
    if (result.isSuccess()) {
        result = service.getAudioTimestamps(timestamps);
    }
    velta::zub::comms::Link* link = nullptr;
    const auto refused = velta::zub::comms::Client::connectTcpServer("127.0.0.1", 0, link);
    std::printf("%s\n%s\n", result.format().c_str(), refused.format().c_str());
    return result.isSuccess() && refused.isFailure() ? 0 : 1;
}
