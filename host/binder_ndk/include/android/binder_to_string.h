/*
 * ::android::internal::ToString, the printing helper behind every generated toString(). It picks
 * the first rule that fits the value's type: bool, char16_t, other arithmetic, std::string,
 * SpAIBinder, ScopedFileDescriptor, interface objects, AParcelableHolder, pointer-likes, types
 * with a toString() member, types with a toString() free function found by ADL, ranges.
 * Header-only and stateless.
 */
#pragma once

#include <android/binder_auto_utils.h>
#include <android/binder_interface_utils.h>

#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

namespace ndk {
class AParcelableHolder;
}  // namespace ndk

namespace android::internal {

namespace details {

template <typename T>
concept HasToStringMethod = requires(const T& t) {
    { t.toString() } -> std::convertible_to<std::string>;
};

// Unqualified, so that ADL finds the toString(E) that generated enums declare beside them.
template <typename T>
concept HasToStringFunction = requires(const T& t) {
    { toString(t) } -> std::convertible_to<std::string>;
};

template <typename T>
struct IsPointerLike : std::is_pointer<T> {};
template <typename T>
struct IsPointerLike<std::optional<T>> : std::true_type {};
template <typename T, typename D>
struct IsPointerLike<std::unique_ptr<T, D>> : std::true_type {};
template <typename T>
struct IsPointerLike<std::shared_ptr<T>> : std::true_type {};

template <typename T>
concept IsIterable = requires(const T& t) {
    std::begin(t);
    std::end(t);
    typename T::value_type;
};

// UTF-8 form of one UTF-16 code unit (a lone surrogate is encoded as its own code point).
inline std::string toUtf8(char16_t c) {
    std::string out;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
    return out;
}

}  // namespace details

template <typename T>
std::string ToString(const T& t) {
    if constexpr (std::is_same_v<bool, T>) {
        return t ? "true" : "false";
    } else if constexpr (std::is_same_v<char16_t, T>) {
        return details::toUtf8(t);
    } else if constexpr (std::is_arithmetic_v<T>) {
        return std::to_string(t);
    } else if constexpr (std::is_same_v<std::string, T>) {
        return t;
    } else if constexpr (std::is_same_v<::ndk::SpAIBinder, T>) {
        std::stringstream ss;
        ss << "binder:" << std::hex << t.get();
        return ss.str();
    } else if constexpr (std::is_same_v<::ndk::ScopedFileDescriptor, T>) {
        return "fd:" + std::to_string(t.get());
    } else if constexpr (std::is_base_of_v<::ndk::ICInterface, T>) {
        return "<interface>";
    } else if constexpr (std::is_same_v<::ndk::AParcelableHolder, T>) {
        return "AParcelableHolder";
    } else if constexpr (details::IsPointerLike<T>::value) {
        if (!t) return "(null)";
        return ToString(*t);
    } else if constexpr (details::HasToStringMethod<T>) {
        return t.toString();
    } else if constexpr (details::HasToStringFunction<T>) {
        return toString(t);
    } else if constexpr (details::IsIterable<T>) {
        std::stringstream out;
        bool first = true;
        out << "[";
        for (const auto& e : t) {
            if (!first) out << ", ";
            first = false;
            out << ToString<typename T::value_type>(e);
        }
        out << "]";
        return out.str();
    } else {
        static_assert(!std::is_same_v<T, T>, "no ToString rule for this type");
    }
}

}  // namespace android::internal
