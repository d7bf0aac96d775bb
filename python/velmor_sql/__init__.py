"""velmor-sql for Python: parse, write back, check and type the SQL of a GIS host.

    >>> import velmor_sql as vs
    >>> gis = vs.Catalogue.gis_sample()
    >>> [f.class_name for f in vs.check("SELECT nosuch FROM parcels", gis)]
    ['UnknownColumnReference']

Text goes in and comes out as ``str``. Every call releases the GIL while the library works, and
may be made from any number of threads at once; a catalogue is filled under a lock, so that a
change never runs under a check on another thread.
"""
from __future__ import annotations

import json
import os
from typing import Any, Iterable, Iterator, NamedTuple, Sequence

from . import _core


class SqlSyntaxError(ValueError):
    """A text that does not parse: the library's message, with the line and column of the
    token where the parse stopped (both from 1)."""

    def __init__(self, message: str, line: int, column: int) -> None:
        super().__init__(message)
        self.message = message
        self.line = line
        self.column = column


class CatalogueError(ValueError):
    """A catalogue that cannot be built or read; the message names the place and the fault."""


class Fault:
    """A semantic fault of a statement: its number (the library's error type), its class name,
    and its fields as attributes (``tableName``, ``columnName``, ``argumentTypes``, ...); texts
    are ``str``, counts ``int``, flags ``bool``, types as their readable names. ``range`` is
    where in the statement the fault is (from ``check``), or None; ``message`` is the fault in
    words for a person, in the catalogue's type names, with a "did you mean" where one fits
    (from ``check``; otherwise the data line)."""

    def __init__(self, number: int, class_name: str, fields: Sequence[tuple[str, Any]], line: str,
                 range: SourceRange | None = None, message: str | None = None) -> None:
        self.number = number
        self.class_name = class_name
        self.fields = dict(fields)
        self.range = range
        self.message = message if message else line
        self._line = line
        for name, value in fields:
            setattr(self, name, value)

    def __repr__(self) -> str:
        return f"Fault({self._line})"

    def __str__(self) -> str:
        return self._line

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Fault) and self._line == other._line

    def __hash__(self) -> int:
        return hash(self._line)


class SqlFault(ValueError):
    """Raised by ``columns`` and ``type_of`` when the statement has a fault; ``fault`` holds it."""

    def __init__(self, fault: Fault) -> None:
        super().__init__(str(fault))
        self.fault = fault


class SourceRange(NamedTuple):
    """A stretch of a statement: lines and columns from 1 (a column per character, tabs to the
    next stop of a grid of 4), the end being the place after the last character; and the byte
    offsets into the statement's UTF-8 text, the end one past the last byte."""

    begin_line: int
    begin_column: int
    end_line: int
    end_column: int
    begin_byte: int
    end_byte: int


class Column(NamedTuple):
    """A result column: its name, its type, and the table and column it comes from ("" for a
    calculated one)."""

    name: str
    type: str
    table: str
    original_name: str


_core._set_errors(SqlSyntaxError, CatalogueError)


