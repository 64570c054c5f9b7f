#include "AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace kovo::aidl2legacy::bench {
namespace {

std::atomic<uint64_t> sAllocations{0};

void* allocate(size_t size) {
    sAllocations.fetch_add(1, std::memory_order_relaxed);
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) std::abort();
    return memory;
}

void* allocateAligned(size_t size, std::align_val_t alignment) {
    sAllocations.fetch_add(1, std::memory_order_relaxed);
    const size_t align = static_cast<size_t>(alignment);
    void* memory = std::aligned_alloc(align, (size + align - 1) / align * align);
    if (memory == nullptr) std::abort();
    return memory;
}

}  // namespace

uint64_t allocationCount() {
    return sAllocations.load(std::memory_order_relaxed);
}

}  // namespace kovo::aidl2legacy::bench

using kovo::aidl2legacy::bench::allocate;
using kovo::aidl2legacy::bench::allocateAligned;

void* operator new(size_t size) {
    return allocate(size);
}
void* operator new[](size_t size) {
    return allocate(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new(size_t size, std::align_val_t alignment) {
    return allocateAligned(size, alignment);
}
void* operator new[](size_t size, std::align_val_t alignment) {
    return allocateAligned(size, alignment);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, size_t, std::align_val_t) noexcept {
    std::free(memory);
}
