#include <gtest/gtest.h>

#include "platform/clock.h"

#include "platform/ado/recordset.h"
#include "platform/ado/statement_text.h"

namespace ostrakan::ado {
namespace {

TEST(StatementAdapter, TopBecomesLimitAndDateLiteralsBecomeIsoText) {
  EXPECT_EQ(AdaptStatement(u"  SELECT  TOP 5 * FROM keyword ; "),
            u"  SELECT  * FROM keyword limit 5 ; ");
  EXPECT_EQ(AdaptStatement(u"select distinct top 3 title from db where title like '%a%' order "
                           u"by click desc,time desc"),
            u"select distinct title from db where title like '%a%' order by click desc,time desc "
            u"limit 3");
  EXPECT_EQ(AdaptStatement(u"update admin set login_time=#2024-5-3 9:05:07# where id=1"),
            u"update admin set login_time='2024-05-03 09:05:07' where id=1");
  EXPECT_EQ(AdaptStatement(u"select * from db where time>#2024/12/1# and title='#x#'"),
            u"select * from db where time>'2024-12-01 00:00:00' and title='#x#'");
  // Now() and Date() read the process's clock.
  TestClock clock(MakeDate(2026, 11, 22, 6, 5, 9));
  ScopedClock installed(clock);
  EXPECT_EQ(AdaptStatement(u"update db set time=Now ( ) where id=1"),
            u"update db set time='2026-11-22 06:05:09' where id=1");
  EXPECT_EQ(AdaptStatement(u"select * from db where time>=date()"),
            u"select * from db where time>='2026-11-22'");
}

TEST(StatementAdapter, LeavesLookAlikesAlone) {
  for (const char16_t* sql : {
           u"select topic from t",
           u"select * from db where title='select top 5'",
           u"select top 10 percent * from db",
           u"update db set title='top 3' where id=1",
           u"select * from db where title='#2024-1-1#' or content='it''s #2024-1-1#'",
           u"select * from db where title='now()'",
           u"select date(time) from db",
           u"select [#2024-1-1#] from t",
           u"select * from t where a = #abc#",
       }) {
    EXPECT_EQ(AdaptStatement(sql), sql);
  }
}

TEST(StatementAdapter, PostgresLikeIgnoresCaseOnlyInCode) {
  EXPECT_EQ(
      AdaptStatement(u"select count(*) from db where title like ? and (db.[source] NOT LIKE "
                     u"'%like%') or 'like' like x",
                     Dialect::kPostgres),
      u"select count(*) from db where title::text ilike $1 and (db.\"source\"::text NOT ilike "
      u"'%like%') or 'like' like x");
  // Quoted names, comments and words that only end in "like" stay as they are.
  const std::u16string_view kept =
      u"select \"x,a like b\" from t -- (a like b)\n where t = 'x,a like b' or unlike = 1 /* ,a "
      u"like b */";
  EXPECT_EQ(AdaptStatement(kept, Dialect::kPostgres), kept);
}

TEST(StatementText, FindsTheTableOfAQuery) {
  EXPECT_EQ(TableOfQuery(u"SELECT id FROM [gather_id_web] WHERE id=1"), u"gather_id_web");
  EXPECT_EQ(TableOfQuery(u"select (select max(id) from sort) as m, 'from x' from keyword"),
            u"keyword");
  EXPECT_EQ(TableOfQuery(u"select 1"), u"");
  EXPECT_EQ(TrimStatementEnd(u"select 1 ;  \r\n"), u"select 1");
}

}  // namespace
}  // namespace ostrakan::ado
