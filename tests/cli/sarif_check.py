#!/usr/bin/env python3
"""check --sarif against the SARIF 2.1.0 schema kept in tests/data/cli/sarif, and what the log says.

Usage: sarif_check.py TOOL DATA_DIR. Exits 77 (skipped) when the jsonschema module is missing.
"""
import json
import pathlib
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    print("jsonschema is not installed")
    sys.exit(77)

tool, data = sys.argv[1], pathlib.Path(sys.argv[2])
schema = json.loads((data / "sarif" / "sarif-schema-2.1.0.json").read_text())
validator = jsonschema.Draft4Validator(schema)
failures = []


def run(*args, stdin=""):
    done = subprocess.run([tool, "check", "--sarif", *args], input=stdin.encode(), capture_output=True)
    log = json.loads(done.stdout)
    for error in validator.iter_errors(log):
        failures.append(f"{args}: {error.message} at {list(error.absolute_path)}")
    return done.returncode, log


# Faults, with and without a range, and a syntax error; then a clean document; then none.
status, log = run("-f", str(data / "documents" / "mixed.sql"))
results = log["runs"][0]["results"]
rules = [rule["id"] for rule in log["runs"][0]["tool"]["driver"]["rules"]]
expected = [("UnknownColumnReference", 3, 8, 3, 12), ("UnknownColumnReference", 7, 1, 7, 31),
            ("ColumnCountMismatch", 8, 28, 8, 31), ("SyntaxError", 9, 8, 9, 8),
            ("UnknownColumnReference", 10, 38, 10, 43)]
got = [(r["ruleId"],) + tuple(r["locations"][0]["physicalLocation"]["region"][k]
                              for k in ("startLine", "startColumn", "endLine", "endColumn")) for r in results]
if got != expected:
    failures.append(f"results {got}, expected {expected}")
if rules != ["ColumnCountMismatch", "SyntaxError", "UnknownColumnReference"]:
    failures.append(f"rules {rules}")
if status != 3:
    failures.append(f"status {status} with a syntax error")

status, log = run("-f", "-", stdin="SELECT zone_id FROM zones; SELECT zone_id FROM zones")
if log["runs"][0]["results"] != [] or status != 0:
    failures.append(f"clean document: status {status}, {log['runs'][0]['results']}")
status, log = run("-f", "-", stdin="-- nothing")
if log["runs"][0]["results"] != [] or status != 0:
    failures.append(f"empty document: status {status}")

for failure in failures:
    print(failure)
sys.exit(1 if failures else 0)
