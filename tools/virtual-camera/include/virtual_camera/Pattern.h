/*
 * The test pattern that the virtual camera writes into every output buffer, and the checker that
 * a consumer (the harness, the tests) runs on a returned buffer. Plain functions over caller-owned
 * memory; safe from any thread.
 *
 * Layout, all fields little-endian:
 *  - offset 0 (8 for BLOB): a PatternHeader (magic "VCAM", frame number, stream tag, the stream's
 * size, format and physical camera id, the number of pages stamped, a check word over all of it);
 *  - at the start of every further 4096-byte page that fits a whole stamp: a PageStamp (magic
 *    "VCPG", frame number, stream tag, page index);
 *  - BLOB streams only, shaped like a JPEG: start of image (FF D8) and a comment segment
 *    (FF FE) before the header, end of image (FF D9) right before a camera3_jpeg_blob trailer in
 *    the last 8 bytes (id 0x00FF, size = buffer size - 8); no stamp overlaps them.
 * Everything else is left as it was, so writing costs one small store per page.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string_view>

namespace virtual_camera {

// What a consumer knows about the stream a buffer belongs to.
struct PatternStream {
    uint32_t width = 0;
    uint32_t height = 0;
    int32_t format = 0;                 // HAL_PIXEL_FORMAT_*
    std::string_view physicalCameraId;  // empty unless the stream belongs to a physical camera
};

constexpr size_t kPatternPageSize = 4096;

struct PatternHeader {
    uint32_t magic;
    uint32_t frameNumber;
    uint32_t streamTag;
    uint32_t width;
    uint32_t height;
    int32_t format;
    uint32_t pageCount;
    uint32_t check;
    char physicalCameraId[32];
};

struct PageStamp {
    uint32_t magic;
    uint32_t frameNumber;
    uint32_t streamTag;
    uint32_t pageIndex;
};

constexpr uint32_t kPatternHeaderMagic = 0x4D414356;  // "VCAM"
constexpr uint32_t kPageStampMagic = 0x47504356;      // "VCPG"

// Identifies a stream inside the pattern: a hash of size, format and physical camera id.
uint32_t patternStreamTag(const PatternStream& stream);

// Writes the pattern of `frameNumber` for `stream`. False (nothing written) when `size` cannot
// hold the header (and, for BLOB, the trailer).
bool writePattern(void* data, size_t size, uint32_t frameNumber, const PatternStream& stream);

enum class PatternStatus {
    kOk,
    kTooSmall,     // the buffer cannot hold a pattern
    kUntouched,    // no header: the device never wrote this buffer
    kDamaged,      // a header or stamp is corrupt, or a page still holds an older frame
    kWrongStream,  // a valid pattern of another stream
    kWrongFrame,   // a valid pattern of this stream but another frame
};

struct PatternCheck {
    PatternStatus status = PatternStatus::kOk;
    uint32_t foundFrameNumber = 0;  // frame number of the header, when there is one
    size_t offset = 0;              // where the first problem was found
};

PatternCheck checkPattern(const void* data, size_t size, uint32_t frameNumber,
                          const PatternStream& stream);

const char* toString(PatternStatus status);

}  // namespace virtual_camera
