// The stream object as the verify picture uses it: made through the object factory, a file
// loaded whole in binary and read back.
#include "platform/text/stream.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/object_factory.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

int ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const ScriptError& e) {
    return e.number;
  }
  return 0;
}

// Each CreateObject gives an object of the page's own, whatever the case of the name; a name
// the host does not know is error 429.
TEST(ObjectFactory, EachCallMakesANewObjectAndUnknownNamesAreError429) {
  const ObjectFactory& factory = ObjectFactory::Default();
  EXPECT_NE(factory.Create(u"ADODB.Stream"), factory.Create(u"adodb.stream"));
  EXPECT_EQ(ErrorOf([&] { factory.Create(u"No.Such.Object"); }), 429);
}

TEST(Stream, LoadsAFileWholeAndAFailedLoadKeepsWhatItHeld) {
  testing::TempDir dir;
  const std::string bytes = std::string("\0\xFF", 2) + "data";
  std::ofstream(dir.path() / "in.bin", std::ios::binary) << bytes;
  Stream s;
  s.Type = 1;
  s.Mode = 3;
  s.Open();
  s.Write(Bytes{'o', 'l', 'd', '!', '!', '!', '!'});
  s.LoadFromFile(FromUtf8((dir.path() / "in.bin").string()));
  EXPECT_EQ(s.Position(), 0);
  EXPECT_EQ(s.Read(2), (Bytes{0, 0xFF}));
  EXPECT_EQ(s.Read(100), (Bytes{'d', 'a', 't', 'a'}));  // a count past the end reads the rest
  EXPECT_TRUE(s.EOS());
  EXPECT_EQ(ErrorOf([&] { s.LoadFromFile(FromUtf8((dir.path() / "none").string())); }), 3002);
  EXPECT_EQ(ErrorOf([&] { s.LoadFromFile(FromUtf8(dir.path().string())); }), 3002);
  s.SetPosition(0);
  EXPECT_EQ(s.Read(), Bytes(bytes.begin(), bytes.end()));
  EXPECT_EQ(ErrorOf([&] { s.SetPosition(7); }), 3219);
}

}  // namespace
}  // namespace ostrakan
