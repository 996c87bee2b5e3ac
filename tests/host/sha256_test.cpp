// sha256_test.cpp: the fingerprint is that of the standard.
#include "host/common/sha256.h"

#include <gtest/gtest.h>

#include <string>

namespace stopngo::test {
namespace {

// The examples of FIPS 180.
TEST(Sha256, FingerprintIsThatOfTheStandard) {
  EXPECT_EQ(Sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(Sha256(std::string(1000000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

}  // namespace
}  // namespace stopngo::test
