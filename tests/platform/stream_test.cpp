#include "platform/text/stream.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "support/page_harness.h"

namespace ostrakan {
namespace {

using testing::ReadFile;
using testing::TempDir;

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

Stream OpenBinary() {
  Stream s;
  s.Type = 1;
  s.Mode = 3;
  s.Open();
  return s;
}

TEST(Stream, BinaryWritesOverwriteAndExtendAtThePosition) {
  Stream s = OpenBinary();
  s.Write(B("12345"));
  EXPECT_EQ(s.Position(), 5);
  s.SetPosition(1);
  EXPECT_EQ(s.Read(2), B("23"));
  EXPECT_EQ(s.Position(), 3);
  s.Write(B("abcd"));
  EXPECT_EQ(s.data(), B("123abcd"));
  EXPECT_TRUE(s.EOS());
  EXPECT_TRUE(s.Read().empty());
  s.SetPosition(0);
  EXPECT_EQ(s.Read(100), B("123abcd"));  // a count past the end reads what there is
  s.SetPosition(4);
  s.SetEOS();
  EXPECT_EQ(s.data(), B("123a"));
  EXPECT_EQ(ErrorOf([&] { s.SetPosition(5); }), 3219);
  EXPECT_EQ(ErrorOf([&] { s.SetPosition(-1); }), 3219);
}

TEST(Stream, CopyToMovesBothPositions) {
  // The verify-code image is put together this way: pieces of one stream laid over another.
  Stream src = OpenBinary();
  Stream dst = OpenBinary();
  src.Write(B("0123456789"));
  dst.Write(B("abcdef"));
  src.SetPosition(2);
  dst.SetPosition(4);
  src.CopyTo(dst, 3);
  EXPECT_EQ(dst.data(), B("abcd234"));
  EXPECT_EQ(src.Position(), 5);
  EXPECT_EQ(dst.Position(), 7);
  dst.SetPosition(0);
  src.CopyTo(dst);  // the rest: 56789
  EXPECT_EQ(dst.data(), B("5678934"));
  EXPECT_EQ(src.Position(), 10);
}

TEST(Stream, FilesLoadAndSave) {
  TempDir dir;
  const auto in = dir.path() / "in.bin";
  std::ofstream(in, std::ios::binary) << std::string(
      "\0\xFF"
      "data",
      6);
  Stream s = OpenBinary();
  s.Write(B("old"));
  s.LoadFromFile(FromUtf8(in.string()));
  EXPECT_EQ(s.Position(), 0);
  EXPECT_EQ(s.Read(), B(std::string_view("\0\xFF"
                                         "data",
                                         6)));

  const auto out = dir.path() / "out.bin";
  s.SaveToFile(FromUtf8(out.string()));
  EXPECT_EQ(ReadFile(out), std::string("\0\xFF"
                                       "data",
                                       6));
  // Option 1 refuses to replace a file; option 2 overwrites it.
  std::ofstream(out) << "x";
  EXPECT_EQ(ErrorOf([&] { s.SaveToFile(FromUtf8(out.string()), 1); }), 3004);
  EXPECT_EQ(ReadFile(out), "x");
  s.SaveToFile(FromUtf8(out.string()), 2);
  EXPECT_EQ(ReadFile(out).size(), 6u);

  EXPECT_EQ(ErrorOf([&] { s.LoadFromFile(FromUtf8((dir.path() / "missing").string())); }), 3002);
  EXPECT_EQ(ErrorOf([&] { s.LoadFromFile(FromUtf8(dir.path().string())); }), 3002);
  EXPECT_EQ(s.Size(), 6);  // a failed load keeps what the stream held
}

TEST(Stream, BytesDecodeAsTextInTheNamedCharset) {
  // The gathering pages decode a fetched body this way.
  Stream s = OpenBinary();
  s.Write(B("\xD6\xD0\xCE\xC4<p>"));
  s.SetPosition(0);
  s.Type = 2;
  s.Charset = u"gb2312";
  EXPECT_EQ(s.ReadText(), u"中文<p>");
  EXPECT_TRUE(s.EOS());

  Stream u = OpenBinary();
  u.Write(B("\xEF\xBB\xBF\xE4\xB8\xAD\xE6\x96\x87"));  // UTF-8 with its byte-order mark
  u.SetPosition(0);
  u.Type = 2;
  u.Charset = u"UTF-8";
  EXPECT_EQ(u.ReadText(1), u"中");
  EXPECT_EQ(u.Position(), 6);
  EXPECT_EQ(u.ReadText(), u"文");

  Stream bad = OpenBinary();
  bad.Write(B("x"));
  bad.SetPosition(0);
  bad.Type = 2;
  bad.Charset = u"no-such-charset";
  EXPECT_THROW(bad.ReadText(), ScriptError);
}

TEST(Stream, TextWritesInTheCharset) {
  Stream s;
  s.Type = 2;
  s.Open();
  s.WriteText(u"中A");  // "unicode": UTF-16LE after its byte-order mark
  EXPECT_EQ(s.data(), B(std::string_view("\xFF\xFE\x2D\x4E"
                                         "A\0",
                                         6)));
  s.SetPosition(0);
  EXPECT_EQ(s.ReadText(), u"中A");

  Stream g;
  g.Type = 2;
  g.Charset = u"gb2312";
  g.Open();
  g.WriteText(u"中");
  g.WriteText(u"가");
  EXPECT_EQ(g.data(), B("\xD6\xD0?"));
}

TEST(Stream, RefusesWhatItsStateDoesNotAllow) {
  Stream s;
  EXPECT_EQ(ErrorOf([&] { s.Write(B("x")); }), 3704);
  EXPECT_EQ(ErrorOf([&] { s.Read(); }), 3704);
  s.Open();
  EXPECT_EQ(ErrorOf([&] { s.Open(); }), 3705);
  EXPECT_EQ(ErrorOf([&] { s.ReadText(); }), 3219);  // binary stream
  s.Type = 2;
  EXPECT_EQ(ErrorOf([&] { s.Read(); }), 3219);  // text stream
  s.Close();
  EXPECT_FALSE(s.IsOpen());
  EXPECT_EQ(ErrorOf([&] { s.Close(); }), 3704);
}

}  // namespace
}  // namespace ostrakan
