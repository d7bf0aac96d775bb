// JSON-RPC messages over a byte stream: each body preceded by a Content-Length header.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace velmor::lsp {

/// One thing read from the stream: a message body, or a fault in the framing (then `body` is
/// empty and `fault` says what was dropped).
struct Frame {
  std::string body;
  std::string fault;
};

/// Cuts a byte stream into message bodies. Bytes go in as they arrive; next() gives each frame once
/// it is whole. A header block without a usable Content-Length is dropped with a fault, and the
/// stream goes on after it; a body longer than `maxBody` is skipped as it arrives. Never throws
/// but std::bad_alloc.
class FrameReader {
public:
  static constexpr std::size_t defaultMaxBody = std::size_t{64} << 20;

  explicit FrameReader(std::size_t maxBody = defaultMaxBody) : mMaxBody(maxBody) {}

  void feed(std::string_view bytes);
  std::optional<Frame> next();
  /// Bytes held that belong to no whole frame yet.
  std::size_t pending() const noexcept { return mBuffer.size() - mStart; }

private:
  std::string mBuffer;
  std::size_t mStart = 0;
  std::size_t mMaxBody;
  // Bytes of an oversized body still to drop.
  std::size_t mSkip = 0;
};

/// A body with its header, ready to write.
std::string frame(std::string_view body);

} // namespace velmor::lsp
