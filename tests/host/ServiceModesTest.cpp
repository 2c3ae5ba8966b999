#include <gtest/gtest.h>

#include "host/ServiceModes.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

TEST(TheModes, AreThoseOfTheLines) {
  const TempDirectory directory;
  const ServiceModes sut(directory.write("file",
                                         "service_instance: ST a.so a /a A\n"
                                         "service_instance: MT b.so b /b B\n"
                                         "service_info: ST c.so c /c C D\n"
                                         "service_instance: d.so d /d\n"));
  EXPECT_EQ(sut.find("a.so", "a", "/a", "A"), "ST");
  EXPECT_EQ(sut.find("b.so", "b", "/b", "B"), "MT");
  EXPECT_EQ(sut.find("c.so", "c", "/c", "C D"), "ST");
  EXPECT_EQ(sut.find("d.so", "d", "/d", ""), "MT");
}

TEST(TheModes, AreNotKnownForALineThatIsNotThere) {
  const TempDirectory directory;
  const ServiceModes sut(directory.write("file", "service_instance: ST a.so a /a A\n"));
  EXPECT_EQ(sut.find("a.so", "a", "/a", "B"), "");
}

TEST(TheModes, AreNotKnownOfAFileThatIsMissing) {
  EXPECT_EQ(ServiceModes("missing").find("a", "b", "c", "d"), "");
}

}  // namespace
}  // namespace zerva
