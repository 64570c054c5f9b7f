#include <hardware/camera3.h>
#include <string.h>
#include <system/graphics.h>
#include <virtual_camera/Pattern.h>

#include <algorithm>

namespace virtual_camera {
namespace {

constexpr uint32_t kFnvOffset = 2166136261u;
constexpr uint32_t kFnvPrime = 16777619u;

uint32_t fnv1a(uint32_t hash, const void* data, size_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (size_t i = 0; i < size; ++i) {
        hash = (hash ^ bytes[i]) * kFnvPrime;
    }
    return hash;
}

uint32_t headerCheck(const PatternHeader& header) {
    PatternHeader copy = header;
    copy.check = 0;
    return fnv1a(kFnvOffset, &copy, sizeof(copy));
}

// A BLOB buffer is shaped like a JPEG: start of image and a comment segment that holds the
// header, the end of image right before the camera3_jpeg_blob trailer.
constexpr uint8_t kJpegPrefix[] = {0xFF, 0xD8, 0xFF, 0xFE, 0, sizeof(PatternHeader) + 4, 0, 0};
constexpr uint8_t kJpegEnd[] = {0xFF, 0xD9};
static_assert(sizeof(PatternHeader) + 4 < 256);

bool isBlob(const PatternStream& stream) {
    return stream.format == HAL_PIXEL_FORMAT_BLOB;
}

size_t headerOffset(const PatternStream& stream) {
    return isBlob(stream) ? sizeof(kJpegPrefix) : 0;
}

// Bytes at the end of the buffer that stamps must leave alone.
size_t trailerSize(const PatternStream& stream) {
    return isBlob(stream) ? sizeof(camera3_jpeg_blob_t) + sizeof(kJpegEnd) : 0;
}

// Pages after the header page whose stamp fits before the trailer.
uint32_t stampedPages(size_t size, const PatternStream& stream) {
    size_t usable = size - trailerSize(stream);
    if (usable < kPatternPageSize + sizeof(PageStamp)) return 0;
    return static_cast<uint32_t>((usable - sizeof(PageStamp)) / kPatternPageSize);
}

PatternHeader makeHeader(size_t size, uint32_t frameNumber, const PatternStream& stream) {
    PatternHeader header{};
    header.magic = kPatternHeaderMagic;
    header.frameNumber = frameNumber;
    header.streamTag = patternStreamTag(stream);
    header.width = stream.width;
    header.height = stream.height;
    header.format = stream.format;
    header.pageCount = stampedPages(size, stream);
    size_t idLength = std::min(stream.physicalCameraId.size(), sizeof(header.physicalCameraId) - 1);
    memcpy(header.physicalCameraId, stream.physicalCameraId.data(), idLength);
    header.check = headerCheck(header);
    return header;
}

bool fits(size_t size, const PatternStream& stream) {
    return size >= headerOffset(stream) + sizeof(PatternHeader) + trailerSize(stream);
}

}  // namespace

uint32_t patternStreamTag(const PatternStream& stream) {
    uint32_t hash = kFnvOffset;
    hash = fnv1a(hash, &stream.width, sizeof(stream.width));
    hash = fnv1a(hash, &stream.height, sizeof(stream.height));
    hash = fnv1a(hash, &stream.format, sizeof(stream.format));
    return fnv1a(hash, stream.physicalCameraId.data(), stream.physicalCameraId.size());
}

bool writePattern(void* data, size_t size, uint32_t frameNumber, const PatternStream& stream) {
    if (!fits(size, stream)) return false;
    auto* bytes = static_cast<uint8_t*>(data);
    PatternHeader header = makeHeader(size, frameNumber, stream);
    if (isBlob(stream)) memcpy(bytes, kJpegPrefix, sizeof(kJpegPrefix));
    memcpy(bytes + headerOffset(stream), &header, sizeof(header));
    for (uint32_t page = 1; page <= header.pageCount; ++page) {
        PageStamp stamp{kPageStampMagic, frameNumber, header.streamTag, page};
        memcpy(bytes + page * kPatternPageSize, &stamp, sizeof(stamp));
    }
    if (isBlob(stream)) {
        camera3_jpeg_blob_t blob{};
        blob.jpeg_blob_id = CAMERA3_JPEG_BLOB_ID;
        blob.jpeg_size = static_cast<uint32_t>(size - sizeof(blob));
        memcpy(bytes + blob.jpeg_size - sizeof(kJpegEnd), kJpegEnd, sizeof(kJpegEnd));
        memcpy(bytes + size - sizeof(blob), &blob, sizeof(blob));
    }
    return true;
}

PatternCheck checkPattern(const void* data, size_t size, uint32_t frameNumber,
                          const PatternStream& stream) {
    if (!fits(size, stream)) return {PatternStatus::kTooSmall, 0, 0};
    const auto* bytes = static_cast<const uint8_t*>(data);
    PatternHeader found;
    memcpy(&found, bytes + headerOffset(stream), sizeof(found));
    if (found.magic != kPatternHeaderMagic) return {PatternStatus::kUntouched, 0, 0};
    if (found.check != headerCheck(found)) return {PatternStatus::kDamaged, found.frameNumber, 0};

    PatternHeader expected = makeHeader(size, found.frameNumber, stream);
    if (memcmp(&found, &expected, sizeof(found)) != 0) {
        // pageCount depends on the size only, so a mismatch means another stream.
        return {PatternStatus::kWrongStream, found.frameNumber, 0};
    }
    if (found.frameNumber != frameNumber) {
        return {PatternStatus::kWrongFrame, found.frameNumber, 0};
    }
    for (uint32_t page = 1; page <= found.pageCount; ++page) {
        size_t offset = page * kPatternPageSize;
        PageStamp stamp;
        memcpy(&stamp, bytes + offset, sizeof(stamp));
        if (stamp.magic != kPageStampMagic || stamp.frameNumber != frameNumber ||
            stamp.streamTag != found.streamTag || stamp.pageIndex != page) {
            return {PatternStatus::kDamaged, found.frameNumber, offset};
        }
    }
    if (isBlob(stream)) {
        size_t offset = size - sizeof(camera3_jpeg_blob_t);
        camera3_jpeg_blob_t blob;
        memcpy(&blob, bytes + offset, sizeof(blob));
        if (blob.jpeg_blob_id != CAMERA3_JPEG_BLOB_ID || blob.jpeg_size != offset) {
            return {PatternStatus::kDamaged, found.frameNumber, offset};
        }
    }
    return {PatternStatus::kOk, found.frameNumber, 0};
}

const char* toString(PatternStatus status) {
    switch (status) {
        case PatternStatus::kOk:
            return "ok";
        case PatternStatus::kTooSmall:
            return "buffer too small";
        case PatternStatus::kUntouched:
            return "untouched";
        case PatternStatus::kDamaged:
            return "damaged";
        case PatternStatus::kWrongStream:
            return "wrong stream";
        case PatternStatus::kWrongFrame:
            return "wrong frame";
    }
    return "unknown";
}

}  // namespace virtual_camera
