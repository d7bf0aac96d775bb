// The standard SQL set: operators, conversions and ranking from the embedded JSON, and CASE.
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/CatalogueFile.h>

namespace velmor::sql::host {

std::string_view standardSqlText(); // generated from StandardSql.json

namespace {

using type::PlainType;

// CASE has a selector (TRUE for the searched form), WHEN/THEN pairs and perhaps an ELSE, so its
// operand count is open. One overload whose last parameter repeats takes every count from 3,
// where fixed-arity overloads would need one per count and stop somewhere.
class CaseOverload final : public OperatorOverloadInfo {
public:
  explicit CaseOverload(const Catalogue& catalogue)
      : OperatorOverloadInfo(PlainType::Contextual, {PlainType::Contextual, PlainType::Contextual, PlainType::Contextual},
                             resultOf(catalogue)) {
    mVariadic = true;
  }

private:
  // The widest of the THEN values and the ELSE value, by the catalogue's ranking.
  static FullTypeFunction resultOf(const Catalogue& catalogue) {
    return [&catalogue](const std::vector<std::shared_ptr<Type>>& types) -> std::shared_ptr<Type> {
      // The THEN values stand at 2, 4, ...; an even count ends with the ELSE value.
      std::shared_ptr<Type> best;
      const auto weigh = [&](const std::shared_ptr<Type>& type) {
        if (type && (!best || catalogue.compareTypes(type->plainType(), best->plainType()) > 0)) best = type;
      };
      for (std::size_t i = 2; i < types.size(); i += 2) weigh(types[i]);
      if (types.size() % 2 == 0 && !types.empty()) weigh(types.back());
      return best;
    };
  }
};

} // namespace

void Catalogue::addStandardSql(PlainType geometry) {
  changed();
  if (!isTypeName("Geometry")) addTypeName("Geometry", std::make_shared<Type>(geometry));
  readCatalogue(*this, standardSqlText(), "(standard SQL set)");
  addOperator(OperationCode::Case, {std::make_shared<CaseOverload>(*this)});
  m_standardSql = true;
}

} // namespace velmor::sql::host
