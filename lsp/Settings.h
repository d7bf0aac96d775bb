// Configuration of the server: the client's settings, `.velmor-sql.json` files found upward from
// a document, and the catalogues they name, each reloaded when its file changes.
#pragma once

#include "Log.h"

#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/scope/Scoping.h>

#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace velmor::lsp {

/// The name of the configuration file looked for in a document's folder and those above it.
inline constexpr const char* configFileName = ".velmor-sql.json";

/// What a document is checked with.
struct Effective {
  std::shared_ptr<const sql::host::Catalogue> catalogue;
  sql::Scoping scoping = sql::Scoping::Standard;
  /// How long after an edit diagnostics are published, in milliseconds.
  int delayMs = 150;
};

/// A configuration or catalogue file that cannot be used: the message and a place in the file
/// (from 0; the start when the fault has no place).
struct FileFault {
  std::string message;
  std::size_t line = 0;
  std::size_t character = 0;
};

/// One layer of settings; what it leaves unset comes from the layer below.
struct SettingsLayer {
  std::optional<std::string> catalog;
  std::optional<sql::Scoping> scoping;
  std::optional<int> delayMs;
};

/// Reads a settings object: {"catalog": FILE, "scoping": "standard"|"compatible",
/// "diagnosticsDelay": MS}, also when nested under "velmor-sql". A relative catalogue path is
/// taken from `base`. Throws std::runtime_error naming the first bad value.
SettingsLayer readSettings(const nlohmann::json& settings, const std::string& base);

class Settings {
public:
  explicit Settings(const Log& log) : mLog(log) {}

  /// The workspace folder: relative paths of the client's settings start there.
  void setRoot(std::string path) { mRoot = std::move(path); }
  /// The client's settings (initializationOptions, workspace/didChangeConfiguration); bad values
  /// are logged and the rest is kept.
  void setClient(const nlohmann::json& settings);

  /// The settings of a document at `path` (empty for a document with no file): the client's,
  /// then the nearest configuration file's, over the defaults (the built-in catalogue, standard
  /// scoping). Files are read again when their time or size changed; a bad one is left out and
  /// listed by faults().
  Effective resolve(const std::string& path);

  /// The files that could not be used when last read, by path.
  const std::map<std::string, FileFault>& faults() const { return mFaults; }

private:
  struct Stamp {
    std::int64_t time = 0;
    std::uintmax_t size = 0;
    bool operator==(const Stamp&) const = default;
  };
  struct ConfigEntry {
    Stamp stamp;
    SettingsLayer layer;
  };
  struct CatalogueEntry {
    Stamp stamp;
    std::shared_ptr<const sql::host::Catalogue> catalogue;
  };

  std::optional<Stamp> stampOf(const std::string& path) const;
  const SettingsLayer* config(const std::string& path);
  std::shared_ptr<const sql::host::Catalogue> catalogue(const std::string& path);

  const Log& mLog;
  std::string mRoot;
  SettingsLayer mClient;
  std::map<std::string, ConfigEntry> mConfigs;
  std::map<std::string, CatalogueEntry> mCatalogues;
  std::map<std::string, FileFault> mFaults;
};

/// The file path of a file: URI (percent escapes decoded); empty for any other scheme.
std::string pathOfUri(const std::string& uri);
/// The file: URI of an absolute path.
std::string uriOfPath(const std::string& path);

} // namespace velmor::lsp