class Catalogue(_core.Catalogue):
    """The host kit's in-memory catalogue: tables, functions, operators, conversions, ranking
    and precedence. Names match without regard to case."""

    @classmethod
    def standard(cls) -> "Catalogue":
        """An empty catalogue with the standard SQL set: the built-in operators over the plain
        types, CASE, CAST, the usual conversions and ranking, and the grammar's precedence."""
        catalogue = cls()
        catalogue.add_standard_sql()
        return catalogue

    @classmethod
    def gis_sample(cls) -> "Catalogue":
        """The land-registry sample the velmor-sql tool uses by default."""
        catalogue = cls()
        catalogue.load_json_text(cls.gis_sample_text(), "gis-sample")
        return catalogue

    @classmethod
    def from_json(cls, source: str | os.PathLike[str] | dict[str, Any], standard: bool = False) -> "Catalogue":
        """A catalogue from a catalogue file (a path) or its content as a dict, in the format of
        docs/catalogue.md. A file with ``"extends": "standard"`` builds on the standard SQL set
        by itself; ``standard`` starts from that set for a file that does not say so."""
        catalogue = cls.standard() if standard else cls()
        catalogue.load_json(source)
        return catalogue

    @classmethod
    def _from_json_text(cls, text: str) -> "Catalogue":
        catalogue = cls()
        catalogue.load_json_text(text, "pickle")
        return catalogue

    def __reduce__(self) -> tuple[Any, tuple[str]]:
        # Pickled as its catalogue file, which reads back into an equal catalogue: so a catalogue
        # travels to worker processes (multiprocessing, Dask) as any argument does.
        return (type(self)._from_json_text, (self.to_json_text(),))

    def load_json(self, source: str | os.PathLike[str] | dict[str, Any]) -> None:
        """Adds a catalogue file (a path) or its content as a dict to this catalogue."""
        if isinstance(source, dict):
            self.load_json_text(json.dumps(source), "dict")
            return
        path = os.fspath(source)
        try:
            with open(path, encoding="utf-8") as file:
                text = file.read()
        except OSError as error:
            raise CatalogueError(f"catalogue {path}: cannot be read: {error.strerror}") from None
        self.load_json_text(text, path)

    def add_table(self, name: str, columns: dict[str, str] | Sequence[tuple[str, str]]) -> None:  # type: ignore[override]
        """Adds a table; ``columns`` maps each column's name to a type text ("Integer",
        "VarChar(40)", "Decimal(12,2)", a host type name such as "Geometry")."""
        pairs = list(columns.items()) if isinstance(columns, dict) else list(columns)
        super().add_table(name, pairs)

    def add_function(self, name: str, params: Sequence[str], result: str, *,  # type: ignore[override]
                     optional: Sequence[str] = (), variadic: bool = False, kind: str = "ordinary") -> None:
        """Adds one overload of a function: parameter type texts (plain or host type names, "any",
        or a type set such as "numericTypes"), the result type text, optional trailing
        parameters, whether the last parameter repeats, and the kind: "ordinary", "aggregate"
        or "context-opaque"."""
        super().add_function(name, list(params), result, list(optional), variadic, kind)

    def to_json(self) -> dict[str, Any]:
        """The catalogue as catalogue-file content, which reads back into an equal catalogue."""
        return json.loads(self.to_json_text())


_STANDARD = "standard"


def parse(sql: str) -> dict[str, Any]:
    """The syntax tree of one statement or expression as plain data: dicts whose "node" key
    names the record kind, with the record's fields in order (as ``velmor-sql tree`` prints).
    Raises SqlSyntaxError."""
    return _core.parse(sql)


def tokens(sql: str) -> list[tuple[int, int, str, str]]:
    """The tokens of a text as (line, column, name, text), ending with "<TERMINATION>"; text is
    empty but for names, numbers and strings."""
    return _core.tokens(sql)


def format(sql: str, context: Catalogue | str | None = _STANDARD) -> str:  # noqa: A001
    """The canonical text of a statement. ``context`` gives the operators' precedence, which
    decides the parentheses: "standard" (the grammar's), a catalogue's, or None (every nested
    operation in parentheses). Raises SqlSyntaxError, or ValueError for a tree that has no
    canonical text (``ROW()``)."""
    return _core.format(sql, context)


def rename(sql: str, old: str, new: str, context: Catalogue | str | None = _STANDARD) -> str:
    """The canonical text with the table ``old`` written as ``new`` (exact match; aliases stay)."""
    return _core.rename(sql, old, new, context)


def check(sql: str, catalogue: Catalogue, scoping: str = "standard") -> list[Fault]:
    """The faults of a statement against the catalogue, each with the range of the node it is
    about (None where no single node is meant) and its message; empty when it is valid.

    ``scoping="standard"`` (the default here) checks any statement kind by standard SQL's rules,
    every clause at every depth, and gives all faults in the order of the text;
    ``"compatible"`` is the library's own default: a query or an UPDATE, and the first fault
    that ends the check. Raises SqlSyntaxError, or ValueError for a statement that cannot be
    checked or an unknown scoping."""
    return [Fault(*data, range=SourceRange(*where) if where else None, message=message)
            for data, where, message in _core.check(sql, catalogue, scoping)]


