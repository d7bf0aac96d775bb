"""complete(): the cursor as a str index, the replaced word as a slice, candidates by kind."""
from __future__ import annotations

import pytest

import velmor_sql as vs

GIS = vs.Catalogue.gis_sample()


@pytest.mark.parametrize(
    ("text", "offset", "word", "expected"),
    [
        ("SELECT p. FROM parcels p", 9, "", ("area_sqm", "column", "Decimal(12,2)")),
        ("SELECT * FROM pa", 16, "pa", ("parcels", "table", "")),
        ("SELECT ar FROM parcels", 9, "ar", ("area", "function", "(BinaryLargeObject) -> Double")),
        ("SELECT 'é', ci FROM owners", 14, "ci", ("city_name", "column", "VarChar(60)")),
        ("sel", 99, "sel", ("SELECT", "keyword", "")),
        ("SELECT", -1, "", ("SELECT", "keyword", "")),
    ],
)
def test_offers_at_the_cursor(text: str, offset: int, word: str, expected: tuple[str, str, str]) -> None:
    completion = vs.complete(text, offset, GIS)
    assert text[completion.start:completion.end] == word
    assert vs.Candidate(*expected) in completion.candidates


@pytest.mark.parametrize(("text", "offset"), [("SELECT 'abc' FROM t", 10), ("SELECT [ab", 10), ("SELECT 12", 8), ("SELECT FROM FROM ", 17)])
def test_nothing_where_nothing_fits(text: str, offset: int) -> None:
    assert vs.complete(text, offset, GIS).candidates == []
