// Numbered pages of the fixture remote site and an ID rule that cuts them, for the ID
// gathering tests of the command and the benchmarks.
#pragma once

#include <string>

#include "support/page_harness.h"

namespace ostrakan::testing {

// The page of ID `id` in UTF-8: a title "Film 影片 <id>" in <H1> tags, a description paragraph;
// the site answers an ID it does not have with <div class="none">.
inline std::string FixtureIdPage(long id) {
  const std::string n = std::to_string(id);
  return "<html><body><H1>Film 影片 " + n + "</H1><p class=\"d\">About " + n + "</p></body></html>";
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
