"""The Python module against the C++ suite's golden data, faults, bad input and threads."""
from __future__ import annotations

import json
import threading

import pytest
import velmor_sql as vs
from conftest import DATA, cli_cases, golden

TREES = [(sql, lines[0]) for name in ("statements", "expressions", "joins", "datachange", "precedence")
         for sql, lines in golden(f"parser/{name}.golden") if lines and lines[0].startswith("{")]
SYNTAX = [(sql, lines[0].removeprefix("error: ")) for sql, lines in golden("parser/errors.golden")
          if lines and lines[0].startswith("error: syntax error")]


@pytest.mark.parametrize("sql,tree", TREES[:400])
def test_parse_gives_the_tools_tree(sql, tree):
    assert vs.parse(sql) == json.loads(tree)


@pytest.mark.parametrize("sql,message", SYNTAX)
def test_syntax_errors_carry_the_librarys_message_and_place(sql, message):
    with pytest.raises(vs.SqlSyntaxError) as raised:
        vs.parse(sql)
    assert raised.value.message == message
    assert message.endswith(f" at {raised.value.line}:{raised.value.column}")


@pytest.mark.parametrize("case", cli_cases("cli/check.txt", "check"), ids=lambda c: c["name"])
def test_check_agrees_with_the_tool(case, gis):
    if "--json" in case["args"]:
        return
    sql = " ".join(case["args"][1:])
    if case["status"] == 2:
        with pytest.raises(ValueError):
            vs.check(sql, gis)
        return
    if case["err"]:
        with pytest.raises(vs.SqlSyntaxError):
            vs.check(sql, gis)
        return
    faults = vs.check(sql, gis)

    def line(fault):
        r = fault.range
        return (f"{r.begin_line}:{r.begin_column}-{r.end_line}:{r.end_column} " if r else "") + \
            f"{fault.message} [{fault.class_name}]"

    assert ([line(f) for f in faults] or ["ok"]) == case["out"]


def test_check_ranges_cover_the_faulty_text(gis):
    sql = "SELECT\n\tparcel_id,\n\tnösuch + 1\nFROM parcels"
    (fault,) = vs.check(sql, gis)
    assert fault.range == vs.SourceRange(3, 5, 3, 11, 20, 27)
    assert sql.encode()[fault.range.begin_byte:fault.range.end_byte].decode() == "nösuch"
    (update,) = vs.check("UPDATE parcels SET nosuch = 1", gis)
    assert update.range is None


@pytest.mark.parametrize("case", cli_cases("cli/format.txt", "format"), ids=lambda c: c["name"])
def test_format_agrees_with_the_tool(case):
    if case["status"] != 0:
        return
    assert vs.format(" ".join(case["args"][1:])) == case["out"][0]


@pytest.mark.parametrize("sql,standard,bare", [
    ("SELECT (a + b) * c, a + (b * c) FROM t", "SELECT (a + b) * c, a + b * c FROM t",
     "SELECT (a + b) * c, a + (b * c) FROM t"),
    ("SELECT - - a FROM t WHERE x OR y OR z", "SELECT -(-a) FROM t WHERE x OR y OR z",
     "SELECT -(-a) FROM t WHERE (x OR y) OR z"),
])
def test_format_contexts(sql, standard, bare):
    assert vs.format(sql) == standard
    assert vs.format(sql, None) == bare
    assert vs.format(sql, vs.Catalogue.standard()) == standard


def test_rename_and_tokens():
    assert vs.rename("SELECT t.a FROM t AS x, t", "t", "u") == "SELECT u.a FROM u AS x, u"
    assert vs.tokens("SELECT 'é' FROM [t]") == [(1, 1, "SELECT", ""), (1, 8, "STRING", "'é'"), (1, 12, "FROM", ""),
                                                (1, 17, "IDENTIFIER", "t"), (1, 20, "<TERMINATION>", "")]


def test_faults_have_their_fields_as_attributes(gis):
    text = "SELECT nosuch, area(parcel_id, 1) FROM parcels WHERE count(*) > 1"
    assert [f.class_name for f in vs.check(text, gis, scoping="compatible")] == ["UnknownColumnReference"]
    faults = vs.check(text, gis)
    assert [f.class_name for f in faults] == ["UnknownColumnReference", "NoGoodFunctionCandidate",
                                              "AggregateInWhereClause"]
    assert faults[1].message == "no overload of area takes (Integer, Decimal(1,0))"
    with pytest.raises(ValueError):
        vs.check(text, gis, scoping="loose")
    fault = faults[0]
    assert (fault.number, fault.tableName, fault.columnName) == (7, "", "nosuch")
    call = vs.check("SELECT upper(1, 2) FROM parcels", gis)[0]
    assert (call.class_name, call.functionName, call.argumentTypes) == (
        "NoGoodFunctionCandidate", "upper", "[Decimal(1,0), Decimal(1,0)]")
    assert call.candidates.startswith("[(Char) -> Char;")


