// The host objects as the verify picture makes its stream. (The stream's one use, a binary file
// loaded whole and read back, is met by every sign-in of the HTTP tests, which read the picture.)
#include "platform/text/stream.h"

#include <gtest/gtest.h>

#include "platform/object_factory.h"

namespace ostrakan {
namespace {

// Each CreateObject gives an object of the page's own, whatever the case of the name; a name
// the host does not know is error 429.
TEST(ObjectFactory, EachCallMakesANewObjectAndUnknownNamesAreError429) {
  const ObjectFactory& factory = ObjectFactory::Default();
  EXPECT_NE(factory.Create(u"ADODB.Stream"), factory.Create(u"adodb.stream"));
  try {
    factory.Create(u"No.Such.Object");
    ADD_FAILURE() << "no error";
  } catch (const ScriptError& e) {
    EXPECT_EQ(e.number, 429);
  }
}

}  // namespace
}  // namespace ostrakan
