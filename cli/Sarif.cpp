// SARIF 2.1.0 output: the results array comes before the tool object, whose rules are known
// only at the end; JSON does not mind the order of keys.
#include "Sarif.h"

#include <nlohmann/json.hpp>

namespace velmor::cli {

std::string sarifHead() {
  return R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0","runs":[{)"
         R"("columnKind":"unicodeCodePoints","results":[)";
}

std::string sarifResult(const std::string& uri, const std::string& ruleId, const std::string& message,
                        const sql::SourceRange& range) {
  nlohmann::json region = {{"startLine", range.beginLine},
                           {"startColumn", range.beginColumn},
                           {"endLine", range.endLine},
                           {"endColumn", range.endColumn},
                           {"byteOffset", range.beginOffset},
                           {"byteLength", range.endOffset - range.beginOffset}};
  nlohmann::json result = {
      {"ruleId", ruleId},
      {"level", "error"},
      {"message", {{"text", message}}},
      {"locations", nlohmann::json::array({{{"physicalLocation",
                                             {{"artifactLocation", {{"uri", uri}}}, {"region", region}}}}})}};
  return result.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string sarifTail(const std::set<std::string>& ruleIds) {
  nlohmann::json rules = nlohmann::json::array();
  for (const std::string& id : ruleIds) rules.push_back({{"id", id}, {"shortDescription", {{"text", id}}}});
  const nlohmann::json tool = {{"driver",
                                {{"name", "velmor-sql"}, {"version", VELMOR_SQL_VERSION}, {"rules", rules}}}};
  return "],\"tool\":" + tool.dump() + "}]}\n";
}

} // namespace velmor::cli
