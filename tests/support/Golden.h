// Golden files: an input line, then its expectation on one or more lines starting with "=> ".
// Lines starting with '#' and blank lines are kept as they are. Inputs may hold \n \t \r \0 \xHH
// and \\ escapes (\e alone stands for the empty input); control characters in actual texts are
// written back as \xHH.
// VELMOR_UPDATE_GOLDEN=1 rewrites every expectation from what the code gives now.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace velmor::sql::test {

/// What the code under test makes of one decoded input; lines of the result are separate
/// expectation lines.
using Describe = std::function<std::string(const std::string& input)>;

/// Wide text of an input where "\uXXXX" stands for one unit and each other byte for itself.
std::wstring wideOf(const std::string& text);
/// Wide text with units outside printable ASCII written as "\uXXXX".
std::string shownOf(const std::wstring& text);

/// The width of the UTF-8 text before `offset` as a line of it shows: a column per code point.
std::size_t codePointWidth(const std::string& text, std::size_t offset);

/// Asks for one test per input of data/<folder>/<file>, named after the file and its line. Safe
/// in a static initialiser: the tests are made (and expectations rewritten) from main, once
/// every static object of the library exists.
void registerGolden(const std::string& suite, const std::string& file, Describe describe);
/// Makes the tests asked for so far; called by the shared main before the tests run.
void registerAllGolden();

} // namespace velmor::sql::test