def _or_fault(result: Any) -> Any:
    if isinstance(result, tuple) and len(result) == 2 and result[0] == "fault":
        raise SqlFault(Fault(*result[1]))
    return result


def columns(sql: str, catalogue: Catalogue, scoping: str = "standard") -> list[Column]:
    """The result columns of a query (in standard scoping also of UNION, VALUES and TABLE), types
    in the catalogue's own names. Raises SqlSyntaxError, SqlFault (the first fault), or
    ValueError for a statement that is no query."""
    return [Column(*row) for row in _or_fault(_core.columns(sql, catalogue, scoping))]


def type_of(expression: str, catalogue: Catalogue, tables: Sequence[str] = (), scoping: str = "standard") -> str:
    """The type of an expression whose columns come from ``tables`` (side by side, as in a FROM
    list), as "Integer", "VarChar(50)", "Decimal(5,3)", "Geometry" (the catalogue's own names),
    "Tuple(...)". In standard scoping a subquery has a scope of its own and one column counts as
    its value. Raises SqlSyntaxError, SqlFault, or ValueError for a text that is no expression."""
    return _or_fault(_core.type_of(expression, catalogue, list(tables), scoping))


class Candidate(NamedTuple):
    """Something that may stand at the cursor: its text, its kind ("keyword", "punctuation",
    "table", "alias", "column", "function") and a column's type or a function's overloads."""

    text: str
    kind: str
    detail: str


class Completion(NamedTuple):
    """What ``complete`` offers: ``text[start:end]`` is the word under the cursor that a choice
    replaces (empty where no word is), then the candidates, best first."""

    start: int
    end: int
    candidates: list[Candidate]


def complete(text: str, offset: int, catalogue: Catalogue) -> Completion:
    """What may stand at ``offset`` (a str index; clamped into the text) of a text of one or more
    statements: where a name may stand, the names that standard scoping resolves there (the
    columns of the nearest query level, then those of the levels around it, output names in
    ORDER BY, tables after FROM), then functions, keywords and punctuation. Nothing inside a
    string, a bracketed name or a comment, or after a syntax error. Never raises."""
    start, end, candidates = _core.complete(text, offset, catalogue)
    return Completion(start, end, [Candidate(*candidate) for candidate in candidates])


class Hover(NamedTuple):
    """What the thing under the cursor is: ``kind`` ("column", "table", "function", "expression",
    "output name"), ``text[start:end]`` the thing, a one-line ``title``, further ``details`` (a
    table's columns, a function's overloads with the chosen one first) and its ``type``."""

    kind: str
    start: int
    end: int
    title: str
    details: list[str]
    type: str


def hover(text: str, offset: int, catalogue: Catalogue) -> Hover | None:
    """What stands at ``offset``, or None on keywords, white space and comments."""
    found = _core.hover(text, offset, catalogue)
    return None if found is None else Hover(*found)


class Signature(NamedTuple):
    """One overload as ``label`` ("buffer(Geometry, Double) -> Geometry") and where each of its
    parameters stands in the label (str slices)."""

    label: str
    parameters: list[tuple[int, int]]


class SignatureHelp(NamedTuple):
    """The call around the cursor: its function, ``text[start:end]`` the call, its overloads, the
    one its arguments resolve to and the argument the cursor is in (from 0)."""

    function: str
    start: int
    end: int
    signatures: list[Signature]
    active_signature: int
    active_parameter: int


def signature_help(text: str, offset: int, catalogue: Catalogue) -> SignatureHelp | None:
    """Signature help inside the parentheses of a call of a catalogue function, else None."""
    found = _core.signature_help(text, offset, catalogue)
    if found is None:
        return None
    function, start, end, signatures, active_signature, active_parameter = found
    return SignatureHelp(function, start, end, [Signature(label, list(parameters)) for label, parameters in signatures],
                         active_signature, active_parameter)


class Definition(NamedTuple):
    """``text[start:end]`` is the name at the cursor, ``text[target_start:target_end]`` where it
    is declared."""

    start: int
    end: int
    target_start: int
    target_end: int


