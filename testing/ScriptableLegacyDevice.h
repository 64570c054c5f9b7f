/*
 * ScriptableLegacyDevice: a real camera3_device_t whose ops table forwards every entry to a
 * GoogleMock object, for tests of the code that drives a legacy HAL3 device.
 *
 * - Each ops entry, the ops table itself and common.close can be removed (set to null).
 * - Whatever the mock does, the double first records a deep copy of what it was given: the
 *   callback table of initialize, every stream configuration, every capture request (settings
 *   bytes, physical settings, buffers) and every stream flush. Acquire fences of requests are
 *   taken over by the copy and closed with it, as a device would.
 * - Default actions (overridable with ON_CALL/EXPECT_CALL): initialize, configure_streams
 *   (writing max_buffers and usage back), process_capture_request, flush, close return 0;
 *   construct_default_request_settings returns null; is_reconfiguration_required returns -EINVAL.
 *
 * Entries may be called from any thread; the records are guarded by one lock.
 */
#pragma once

#include <android-base/unique_fd.h>
#include <gmock/gmock.h>
#include <hardware/camera3.h>

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kovo::aidl2legacy::testing {

class MockLegacyDeviceOps {
public:
    MOCK_METHOD(int, initialize, (const camera3_callback_ops_t* callbackOps));
    MOCK_METHOD(int, configureStreams, (camera3_stream_configuration_t * configuration));
    MOCK_METHOD(const camera_metadata_t*, constructDefaultRequestSettings, (int type));
    MOCK_METHOD(int, processCaptureRequest, (camera3_capture_request_t * request));
    MOCK_METHOD(void, dump, (int fd));
    MOCK_METHOD(int, flush, ());
    MOCK_METHOD(void, signalStreamFlush,
                (uint32_t numStreams, const camera3_stream_t* const* streams));
    MOCK_METHOD(int, isReconfigurationRequired,
                (const camera_metadata_t* oldParams, const camera_metadata_t* newParams));
    MOCK_METHOD(int, close, ());
};

struct CapturedBuffer {
    camera3_stream_t* stream = nullptr;
    buffer_handle_t* buffer = nullptr;
    int status = 0;
    int acquireFenceNumber = -1;            // the descriptor number the device was given
    android::base::unique_fd acquireFence;  // that descriptor, now owned by the record
    int releaseFence = -1;
};

struct CapturedRequest {
    uint32_t frameNumber = 0;
    std::optional<std::vector<uint8_t>> settings;  // packed bytes; empty optional for null
    std::vector<std::string> physicalIds;
    std::vector<std::optional<std::vector<uint8_t>>> physicalSettings;
    std::optional<CapturedBuffer> inputBuffer;
    std::vector<CapturedBuffer> outputBuffers;
    int32_t inputWidth = 0;
    int32_t inputHeight = 0;
};

struct CapturedConfiguration {
    std::vector<camera3_stream_t*> streams;      // as given, one per slot
    std::vector<camera3_stream_t> streamValues;  // their contents at the call
    uint32_t operationMode = 0;
    std::optional<std::vector<uint8_t>> sessionParameters;
    bool inputIsMultiResolution = false;
};

class ScriptableLegacyDevice {
public:
    enum class Entry {
        kInitialize,
        kConfigureStreams,
        kConstructDefaultRequestSettings,
        kProcessCaptureRequest,
        kDump,
        kFlush,
        kSignalStreamFlush,
        kIsReconfigurationRequired,
    };

    // max_buffers that the default configure_streams action writes into every stream.
    static constexpr uint32_t kDefaultMaxBuffers = 4;

    ScriptableLegacyDevice();
    ~ScriptableLegacyDevice();
    ScriptableLegacyDevice(const ScriptableLegacyDevice&) = delete;
    ScriptableLegacyDevice& operator=(const ScriptableLegacyDevice&) = delete;

    camera3_device_t* device() { return &mDevice; }
    ::testing::NiceMock<MockLegacyDeviceOps>& mock() { return mMock; }

    void removeEntry(Entry entry);
    void removeOpsTable() { mDevice.ops = nullptr; }
    void removeClose() { mDevice.common.close = nullptr; }

    // The table the last initialize was given (null before).
    const camera3_callback_ops_t* callbackOps() const;
    std::vector<CapturedConfiguration> configurations() const;
    // Takes the requests recorded so far (with their fences) out of the double.
    std::vector<CapturedRequest> takeRequests();
    size_t requestCount() const;
    std::vector<std::vector<camera3_stream_t*>> streamFlushes() const;
    int closeCount() const;

private:
    static ScriptableLegacyDevice* from(const camera3_device* device);
    static std::optional<std::vector<uint8_t>> copyMetadata(const camera_metadata_t* metadata);
    static CapturedBuffer copyBuffer(const camera3_stream_buffer_t& buffer);

    static int sInitialize(const camera3_device*, const camera3_callback_ops_t*);
    static int sConfigureStreams(const camera3_device*, camera3_stream_configuration_t*);
    static const camera_metadata_t* sConstructDefaultRequestSettings(const camera3_device*, int);
    static int sProcessCaptureRequest(const camera3_device*, camera3_capture_request_t*);
    static void sDump(const camera3_device*, int);
    static int sFlush(const camera3_device*);
    static void sSignalStreamFlush(const camera3_device*, uint32_t, const camera3_stream_t* const*);
    static int sIsReconfigurationRequired(const camera3_device*, const camera_metadata_t*,
                                          const camera_metadata_t*);
    static int sClose(hw_device_t*);

    camera3_device_ops_t mOps;
    camera3_device_t mDevice;
    ::testing::NiceMock<MockLegacyDeviceOps> mMock;

    mutable std::mutex mLock;
    const camera3_callback_ops_t* mCallbackOps = nullptr;
    std::vector<CapturedConfiguration> mConfigurations;
    std::vector<CapturedRequest> mRequests;
    size_t mRequestCount = 0;
    std::vector<std::vector<camera3_stream_t*>> mStreamFlushes;
    int mCloseCount = 0;
};

}  // namespace kovo::aidl2legacy::testing
