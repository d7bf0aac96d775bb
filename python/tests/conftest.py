"""Shared fixtures: the golden data of the C++ suite, read as tables of cases."""
from __future__ import annotations

import os
import pathlib

import pytest

DATA = pathlib.Path(os.environ.get("VELMOR_TEST_DATA_DIR", pathlib.Path(__file__).parents[2] / "tests" / "data"))


def golden(relative: str) -> list[tuple[str, list[str]]]:
    """(input, expectation lines) of a golden file: an input line, then "=> " lines."""
    cases: list[tuple[str, list[str]]] = []
    for line in (DATA / relative).read_text(encoding="utf-8").splitlines():
        if line.startswith("=> ") or line == "=>":
            cases[-1][1].append(line[3:])
        elif line and not line.startswith("#"):
            cases.append((line, []))
    return cases


def cli_cases(relative: str, command: str) -> list[dict]:
    """The tool's golden cases of one subcommand given its text as arguments, with the default
    catalogue: arguments, expected status, standard output and error lines."""
    cases: list[dict] = []
    current: dict | None = None
    for line in (DATA / relative).read_text(encoding="utf-8").splitlines():
        if line.startswith("## "):
            current = {"name": line[3:], "args": None, "input": [], "status": None, "out": [], "err": []}
            cases.append(current)
        elif current is None:
            continue
        elif line.startswith("$ "):
            current["args"] = line[2:].split()
        elif line.startswith("< "):
            current["input"].append(line[2:])
        elif line.startswith("? "):
            current["status"] = int(line[2:])
        elif line.startswith(">"):
            current["out"].append(line[2:])
        elif line.startswith("! "):
            current["err"].append(line[2:])
    return [c for c in cases if c["args"] and c["args"][0] == command and len(c["args"]) > 1
            and not c["args"][1].startswith("-") and not c["input"]]


@pytest.fixture()
def gis():
    import velmor_sql
    return velmor_sql.Catalogue.gis_sample()
