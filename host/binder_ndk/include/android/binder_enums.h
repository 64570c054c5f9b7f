/*
 * Iteration over the enumerators of a generated AIDL enum: `for (auto e : ndk::enum_range<E>())`.
 * Each generated enum header specialises ndk::internal::enum_values for its type.
 */
#pragma once

#include <array>
#include <iterator>

namespace ndk {

namespace internal {

template <typename EnumType>
extern std::array<EnumType, 0> enum_values;

}  // namespace internal

template <typename EnumType>
struct enum_range {
    constexpr auto begin() const { return std::begin(internal::enum_values<EnumType>); }
    constexpr auto end() const { return std::end(internal::enum_values<EnumType>); }
};

}  // namespace ndk
