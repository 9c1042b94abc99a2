// Structures that cross the boundary are laid out alike by both compilers, and as large as the interface has them.
#include <gmock/gmock.h>

#include <map>
#include <span>
#include <string>

#include "msvc_side/layout_facts.h"

namespace ombrel::test {
namespace {

using Facts = std::map<std::string, std::uint64_t>;

Facts Named(std::span<const LayoutFact> facts) {
  Facts named;
  for (const LayoutFact& fact : facts) named[fact.what] = fact.bytes;
  return named;
}

Facts OfMsvc() {
  std::uint32_t count = 0;
  const LayoutFact* first = MsvcLayoutFacts(&count);
  return Named({first, count});
}

TEST(LayoutTest, BothCompilersAgree) { EXPECT_EQ(OfMsvc(), Named(layout::kFacts)); }

TEST(LayoutTest, SizesAreThoseOfTheInterface) {
  Facts facts = OfMsvc();
  EXPECT_EQ(facts["DriverPose_t"], 280U);
  EXPECT_EQ(facts["VREvent_t"], 48U);
  EXPECT_EQ(facts["DriverDirectMode_FrameTiming"], 20U);
}

}  // namespace
}  // namespace ombrel::test
