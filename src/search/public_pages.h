// The public side: the front page (index.asp) and the search (search.asp), each filled into a
// template of the site's template/ folder that the operator may edit. A template is the
// operator's own markup; its markers [pellumar]name[/pellumar] are replaced with the parts
// below, every database or visitor text in them escaped.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "core/variant.h"
#include "frame/markup.h"
#include "platform/ado/connection.h"
#include "platform/fs/file_system.h"

namespace ostrakan::search {

constexpr int kResultsPerPage = 20;
constexpr std::size_t kLongestWord = 50;  // longer words are cut to this many characters

// The word a visitor searches for: the query's "keyword" without surrounding blanks, cut to
// kLongestWord; "" (no search) for an empty or blank one.
std::u16string SearchWordOf(std::u16string_view asked);

// The page number asked for: a whole number of 1 or more, anything else (or too large to be a
// page) 1.
int PageNumberOf(std::u16string_view asked);

// One page of the records whose title or description holds `word`, newest first: each with
// its title (linking through goto.asp), description, source and date, and the pager line.
// "" when nothing holds the word.
Markup SearchResults(ado::Connection& conn, std::u16string_view word, int page);

// The parts of the front page.
Markup TopCategoryLinks(ado::Connection& conn);          // to sort_list_<id>.html
Markup NewestRecords(ado::Connection& conn, int count);  // through goto.asp
Markup HotKeywords(ado::Connection& conn, int count);    // each a search link

// The template `file`, read in the ANSI code page with each marker [pellumar]name[/pellumar]
// replaced by parts[name] (a marker without a part stays as it is). nullopt when it cannot be
// read.
std::optional<Markup> FillTemplate(fs::FileSystem& files, const std::filesystem::path& file,
                                   const std::map<std::u16string, Markup>& parts);

}  // namespace ostrakan::search
