from typing import Iterable, Iterator, Any, NamedTuple, Sequence
import os

class SqlSyntaxError(ValueError):
    message: str
    line: int
    column: int
    def __init__(self, message: str, line: int, column: int) -> None: ...

class CatalogueError(ValueError): ...

class SourceRange(NamedTuple):
    begin_line: int
    begin_column: int
    end_line: int
    end_column: int
    begin_byte: int
    end_byte: int

class Fault:
    number: int
    class_name: str
    fields: dict[str, str | int | bool]
    range: SourceRange | None
    message: str
    def __init__(self, number: int, class_name: str, fields: Sequence[tuple[str, Any]], line: str,
                 range: SourceRange | None = ..., message: str | None = ...) -> None: ...
    def __getattr__(self, name: str) -> str | int | bool: ...

class SqlFault(ValueError):
    fault: Fault
    def __init__(self, fault: Fault) -> None: ...

class Column(NamedTuple):
    name: str
    type: str
    table: str
    original_name: str

class Catalogue:
    def __init__(self) -> None: ...
    @classmethod
    def standard(cls) -> Catalogue: ...
    @classmethod
    def gis_sample(cls) -> Catalogue: ...
    @classmethod
    def from_json(cls, source: str | os.PathLike[str] | dict[str, Any], standard: bool = ...) -> Catalogue: ...
    @staticmethod
    def gis_sample_text() -> str: ...
    def add_standard_sql(self) -> None: ...
    def load_json(self, source: str | os.PathLike[str] | dict[str, Any]) -> None: ...
    def load_json_text(self, text: str, source: str) -> None: ...
    def to_json(self) -> dict[str, Any]: ...
    def to_json_text(self) -> str: ...
    def add_table(self, name: str, columns: dict[str, str] | Sequence[tuple[str, str]]) -> None: ...
    def add_function(self, name: str, params: Sequence[str], result: str, *, optional: Sequence[str] = ...,
                     variadic: bool = ..., kind: str = ...) -> None: ...
    def add_conversions(self, from_types: Sequence[str], to_types: Sequence[str]) -> None: ...
    def table_names(self) -> list[str]: ...
    def function_names(self) -> list[str]: ...

def parse(sql: str) -> dict[str, Any]: ...
def tokens(sql: str) -> list[tuple[int, int, str, str]]: ...
def format(sql: str, context: Catalogue | str | None = ...) -> str: ...
def rename(sql: str, old: str, new: str, context: Catalogue | str | None = ...) -> str: ...
def check(sql: str, catalogue: Catalogue, scoping: str = ...) -> list[Fault]: ...
def columns(sql: str, catalogue: Catalogue, scoping: str = ...) -> list[Column]: ...
def type_of(expression: str, catalogue: Catalogue, tables: Sequence[str] = ..., scoping: str = ...) -> str: ...

class Candidate(NamedTuple):
    text: str
    kind: str
    detail: str

class Completion(NamedTuple):
    start: int
    end: int
    candidates: list[Candidate]

def complete(text: str, offset: int, catalogue: Catalogue) -> Completion: ...

class Hover(NamedTuple):
    kind: str
    start: int
    end: int
    title: str
    details: list[str]
    type: str

def hover(text: str, offset: int, catalogue: Catalogue) -> Hover | None: ...

class Signature(NamedTuple):
    label: str
    parameters: list[tuple[int, int]]

class SignatureHelp(NamedTuple):
    function: str
    start: int
    end: int
    signatures: list[Signature]
    active_signature: int
    active_parameter: int

def signature_help(text: str, offset: int, catalogue: Catalogue) -> SignatureHelp | None: ...

class Definition(NamedTuple):
    start: int
    end: int
    target_start: int
    target_end: int

def definition(text: str, offset: int, catalogue: Catalogue) -> Definition | None: ...
def occurrences(text: str, offset: int, catalogue: Catalogue) -> list[tuple[int, int]]: ...

class Place(NamedTuple):
    line: int
    column: int
    offset: int

class Statement(NamedTuple):
    index: int
    text: str
    source: str
    begin: Place
    end: Place

def split_statements(text: str, *, comments: bool = ..., lines: bool = ...) -> list[Statement]: ...

class CheckResult(NamedTuple):
    outcome: str
    faults: list[Fault]
    syntax_error: str | None
    syntax_place: Place | None
    kind: str | None
    @property
    def ok(self) -> bool: ...

def check_many(statements: Iterable[str | Statement], catalogue: Catalogue, *, jobs: int | None = ...,
               batch: int = ..., scoping: str = ...) -> Iterator[CheckResult]: ...
