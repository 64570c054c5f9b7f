#include "JsonWriter.h"

#include <cmath>
#include <cstdio>

namespace camera_harness {

void JsonWriter::separate() {
    if (mAfterKey) {
        mAfterKey = false;
        return;
    }
    if (!mFirst.empty()) {
        if (!mFirst.back()) mText += ',';
        mFirst.back() = false;
    }
}

JsonWriter& JsonWriter::beginObject() {
    separate();
    mText += '{';
    mFirst.push_back(true);
    return *this;
}

JsonWriter& JsonWriter::endObject() {
    mText += '}';
    mFirst.pop_back();
    return *this;
}

JsonWriter& JsonWriter::beginArray() {
    separate();
    mText += '[';
    mFirst.push_back(true);
    return *this;
}

JsonWriter& JsonWriter::endArray() {
    mText += ']';
    mFirst.pop_back();
    return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
    value(name);
    mText += ':';
    mAfterKey = true;
    return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
    separate();
    mText += '"';
    for (char c : text) {
        switch (c) {
            case '"':
                mText += "\\\"";
                break;
            case '\\':
                mText += "\\\\";
                break;
            case '\n':
                mText += "\\n";
                break;
            case '\t':
                mText += "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escaped[8];
                    snprintf(escaped, sizeof(escaped), "\\u%04x", c);
                    mText += escaped;
                } else {
                    mText += c;
                }
        }
    }
    mText += '"';
    return *this;
}

JsonWriter& JsonWriter::value(int64_t number) {
    separate();
    mText += std::to_string(number);
    return *this;
}

JsonWriter& JsonWriter::value(uint64_t number) {
    separate();
    mText += std::to_string(number);
    return *this;
}

JsonWriter& JsonWriter::value(double number) {
    separate();
    if (!std::isfinite(number)) {
        mText += "null";
        return *this;
    }
    char text[32];
    snprintf(text, sizeof(text), "%.3f", number);
    mText += text;
    return *this;
}

JsonWriter& JsonWriter::value(bool flag) {
    separate();
    mText += flag ? "true" : "false";
    return *this;
}

}  // namespace camera_harness
