/*
 * JsonWriter: a small streaming JSON writer for the report and the trace file. Calls must nest
 * properly (objects and arrays closed in order, a key before every value inside an object); the
 * writer places the commas and escapes strings. Not thread-safe; one writer per document.
 */
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace camera_harness {

class JsonWriter {
public:
    JsonWriter& beginObject();
    JsonWriter& endObject();
    JsonWriter& beginArray();
    JsonWriter& endArray();
    JsonWriter& key(std::string_view name);
    JsonWriter& value(std::string_view text);
    JsonWriter& value(const char* text) { return value(std::string_view(text)); }
    JsonWriter& value(int64_t number);
    JsonWriter& value(int32_t number) { return value(static_cast<int64_t>(number)); }
    JsonWriter& value(uint64_t number);
    JsonWriter& value(double number);
    JsonWriter& value(bool flag);

    template <typename T>
    JsonWriter& field(std::string_view name, const T& v) {
        return key(name).value(v);
    }

    const std::string& text() const { return mText; }

private:
    void separate();

    std::string mText;
    std::vector<bool> mFirst;  // per open object or array: nothing written in it yet
    bool mAfterKey = false;
};

}  // namespace camera_harness
