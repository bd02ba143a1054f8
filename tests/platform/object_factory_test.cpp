#include "platform/object_factory.h"

#include <gtest/gtest.h>

#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"
#include "platform/text/stream.h"

namespace ostrakan {
namespace {

TEST(ObjectFactory, CreatesHostObjectsByProgIdInAnyCase) {
  const ObjectFactory& factory = ObjectFactory::Default();
  EXPECT_TRUE(std::dynamic_pointer_cast<ado::Connection>(factory.Create(u"ADODB.CONNECTION")));
  EXPECT_TRUE(std::dynamic_pointer_cast<ado::Recordset>(factory.Create(u"adodb.recordset")));
  EXPECT_TRUE(std::dynamic_pointer_cast<Stream>(factory.Create(u"Adodb.Stream")));
  EXPECT_TRUE(
      std::dynamic_pointer_cast<ScriptControl>(factory.Create(u"MSScriptControl.ScriptControl")));
  // Every call makes a new object.
  EXPECT_NE(factory.Create(u"ADODB.Stream"), factory.Create(u"ADODB.Stream"));
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
