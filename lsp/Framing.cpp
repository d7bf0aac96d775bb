// Content-Length framing, tolerant of bare line feeds and of other headers.
#include "Framing.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace velmor::lsp {
namespace {

bool sameWord(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

std::string_view trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) text.remove_suffix(1);
  return text;
}

} // namespace

void FrameReader::feed(std::string_view bytes) {
  if (mSkip > 0) {
    const std::size_t dropped = std::min(mSkip, bytes.size());
    mSkip -= dropped;
    bytes.remove_prefix(dropped);
  }
  // Consumed bytes are dropped once they are most of the buffer, so that appends stay cheap.
  if (mStart > 0 && mStart * 2 >= mBuffer.size()) {
    mBuffer.erase(0, mStart);
    mStart = 0;
  }
  mBuffer.append(bytes);
}

std::optional<Frame> FrameReader::next() {
  const std::string_view rest = std::string_view(mBuffer).substr(mStart);
  // White space between messages is not a header.
  std::size_t begin = 0;
  while (begin < rest.size() && (rest[begin] == '\r' || rest[begin] == '\n')) ++begin;
  // The header block ends at an empty line (CR LF CR LF, or two bare line feeds).
  std::size_t headerEnd = std::string_view::npos;
  std::size_t bodyStart = 0;
  for (std::size_t i = begin; i < rest.size(); ++i) {
    if (rest[i] != '\n') continue;
    if (i + 1 < rest.size() && rest[i + 1] == '\n') {
      headerEnd = i;
      bodyStart = i + 2;
      break;
    }
    if (i + 2 < rest.size() && rest[i + 1] == '\r' && rest[i + 2] == '\n') {
      headerEnd = i;
      bodyStart = i + 3;
      break;
    }
  }
  if (headerEnd == std::string_view::npos) {
    mStart += begin;
    return std::nullopt;
  }
  std::optional<std::size_t> length;
  std::string fault;
  for (std::string_view headers = rest.substr(begin, headerEnd - begin); !headers.empty();) {
    const std::size_t eol = headers.find('\n');
    const std::string_view line = headers.substr(0, eol);
    headers = eol == std::string_view::npos ? std::string_view() : headers.substr(eol + 1);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
      fault = "a header line without ':'";
      continue;
    }
    if (!sameWord(trim(line.substr(0, colon)), "Content-Length")) continue;
    const std::string_view value = trim(line.substr(colon + 1));
    std::size_t parsed = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), parsed);
    if (error != std::errc() || end != value.data() + value.size() || value.empty()) {
      fault = "a Content-Length that is no number";
    } else {
      length = parsed;
    }
  }
  if (!length) {
    mStart += bodyStart;
    return Frame{{}, fault.empty() ? std::string("a header without Content-Length") : fault};
  }
  if (*length > mMaxBody) {
    const std::size_t held = rest.size() - bodyStart;
    const std::size_t dropped = std::min(held, *length);
    mSkip = *length - dropped;
    mStart += bodyStart + dropped;
    return Frame{{}, "a body of " + std::to_string(*length) + " bytes, more than the limit"};
  }
  if (rest.size() - bodyStart < *length) {
    mStart += begin;
    return std::nullopt;
  }
  Frame frame{std::string(rest.substr(bodyStart, *length)), {}};
  mStart += bodyStart + *length;
  return frame;
}

std::string frame(std::string_view body) {
  std::string out = "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  out.append(body);
  return out;
}

} // namespace velmor::lsp
