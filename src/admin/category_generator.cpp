#include "admin/category_generator.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_blocks.h"

namespace ostrakan::admin {

using generation::Generated;

// "Path/File access error": the template could not be read or the page not written.
constexpr int32_t kFileFailure = 75;

CategoryGenerator::CategoryGenerator(std::u16string context, generation::PageKind kind)
    : DatabasePage(std::move(context)), kind_(kind) {
  Describe<CategoryGenerator>([](Describer<CategoryGenerator>& m) {
    m.Property(u"id", &CategoryGenerator::id);
    m.Block(u"InitFunction3", &CategoryGenerator::WriteCategoryPage);
  });
}

void CategoryGenerator::WriteCategoryPage() {
  const generation::FrontEnd site{CurrentServer().siteRoot(), TextOf(WebSite_Title),
                                  generation::ShowsSource(Source_Show)};
  const Generated result =
      generation::GeneratePage(kind_, ConnectionOf(conn), fs::FileSystem::Real(), site, id);
  switch (result.outcome) {
    case Generated::Outcome::BadId:
      conn = Variant::Nothing();
      WriteAndEnd(u"非法ID参数");
    case Generated::Outcome::Unknown:
      WriteAndEnd(u"该记录不存在或错误！");
    case Generated::Outcome::Failed:
      throw ScriptError(kFileFailure, FromUtf8(result.failure));
    case Generated::Outcome::Written:
      CurrentResponse().Write(HtmlText(result.name) + u" >> 生成HTML成功！");
  }
}

TopCategoryPageWriter::TopCategoryPageWriter()
    : CategoryGenerator(u"\\admin\\create_sort_one_ok", generation::PageKind::TopLevel) {}

SubCategoryPageWriter::SubCategoryPageWriter()
    : CategoryGenerator(u"\\admin\\create_sort_two_ok", generation::PageKind::SubCategory) {}

}  // namespace ostrakan::admin
