/*
 * AIDL android.hardware.common.fmq.UnsynchronizedWrite (V1), NDK backend: the flavour tag of a fast
 * message queue with one writer that may overwrite unread data, many readers.
 */
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl {
namespace android {
namespace hardware {
namespace common {
namespace fmq {
enum class UnsynchronizedWrite : int8_t {
    EMPTY = 0,
};

[[nodiscard]] static inline std::string toString(UnsynchronizedWrite val) {
    switch (val) {
        case UnsynchronizedWrite::EMPTY:
            return "EMPTY";
        default:
            return std::to_string(static_cast<int8_t>(val));
    }
}
}  // namespace fmq
}  // namespace common
}  // namespace hardware
}  // namespace android
}  // namespace aidl

namespace ndk {
namespace internal {
template <>
constexpr inline std::array<aidl::android::hardware::common::fmq::UnsynchronizedWrite, 1>
        enum_values<aidl::android::hardware::common::fmq::UnsynchronizedWrite> = {
                aidl::android::hardware::common::fmq::UnsynchronizedWrite::EMPTY,
};
}  // namespace internal
}  // namespace ndk