def definition(text: str, offset: int, catalogue: Catalogue) -> Definition | None:
    """Where the alias, derived table's column or output name at ``offset`` is declared."""
    found = _core.definition(text, offset, catalogue)
    return None if found is None else Definition(*found)


def occurrences(text: str, offset: int, catalogue: Catalogue) -> list[tuple[int, int]]:
    """Every (start, end) in its statement where the alias or output name at ``offset`` is
    declared or used, in text order; empty for anything else."""
    return [tuple(pair) for pair in _core.occurrences(text, offset, catalogue)]


class Place(NamedTuple):
    """A place in a document: line and column from 1 (a column per character, tabs to a grid of
    4), and the UTF-8 byte offset from 0."""

    line: int
    column: int
    offset: int


class Statement(NamedTuple):
    """One statement of a document: its number from 0, its text as the parser reads it (comments
    blanked), its text as written, and the places of its first character and right after its
    last."""

    index: int
    text: str
    source: str
    begin: Place
    end: Place


def split_statements(text: str, *, comments: bool = True, lines: bool = False) -> list[Statement]:
    """The statements of a document (an SQL file, a query log), split at ';' outside strings,
    bracketed names and comments ("--" to the line's end and "/* */"; ``comments=False`` reads
    them as text). Statements of nothing but blanks and comments are skipped; a last one without
    ';' counts. With ``lines`` a line's end ends a statement too (one statement a line)."""
    return [Statement(index, sql, source, Place(*begin), Place(*end))
            for index, sql, source, begin, end in _core.split_statements(text, comments, lines)]


class CheckResult(NamedTuple):
    """What checking one statement gave: ``outcome`` is "ok", "faults", "syntax error" or "not
    checkable" (neither a query nor an UPDATE, ``kind`` names it); ``faults`` as ``check`` gives
    them, with ranges in the document for a Statement; ``syntax_error`` and ``syntax_place`` for
    a statement that does not parse."""

    outcome: str
    faults: list[Fault]
    syntax_error: str | None
    syntax_place: Place | None
    kind: str | None

    @property
    def ok(self) -> bool:
        return self.outcome == "ok"


def check_many(statements: Iterable[str | Statement], catalogue: Catalogue, *, jobs: int | None = None,
               batch: int = 512, scoping: str = "standard") -> Iterator[CheckResult]:
    """Checks statements as they come from any iterable (a file's lines, ``split_statements``,
    a generator over a log), ``batch`` at a time on ``jobs`` threads (default: the machine's
    processors) with the GIL released; yields one result per statement, in their order. A
    Statement's faults are placed in its document; a str's in itself. ``scoping`` as for
    ``check``: with "compatible" only a query or an UPDATE is checked, other statements are "not
    checkable"."""
    jobs = jobs if jobs is not None else (os.cpu_count() or 1)
    if jobs < 1 or batch < 1:
        raise ValueError("jobs and batch must be at least 1")
    pending: list[tuple[str, str, int, int, int]] = []

    def run() -> Iterator[CheckResult]:
        for outcome, faults, message, place, kind in _core.check_batch(pending, catalogue, jobs, scoping):
            yield CheckResult(outcome,
                              [Fault(*data, range=SourceRange(*where) if where else None, message=message)
                               for data, where, message in faults],
                              message, Place(*place) if place else None, kind)
        pending.clear()

    for item in statements:
        if isinstance(item, Statement):
            pending.append((item.text, item.source, item.begin.line, item.begin.column, item.begin.offset))
        else:
            pending.append((item, item, 1, 1, 0))
        if len(pending) >= batch:
            yield from run()
    if pending:
        yield from run()


__all__ = ["Candidate", "Catalogue", "CatalogueError", "CheckResult", "Column", "Completion", "Definition", "Fault",
           "Hover", "Signature", "SignatureHelp", "definition", "hover", "occurrences", "signature_help", "Place",
           "SourceRange", "SqlFault", "SqlSyntaxError", "Statement", "check", "check_many", "columns", "complete",
           "format", "parse", "rename", "split_statements", "tokens", "type_of"]
