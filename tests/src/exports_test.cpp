// exports_test.cpp: the real shared object, as a host that loads it finds it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <vector>

#include "vel_stopngo.h"

namespace {

TEST(SharedObject, RunsADetectorThroughItsRecord) {
  void* handle = dlopen(STOPNGO_MODULE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(handle, nullptr) << dlerror();
  const auto* module = static_cast<const VEL_STOPNGO_OPERATION*>(dlsym(handle, "vel_stopngo"));
  ASSERT_NE(module, nullptr);
  // Its own copy, not the objects that this program links.
  EXPECT_NE(module, &vel_stopngo);
  EXPECT_EQ(module->ctxsize, 11920);
  std::vector<std::uint64_t> context(11920 / 8);
  std::vector<std::uint8_t> frame(800 * 480, 100);
  ASSERT_EQ(module->open(context.data()), 0);
  EXPECT_EQ(module->control(context.data(), VEL_CTRL_STOPNGO_SET_TIME_LEAVING, 0, VEL_CTRL_STOPNGO_END), 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(module->write(context.data(), frame.data(), 0), 0);
  EXPECT_EQ(module->close(context.data()), 0);
  EXPECT_EQ(dlclose(handle), 0);
}

}  // namespace
