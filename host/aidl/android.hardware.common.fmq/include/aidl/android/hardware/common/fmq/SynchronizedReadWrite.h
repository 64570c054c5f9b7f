/*
 * AIDL android.hardware.common.fmq.SynchronizedReadWrite (V1), NDK backend: the flavour tag of a
 * fast message queue with one reader and one writer, neither overwrites the other.
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
enum class SynchronizedReadWrite : int8_t {
    EMPTY = 0,
};

[[nodiscard]] static inline std::string toString(SynchronizedReadWrite val) {
    switch (val) {
        case SynchronizedReadWrite::EMPTY:
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
constexpr inline std::array<aidl::android::hardware::common::fmq::SynchronizedReadWrite, 1>
        enum_values<aidl::android::hardware::common::fmq::SynchronizedReadWrite> = {
                aidl::android::hardware::common::fmq::SynchronizedReadWrite::EMPTY,
};
}  // namespace internal
}  // namespace ndk
