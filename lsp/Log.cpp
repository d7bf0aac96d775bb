// Log lines, flushed one by one so that a crash of the client loses none.
#include "Log.h"

namespace velmor::lsp {

std::optional<LogLevel> logLevelNamed(std::string_view name) {
  if (name == "error") return LogLevel::Error;
  if (name == "warning" || name == "warn") return LogLevel::Warning;
  if (name == "info") return LogLevel::Info;
  if (name == "debug") return LogLevel::Debug;
  return std::nullopt;
}

void Log::write(LogLevel level, std::string_view message) const {
  if (!enabled(level)) return;
  const char* name = "info";
  switch (level) {
  case LogLevel::Error: name = "error"; break;
  case LogLevel::Warning: name = "warning"; break;
  case LogLevel::Info: name = "info"; break;
  case LogLevel::Debug: name = "debug"; break;
  }
  std::fprintf(mStream, "velmor-sql lsp %s: %.*s\n", name, static_cast<int>(message.size()), message.data());
  std::fflush(mStream);
}

} // namespace velmor::lsp
