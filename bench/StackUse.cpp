// Stack used per tree level by each stage that walks a tree, measured on a painted 64 MiB thread
// stack (deep enough that no walk moves to a segment of its own). Prints a table; run by hand:
//   build/bench/StackUse
#include "support/SampleHost.h"

#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/validation/Validator.h>

#include <pthread.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <string>

namespace {

using namespace velmor::sql;

constexpr std::size_t kThreadStack = 64u << 20;
constexpr std::size_t kPainted = 56u << 20;
constexpr unsigned char kPaint = 0xA5;

// Bytes of stack below the caller's frame that `work` touched.
[[gnu::noinline]] std::size_t touched(const std::function<void()>& work) {
  unsigned char* here = static_cast<unsigned char*>(__builtin_frame_address(0));
  unsigned char* low = here - kPainted;
  std::memset(low, kPaint, kPainted - 4096);
  work();
  std::size_t untouched = 0;
  while (untouched < kPainted && low[untouched] == kPaint) ++untouched;
  return kPainted - untouched;
}

void onBigStack(const std::function<void()>& body) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kThreadStack);
  pthread_t thread;
  auto* job = const_cast<std::function<void()>*>(&body);
  pthread_create(&thread, &attributes, [](void* data) -> void* {
    (*static_cast<std::function<void()>*>(data))();
    return nullptr;
  }, job);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

std::string repeat(const std::string& piece, int count) {
  std::string out;
  for (int i = 0; i < count; ++i) out += piece;
  return out;
}

struct Shape {
  const char* name;
  std::string (*text)(int);
  int levelsPerStep;  // tree levels that one repetition adds
};

const Shape kShapes[] = {
    {"unary minus", [](int n) { return "SELECT " + repeat("- ", n) + "id FROM cities"; }, 1},
    {"a + a chain", [](int n) { return "SELECT id" + repeat(" + id", n) + " FROM cities"; }, 1},
    {"OR chain", [](int n) {
       std::string text = "SELECT name FROM cities WHERE id = 0";
       for (int i = 1; i <= n; ++i) text += " OR id = " + std::to_string(i);
       return text;
     }, 1},
    {"subqueries", [](int n) { return repeat("SELECT id FROM (", n) + "SELECT id FROM cities" + repeat(") AS q", n); }, 2},
};

using Stage = std::function<void(const ast::Node&, const sample::SampleHost&)>;

const std::pair<const char*, Stage> kStages[] = {
    {"buildString", [](const ast::Node& tree, const sample::SampleHost&) { SqlStringBuilder(nullptr).buildString(tree); }},
    {"RenameTableBuilder", [](const ast::Node& tree, const sample::SampleHost&) {
       RenameTableBuilder(nullptr, L"cities", L"towns").buildString(tree);
     }},
    {"buildTableInfo", [](const ast::Node& tree, const sample::SampleHost& host) {
       try {
         buildTableInfo(host, host, ast::getNodeValue<ast::QuerySpecification>(tree), nullptr);
       } catch (const SqlError&) {
       }
     }},
    {"inferType (WHERE)", [](const ast::Node& tree, const sample::SampleHost& host) {
       const auto& query = ast::getNodeValue<ast::QuerySpecification>(tree);
       if (query.where.isNull()) return;
       try {
         const auto scope = buildScope(host, host, query, nullptr);
         TypeInferer(host, *scope).inferType(query.where);
       } catch (const SqlError&) {
       }
     }},
    {"Validator", [](const ast::Node& tree, const sample::SampleHost& host) {
       Validator(host, host).validate(ast::getNodeValue<ast::QuerySpecification>(tree));
     }},
};

} // namespace

int main() {
  const sample::SampleHost host;
  constexpr int low = 1000, high = 3000;
  std::printf("%-12s %-20s %14s\n", "shape", "stage", "bytes/level");
  for (const Shape& shape : kShapes) {
    const std::string small = shape.text(low), large = shape.text(high);
    const ParseContext context;
    // Stack of the stage at the two sizes; the difference over the levels between them.
    const auto measure = [&](const std::function<void(const std::string&, ast::Node&)>& stage) {
      std::size_t used[2] = {0, 0};
      onBigStack([&] {
        const std::string* texts[2] = {&small, &large};
        for (int i = 0; i < 2; ++i) {
          SqlParser parser(context);
          parser.parse(*texts[i]);
          ast::Node tree = parser.result;
          parser.clear();
          used[i] = touched([&] { stage(*texts[i], tree); });
        }
      });
      return (static_cast<double>(used[1]) - static_cast<double>(used[0])) / ((high - low) * shape.levelsPerStep);
    };
    std::printf("%-12s %-20s %14.0f\n", shape.name, "parse", measure([&](const std::string& text, ast::Node& kept) {
      SqlParser parser(context);
      parser.parse(text);
      kept = parser.result;  // released below, not here
    }));
    for (const auto& [name, stage] : kStages) {
      std::printf("%-12s %-20s %14.0f\n", shape.name, name,
                  measure([&](const std::string&, ast::Node& tree) { stage(tree, host); }));
    }
    std::printf("%-12s %-20s %14.0f\n", shape.name, "release",
                measure([](const std::string&, ast::Node& tree) { tree = ast::Node(); }));
  }
}
