// Protocol positions over UTF-8 texts, and the framing of messages.
#include <Framing.h>
#include <Text.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmor::lsp {
namespace {

struct PositionCase {
  const char* text;
  Position position;
  Encoding encoding;
  std::size_t offset;
  // The position the offset maps back to (a clamped or split one differs from the given).
  Position back;
};

const PositionCase positionCases[] = {
    {"SELECT", {0, 3}, Encoding::Utf16, 3, {0, 3}},
    {"SELECT", {0, 6}, Encoding::Utf16, 6, {0, 6}},
    {"SELECT", {0, 7}, Encoding::Utf16, 6, {0, 6}},
    {"\tx", {0, 1}, Encoding::Utf16, 1, {0, 1}},
    // é is one unit (two bytes), the emoji two units (four bytes).
    {"\xC3\xA9\xF0\x9F\x98\x80x", {0, 1}, Encoding::Utf16, 2, {0, 1}},
    {"\xC3\xA9\xF0\x9F\x98\x80x", {0, 2}, Encoding::Utf16, 2, {0, 1}},
    {"\xC3\xA9\xF0\x9F\x98\x80x", {0, 3}, Encoding::Utf16, 6, {0, 3}},
    {"\xC3\xA9\xF0\x9F\x98\x80x", {0, 4}, Encoding::Utf16, 7, {0, 4}},
    {"\xC3\xA9\xF0\x9F\x98\x80x", {0, 1}, Encoding::Utf8, 0, {0, 0}},
    {"\xC3\xA9\xF0\x9F\x98\x80x", {0, 2}, Encoding::Utf8, 2, {0, 2}},
    {"\xC3\xA9\xF0\x9F\x98\x80x", {0, 6}, Encoding::Utf8, 6, {0, 6}},
    // Past the line's end: before its CR LF; past the last line: the text's end.
    {"ab\r\ncd", {0, 9}, Encoding::Utf16, 2, {0, 2}},
    {"ab\ncd", {0, 2}, Encoding::Utf16, 2, {0, 2}},
    {"ab\r\ncd", {1, 1}, Encoding::Utf16, 5, {1, 1}},
    {"ab\r\ncd", {1, 2}, Encoding::Utf16, 6, {1, 2}},
    {"ab\r\ncd", {2, 0}, Encoding::Utf16, 6, {1, 2}},
    {"ab\n", {1, 0}, Encoding::Utf16, 3, {1, 0}},
    {"", {0, 0}, Encoding::Utf16, 0, {0, 0}},
    {"", {3, 4}, Encoding::Utf16, 0, {0, 0}},
    // Bytes that start no whole character are one unit each.
    {"\xFFx", {0, 1}, Encoding::Utf16, 1, {0, 1}},
    {"\xE2\x82x", {0, 2}, Encoding::Utf16, 2, {0, 2}},
    {"\xE2\x82x", {0, 3}, Encoding::Utf16, 3, {0, 3}},
    {"\xF0\x9F\x98", {0, 2}, Encoding::Utf16, 2, {0, 2}},
};

TEST(Positions, ToOffsetAndBack) {
  for (const PositionCase& c : positionCases) {
    const std::string text = c.text;
    const LineIndex index(text);
    const std::size_t offset = index.offsetOf(text, c.position, c.encoding);
    EXPECT_EQ(offset, c.offset) << '"' << c.text << "\" " << c.position.line << ':' << c.position.character;
    EXPECT_EQ(index.positionOf(text, offset, c.encoding), c.back) << '"' << c.text << "\" at " << offset;
  }
}

TEST(Positions, OffsetsInsideACharacterCountFromItsStart) {
  const std::string text = "a\n\xC3\xA9\xF0\x9F\x98\x80";
  const LineIndex index(text);
  EXPECT_EQ(index.positionOf(text, 3, Encoding::Utf16), (Position{1, 0}));
  EXPECT_EQ(index.positionOf(text, 6, Encoding::Utf16), (Position{1, 1}));
  EXPECT_EQ(index.positionOf(text, 8, Encoding::Utf16), (Position{1, 3}));
  EXPECT_EQ(index.positionOf(text, 99, Encoding::Utf8), (Position{1, 6}));
  EXPECT_EQ(unitCount("\xC3\xA9\xF0\x9F\x98\x80", Encoding::Utf16), 3u);
  EXPECT_EQ(unitCount("\xC3\xA9\xF0\x9F\x98\x80", Encoding::Utf8), 6u);
}

struct FramingCase {
  const char* name;
  std::vector<std::string> input;
  std::size_t maxBody;
  // "body:..." or "fault" per frame, in order.
  std::vector<std::string> frames;
};

const FramingCase framingCases[] = {
    {"plain", {"Content-Length: 2\r\n\r\n{}"}, 64, {"body:{}"}},
    {"case and blanks", {"content-length:  2 \r\n\r\n{}"}, 64, {"body:{}"}},
    {"other headers", {"Content-Type: x\r\nContent-Length: 2\r\n\r\n{}"}, 64, {"body:{}"}},
    {"bare line feeds", {"Content-Length: 2\n\n{}"}, 64, {"body:{}"}},
    {"two at once", {"Content-Length: 1\r\n\r\n1Content-Length: 1\r\n\r\n2"}, 64, {"body:1", "body:2"}},
    {"blank line between", {"Content-Length: 1\r\n\r\n1\r\nContent-Length: 1\r\n\r\n2"}, 64, {"body:1", "body:2"}},
    {"empty body", {"Content-Length: 0\r\n\r\n"}, 64, {"body:"}},
    {"no length", {"Content-Type: x\r\n\r\nContent-Length: 1\r\n\r\n1"}, 64, {"fault", "body:1"}},
    {"no number", {"Content-Length: 1x\r\n\r\nContent-Length: 1\r\n\r\n1"}, 64, {"fault", "body:1"}},
    {"no colon", {"Content-Length 1\r\n\r\nContent-Length: 1\r\n\r\n1"}, 64, {"fault", "body:1"}},
    {"unfinished body", {"Content-Length: 3\r\n\r\n12"}, 64, {}},
    {"at the limit", {"Content-Length: 4\r\n\r\n1234"}, 4, {"body:1234"}},
    {"over the limit", {"Content-Length: 5\r\n\r\n12345Content-Length: 1\r\n\r\n1"}, 4, {"fault", "body:1"}},
};

std::vector<std::string> framesOf(FrameReader& reader) {
  std::vector<std::string> frames;
  while (auto frame = reader.next()) frames.push_back(frame->fault.empty() ? "body:" + frame->body : "fault");
  return frames;
}

TEST(Framing, WholeAndByteByByte) {
  for (const FramingCase& c : framingCases) {
    FrameReader whole(c.maxBody);
    std::vector<std::string> frames;
    for (const std::string& chunk : c.input) whole.feed(chunk);
    EXPECT_EQ(framesOf(whole), c.frames) << c.name;
    FrameReader bytes(c.maxBody);
    frames.clear();
    for (const std::string& chunk : c.input) {
      for (const char byte : chunk) {
        bytes.feed(std::string_view(&byte, 1));
        for (std::string& frame : framesOf(bytes)) frames.push_back(std::move(frame));
      }
    }
    EXPECT_EQ(frames, c.frames) << c.name << " (byte by byte)";
  }
}

TEST(Framing, FrameWritesTheLengthInBytes) {
  EXPECT_EQ(frame("{\"a\":\"\xC3\xA9\"}"), "Content-Length: 10\r\n\r\n{\"a\":\"\xC3\xA9\"}");
}

} // namespace
} // namespace velmor::lsp
