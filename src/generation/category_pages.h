// The generators of the front end's category pages: one page per top-level category (its
// sub-categories by letter group) and one per sub-category (the records whose title contains
// its name). Each fills its template's markers and writes the page whole, through a temporary
// file renamed over the old one, so a reader never sees half a page. The same generators serve
// the generator pages and the headless `ostrakan generate`.
#pragma once

#include <filesystem>
#include <string>

#include "categories/category_store.h"
#include "core/variant.h"
#include "frame/markup.h"
#include "platform/ado/connection.h"
#include "platform/fs/file_system.h"

namespace ostrakan::generation {

enum class PageKind { TopLevel, SubCategory };

// What the generators need of the site.
struct FrontEnd {
  std::filesystem::path root;  // the site root
  std::u16string title;        // WebSite_Title, for the title marker
  bool showSource = false;     // Source_Show is 1: records name their source site
};

// Whether the setting Source_Show asks for the source of each record (it equals 1).
bool ShowsSource(const Variant& sourceShow);

struct Generated {
  enum class Outcome { Written, BadId, Unknown, Failed };
  Outcome outcome = Outcome::Failed;
  std::u16string name;         // the category's name, once found
  std::filesystem::path file;  // the page written (or that would have been)
  std::string failure;         // for Failed: what went wrong, in English
};

// Generates the page of category `id` (an id that fails the number test is BadId, one that
// names no row Unknown). Errors of the database are thrown as ScriptError; a missing template
// or a failed write is Failed, and then no file is touched.
Generated GeneratePage(PageKind kind, ado::Connection& conn, fs::FileSystem& files,
                       const FrontEnd& site, const Variant& id);

// The pieces, for the pages and for tests.
std::filesystem::path TemplateOf(PageKind kind, const std::filesystem::path& root);
std::filesystem::path OutputOf(PageKind kind, const std::filesystem::path& root, int32_t id);
// The top-level page's list: every letter group with its anchor, its sub-categories five to a
// line linking to list/list_<id>.html.
Markup LetterGroupList(const std::vector<categories::LetterGroup>& groups);
// The sub-category page's list: at most 100 records whose title contains `name`, most clicked
// first, then newest. A name with a quote is refused as the statement it would have made
// was broken (a ScriptError, nothing run).
Markup RecordList(ado::Connection& conn, std::u16string_view name, bool showSource);
// The template with its four markers replaced: title, sort, then the list marker of the kind.
std::u16string FillTemplate(PageKind kind, std::u16string text, std::u16string_view title,
                            std::u16string_view name, const Markup& list);

}  // namespace ostrakan::generation
