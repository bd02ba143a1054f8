#include "platform/object_factory.h"

#include <gtest/gtest.h>

#include "platform/text/stream.h"

namespace ostrakan {
namespace {

// What pages rely on: each CreateObject gives an object of the page's own, whatever the case of
// the name, and a name the host does not know is error 429.
TEST(ObjectFactory, EachCallMakesANewObjectAndUnknownNamesAreError429) {
  const ObjectFactory& factory = ObjectFactory::Default();
  EXPECT_NE(factory.Create(u"ADODB.Stream"), factory.Create(u"adodb.stream"));
  try {
    factory.Create(u"No.Such.Object");
    FAIL();
  } catch (const ScriptError& e) {
    EXPECT_EQ(e.number, 429);
    EXPECT_EQ(e.description, u"ActiveX component can't create object");
  }
}

TEST(ObjectFactory, ProgIdsCanBeReplacedAndRemoved) {
  ObjectFactory factory = ObjectFactory::WithPlatformObjects();
  factory.Register(u"adodb.stream", [] { return std::make_shared<ScriptControl>(); });
  EXPECT_TRUE(std::dynamic_pointer_cast<ScriptControl>(factory.Create(u"ADODB.Stream")));
  factory.Unregister(u"ADODB.STREAM");
  EXPECT_FALSE(factory.Has(u"ADODB.Stream"));
  EXPECT_THROW(factory.Create(u"ADODB.Stream"), ScriptError);
  EXPECT_TRUE(factory.Has(u"adodb.connection"));
  EXPECT_TRUE(ObjectFactory::Default().Has(u"ADODB.Stream"));  // copies are independent
}

}  // namespace
}  // namespace ostrakan
