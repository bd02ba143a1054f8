// Numbered pages of the fixture remote site and an ID rule that cuts them, for the ID
// gathering tests of the command, the pages and the benchmarks.
#pragma once

#include <string>

#include "core/variant.h"
#include "platform/text/codepage.h"
#include "support/page_harness.h"

namespace ostrakan::testing {

// The page of ID `id`: a title "Film 影片 <id>" between <H1> tags, a description paragraph.
inline std::string FixtureIdPage(long id, std::u16string_view charset = u"utf-8") {
  const std::u16string n = FromUtf8(std::to_string(id));
  return text::EncodeCharset(
      u"<html><body><H1>Film 影片 " + n + u"</H1><p class=\"d\">About " + n + u"</p></body></html>",
      charset);
}

// The page of an ID the site does not have.
inline std::string FixtureNoDataPage() {
  return "<html><body><div class=\"none\">no such video</div></body></html>";
}

// Inserts a rule for the pages at `gatherUrl` ("[id]" in it) into gather_id_web, stored as the
// forms store it (the markers' double quotes doubled); its id.
inline std::string InsertFixtureIdRule(const std::filesystem::path& db,
                                       const std::string& gatherUrl) {
  Sql(db,
      "insert into gather_id_web (web, url, gather_url, charset, error_html, title_start, "
      "title_end, content_start, content_end) values ('IdFixture', 'http://ids.test/', '" +
          gatherUrl +
          "', 'utf-8', '<div class=\"\"none\"\">', '<h1>', '</h1>', '<p class=\"\"d\"\">', "
          "'</p>')");
  return SqlValue(db, "select max(id) from gather_id_web");
}

}  // namespace ostrakan::testing
