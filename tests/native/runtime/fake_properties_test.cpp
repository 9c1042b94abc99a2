#include "runtime/fake_properties.h"

#include <gtest/gtest.h>

namespace bench {
namespace {

class FakePropertiesTest : public testing::Test {
 protected:
  CallRecorder recorder;
  FakeProperties properties{recorder};
  vr::CVRPropertyHelpers helpers{&properties};
  vr::PropertyContainerHandle_t container = properties.TrackedDeviceToPropertyContainer(3);
};

TEST_F(FakePropertiesTest, TellsABatchFromSingleWrites) {
  float one = 1.0F;
  bool yes = true;
  vr::PropertyWrite_t batch[2] = {};
  batch[0] = {
      vr::Prop_DisplayFrequency_Float, vr::PropertyWrite_Set, {}, &one, sizeof one, vr::k_unFloatPropertyTag, {}};
  batch[1] = {vr::Prop_IsOnDesktop_Bool, vr::PropertyWrite_Set, {}, &yes, sizeof yes, vr::k_unBoolPropertyTag, {}};
  properties.WritePropertyBatch(container, batch, 2);
  const auto writes = properties.Writes();
  ASSERT_EQ(writes.size(), 2U);
  EXPECT_EQ(writes[1].call, 0U);
  EXPECT_EQ(writes[1].entryInCall, 1U);
  EXPECT_EQ(writes[1].entriesInCall, 2U);
}

TEST_F(FakePropertiesTest, ReadsBackWhatStands) {
  helpers.SetInt32Property(container, vr::Prop_DeviceClass_Int32, 2);
  helpers.SetInt32Property(container, vr::Prop_DeviceClass_Int32, 4);
  EXPECT_EQ(helpers.GetInt32Property(container, vr::Prop_DeviceClass_Int32), 4);
  EXPECT_EQ(properties.Get<std::int32_t>(container, vr::Prop_DeviceClass_Int32), 4);
  vr::ETrackedPropertyError error{};
  helpers.GetStringProperty(container, vr::Prop_SerialNumber_String, &error);
  EXPECT_EQ(error, vr::TrackedProp_UnknownProperty);
}

TEST_F(FakePropertiesTest, AWriteToNoContainerIsRecordedAndRefused) {
  EXPECT_EQ(helpers.SetFloatProperty(vr::k_ulInvalidPropertyContainer, vr::Prop_DisplayFrequency_Float, 72.0F),
            vr::TrackedProp_InvalidDevice);
  ASSERT_EQ(properties.Writes(vr::k_ulInvalidPropertyContainer).size(), 1U);
  EXPECT_EQ(properties.Find(vr::k_ulInvalidPropertyContainer, vr::Prop_DisplayFrequency_Float), std::nullopt);
}

TEST_F(FakePropertiesTest, TextWithoutItsEndIsNoText) {
  char letters[] = {'a', 'b'};
  vr::PropertyWrite_t write = {
      vr::Prop_ModelNumber_String, vr::PropertyWrite_Set, {}, letters, sizeof letters, vr::k_unStringPropertyTag, {}};
  properties.WritePropertyBatch(container, &write, 1);
  EXPECT_EQ(properties.Writes().back().AsString(), std::nullopt);
}

}  // namespace
}  // namespace bench
