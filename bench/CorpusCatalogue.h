// The benchmark corpus's catalogue on the host kit: its twelve GIS-register tables (and
// wide_rows), the standard SQL set and the functions its statements use.
#pragma once

#include <velmor/sql/host/Catalogue.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace velmor::sql::corpus {

/// Number columns named like keys, years and counts are Integer, other number columns
/// Decimal(12,2), text columns VarChar(40); wide_rows has 400 Decimal(12,2) columns f001..f400.
/// Functions: count() and count(x), sum, avg, min, max (Aggregate); abs, upper, lower, coalesce.
inline std::unique_ptr<host::Catalogue> corpusCatalogue() {
  auto c = std::make_unique<host::Catalogue>();
  c->addStandardSql();
  const std::vector<std::pair<const wchar_t*, std::vector<std::pair<const wchar_t*, char>>>> tables = {
      {L"parcels", {{L"parcel_id", 'n'}, {L"owner_id", 'n'}, {L"zone_id", 'n'}, {L"area_sqm", 'n'},
                    {L"land_use", 's'}, {L"city_name", 's'}, {L"assessed_val", 'n'}}},
      {L"owners", {{L"owner_id", 'n'}, {L"full_nm", 's'}, {L"city_name", 's'}, {L"phone_no", 's'}, {L"since_yr", 'n'}}},
      {L"zones", {{L"zone_id", 'n'}, {L"zone_code", 's'}, {L"max_height", 'n'}, {L"district_id", 'n'}}},
      {L"districts", {{L"district_id", 'n'}, {L"district_nm", 's'}, {L"pop_total", 'n'}, {L"area_sqm", 'n'}}},
      {L"roads", {{L"road_id", 'n'}, {L"road_nm", 's'}, {L"speed_lim", 'n'}, {L"lane_cnt", 'n'},
                  {L"district_id", 'n'}, {L"surface_kind", 's'}}},
      {L"buildings", {{L"bldg_id", 'n'}, {L"parcel_id", 'n'}, {L"height_m", 'n'}, {L"floor_cnt", 'n'},
                      {L"build_yr", 'n'}, {L"bldg_kind", 's'}}},
      {L"permits", {{L"permit_no", 'n'}, {L"bldg_id", 'n'}, {L"owner_id", 'n'}, {L"fee_amt", 'n'},
                    {L"status_code", 's'}, {L"issued_yr", 'n'}}},
      {L"sensors", {{L"sensor_id", 'n'}, {L"road_id", 'n'}, {L"model_code", 's'}, {L"install_yr", 'n'}}},
      {L"readings", {{L"reading_id", 'n'}, {L"sensor_id", 'n'}, {L"reading_val", 'n'}, {L"qual_flag", 's'},
                     {L"taken_day", 'n'}}},
      {L"cust_orders", {{L"order_id", 'n'}, {L"cust_id", 'n'}, {L"store_id", 'n'}, {L"amount", 'n'},
                        {L"qty", 'n'}, {L"status_code", 's'}}},
      {L"stores", {{L"store_id", 'n'}, {L"store_nm", 's'}, {L"city_name", 's'}, {L"district_id", 'n'}}},
      {L"customers", {{L"cust_id", 'n'}, {L"cust_nm", 's'}, {L"city_name", 's'}, {L"credit_lim", 'n'}}},
  };
  const auto integral = [](const std::wstring& name) {
    for (const std::wstring suffix : {L"_id", L"_no", L"_yr", L"_cnt"}) {
      if (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
        return true;
    }
    return name == L"qty";
  };
  for (const auto& [name, columns] : tables) {
    std::vector<host::Column> list;
    for (const auto& [column, kind] : columns)
      list.push_back({column, kind == 's' ? "VarChar(40)" : integral(column) ? "Integer" : "Decimal(12,2)"});
    c->addTable(name, list);
  }
  std::vector<host::Column> wide;
  for (int i = 1; i <= 400; ++i) {
    std::wstring name = std::to_wstring(i);
    wide.push_back({L"f" + std::wstring(3 - name.size(), L'0') + name, "Decimal(12,2)"});
  }
  c->addTable(L"wide_rows", wide);
  using host::Result;
  c->addFunction(L"count", FunctionKind::Aggregate, {{{}, "BigInt"}, {{"any"}, "BigInt"}});
  c->addFunction(L"sum", FunctionKind::Aggregate, {{{"integerTypes"}, "BigInt"}, {{"Decimal"}, Result::argument(0)}});
  c->addFunction(L"avg", FunctionKind::Aggregate, {{{"numericTypes"}, "Double"}});
  c->addFunction(L"min", FunctionKind::Aggregate, {{{"orderedTypes"}, Result::argument(0)}});
  c->addFunction(L"max", FunctionKind::Aggregate, {{{"orderedTypes"}, Result::argument(0)}});
  c->addFunction(L"abs", {{{"numericTypes"}, Result::argument(0)}});
  c->addFunction(L"upper", {{{"characterStringTypes"}, Result::argument(0)}});
  c->addFunction(L"lower", {{{"characterStringTypes"}, Result::argument(0)}});
  c->addFunction(L"coalesce", {{{"any"}, Result::widest(), {}, true}});
  return c;
}

} // namespace velmor::sql::corpus