def test_columns_and_types(gis):
    assert vs.columns("SELECT p.parcel_id, p.area_sqm * 2 AS twice, parcel_id FROM parcels AS p", gis) == [
        vs.Column("parcel_id", "Integer", "parcels", "parcel_id"),
        vs.Column("twice", "Decimal(13,2)", "", ""),
        vs.Column("parcel_id1", "Integer", "parcels", "parcel_id")]
    assert vs.type_of("area_sqm * 2 + parcel_id", gis, ["parcels"]) == "Decimal(14,2)"
    with pytest.raises(vs.SqlFault) as raised:
        vs.type_of("nosuch + 1", gis, ["parcels"])
    assert raised.value.fault.class_name == "UnknownColumnReference"
    with pytest.raises(ValueError):
        vs.columns("DELETE FROM parcels", gis)
    with pytest.raises(ValueError):
        vs.type_of("SELECT a FROM t", gis)


def test_catalogues_from_python_and_json(tmp_path):
    catalogue = vs.Catalogue.standard()
    catalogue.add_table("wells", {"well_id": "Integer", "depth_m": "Decimal(6,2)", "name": "VarChar(40)"})
    catalogue.add_function("deepest", ["numericTypes"], "Double", kind="aggregate")
    assert vs.check("SELECT name, depth_m * 2 FROM wells WHERE well_id = 3", catalogue) == []
    assert vs.type_of("deepest(depth_m)", catalogue, ["wells"]) == "Double"
    assert [f.class_name for f in vs.check("SELECT name FROM wells WHERE deepest(depth_m) > 1", catalogue)] == [
        "AggregateInWhereClause"]
    # A catalogue's own JSON reads back into an equal one, as a dict and as a file.
    again = vs.Catalogue.from_json(catalogue.to_json())
    assert again.to_json() == catalogue.to_json()
    path = tmp_path / "wells.json"
    path.write_text(catalogue.to_json_text(), encoding="utf-8")
    assert vs.Catalogue.from_json(path).table_names() == ["wells"]


@pytest.mark.parametrize("source,message", [
    ({"tables": [{"name": "t"}]}, "tables[0]"),
    ({"bogus": 1}, "bogus"),
    (DATA / "cli" / "catalogues" / "not-json.json", "not valid JSON"),
    (DATA / "cli" / "catalogues" / "no-such-file.json", "cannot be read"),
])
def test_bad_catalogues_raise_with_the_place(source, message):
    with pytest.raises(vs.CatalogueError) as raised:
        vs.Catalogue.from_json(source)
    assert message in str(raised.value)


@pytest.mark.parametrize("call", [
    lambda gis: vs.add_table_typo,  # noqa: B023 -- an attribute that is not there
    lambda gis: gis.add_table("t", {"a": "NoSuchType"}),
    lambda gis: gis.add_function("f", ["Integer"], "Integer", kind="strange"),
    lambda gis: vs.format("SELECT a FROM t", context=42),
])
def test_bad_calls_raise_python_errors(call, gis):
    with pytest.raises((AttributeError, vs.CatalogueError, ValueError, TypeError)):
        call(gis)


@pytest.mark.parametrize("text", ["", "\x00", "SELECT 'a'\u00a0'b' FROM t", "SELECT " + "- " * 9990 + "a FROM t",
                                  "SELECT " + "(" * 20000 + "a" + ")" * 20000 + " FROM t", "\udcff".encode(
                                      "utf-8", "surrogatepass").decode("utf-8", "replace")])
def test_no_input_crashes(text, gis):
    try:
        vs.parse(text)
        vs.format(text)
        vs.check(text, gis)
    except (vs.SqlSyntaxError, ValueError):
        pass


def test_threads_share_one_catalogue(gis):
    statements = [sql for sql, _ in TREES[:80]]

    def outcome(sql: str) -> list[str] | str:
        try:
            return [vs.format(sql)] + [str(f) for f in vs.check(sql, gis)]
        except ValueError as error:
            return str(error)

    expected = {sql: outcome(sql) for sql in statements}
    failures: list[str] = []

    def work() -> None:
        for _ in range(5):
            failures.extend(sql for sql in statements if outcome(sql) != expected[sql])

    threads = [threading.Thread(target=work) for _ in range(6)]
    # The catalogue is filled meanwhile: each change waits for the checks under way.
    filler = threading.Thread(target=lambda: [gis.add_table(f"extra{i}", {"a": "Integer"}) for i in range(50)])
    for thread in threads + [filler]:
        thread.start()
    for thread in threads + [filler]:
        thread.join()
    assert failures == []
