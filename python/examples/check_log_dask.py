#!/usr/bin/env python3
"""Checks a partitioned query log with Dask: one task per partition (a file of the log), on a
cluster of worker processes.

    python3 check_log_dask.py [--catalog FILE] [--workers N] [--lines] PART.sql [PART.sql ...]

Each worker splits its partition into statements (at ';', or one a line with --lines) and checks
them with ``velmor_sql.check_many`` on its threads; the catalogue travels to the workers pickled
(as its catalogue file). The client gathers one summary per partition and the faults with their
places in the partition's file. Here the cluster is a ``distributed.LocalCluster`` of processes on
this machine; for a cluster of machines, pass the scheduler's address to ``Client`` instead
(``Client("tcp://scheduler:8786")``) and leave the rest as it is: the workers need velmor_sql
installed and the partitions where they can read them.
"""
from __future__ import annotations

import argparse
import collections
import sys
from typing import Any

import velmor_sql as vs


def check_partition(path: str, catalogue: vs.Catalogue, lines: bool = False) -> dict[str, Any]:
    """One partition's summary (counts by outcome) and its faults as (file, line, column, class)."""
    with open(path, encoding="utf-8", errors="surrogateescape") as file:
        text = file.read()
    counts: collections.Counter[str] = collections.Counter()
    faults: list[tuple[str, int, int, str]] = []
    statements = vs.split_statements(text, lines=lines)
    for statement, result in zip(statements, vs.check_many(statements, catalogue)):
        counts[result.outcome] += 1
        for fault in result.faults:
            place = fault.range or vs.SourceRange(statement.begin.line, statement.begin.column, 0, 0, 0, 0)
            faults.append((path, place.begin_line, place.begin_column, fault.class_name))
        if result.syntax_place:
            faults.append((path, result.syntax_place.line, result.syntax_place.column, "SyntaxError"))
    return {"path": path, "counts": dict(counts), "faults": faults}


def check_log(paths: list[str], catalogue: vs.Catalogue, client: Any, lines: bool = False) -> list[dict[str, Any]]:
    """The partitions' summaries in the order of ``paths``, computed on ``client``'s cluster."""
    import dask.bag as db

    bag = db.from_sequence(paths, npartitions=len(paths)).map(check_partition, catalogue=catalogue, lines=lines)
    return client.compute(bag).result()


def main(argv: list[str]) -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("paths", nargs="+")
    parser.add_argument("--catalog", help="a catalogue file (default: the GIS sample)")
    parser.add_argument("--workers", type=int, default=2)
    parser.add_argument("--lines", action="store_true", help="one statement a line")
    args = parser.parse_args(argv)
    from distributed import Client, LocalCluster

    catalogue = vs.Catalogue.from_json(args.catalog) if args.catalog else vs.Catalogue.gis_sample()
    with LocalCluster(n_workers=args.workers, threads_per_worker=1, processes=True, dashboard_address=None) as cluster, \
            Client(cluster) as client:
        summaries = check_log(args.paths, catalogue, client, lines=args.lines)
    total: collections.Counter[str] = collections.Counter()
    for summary in summaries:
        total.update(summary["counts"])
        for path, line, column, name in summary["faults"]:
            print(f"{path}:{line}:{column}: {name}")
    print(", ".join(f"{count} {outcome}" for outcome, count in sorted(total.items())), file=sys.stderr)
    return 1 if total["faults"] or total["syntax error"] else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
