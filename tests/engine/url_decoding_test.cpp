#include "engine/url_decoding.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

TEST(PercentDecode, ResolvesEscapesAndKeepsMalformedOnesLiterally) {
  EXPECT_EQ(PercentDecode("a%20b%2Fc%2fd", false), "a b/c/d");
  EXPECT_EQ(PercentDecode("100%", false), "100%");
  EXPECT_EQ(PercentDecode("%zz%4g%4", false), "%zz%4g%4");
  EXPECT_EQ(PercentDecode("%%41", false), "%A");
  EXPECT_EQ(PercentDecode("a+b", false), "a+b");
  EXPECT_EQ(PercentDecode("a+b%2B", true), "a b+");  // an escaped plus stays a plus
  EXPECT_EQ(PercentDecode("%00x", false), std::string("\0x", 2));
}

TEST(UrlEncoded, DecodesTheBytesInTheCodePageWithoutEatingNeighbours) {
  KeyedValues v;
  // "你好" in GBK is C4 E3 BA C3; in UTF-8 it is E4 BD A0 E5 A5 BD.
  AddUrlEncoded("q=%C4%E3%BA%C3&%D6%D0=1&a=x%FFy&b=%C4&c==d", 936, v);
  EXPECT_EQ(v.Get(u"q").str(), u"你好");
  EXPECT_EQ(v.Get(u"中").str(), u"1");
  EXPECT_EQ(v.Get(u"a").str(), u"x\uFFFDy");
  EXPECT_EQ(v.Get(u"b").str(), u"\uFFFD");  // a lead byte cut off at the end
  EXPECT_EQ(v.Get(u"c").str(), u"=d");
  KeyedValues utf8;
  AddUrlEncoded("q=%E4%BD%A0%E5%A5%BD&flag", 65001, utf8);
  EXPECT_EQ(utf8.Get(u"q").str(), u"你好");
  EXPECT_TRUE(utf8.Has(u"flag"));
  EXPECT_EQ(utf8.All(u"Q"), std::vector<std::u16string>{u"你好"});
}

TEST(Cookies, SplitOnSemicolonsAndDecodeValues) {
  KeyedValues c;
  AddCookies("a=1;  b=x%20y ; c=%C4%E3; broken; =skipped", 936, c);
  EXPECT_EQ(c.Get(u"a").str(), u"1");
  EXPECT_EQ(c.Get(u"B").str(), u"x y");
  EXPECT_EQ(c.Get(u"c").str(), u"你");
  EXPECT_TRUE(c.Has(u"broken"));
  EXPECT_FALSE(c.Has(u""));
}

}  // namespace
}  // namespace ostrakan::engine
