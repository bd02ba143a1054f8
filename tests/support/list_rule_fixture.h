// Result pages of the fixture remote site and a list rule that cuts them, for the gathering
// tests of the command and the benchmarks.
#pragma once

#include <string>

#include "support/page_harness.h"

namespace ostrakan::testing {

// Page `page` in UTF-8 with `count` entries "<page>-<n>", each with picture, link, title, text.
inline std::string FixtureResultPage(int page, int count) {
  std::string html = "<html><body><ul>";
  for (int n = 1; n <= count; ++n) {
    const std::string id = std::to_string(page) + "-" + std::to_string(n);
    html += "<li class=\"v\"><img src=\"http://img.test/" + id + ".jpg\" alt=\"\"><a href=\"v/" +
            id + ".html\" title=\"x\">Video 影片 " + id + "</a><p>About " + id + " Text</p></li>\n";
  }
  return html + "</ul></body></html>";
}

// Inserts a rule for the pages at `gatherUrl` ("[page]" in it) into gather_list_web; its id.
inline std::string InsertFixtureRule(const std::filesystem::path& db,
                                     const std::string& gatherUrl) {
  Sql(db,
      "insert into gather_list_web (web, url, gather_url, next_page, charset, error_html, "
      "cyc_border, cyc_border_sn, image_start, image_end, url_start, url_end, url_filtration, "
      "v_url, title_start, title_end, title_filtration, content_start, content_end, "
      "content_filtration) values ('Fixture', 'http://remote.test/', '" +
          gatherUrl +
          "', '1', 'utf-8', '<div class=\"\"none\"\">', '<li class=\"\"v\"\">', '1', "
          "'<img src=\"\"http://', '\"\" alt', '<a href=\"\"', '\"\" title', '', "
          "'http://remote.test/', 'title=\"\"x\"\">', '</a>', '', '<p>', '</p>', ' text')");
  return SqlValue(db, "select max(id) from gather_list_web");
}

}  // namespace ostrakan::testing
