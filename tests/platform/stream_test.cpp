#include "platform/text/stream.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/object_factory.h"
#include "support/page_harness.h"

namespace ostrakan {
namespace {

Bytes B(std::string_view s) {
  return Bytes(s.begin(), s.end());
}

int ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const ScriptError& e) {
    return e.number;
  }
  return 0;
}

// An open stream of the given type (1 binary, 2 text) holding `bytes`, positioned at 0.
Stream Holding(std::string_view bytes, int type = 1, std::u16string charset = u"unicode") {
  Stream s;
  s.Type = 1;
  s.Mode = 3;
  s.Open();
  s.Write(B(bytes));
  s.SetPosition(0);
  s.Type = type;
  s.Charset = std::move(charset);
  return s;
}

// Pages make streams through Server.CreateObject: each call gives an object of the page's own,
// whatever the case of the name; a name the host does not know is error 429.
TEST(ObjectFactory, EachCallMakesANewObjectAndUnknownNamesAreError429) {
  const ObjectFactory& factory = ObjectFactory::Default();
  EXPECT_NE(factory.Create(u"ADODB.Stream"), factory.Create(u"adodb.stream"));
  EXPECT_EQ(ErrorOf([&] { factory.Create(u"No.Such.Object"); }), 429);
}

TEST(Stream, BinaryWritesOverwriteAndExtendAtThePosition) {
  Stream s = Holding("12345");
  s.SetPosition(1);
  EXPECT_EQ(s.Read(2), B("23"));
  s.Write(B("abcd"));
  EXPECT_EQ(s.data(), B("123abcd"));
  EXPECT_TRUE(s.EOS());
  s.SetPosition(0);
  EXPECT_EQ(s.Read(100), B("123abcd"));  // a count past the end reads what there is
  s.SetPosition(4);
  s.SetEOS();
  EXPECT_EQ(s.data(), B("123a"));
  EXPECT_EQ(ErrorOf([&] { s.SetPosition(5); }), 3219);

  // The verify picture is put together this way: pieces of one stream laid over another.
  Stream src = Holding("0123456789");
  src.SetPosition(2);
  s.SetPosition(1);
  src.CopyTo(s, 3);
  EXPECT_EQ(s.data(), B("1234"));
  EXPECT_EQ(src.Position() * 10 + s.Position(), 54);
  src.CopyTo(s);  // the rest
  EXPECT_EQ(s.data(), B("123456789"));
}

TEST(Stream, FilesLoadAndSave) {
  testing::TempDir dir;
  const std::string bytes(
      "\0\xFF"
      "data",
      6);
  std::ofstream(dir.path() / "in.bin", std::ios::binary) << bytes;
  Stream s = Holding("old");
  s.LoadFromFile(FromUtf8((dir.path() / "in.bin").string()));
  EXPECT_EQ(s.Position(), 0);
  EXPECT_EQ(s.Read(), B(bytes));
  const auto out = dir.path() / "out.bin";
  s.SaveToFile(FromUtf8(out.string()));
  EXPECT_EQ(testing::ReadFile(out), bytes);
  // Option 1 refuses to replace a file; option 2 overwrites it.
  std::ofstream(out) << "x";
  EXPECT_EQ(ErrorOf([&] { s.SaveToFile(FromUtf8(out.string()), 1); }), 3004);
  EXPECT_EQ(testing::ReadFile(out), "x");
  s.SaveToFile(FromUtf8(out.string()), 2);
  EXPECT_EQ(testing::ReadFile(out), bytes);
  EXPECT_EQ(ErrorOf([&] { s.LoadFromFile(FromUtf8((dir.path() / "none").string())); }), 3002);
  EXPECT_EQ(ErrorOf([&] { s.LoadFromFile(FromUtf8(dir.path().string())); }), 3002);
  EXPECT_EQ(s.Size(), 6);  // a failed load keeps what the stream held
}

TEST(Stream, TextIsReadAndWrittenInTheCharset) {
  // The gathering pages decode a fetched body this way.
  EXPECT_EQ(Holding("\xD6\xD0\xCE\xC4<p>", 2, u"gb2312").ReadText(), u"中文<p>");
  Stream u = Holding("\xEF\xBB\xBF\xE4\xB8\xAD\xE6\x96\x87", 2, u"UTF-8");  // with its BOM
  EXPECT_EQ(u.ReadText(1), u"中");
  EXPECT_EQ(u.Position(), 6);
  EXPECT_EQ(u.ReadText(), u"文");
  EXPECT_THROW(Holding("x", 2, u"no-such-charset").ReadText(), ScriptError);

  Stream s = Holding("", 2);
  s.WriteText(u"中A");  // "unicode": UTF-16LE after its byte-order mark
  EXPECT_EQ(s.data(), B(std::string_view("\xFF\xFE\x2D\x4E"
                                         "A\0",
                                         6)));
  s.SetPosition(0);
  EXPECT_EQ(s.ReadText(), u"中A");
  Stream g = Holding("", 2, u"gb2312");
  g.WriteText(u"中가");
  EXPECT_EQ(g.data(), B("\xD6\xD0\x82\x37\xCF\x35"));  // 가 as its GB18030 sequence
}

}  // namespace
}  // namespace ostrakan
