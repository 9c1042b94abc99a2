#include "context/component_name.h"

#include <gtest/gtest.h>

namespace ombrel::test {
namespace {

TEST(ComponentName, IsComparedWithoutRegardToLetterCase) {
  EXPECT_TRUE(IsComponentNamed("IVRDisplayComponent_002", "IVRDisplayComponent_002"));
  EXPECT_TRUE(IsComponentNamed("ivrdisplaycomponent_002", "IVRDisplayComponent_002"));
  EXPECT_TRUE(IsComponentNamed("IVRDISPLAYCOMPONENT_002", "ivrDisplayComponent_002"));
  EXPECT_TRUE(IsComponentNamed("ABCDEFGHIJKLMNOPQRSTUVWXYZ", "abcdefghijklmnopqrstuvwxyz"));
}

TEST(ComponentName, IsComparedAsAWhole) {
  EXPECT_FALSE(IsComponentNamed("IVRDisplayComponent_003", "IVRDisplayComponent_002"));
  EXPECT_FALSE(IsComponentNamed("IVRDisplayComponent_00", "IVRDisplayComponent_002"));
  EXPECT_FALSE(IsComponentNamed("IVRDisplayComponent_0020", "IVRDisplayComponent_002"));
  EXPECT_FALSE(IsComponentNamed("", "IVRDisplayComponent_002"));
}

TEST(ComponentName, TellsApartWhatOnlyDiffersInTheCaseBit) {
  EXPECT_FALSE(IsComponentNamed("[", "{"));
  EXPECT_FALSE(IsComponentNamed("@", "`"));
}

TEST(ComponentName, IsNobodysWhenItIsNull) { EXPECT_FALSE(IsComponentNamed(nullptr, "")); }

}  // namespace
}  // namespace ombrel::test
