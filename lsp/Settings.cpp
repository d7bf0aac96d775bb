// Settings layers and the files behind them, cached by modification time and size.
#include "Settings.h"

#include <velmor/sql/host/CatalogueFile.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace velmor::lsp {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

std::string absoluteFrom(const std::string& base, const std::string& path) {
  fs::path p(path);
  if (p.is_relative() && !base.empty()) p = fs::path(base) / p;
  return p.lexically_normal().string();
}

// A fault's place when its message names one ("at line 3, column 5"), from 0.
FileFault faultOf(std::string message) {
  FileFault fault;
  static const std::regex place(R"(line (\d+), column (\d+))");
  std::smatch match;
  if (std::regex_search(message, match, place)) {
    const std::size_t line = std::stoul(match[1]);
    const std::size_t column = std::stoul(match[2]);
    fault.line = line > 0 ? line - 1 : 0;
    fault.character = column > 0 ? column - 1 : 0;
  }
  fault.message = std::move(message);
  return fault;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

} // namespace

SettingsLayer readSettings(const json& given, const std::string& base) {
  SettingsLayer layer;
  if (given.is_null()) return layer;
  if (!given.is_object()) throw std::runtime_error("the settings are not a JSON object");
  const json* settings = &given;
  for (const char* key : {"velmor-sql", "velmorSql"}) {
    const auto nested = given.find(key);
    if (nested != given.end() && nested->is_object()) settings = &*nested;
  }
  if (const auto catalog = settings->find("catalog"); catalog != settings->end() && !catalog->is_null()) {
    if (!catalog->is_string()) throw std::runtime_error("\"catalog\" must be a file name");
    if (!catalog->get<std::string>().empty()) layer.catalog = absoluteFrom(base, catalog->get<std::string>());
  }
  if (const auto scoping = settings->find("scoping"); scoping != settings->end() && !scoping->is_null()) {
    if (*scoping == "standard") {
      layer.scoping = sql::Scoping::Standard;
    } else if (*scoping == "compatible") {
      layer.scoping = sql::Scoping::Compatible;
    } else {
      throw std::runtime_error("\"scoping\" must be \"standard\" or \"compatible\"");
    }
  }
  if (const auto delay = settings->find("diagnosticsDelay"); delay != settings->end() && !delay->is_null()) {
    if (!delay->is_number_integer() || delay->get<std::int64_t>() < 0 || delay->get<std::int64_t>() > 10000) {
      throw std::runtime_error("\"diagnosticsDelay\" must be milliseconds from 0 to 10000");
    }
    layer.delayMs = delay->get<int>();
  }
  return layer;
}

void Settings::setClient(const json& settings) {
  try {
    mClient = readSettings(settings, mRoot);
  } catch (const std::exception& error) {
    mLog.warning(std::string("the client's settings were not taken: ") + error.what());
  }
}

std::optional<Settings::Stamp> Settings::stampOf(const std::string& path) const {
  std::error_code error;
  const auto status = fs::status(path, error);
  if (error || !fs::is_regular_file(status)) return std::nullopt;
  const auto time = fs::last_write_time(path, error);
  if (error) return std::nullopt;
  const auto size = fs::file_size(path, error);
  if (error) return std::nullopt;
  return Stamp{static_cast<std::int64_t>(time.time_since_epoch().count()), size};
}

const SettingsLayer* Settings::config(const std::string& path) {
  const auto stamp = stampOf(path);
  if (!stamp) {
    mConfigs.erase(path);
    mFaults.erase(path);
    return nullptr;
  }
  const auto cached = mConfigs.find(path);
  if (cached != mConfigs.end() && cached->second.stamp == *stamp) {
    return mFaults.count(path) ? nullptr : &cached->second.layer;
  }
  ConfigEntry entry{*stamp, {}};
  mFaults.erase(path);
  try {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    entry.layer = readSettings(json::parse(text.str()), fs::path(path).parent_path().string());
    mLog.info("read " + path);
  } catch (const std::exception& error) {
    mFaults[path] = faultOf(path + ": " + error.what());
  }
  ConfigEntry& stored = mConfigs[path] = std::move(entry);
  return mFaults.count(path) ? nullptr : &stored.layer;
}

std::shared_ptr<const sql::host::Catalogue> Settings::catalogue(const std::string& path) {
  const auto stamp = stampOf(path);
  const auto cached = mCatalogues.find(path);
  if (stamp && cached != mCatalogues.end() && cached->second.stamp == *stamp) return cached->second.catalogue;
  CatalogueEntry entry{stamp.value_or(Stamp{}), nullptr};
  mFaults.erase(path);
  try {
    entry.catalogue = sql::host::loadCatalogue(path);
    mLog.info("read the catalogue " + path);
  } catch (const std::exception& error) {
    mFaults[path] = faultOf(error.what());
  }
  // A file that cannot be read is tried again next time; a bad one when it changes.
  if (stamp) mCatalogues[path] = entry;
  return entry.catalogue;
}

Effective Settings::resolve(const std::string& path) {
  // Faults of files that are gone go with them; a file still named is read again below.
  for (auto it = mFaults.begin(); it != mFaults.end();) {
    if (stampOf(it->first)) {
      ++it;
      continue;
    }
    mConfigs.erase(it->first);
    mCatalogues.erase(it->first);
    it = mFaults.erase(it);
  }
  SettingsLayer layer = mClient;
  if (!path.empty()) {
    std::error_code error;
    for (fs::path folder = fs::path(path).parent_path(); !folder.empty(); folder = folder.parent_path()) {
      const std::string candidate = (folder / configFileName).string();
      if (fs::exists(candidate, error)) {
        if (const SettingsLayer* file = config(candidate)) {
          if (file->catalog) layer.catalog = file->catalog;
          if (file->scoping) layer.scoping = file->scoping;
          if (file->delayMs) layer.delayMs = file->delayMs;
        }
        break;
      }
      if (folder == folder.root_path()) break;
    }
  }
  Effective effective;
  if (layer.catalog) effective.catalogue = catalogue(*layer.catalog);
  if (!effective.catalogue) effective.catalogue = sql::host::gisSampleCatalogue();
  effective.scoping = layer.scoping.value_or(sql::Scoping::Standard);
  effective.delayMs = layer.delayMs.value_or(effective.delayMs);
  return effective;
}

std::string pathOfUri(const std::string& uri) {
  constexpr std::string_view scheme = "file://";
  if (uri.compare(0, scheme.size(), scheme) != 0) return {};
  std::string path;
  for (std::size_t i = scheme.size(); i < uri.size(); ++i) {
    if (uri[i] == '%' && i + 2 < uri.size() && hexValue(uri[i + 1]) >= 0 && hexValue(uri[i + 2]) >= 0) {
      path += static_cast<char>(hexValue(uri[i + 1]) * 16 + hexValue(uri[i + 2]));
      i += 2;
    } else {
      path += uri[i];
    }
  }
  // file://host/path names a host; only the local form (an empty host) is a path here.
  return !path.empty() && path.front() == '/' ? path : std::string();
}

std::string uriOfPath(const std::string& path) {
  static const char* hex = "0123456789ABCDEF";
  std::string uri = "file://";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) || c == '/' || c == '-' || c == '_' || c == '.' || c == '~') {
      uri += c;
    } else {
      uri += '%';
      uri += hex[byte >> 4];
      uri += hex[byte & 15];
    }
  }
  return uri;
}

} // namespace velmor::lsp
