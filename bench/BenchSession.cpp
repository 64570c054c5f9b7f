#include "BenchSession.h"

#include <cstdlib>

namespace kovo::aidl2legacy::bench {

BenchSession::BenchSession(int streamCount)
    : bridge(Aidl2LegacyCameraDeviceCallback::create({0, framework})) {
    Aidl2LegacyCameraDeviceCallback::ResultQueueDescriptor resultQueue;
    bridge->getCaptureResultMetadataQueue(&resultQueue);
    framework->attachResultQueue(resultQueue);
    Session::ResultInfo result;
    session = Session::create({0, legacy.device(), bridge}, result);
    if (session == nullptr || session->open(framework) != 0) abort();
    std::vector<Session::HalStream> halStreams;
    if (!session->configureStreams(configurationOf(streamCount), &halStreams).isOk()) abort();
    Session::MetadataQueueDescriptor requestQueueDescriptor;
    if (!session->getCaptureRequestMetadataQueue(&requestQueueDescriptor).isOk()) abort();
    requestQueue = std::make_unique<Session::MetadataQueue>(requestQueueDescriptor);
}

BenchSession::~BenchSession() {
    session->close();
}

BenchSession::Session::StreamConfiguration BenchSession::configurationOf(int streamCount) {
    Session::StreamConfiguration configuration;
    for (int i = 0; i < streamCount; ++i) {
        aidl::android::hardware::camera::device::Stream stream;
        stream.id = i;
        stream.width = 640;
        stream.height = 480;
        stream.format = aidl::android::hardware::graphics::common::PixelFormat::YCBCR_420_888;
        configuration.streams.push_back(stream);
    }
    return configuration;
}

}  // namespace kovo::aidl2legacy::bench
