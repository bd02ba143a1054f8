// The ID-site test and the ID gathering run, written once for the pages (and for a headless
// run): the rule's pages fetched one ID at a time, cut by IdExtractor.
#pragma once

#include <string>
#include <vector>

#include "core/variant.h"
#include "frame/markup.h"
#include "gathering/id_extraction.h"
#include "gathering/id_page_source.h"
#include "gathering/id_rule.h"

namespace ostrakan {
class Response;
}

namespace ostrakan::gathering {

// The test of a rule over IDs idStart .. idEnd (taken as numbers; text that is not a number
// raises type mismatch before anything is fetched): per ID, "找不到相关数据<br>" and the
// address for a page without data, else the title, the description and the address, each
// line ended by "<br>" and the entry by "<br>". Nothing is stored. Returns what each ID gave.
struct IdTrial {
  enum class Outcome { Titled, NoData, Untitled, Failed };
  std::u16string id, address;
  Outcome outcome = Outcome::Titled;
  std::string why;  // for Failed: the fetcher's words
};
std::vector<IdTrial> WriteIdVerification(Response& out, PageSource& pages, const IdRule& rule,
                                         const Variant& idStart, const Variant& idEnd);

// The state of an ID run as the address of each step carries it (texts as received).
struct IdRunStep {
  std::u16string ruleId, idStart, idEnd, dbNum;
};

// The range text written when a run completes: (idEnd - dbNum) " - " idEnd.
std::u16string CompletedRange(const IdRunStep& step);

// The progress lines of a step: "正在采集第 N 页<br>还乘余 M 页等待处理...".
Markup ProgressLines(const IdRunStep& step);

// The script that loads the next step after 1000 ms.
Markup ContinuationScript(const IdRunStep& step);

// The entry of the step's ID: the page fetched and cut. For a page with data, `record` gets the
// entry under the page's address without "http://", with the rule's site name and address.
struct IdStepResult {
  bool noData = false;
  IdRecord record;
};
IdStepResult GatherIdPage(PageSource& pages, IdExtractor& extractor, const IdRule& rule,
                          std::u16string_view id);

}  // namespace ostrakan::gathering
