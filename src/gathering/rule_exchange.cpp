#include "gathering/rule_exchange.h"

#include <nlohmann/json.hpp>

#include "gathering/id_rule.h"
#include "gathering/id_rule_file.h"
#include "gathering/list_rule.h"
#include "gathering/rule_file.h"
#include "platform/ado/recordset.h"
#include "platform/ado/write_transaction.h"

namespace ostrakan::gathering {
namespace {

using Json = nlohmann::ordered_json;

// The columns of the table of `kind` ("list" or "id"), in table order.
std::vector<std::u16string> Columns(const std::string& kind) {
  std::vector<std::u16string> columns;
  if (kind == "list") {
    for (const ListRuleField& f : ListRuleFields()) columns.emplace_back(f.column);
  } else {
    for (const char16_t* c : kIdRuleColumns) columns.emplace_back(c);
  }
  return columns;
}

std::u16string Number(long long n) {
  return FromUtf8(std::to_string(n));
}

std::u16string Table(const std::string& kind) {
  return kind == "list" ? u"gather_list_web" : u"gather_id_web";
}

void AddRules(ado::Connection& conn, const std::string& kind, const std::vector<long long>& ids,
              Json& out) {
  const std::vector<std::u16string> columns = Columns(kind);
  auto add = [&](ado::Recordset& rs) {
    Json rule;
    rule["kind"] = kind;
    rule["id"] = static_cast<long long>(CDbl(rs.Field(u"id")));
    for (const std::u16string& c : columns) rule[ToUtf8(c)] = ToUtf8(TextOf(rs.Field(c)));
    out.push_back(std::move(rule));
  };
  if (ids.empty()) {
    auto rs = conn.Execute(u"select * from " + Table(kind) + u" order by id");
    for (; !rs->Eof(); rs->MoveNext()) add(*rs);
    rs->Close();
    return;
  }
  for (const long long id : ids) {
    auto rs = conn.Execute(u"select * from " + Table(kind) + u" where id=?",
                           {Variant(static_cast<double>(id))});
    const bool found = !rs->Eof();
    if (found) add(*rs);
    rs->Close();
    if (!found)
      throw RuleExchangeError("there is no " + std::string(kind == "id" ? "ID" : "list") +
                                  " rule number " + std::to_string(id) + " in this site",
                              u"本站没有编号为 " + Number(id) +
                                  (kind == "id" ? u" 的编号采集规则" : u" 的列表采集规则"));
  }
}

struct Incoming {
  std::string kind;
  std::vector<std::u16string> values;  // in the order of Columns(kind)
};

// The document's rules, checked whole before anything is written.
std::vector<Incoming> ReadDocument(const std::string& document) {
  Json doc;
  try {
    doc = Json::parse(document);
  } catch (const Json::parse_error& e) {
    throw RuleExchangeError("the file is not valid JSON (at byte " + std::to_string(e.byte) + ")",
                            u"文件不是有效的 JSON（在第 " + Number(e.byte) + u" 字节处）");
  }
  if (!doc.is_object() || !doc.contains("version"))
    throw RuleExchangeError("the file is not a rules file: it has no version",
                            u"文件不是规则文件：没有版本号");
  if (!doc["version"].is_number_integer() ||
      doc["version"].get<long long>() != kRuleExchangeVersion)
    throw RuleExchangeError("the file has version " + doc["version"].dump() +
                                ", this program reads version " +
                                std::to_string(kRuleExchangeVersion),
                            u"文件的版本是 " + FromUtf8(doc["version"].dump()) +
                                u"，本程序只能读取版本 " + Number(kRuleExchangeVersion));
  if (!doc.contains("rules") || !doc["rules"].is_array())
    throw RuleExchangeError("the file has no list of rules", u"文件中没有规则列表");
  std::vector<Incoming> rules;
  size_t n = 0;
  for (const Json& rule : doc["rules"]) {
    const std::string place = "rule " + std::to_string(++n);
    const std::u16string rulePlace = u"第 " + Number(n) + u" 条规则";
    if (!rule.is_object())
      throw RuleExchangeError(place + " is not an object", rulePlace + u"不是对象");
    const auto kind = rule.find("kind");
    if (kind == rule.end() || !kind->is_string() || (*kind != "list" && *kind != "id"))
      throw RuleExchangeError(place + " has no kind \"list\" or \"id\"",
                              rulePlace + u"没有类型 \"list\" 或 \"id\"");
    Incoming in{kind->get<std::string>(), {}};
    for (const std::u16string& column : Columns(in.kind)) {
      const std::string name = ToUtf8(column);
      const auto value = rule.find(name);
      const std::u16string where = rulePlace + u"（" + FromUtf8(in.kind) + u"）";
      if (value == rule.end())
        throw RuleExchangeError(place + " (" + in.kind + ") has no field " + name,
                                where + u"缺少字段 " + column);
      if (!value->is_string())
        throw RuleExchangeError(
            place + " (" + in.kind + ") has a field " + name + " that is not text",
            where + u"的字段 " + column + u" 不是文本");
      in.values.push_back(FromUtf8(value->get<std::string>()));
    }
    rules.push_back(std::move(in));
  }
  return rules;
}

}  // namespace

std::string ExportRules(ado::Connection& conn, const std::string& kind,
                        const std::vector<long long>& ids) {
  Json doc;
  doc["format"] = "ostrakan-rules";
  doc["version"] = kRuleExchangeVersion;
  doc["rules"] = Json::array();
  for (const std::string k : {"list", "id"})
    if (kind.empty() || kind == k) AddRules(conn, k, ids, doc["rules"]);
  return doc.dump(2) + "\n";
}

std::vector<ImportedRule> ImportRules(ado::Connection& conn, const std::string& document,
                                      bool dryRun) {
  const std::vector<Incoming> rules = ReadDocument(document);
  std::vector<ImportedRule> added;
  for (const Incoming& in : rules) added.push_back({in.kind, ToUtf8(in.values[0]), 0});
  if (dryRun) return added;
  ado::WriteTransaction transaction(conn);
  for (size_t i = 0; i < rules.size(); ++i) {
    const Incoming& in = rules[i];
    std::u16string names, marks;
    ado::Params params;
    for (const std::u16string& column : Columns(in.kind)) {
      names += (names.empty() ? u"" : u",") + column;
      marks += marks.empty() ? u"?" : u",?";
    }
    for (const std::u16string& v : in.values) params.push_back(Variant(v));
    conn.Execute(u"insert into " + Table(in.kind) + u" (" + names + u") values (" + marks + u")",
                 params);
    auto rs = conn.Execute(u"select max(id) as id from " + Table(in.kind));
    added[i].id = static_cast<long long>(CDbl(rs->Field(u"id")));
    rs->Close();
  }
  transaction.Commit();
  return added;
}

void RewriteRuleFiles(ado::Connection& conn, const std::filesystem::path& adminDir) {
  RegenerateListRuleFile(conn, adminDir / "template" / "gather_list_web_template.asp",
                         adminDir / "gather_list_web_list.asp");
  auto rs = conn.Execute(u"select count(*) as n from gather_id_web");
  const bool anyId = CDbl(rs->Field(u"n")) > 0;
  rs->Close();
  if (anyId)
    WriteIdRuleFile(conn, adminDir / "template" / "gather_id_web_template.asp",
                    adminDir / "gather_id_web_list.asp");
}

}  // namespace ostrakan::gathering
