#include <gmock/gmock.h>

#include "lint.h"
#include "paths.h"

namespace ombrel::test {
namespace {

TEST(OurFolderTest, HasNoFault) { EXPECT_THAT(Lint(DriverFolder(), ScanSources(SourceRoot())), testing::IsEmpty()); }

}  // namespace
}  // namespace ombrel::test
