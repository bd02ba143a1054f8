// What the administration pages refuse before they reach the database, as one table over the
// guarded pages of every family (records, keywords, search, ID rules, page generation): a
// visitor who is not signed in, and an id that is no row number.
#include "support/admin_pages.h"

namespace ostrakan {
namespace {

using namespace testing;

// A page, and whether it reads a row by the request's id (Read), deletes by it, or takes none.
enum class Id { None, Delete, Read };
struct GuardedPage {
  const char16_t* progId;
  int blocks;
  Id id;
};
const GuardedPage kPages[] = {
    {u"Ostrakan.Class17", 3, Id::Delete}, {u"Ostrakan.Class19", 3, Id::None},
    {u"Ostrakan.Class20", 3, Id::Read},   {u"Ostrakan.Class28", 3, Id::None},
    {u"Ostrakan.Class29", 3, Id::None},   {u"Ostrakan.Class30", 3, Id::None},
    {u"Ostrakan.Class39", 3, Id::None},   {u"Ostrakan.Class61", 3, Id::Read},
    {u"Ostrakan.Class10", 5, Id::None},   {u"Ostrakan.Class11", 3, Id::Delete},
    {u"Ostrakan.Class14", 5, Id::None},   {u"Ostrakan.Class38", 4, Id::None},
    {u"Ostrakan.Class47", 3, Id::None},   {u"Ostrakan.Class42", 3, Id::Delete},
    {u"Ostrakan.Class49", 3, Id::Read},   {u"Ostrakan.Class50", 3, Id::Read},
    {u"Ostrakan.Class21", 3, Id::None},   {u"Ostrakan.Class58", 3, Id::None},
    {u"Ostrakan.Class26", 3, Id::None}};

class GuardedPages : public AdminPages {
 protected:
  GuardedPages() {
    Sql(site.database(),
        "insert into db (id, title, url) values (1, 'a', 'v.com/1'), (2, null, 'b');"
        "insert into keyword (id, keyword, hot) values (1, 'k1', 1), (2, 'k2', 2);"
        "insert into gather_id_web (id, web) values (1, 'A')");
  }
  // The page with `id` in its query string and its form, beside what the pages need to act.
  PageRun RunWithId(const GuardedPage& page, const std::u16string& id) {
    return Run(page.progId, page.blocks,
               {{u"action", u"del"}, {u"id", id}, {u"url", u"v.com"}, {u"keyword", u"panda"}},
               {{u"id", id}, {u"url", u"new.com"}, {u"title", u"x"}, {u"Web", u"B"}});
  }
  std::string Rows() {
    return Value("select group_concat(coalesce(title, '-') || url) from db") + "|" +
           Value("select group_concat(id) from (select id from keyword order by id) as t") + "|" +
           Value("select group_concat(web) from gather_id_web");
  }
};

TEST_F(GuardedPages, AVisitorWhoIsNotSignedInGetsTheSignInAlertAndChangesNothing) {
  session->Remove(u"Ostrakan_Admin");
  for (const GuardedPage& page : kPages)
    EXPECT_EQ(RunWithId(page, u"1").text, kNotSignedIn) << ToUtf8(page.progId);
  EXPECT_EQ(Rows(), "av.com/1,-b|1,2|A");
}

// Only a row number reaches a statement (bound); what the number test of the script language
// also takes but is no row number is the same bad id as any other text. A row that is not there
// is the missing-record alert where the page reads it.
TEST_F(GuardedPages, AnIdThatIsNoRowNumberIsRefusedAndChangesNothing) {
  for (const GuardedPage& page : kPages) {
    if (page.id == Id::None) continue;
    for (const char16_t* bad : {u"", u"abc", u"&H10", u"1e3", u"5.0", u"1 or 1=1", u"1;delete"})
      EXPECT_EQ(RunWithId(page, bad).text, kBadId) << ToUtf8(page.progId) << " " << ToUtf8(bad);
    if (page.id == Id::Read) {
      EXPECT_EQ(RunWithId(page, u"9").text, kMissing) << ToUtf8(page.progId);
    }
  }
  EXPECT_EQ(Rows(), "av.com/1,-b|1,2|A");
  EXPECT_EQ(site.log(), "");
}

}  // namespace
}  // namespace ostrakan
