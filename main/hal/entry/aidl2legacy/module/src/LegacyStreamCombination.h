/*
 * LegacyStreamCombination: a StreamCombination as the legacy camera_stream_combination_t that
 * module entry points take. It owns the camera_stream_t array; the physical camera id strings
 * still belong to the caller of the query, except that the "-1" marker of a stream tied to no
 * physical camera becomes the empty id legacy modules expect. Lives on the stack of one query.
 */
#pragma once

#include <hardware/camera_common.h>

#include <vector>

#include "StreamCombination.h"

namespace kovo::aidl2legacy {

class LegacyStreamCombination {
public:
    explicit LegacyStreamCombination(const StreamCombination& combination);
    LegacyStreamCombination(const LegacyStreamCombination&) = delete;
    LegacyStreamCombination& operator=(const LegacyStreamCombination&) = delete;

    const camera_stream_combination_t* get() const { return &mCombination; }

private:
    static constexpr char kNoPhysicalCamera[] = "-1";

    std::vector<camera_stream_t> mStreams;
    camera_stream_combination_t mCombination;
};

}  // namespace kovo::aidl2legacy
