// Result pages of the fixture remote site and a list rule that cuts them, for the gathering
// tests of the command and the benchmarks.
#pragma once

#include <string>

#include "core/variant.h"
#include "platform/text/codepage.h"
#include "support/page_harness.h"

namespace ostrakan::testing {

// Page `page` with `count` entries "<page>-<n>", each with picture, link, title and text.
inline std::string FixtureResultPage(int page, int count, std::u16string_view charset = u"utf-8") {
  std::u16string html = u"<html><body><ul>";
  for (int n = 1; n <= count; ++n) {
    std::u16string id = FromUtf8(std::to_string(page) + "-" + std::to_string(n));
    html += u"<li class=\"v\"><img src=\"http://img.test/" + id + u".jpg\" alt=\"\"><a href=\"v/" +
            id + u".html\" title=\"x\">Video 影片 " + id + u"</a><p>About " + id +
            u" Text</p></li>\n";
  }
  return text::EncodeCharset(html + u"</ul></body></html>", charset);
}

// Inserts a rule for the pages at `gatherUrl` ("[page]" in it) into gather_list_web; its id.
inline std::string InsertFixtureRule(const std::filesystem::path& db, const std::string& gatherUrl,
                                     const std::string& charset = "utf-8") {
  Sql(db,
      "insert into gather_list_web (web, url, gather_url, next_page, charset, error_html, "
      "cyc_border, cyc_border_sn, image_start, image_end, url_start, url_end, url_filtration, "
      "v_url, title_start, title_end, title_filtration, content_start, content_end, "
      "content_filtration) values ('Fixture', 'http://remote.test/', '" +
          gatherUrl + "', '1', '" + charset +
          "', '<div class=\"\"none\"\">', '<li class=\"\"v\"\">', '1', '<img src=\"\"http://', "
          "'\"\" alt', '<a href=\"\"', '\"\" title', '', 'http://remote.test/', "
          "'title=\"\"x\"\">', '</a>', '', '<p>', '</p>', ' text')");
  return SqlValue(db, "select max(id) from gather_list_web");
}

}  // namespace ostrakan::testing
