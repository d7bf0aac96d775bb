// Helpers shared by the translation units of the WebAssembly bindings.
#pragma once

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velmor::sql::host {
class Catalogue;
}

namespace velmor::web {

using Json = nlohmann::ordered_json;

/// JSON text for the package; invalid UTF-8 in a name or message is replaced, never thrown on.
inline std::string answer(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

/// Byte offsets of a UTF-8 text against UTF-16 indexes of the same text. A JavaScript string
/// comes in as UTF-8 where a code point of four bytes is two units and any other one unit (an
/// unpaired surrogate arrives as three bytes, one unit).
class Units {
public:
  explicit Units(const std::string& text) : mUnits(text.size() + 1, 0) {
    std::uint32_t unit = 0, start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const auto byte = static_cast<unsigned char>(text[i]);
      if ((byte & 0xC0) != 0x80) {
        start = unit;
        unit += byte >= 0xF0 ? 2 : 1;
      }
      mUnits[i] = start;  // continuation bytes share their lead byte's unit
    }
    mUnits[text.size()] = unit;
  }
  /// A byte inside a code point counts as that code point's start; one past the end as the end.
  std::uint32_t unitOf(std::size_t byte) const { return mUnits[std::min(byte, mUnits.size() - 1)]; }
  /// The first byte at `unit` or after it: a unit inside a pair counts as the pair's end, a
  /// negative one as 0, one past the end as the end.
  std::size_t byteOf(double unit) const {
    if (!(unit > 0)) return 0;
    const auto wanted = static_cast<std::uint32_t>(std::min(unit, 4.0e9));
    const auto it = std::lower_bound(mUnits.begin(), mUnits.end(), wanted);
    if (it == mUnits.end()) return mUnits.size() - 1;
    return static_cast<std::size_t>(it - mUnits.begin());
  }

private:
  std::vector<std::uint32_t> mUnits;
};

/// The hover answer as JSON text ({"hover": null} when there is nothing to say).
std::string hover(const std::string& text, double offset, const sql::host::Catalogue& catalogue);
/// Signature help as JSON text ({"signature": null} outside any call of a known function).
std::string signatureHelp(const std::string& text, double offset, const sql::host::Catalogue& catalogue);

} // namespace velmor::web
