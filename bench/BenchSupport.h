/*
 * What every benchmark file uses: metadata packets of an exact size, and the registration of a
 * case beside its floor. A floor does only the unavoidable work of its case (the copy of the
 * bytes into shared memory, one dup per acquire fence, the validate and clone of queued settings,
 * one virtual call per hop), in the same run, so that the ratio of the two means something on a
 * loaded machine. scripts/bench pairs "BM_X/args" with "BM_XFloor/args".
 */
#pragma once

#include <benchmark/benchmark.h>
#include <system/camera_metadata.h>

#include <cstddef>
#include <memory>

namespace kovo::aidl2legacy::bench {

struct MetadataDeleter {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using MetadataPtr = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

// A packet of exactly `size` bytes: one entry and a data area that fills the rest.
MetadataPtr makeMetadata(size_t size);

}  // namespace kovo::aidl2legacy::bench

// Registers BM_name and BM_nameFloor with the same arguments (`apply` sets them up).
#define TARNIC_BENCHMARK_WITH_FLOOR(name, apply) \
    BENCHMARK(name)->Apply(apply);               \
    BENCHMARK(name##Floor)->Apply(apply)
