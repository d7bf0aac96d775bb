"""The editor services: the cursor as a str index, ranges as slices, also past non-ASCII text."""
from __future__ import annotations

import pytest

import velmor_sql as vs

GIS = vs.Catalogue.gis_sample()


@pytest.mark.parametrize(
    ("text", "offset", "word", "expected"),
    [
        ("SELECT p. FROM parcels p", 9, "", ("area_sqm", "column", "Decimal(12,2)")),
        ("SELECT * FROM pa", 16, "pa", ("parcels", "table", "")),
        ("SELECT ar FROM parcels", 9, "ar", ("area", "function", "(Geometry) -> Double")),
        ("SELECT 'é', ci FROM owners", 14, "ci", ("city_name", "column", "VarChar(60)")),
        ("sel", 99, "sel", ("SELECT", "keyword", "")),
        ("SELECT", -1, "SELECT", ("SELECT", "keyword", "")),
    ],
)
def test_offers_at_the_cursor(text: str, offset: int, word: str, expected: tuple[str, str, str]) -> None:
    completion = vs.complete(text, offset, GIS)
    assert text[completion.start:completion.end] == word
    assert vs.Candidate(*expected) in completion.candidates


@pytest.mark.parametrize(("text", "offset"), [("SELECT 'abc' FROM t", 10), ("SELECT [ab", 10), ("SELECT 12", 8), ("SELECT FROM FROM ", 17)])
def test_nothing_where_nothing_fits(text: str, offset: int) -> None:
    assert vs.complete(text, offset, GIS).candidates == []


def test_editor_services_count_code_points() -> None:
    text = "SELECT 'é', p.area_sqm, buffer(p.shape, 1) FROM parcels p ORDER BY p.zone_id"
    at = text.index("area_sqm") + 2
    found = vs.hover(text, at, GIS)
    assert found is not None and found.kind == "column" and text[found.start:found.end] == "area_sqm"
    assert found.title == "column parcels.area_sqm: Decimal(12,2)"
    help = vs.signature_help(text, text.index(", 1)") + 2, GIS)
    assert help is not None and help.function == "buffer" and help.active_parameter == 1
    label = help.signatures[help.active_signature]
    start, end = label.parameters[1]
    assert label.label[start:end] == "Double"
    use = text.index("p.zone_id")
    definition = vs.definition(text, use, GIS)
    assert definition is not None and text[definition.target_start:definition.target_end] == "p"
    assert definition.target_start == text.index("parcels p") + len("parcels ")
    assert [text[s:e] for s, e in vs.occurrences(text, use, GIS)] == ["p"] * 4
    assert vs.hover(text, 2, GIS) is None and vs.signature_help(text, 2, GIS) is None
