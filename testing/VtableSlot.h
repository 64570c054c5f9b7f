/*
 * The virtual-table slot of a virtual member function, read from its Itanium C++ ABI
 * pointer-to-member form, for tests that pin the slot order other binaries rely on. -1 for a
 * function that is not virtual.
 */
#pragma once

#include <cstddef>
#include <cstring>

namespace kovo::aidl2legacy::testing {

template <typename MemberFunction>
ptrdiff_t vtableSlot(MemberFunction function) {
    static_assert(sizeof(function) == 2 * sizeof(ptrdiff_t));
    ptrdiff_t words[2];
    std::memcpy(words, &function, sizeof(words));
#if defined(__aarch64__) || defined(__arm__)
    // The ARM variant: the byte offset as it is, the virtual mark in the adjustment's low bit.
    const bool isVirtual = (words[1] & 1) != 0;
    const ptrdiff_t offset = words[0];
#else
    // Elsewhere the first word is odd for a virtual function: 1 + the byte offset.
    const bool isVirtual = (words[0] & 1) != 0;
    const ptrdiff_t offset = words[0] - 1;
#endif
    return isVirtual ? offset / static_cast<ptrdiff_t>(sizeof(void*)) : -1;
}

}  // namespace kovo::aidl2legacy::testing
