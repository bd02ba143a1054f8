#include "admin/record_edit_form.h"

#include "frame/data_access.h"
#include "frame/escape.h"
#include "frame/page_parts.h"

namespace ostrakan::admin {

namespace {

// The browser's check of the form: the fields in form order, each refusal naming what is
// missing (or too long) and putting the cursor there.
const FieldCheck kChecks[] = {
    {u"title", u"value == ''", u"请输入标题！"},
    {u"content", u"value.length > 150", u"描述字数超出限制！"},
    {u"url", u"value == ''", u"请输入网址！"},
    {u"source", u"value == ''", u"请输入来源网站！"},
    {u"source_url", u"value == ''", u"请输入来源网站网址！"},
};

}  // namespace

RecordEditForm::RecordEditForm() : DatabasePage(u"\\admin\\db_edit") {
  Describe<RecordEditForm>([](Describer<RecordEditForm>& m) {
    m.Property(u"rs", &RecordEditForm::rs);
    m.Property(u"id", &RecordEditForm::id);
    m.Block(u"InitFunction3", &RecordEditForm::WriteEditPage);
  });
}

void RecordEditForm::WriteEditPage() {
  id = CurrentRequest().QueryString(u"id");
  ado::Recordset& records = OpenRowById(rs, u"*", u"db", id, conn);
  // The stored values are escaped for where they land; the browser shows and posts them
  // back exactly as stored.
  auto field = [&](std::u16string_view name) { return TextOf(records.Field(name)); };
  Markup page = FormPageHead(u"采集信息管理 - 数据修改", kChecks, u"db_edit_ok.asp");
  page +=
      u"<tr><th>标　　题：</th><td><input type=\"text\" name=\"title\" size=\"50\" "
      u"maxlength=\"50\" value=\"" +
      HtmlAttr(field(u"title")) + u"\"></td></tr>\r\n";
  page += u"<tr><th>描　　述：</th><td><textarea name=\"content\" cols=\"41\" rows=\"5\">" +
          HtmlText(field(u"content")) +
          u"</textarea> <span class=\"hint\">150字以内</span></td></tr>\r\n";
  page +=
      u"<tr><th>网　　址：</th><td>http://<input type=\"text\" name=\"url\" size=\"41\" "
      u"maxlength=\"255\" value=\"" +
      HtmlAttr(field(u"url")) + u"\"></td></tr>\r\n";
  page +=
      u"<tr><th>来源网站：</th><td><input type=\"text\" name=\"source\" size=\"25\" "
      u"maxlength=\"25\" value=\"" +
      HtmlAttr(field(u"source")) + u"\"></td></tr>\r\n";
  page +=
      u"<tr><th>来源网址：</th><td>http://<input type=\"text\" name=\"source_url\" "
      u"size=\"41\" maxlength=\"255\" value=\"" +
      HtmlAttr(field(u"source_url")) + u"\"></td></tr>\r\n";
  page += u"<tr><th></th><td><input type=\"hidden\" name=\"id\" value=\"" + HtmlAttr(field(u"id")) +
          u"\"><input type=\"submit\" value=\"确定\" class=\"button\"> "
          u"<input type=\"reset\" value=\"重写\" class=\"button\"></td></tr>\r\n";
  page += FormPageFoot();
  CloseAndRelease(rs);
  CloseAndRelease(conn);
  CurrentResponse().Write(page);
}

}  // namespace ostrakan::admin
