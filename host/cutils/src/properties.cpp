#include <ctype.h>
#include <cutils/properties.h>
#include <cutils/testing/PropertyHooks.h>
#include <errno.h>
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace {

class PropertyStore {
public:
    // Never destroyed, so that code running in static destructors may still read properties.
    static PropertyStore& instance() {
        static PropertyStore& store = *new PropertyStore();
        return store;
    }

    std::string get(const std::string& key) const {
        std::lock_guard<std::mutex> guard(mLock);
        auto it = mValues.find(key);
        return it != mValues.end() ? it->second : std::string();
    }

    // False when `key` is a read-only property that already has a value.
    bool set(const std::string& key, const std::string& value) {
        std::lock_guard<std::mutex> guard(mLock);
        auto [it, inserted] = mValues.try_emplace(key, value);
        if (inserted) return true;
        if (key.starts_with("ro.")) return false;
        it->second = value;
        return true;
    }

    std::vector<std::pair<std::string, std::string>> snapshot() const {
        std::lock_guard<std::mutex> guard(mLock);
        return {mValues.begin(), mValues.end()};
    }

    void clear() {
        std::lock_guard<std::mutex> guard(mLock);
        mValues.clear();
    }

private:
    mutable std::mutex mLock;
    std::map<std::string, std::string> mValues;
};

// The names init accepts: letters, digits and "_-@:.", no leading, trailing or doubled dot.
bool isLegalName(const char* key) {
    size_t length = strlen(key);
    if (length == 0 || key[0] == '.' || key[length - 1] == '.') return false;
    for (size_t i = 0; i < length; ++i) {
        char c = key[i];
        if (c == '.') {
            if (key[i - 1] == '.') return false;
        } else if (c != '_' && c != '-' && c != '@' && c != ':' &&
                   !isalnum(static_cast<unsigned char>(c))) {
            return false;
        }
    }
    return true;
}

intmax_t getIntMax(const char* key, intmax_t lowerBound, intmax_t upperBound,
                   intmax_t defaultValue) {
    if (key == nullptr) return defaultValue;
    char buf[PROPERTY_VALUE_MAX] = {};
    if (property_get(key, buf, "") < 1) return defaultValue;

    int savedErrno = errno;
    errno = 0;
    char* end = nullptr;
    intmax_t result = strtoimax(buf, &end, 0);
    bool overflow = (result == INTMAX_MIN || result == INTMAX_MAX) && errno == ERANGE;
    if (overflow || result < lowerBound || result > upperBound || end == buf) {
        result = defaultValue;
    }
    errno = savedErrno;
    return result;
}

}  // namespace

int property_get(const char* key, char* value, const char* default_value) {
    std::string stored = key != nullptr ? PropertyStore::instance().get(key) : std::string();
    const char* source = !stored.empty() ? stored.c_str() : default_value;
    if (source == nullptr) {
        value[0] = '\0';
        return 0;
    }
    snprintf(value, PROPERTY_VALUE_MAX, "%s", source);
    return static_cast<int>(strlen(value));
}

int8_t property_get_bool(const char* key, int8_t default_value) {
    if (key == nullptr) return default_value;
    char buf[PROPERTY_VALUE_MAX] = {};
    int length = property_get(key, buf, "");
    if (length == 1) {
        if (buf[0] == '0' || buf[0] == 'n') return 0;
        if (buf[0] == '1' || buf[0] == 'y') return 1;
    } else if (length > 1) {
        if (!strcmp(buf, "no") || !strcmp(buf, "false") || !strcmp(buf, "off")) return 0;
        if (!strcmp(buf, "yes") || !strcmp(buf, "true") || !strcmp(buf, "on")) return 1;
    }
    return default_value;
}

int64_t property_get_int64(const char* key, int64_t default_value) {
    return getIntMax(key, INT64_MIN, INT64_MAX, default_value);
}

int32_t property_get_int32(const char* key, int32_t default_value) {
    return static_cast<int32_t>(getIntMax(key, INT32_MIN, INT32_MAX, default_value));
}

int property_set(const char* key, const char* value) {
    if (key == nullptr || !isLegalName(key)) return -1;
    if (value == nullptr) value = "";
    if (strlen(value) >= PROPERTY_VALUE_MAX) return -1;
    return PropertyStore::instance().set(key, value) ? 0 : -1;
}

int property_list(void (*propfn)(const char* key, const char* value, void* cookie), void* cookie) {
    for (const auto& [key, value] : PropertyStore::instance().snapshot()) {
        propfn(key.c_str(), value.c_str(), cookie);
    }
    return 0;
}

namespace android::testing {

void clearProperties() {
    PropertyStore::instance().clear();
}

}  // namespace android::testing
