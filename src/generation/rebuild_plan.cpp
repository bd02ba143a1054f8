#include "generation/rebuild_plan.h"

#include "categories/category_store.h"
#include "frame/data_access.h"
#include "frame/escape.h"

namespace ostrakan::generation {

std::vector<PageJob> SubCategoryPlan(ado::Connection& conn, const Variant& parent) {
  std::vector<PageJob> jobs;
  for (const categories::Category& c : categories::ChildrenOf(conn, parent))
    jobs.push_back({PageKind::SubCategory, Variant(c.id)});
  return jobs;
}

std::vector<PageJob> WholeSitePlan(ado::Connection& conn) {
  std::vector<PageJob> jobs;
  for (const categories::Category& top : categories::TopLevel(conn)) {
    jobs.push_back({PageKind::TopLevel, Variant(top.id)});
    for (PageJob& child : SubCategoryPlan(conn, Variant(top.id))) jobs.push_back(std::move(child));
  }
  return jobs;
}

std::vector<PageJob> ChosenPlan(ado::Connection& conn, const std::vector<Variant>& ids) {
  std::vector<PageJob> jobs;
  for (const Variant& id : ids) {
    std::optional<categories::Category> c;
    if (IsValidId(id)) c = categories::Find(conn, id);
    if (c && c->parent != 0) {
      jobs.push_back({PageKind::SubCategory, Variant(c->id)});
      continue;
    }
    jobs.push_back({PageKind::TopLevel, c ? Variant(c->id) : id});
    if (c)
      for (PageJob& child : SubCategoryPlan(conn, Variant(c->id))) jobs.push_back(std::move(child));
  }
  return jobs;
}

Markup GeneratorAddress(PageKind kind) {
  return kind == PageKind::TopLevel ? Markup(u"create_sort_one_ok.asp")
                                    : Markup(u"create_sort_two_ok.asp");
}

Markup GeneratorFrame(const PageJob& job) {
  return u"<iframe name=\"html\" frameborder=\"0\" width=\"100%\" height=\"25\" scrolling=\"no\" "
         u"src=\"" +
         GeneratorAddress(job.kind) + u"?id=" + UrlQuery(TextOf(job.id)) + u"\"></iframe>";
}

}  // namespace ostrakan::generation
