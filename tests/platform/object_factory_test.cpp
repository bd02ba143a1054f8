#include "platform/object_factory.h"

#include <gtest/gtest.h>

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
  }
}

}  // namespace
}  // namespace ostrakan
