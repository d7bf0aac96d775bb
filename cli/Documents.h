// The file mode of check, format and columns: documents of many statements given with -f.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velmor::cli {

enum class DocumentCommand { Check, Format, Columns };

/// When the leading options of `args` name documents (-f FILE, --file FILE, --file=FILE), runs
/// the command over every statement of them and gives the exit status; otherwise nothing, and
/// the command goes on with its one statement.
std::optional<int> runDocuments(DocumentCommand command, const std::vector<std::string>& args);

} // namespace velmor::cli
