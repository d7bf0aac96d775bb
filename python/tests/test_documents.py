"""Documents from Python: statements split with their places, many statements checked on
threads in order, catalogues that pickle, and the Dask example on a cluster of two processes."""
from __future__ import annotations

import importlib.util
import pathlib
import pickle

import pytest

import velmor_sql as vs

EXAMPLE = pathlib.Path(__file__).parents[1] / "examples" / "check_log_dask.py"


def test_split_statements_places_and_skips():
    text = "SELECT 'a;b' FROM t; -- x;\n;\r\n\tSELECT [c] FROM u /* ; */"
    statements = vs.split_statements(text)
    assert [s.source for s in statements] == ["SELECT 'a;b' FROM t", "SELECT [c] FROM u"]
    assert statements[1].begin == vs.Place(3, 5, 31)
    assert statements[1].end == vs.Place(3, 22, 48)
    assert [s.index for s in statements] == [0, 1]
    assert [s.source for s in vs.split_statements("SELECT 1 -- a\nSELECT 2", comments=False)] == [
        "SELECT 1 -- a\nSELECT 2"]
    assert len(vs.split_statements("SELECT 1\nSELECT 2", lines=True)) == 2


def test_check_many_keeps_order_and_places(gis):
    statements = ["SELECT parcel_id FROM parcels", "SELECT nope FROM parcels", "SELECT FROM",
                  "INSERT INTO parcels VALUES (1)"] * 300
    results = list(vs.check_many(iter(statements), gis, jobs=3, batch=7, scoping="compatible"))
    assert [r.outcome for r in results] == ["ok", "faults", "syntax error", "not checkable"] * 300
    assert results[1].faults[0].range.begin_column == 8
    assert results[1].faults[0].message == 'unknown column "nope"'
    standard = list(vs.check_many(["INSERT INTO parcels VALUES (1)"], gis))
    assert standard[0].outcome == "faults" and standard[0].faults[0].class_name == "ColumnCountMismatch"
    assert results[2].syntax_place == vs.Place(1, 8, 7)
    assert results[3].kind == "InsertStatement"
    document = "SELECT parcel_id FROM parcels;\n  SELECT nope FROM parcels"
    placed = list(vs.check_many(vs.split_statements(document), gis, jobs=1))
    assert (placed[1].faults[0].range.begin_line, placed[1].faults[0].range.begin_column) == (2, 10)
    with pytest.raises(ValueError):
        list(vs.check_many(["SELECT 1 FROM t"], gis, jobs=0))


def test_catalogues_pickle(gis, tmp_path):
    again = pickle.loads(pickle.dumps(gis))
    assert again.table_names() == gis.table_names()
    assert [f.class_name for f in vs.check("SELECT nope FROM parcels", again)] == ["UnknownColumnReference"]
    file = tmp_path / "host.json"
    file.write_text('{"extends": "standard", "tables": [{"name": "lots", "columns": '
                    '[{"name": "shape", "type": "Geometry"}]}]}')
    host = vs.Catalogue.from_json(file)
    assert vs.check("SELECT shape FROM lots WHERE shape INTERSECTS shape", host) == []
    assert vs.check("SELECT shape FROM lots WHERE shape INTERSECTS shape", pickle.loads(pickle.dumps(host))) == []


def test_dask_example_on_two_worker_processes(gis, tmp_path):
    pytest.importorskip("dask.bag")
    distributed = pytest.importorskip("distributed")
    module_spec = importlib.util.spec_from_file_location("check_log_dask", EXAMPLE)
    example = importlib.util.module_from_spec(module_spec)
    module_spec.loader.exec_module(example)
    paths = []
    for part in range(4):
        path = tmp_path / f"part-{part}.sql"
        path.write_text("SELECT parcel_id FROM parcels;\n" * 20 + f"SELECT nope{part} FROM parcels;\nSELECT FROM;\n")
        paths.append(str(path))
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None,
                                  silence_logs=True) as cluster, distributed.Client(cluster) as client:
        summaries = example.check_log(paths, gis, client)
    assert [s["path"] for s in summaries] == paths
    assert summaries == [example.check_partition(path, gis) for path in paths]
    assert summaries[2]["counts"] == {"ok": 20, "faults": 1, "syntax error": 1}
    assert summaries[2]["faults"] == [(paths[2], 21, 8, "UnknownColumnReference"), (paths[2], 22, 8, "SyntaxError")]
