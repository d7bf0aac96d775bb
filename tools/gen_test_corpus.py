#!/usr/bin/env python3
"""The project's own small corpus: SQL statements over the GIS sample catalogue's tables, one a line.

Usage:  tools/gen_test_corpus.py [COUNT] > tests/data/corpus/statements.sql

Deterministic (fixed seed, no dates): rerunning it reproduces the committed file byte for byte.
The tests that walk many statements (round trips, source ranges, completion) read this file, so
that they run from a plain clone; the benchmarks fall back to it too.
"""
import random
import sys

TABLES = {
    "parcels": [("parcel_id", "n"), ("owner_id", "n"), ("zone_id", "n"), ("area_sqm", "n"),
                ("land_use", "s"), ("city_name", "s"), ("assessed_val", "n")],
    "owners": [("owner_id", "n"), ("full_nm", "s"), ("city_name", "s"), ("since_yr", "n")],
    "zones": [("zone_id", "n"), ("zone_code", "s"), ("max_height", "n"), ("district_id", "n")],
    "districts": [("district_id", "n"), ("district_nm", "s"), ("pop_total", "n")],
    "roads": [("road_id", "n"), ("road_nm", "s"), ("speed_lim", "n"), ("district_id", "n")],
    "buildings": [("bldg_id", "n"), ("parcel_id", "n"), ("height_m", "n"), ("bldg_kind", "s")],
}
LINKS = [("parcels", "owner_id", "owners"), ("parcels", "zone_id", "zones"),
         ("zones", "district_id", "districts"), ("roads", "district_id", "districts"),
         ("buildings", "parcel_id", "parcels")]
WORDS = ["north", "east", "hill", "river", "old town", "it''s", "a;b", "pending"]


class Gen:
    def __init__(self, seed):
        self.r = random.Random(seed)

    def col(self, table, kind=None, alias=None):
        cols = [c for c, k in TABLES[table] if kind is None or k == kind]
        name = self.r.choice(cols)
        return f"{alias}.{name}" if alias else name

    def literal(self, kind):
        if kind == "n":
            return str(self.r.randint(0, 5000)) if self.r.random() < 0.8 else f"{self.r.randint(0, 999)}.{self.r.randint(0, 99)}"
        return "'" + self.r.choice(WORDS) + "'"

    def predicate(self, table, alias, depth=0):
        kind = self.r.choice("nns")
        column = self.col(table, kind, alias)
        roll = self.r.random()
        if depth < 2 and roll < 0.2:
            op = self.r.choice(["AND", "OR"])
            return f"({self.predicate(table, alias, depth + 1)} {op} {self.predicate(table, alias, depth + 1)})"
        if roll < 0.3:
            return f"{column} IS {self.r.choice(['', 'NOT '])}NULL"
        if roll < 0.4:
            return f"{column} IN ({', '.join(self.literal(kind) for _ in range(self.r.randint(1, 4)))})"
        if roll < 0.5 and kind == "s":
            return f"{column} LIKE '%{self.r.choice(WORDS)[:3].replace(chr(39), '')}%'"
        if roll < 0.6 and kind == "n":
            a, b = sorted(self.r.randint(0, 3000) for _ in range(2))
            return f"{column} BETWEEN {a} AND {b}"
        if roll < 0.7 and depth == 0:
            other = self.r.choice(list(TABLES))
            return f"{column} IN (SELECT {self.col(other, kind)} FROM {other})"
        return f"{column} {self.r.choice(['=', '<>', '<', '>=', '<='])} {self.literal(kind)}"

    def expression(self, table, alias):
        roll = self.r.random()
        n = self.col(table, "n", alias)
        if roll < 0.5:
            return self.col(table, None, alias)
        if roll < 0.65:
            return f"{n} {self.r.choice(['+', '-', '*', '/'])} {self.r.randint(1, 9)}"
        if roll < 0.8:
            return f"{self.r.choice(['abs', 'coalesce'])}({n}{', 0' if self.r.random() < 0.5 else ''})"
        if roll < 0.9:
            return f"CASE WHEN {self.predicate(table, alias, 2)} THEN {self.literal('s')} ELSE {self.literal('s')} END"
        return f"CAST({n} AS integer)"

    def select(self):
        roll = self.r.random()
        if roll < 0.3:
            left, column, right = self.r.choice(LINKS)
            items = ", ".join([self.col(left, None, "t1"), self.col(right, None, "t2")])
            text = f"SELECT {items} FROM {left} AS t1 {self.r.choice(['JOIN', 'LEFT JOIN'])} {right} AS t2 ON t1.{column} = t2.{column}"
            if self.r.random() < 0.6:
                text += f" WHERE {self.predicate(left, 't1')}"
            return text
        table = self.r.choice(list(TABLES))
        if roll < 0.45:
            key = self.col(table)
            text = f"SELECT {key}, {self.r.choice(['count(*)', 'max(' + self.col(table, 'n') + ')', 'sum(' + self.col(table, 'n') + ')'])} AS a0 FROM {table} GROUP BY {key}"
            if self.r.random() < 0.4:
                text += f" HAVING count(*) > {self.r.randint(1, 50)}"
            return text
        items = "*" if self.r.random() < 0.15 else ", ".join(
            self.expression(table, None) + (f" AS c{i}" if self.r.random() < 0.3 else "") for i in range(self.r.randint(1, 3)))
        text = f"SELECT {'DISTINCT ' if self.r.random() < 0.1 else ''}{items} FROM {table}"
        if self.r.random() < 0.7:
            text += f" WHERE {self.predicate(table, None)}"
        if self.r.random() < 0.3:
            text += f" ORDER BY {self.col(table)} {self.r.choice(['ASC', 'DESC'])}"
        if self.r.random() < 0.2:
            text += f" LIMIT {self.r.randint(1, 500)}" + (f" OFFSET {self.r.randint(1, 99)}" if self.r.random() < 0.5 else "")
        return text

    def statement(self):
        roll = self.r.random()
        table = self.r.choice(list(TABLES))
        if roll < 0.1:
            columns = TABLES[table][:self.r.randint(2, len(TABLES[table]))]
            return (f"INSERT INTO {table} ({', '.join(c for c, _ in columns)}) VALUES "
                    f"({', '.join(self.literal(k) for _, k in columns)})")
        if roll < 0.2:
            column, kind = self.r.choice(TABLES[table])
            return f"UPDATE {table} SET {column} = {self.literal(kind)} WHERE {self.predicate(table, None)}"
        if roll < 0.25:
            return f"DELETE FROM {table} WHERE {self.predicate(table, None)}"
        if roll < 0.3:
            return f"{self.select()} UNION {'ALL ' if self.r.random() < 0.5 else ''}{self.select()}"
        return self.select()


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 400
    gen = Gen(20240611)
    for _ in range(count):
        print(gen.statement())


if __name__ == "__main__":
    main()
