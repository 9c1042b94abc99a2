#include "report/page.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace report {
namespace {

TEST(Page, TheReportStandsWhereTheMarkerWas) {
  EXPECT_EQ(FillTemplate("<script>@REPORT_JSON@</script>", R"({"a":"@"})"), R"(<script>{"a":"@"}</script>)");
}

TEST(Page, NoTextOfAReportEndsItsElement) {
  EXPECT_EQ(FillTemplate("@REPORT_JSON@", R"("</script><b")"), R"("\u003c/script>\u003cb")");
}

TEST(Page, ATemplateWithoutMarkerIsRefused) {
  EXPECT_THROW(static_cast<void>(FillTemplate("<html>", "{}")), std::invalid_argument);
}

TEST(Page, APictureIsWrittenInBase64) {
  EXPECT_EQ(PngDataUrl("\xff\xef"), "data:image/png;base64,/+8=");
  EXPECT_EQ(PngDataUrl("Man"), "data:image/png;base64,TWFu");
  EXPECT_EQ(PngDataUrl("M"), "data:image/png;base64,TQ==");
  EXPECT_EQ(PngDataUrl(""), "data:image/png;base64,");
}

}  // namespace
}  // namespace report
