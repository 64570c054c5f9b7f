/*
 * Values of legacy C enums that come from outside the process (the framework, a legacy device)
 * and may lie outside the enum's declared range: stored and read as integers of the enum's width,
 * so every value passes through unchanged and none is ever loaded as the enum. Stateless; any
 * thread.
 */
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace kovo::aidl2legacy {

template <typename Enum>
requires std::is_enum_v<Enum> &&
        (sizeof(Enum) == sizeof(int32_t)) void setEnumValue(Enum& out, int32_t value) {
    std::memcpy(&out, &value, sizeof(value));
}

template <typename Enum>
requires std::is_enum_v<Enum> &&(sizeof(Enum) == sizeof(int32_t)) int32_t enumValue(const Enum& in) {
    int32_t value;
    std::memcpy(&value, &in, sizeof(value));
    return value;
}

}  // namespace kovo::aidl2legacy
