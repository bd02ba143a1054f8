// What a rebuild generates, in order: each top-level category's page followed directly by the
// pages of its sub-categories. The driver pages turn a plan into generator frames; the
// headless command runs it.
#pragma once

#include <string>
#include <vector>

#include "core/variant.h"
#include "generation/category_pages.h"
#include "platform/ado/connection.h"

namespace ostrakan::generation {

struct PageJob {
  PageKind kind;
  Variant id;  // as given (a ticked value is passed on unchecked; the generator checks it)
};

// Every top-level category (table order), each followed by its sub-categories.
std::vector<PageJob> WholeSitePlan(ado::Connection& conn);
// The sub-category pages of one top-level category (identifier checked by the caller).
std::vector<PageJob> SubCategoryPlan(ado::Connection& conn, const Variant& parent);
// The chosen categories: a top-level one with all its sub-categories, a sub-category alone, an
// unknown one as a single job (which the generator reports).
std::vector<PageJob> ChosenPlan(ado::Connection& conn, const std::vector<Variant>& ids);

// The generator addresses, relative to the administration folder.
Markup GeneratorAddress(PageKind kind);
// One hidden-looking frame of the driver pages: it loads the generator for one id and shows
// its one line of answer.
Markup GeneratorFrame(const PageJob& job);

}  // namespace ostrakan::generation
