// SARIF 2.1.0 logs of the file mode, written as results come so that a long run holds none.
#pragma once

#include <velmor/sql/parser/SourceRanges.h>

#include <set>
#include <string>

namespace velmor::cli {

/// The text that opens the log, up to the first result.
std::string sarifHead();

/// One result as JSON text: an error of rule `ruleId` at `range` of the artifact `uri`.
std::string sarifResult(const std::string& uri, const std::string& ruleId, const std::string& message,
                        const sql::SourceRange& range);

/// The text that closes the log: the tool with the rules the results named.
std::string sarifTail(const std::set<std::string>& ruleIds);

} // namespace velmor::cli
