// The server's log: lines with a level, to standard error or a file.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace velmor::lsp {

enum class LogLevel { Error, Warning, Info, Debug };

/// "error", "warning" (or "warn"), "info", "debug"; none for anything else.
std::optional<LogLevel> logLevelNamed(std::string_view name);

/// Writes "LEVEL message" lines at or below its level. The stream is borrowed (stderr, or a file
/// the caller opened); null writes nothing.
class Log {
public:
  explicit Log(std::FILE* stream = nullptr, LogLevel level = LogLevel::Info) : mStream(stream), mLevel(level) {}

  bool enabled(LogLevel level) const noexcept { return mStream && level <= mLevel; }
  void write(LogLevel level, std::string_view message) const;
  void error(std::string_view message) const { write(LogLevel::Error, message); }
  void warning(std::string_view message) const { write(LogLevel::Warning, message); }
  void info(std::string_view message) const { write(LogLevel::Info, message); }
  void debug(std::string_view message) const { write(LogLevel::Debug, message); }

private:
  std::FILE* mStream;
  LogLevel mLevel;
};

} // namespace velmor::lsp
