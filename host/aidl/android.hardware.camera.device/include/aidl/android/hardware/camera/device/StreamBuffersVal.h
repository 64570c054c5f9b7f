// Buffers handed out for one stream, or why there are none. AIDL union
// android.hardware.camera.device.StreamBuffersVal (V3) in the NDK backend's shape: Tag, getTag(),
// get<>(), set<>(), make<>(), comparisons (lower tag first) and toString(); a default object holds
// the first alternative. Move-only: it owns file descriptors (copy them with
// ScopedFileDescriptor::dup()). No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/StreamBuffer.h>
#include <aidl/android/hardware/camera/device/StreamBufferRequestError.h>
#include <android/binder_enums.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace aidl::android::hardware::camera::device {

class StreamBuffersVal {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.StreamBuffersVal";

    enum class Tag : int32_t {
        error = 0,
        buffers = 1,
    };

    // Expose tag symbols for legacy code
    static const inline Tag error = Tag::error;
    static const inline Tag buffers = Tag::buffers;

    template <typename _Tp>
    static constexpr bool _not_self =
            !std::is_same_v<std::remove_cv_t<std::remove_reference_t<_Tp>>, StreamBuffersVal>;

    StreamBuffersVal()
        : _value(std::in_place_index<static_cast<size_t>(error)>,
                 ::aidl::android::hardware::camera::device::StreamBufferRequestError(
                         ::aidl::android::hardware::camera::device::StreamBufferRequestError::
                                 UNKNOWN_ERROR)) {}

    template <typename _Tp, typename = std::enable_if_t<_not_self<_Tp>>>
    // NOLINTNEXTLINE(google-explicit-constructor)
    constexpr StreamBuffersVal(_Tp&& _arg) : _value(std::forward<_Tp>(_arg)) {}

    template <size_t _Np, typename... _Tp>
    constexpr explicit StreamBuffersVal(std::in_place_index_t<_Np>, _Tp&&... _args)
        : _value(std::in_place_index<_Np>, std::forward<_Tp>(_args)...) {}

    // An alternative owns file descriptors: make the class say so to type traits too.
    StreamBuffersVal(StreamBuffersVal&&) = default;
    StreamBuffersVal& operator=(StreamBuffersVal&&) = default;
    StreamBuffersVal(const StreamBuffersVal&) = delete;
    StreamBuffersVal& operator=(const StreamBuffersVal&) = delete;

    template <Tag _tag, typename... _Tp>
    static StreamBuffersVal make(_Tp&&... _args) {
        return StreamBuffersVal(std::in_place_index<static_cast<size_t>(_tag)>,
                                std::forward<_Tp>(_args)...);
    }

    template <Tag _tag, typename _Tp, typename... _Up>
    static StreamBuffersVal make(std::initializer_list<_Tp> _il, _Up&&... _args) {
        return StreamBuffersVal(std::in_place_index<static_cast<size_t>(_tag)>, std::move(_il),
                                std::forward<_Up>(_args)...);
    }

    Tag getTag() const { return static_cast<Tag>(_value.index()); }

    // A wrong tag throws std::bad_variant_access (aborts without exceptions).
    template <Tag _tag>
    const auto& get() const {
        return std::get<static_cast<size_t>(_tag)>(_value);
    }

    template <Tag _tag>
    auto& get() {
        return std::get<static_cast<size_t>(_tag)>(_value);
    }

    template <Tag _tag, typename... _Tp>
    void set(_Tp&&... _args) {
        _value.emplace<static_cast<size_t>(_tag)>(std::forward<_Tp>(_args)...);
    }

    inline bool operator==(const StreamBuffersVal& _rhs) const { return _value == _rhs._value; }
    inline bool operator<(const StreamBuffersVal& _rhs) const { return _value < _rhs._value; }
    inline bool operator!=(const StreamBuffersVal& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const StreamBuffersVal& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const StreamBuffersVal& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const StreamBuffersVal& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream os;
        os << "StreamBuffersVal{";
        switch (getTag()) {
            case error:
                os << "error: " << ::android::internal::ToString(get<error>());
                break;
            case buffers:
                os << "buffers: " << ::android::internal::ToString(get<buffers>());
                break;
        }
        os << "}";
        return os.str();
    }

private:
    std::variant<::aidl::android::hardware::camera::device::StreamBufferRequestError,
                 std::vector<::aidl::android::hardware::camera::device::StreamBuffer>>
            _value;
};

[[nodiscard]] static inline std::string toString(StreamBuffersVal::Tag val) {
    switch (val) {
        case StreamBuffersVal::Tag::error:
            return "error";
        case StreamBuffersVal::Tag::buffers:
            return "buffers";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::device

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::device::StreamBuffersVal::Tag, 2>
        enum_values<::aidl::android::hardware::camera::device::StreamBuffersVal::Tag> = {
                ::aidl::android::hardware::camera::device::StreamBuffersVal::Tag::error,
                ::aidl::android::hardware::camera::device::StreamBuffersVal::Tag::buffers,
};

}  // namespace ndk::internal
