#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>

#include "HalLayout.h"

namespace {

TEST(HalHeadersTest, ModuleBuiltInCIsFoundByNameAndOpensItsDevice) {
    void* self = dlopen(nullptr, RTLD_NOW);
    ASSERT_NE(nullptr, self);
    auto* module = static_cast<camera_module_t*>(dlsym(self, HAL_MODULE_INFO_SYM_AS_STR));
    dlclose(self);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(static_cast<uint32_t>(HARDWARE_MODULE_TAG), module->common.tag);
    EXPECT_STREQ(CAMERA_HARDWARE_MODULE_ID, module->common.id);
    EXPECT_EQ(CAMERA_MODULE_API_VERSION_2_5, module->common.version_major);

    camera3_device_t* device = nullptr;
    ASSERT_EQ(0, module->common.methods->open(&module->common, "0", TO_HW_DEVICE_T_OPEN(&device)));
    ASSERT_NE(nullptr, device);
    EXPECT_EQ(static_cast<uint32_t>(HARDWARE_DEVICE_TAG), device->common.tag);
    EXPECT_EQ(static_cast<uint32_t>(CAMERA_DEVICE_API_VERSION_3_6), device->common.version);
    EXPECT_EQ(&module->common, device->common.module);
    EXPECT_EQ(-EINVAL,
              module->common.methods->open(&module->common, "1", TO_HW_DEVICE_T_OPEN(&device)));
}

}  // namespace
