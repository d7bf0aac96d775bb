// Types of the velmor-sql package. Offsets are JavaScript string indexes (UTF-16 code units);
// lines and columns count as the command-line tool does (from 1, a column per code point, tabs to
// a grid of 4).

/** A place in a text. */
export interface Place {
  line: number;
  column: number;
  offset: number;
}

/** A stretch of a text, `end` one past its last character. */
export interface Range {
  begin: Place;
  end: Place;
}

/** A semantic fault of a statement. */
export interface Fault {
  /** The fault's class ("UnknownColumnReference"). */
  className: string;
  /** The class's number, stable across releases. */
  number: number;
  /** The fault in words ("unknown column \"nosuch\""). */
  message: string;
  /** The number, class and fields on one line, as the library's error text has them. */
  text: string;
  /** The class's fields by name (table and column names, type descriptions, flags). */
  fields: Record<string, string | number | boolean>;
}

/** A fault of `check`, with the range of what it is about, or null when no single node is meant. */
export interface PlacedFault extends Fault {
  range: Range | null;
}

/** One statement of a document, as `checkDocument` reads it. */
export interface DocumentStatement {
  outcome: 'ok' | 'faults' | 'syntax error' | 'not checkable';
  begin: Place;
  end: Place;
  /** The statement as the parser reads it (comments blanked). */
  text: string;
  faults: PlacedFault[];
  /** Present when the outcome is "syntax error": the message without its place, and the place. */
  syntaxError?: { message: string; place: Place };
  /** The record name of a statement the scoping mode does not check ("DeleteStatement"). */
  kind?: string;
}

/** A result column of a query. */
export interface Column {
  /** The column's name; a generated one ("column_1") for an expression without alias. */
  name: string;
  /** Every name the column answers to. */
  names: string[];
  /** Its type in the catalogue's names ("Decimal(12,2)"). */
  type: string;
  /** The table and column it comes from, or "" for an expression. */
  table: string;
  column: string;
}

export type CandidateKind = 'keyword' | 'punctuation' | 'table' | 'alias' | 'column' | 'function';

export interface Candidate {
  text: string;
  kind: CandidateKind;
  /** A column's type, a function's overloads; "" otherwise. */
  detail: string;
}

export interface Completion {
  /** The range a candidate replaces: the half-typed word before the cursor, or empty. */
  from: number;
  to: number;
  /** By kind, then by text. */
  candidates: Candidate[];
}

export interface Hover {
  kind: 'column' | 'table' | 'function' | 'expression' | 'output name';
  from: number;
  to: number;
  title: string;
  details: string[];
  /** The type in the catalogue's names, or "". */
  type: string;
}

/** The overloads of the call at a cursor, the one the arguments resolve to, and the argument at the cursor. */
export interface SignatureHelp {
  function: string;
  /** Each overload's label ("buffer(Geometry, Double) -> Geometry") and its parameters' places in the label. */
  signatures: { label: string; parameters: { from: number; to: number }[] }[];
  activeSignature: number;
  /** From 0. */
  activeParameter: number;
  /** The call, from the function's name to its closing parenthesis (or the statement's end). */
  from: number;
  to: number;
}

export interface CatalogueTable {
  name: string;
  columns: { name: string; type: string }[];
}

/** A syntax tree node: its record name in `node`, its fields under their own names. */
export interface TreeNode {
  node: string;
  [field: string]: unknown;
}

export interface CheckOptions {
  /** "standard" (the default) or "compatible". */
  scoping?: 'standard' | 'compatible';
}

/** The precedence canonical text is written with: the grammar's ("standard"), a catalogue's, or none (null). */
export type WritingContext = 'standard' | Catalogue | null;

export class SqlSyntaxError extends Error {
  line: number;
  column: number;
  offset: number;
}
export class CatalogueError extends Error {}
export class SqlValueError extends Error {}
export class SqlFaultError extends Error {
  fault: Fault;
}

/** Tables, functions, operators and types that statements are checked against. Read-only. */
export class Catalogue {
  private constructor();
  tables(): CatalogueTable[];
  functions(): string[];
  /** The catalogue as a JSON catalogue file. */
  toJson(): string;
  /** Frees it now rather than when it is collected; using it after throws SqlValueError. */
  dispose(): void;
}

/** The loaded library. Every call is synchronous; errors are thrown as the classes above. */
export class VelmorSql {
  private constructor();
  /** Throws SqlSyntaxError. */
  parse(sql: string): TreeNode;
  /** Throws SqlSyntaxError; SqlValueError for a tree without canonical text. */
  format(sql: string, context?: WritingContext): string;
  rename(sql: string, from: string, to: string, context?: WritingContext): string;
  /** Empty when the statement is good. Throws SqlSyntaxError; SqlValueError for a statement the scoping mode does not check. */
  check(sql: string, catalogue: Catalogue, options?: CheckOptions): PlacedFault[];
  /** Every statement of a text of many, split at ";" outside strings and comments. Never throws for the text. */
  checkDocument(text: string, catalogue: Catalogue, options?: CheckOptions): DocumentStatement[];
  /** Throws SqlFaultError for the fault that stops it, SqlValueError for a statement without result columns. */
  columns(sql: string, catalogue: Catalogue, options?: CheckOptions): Column[];
  /** Never throws for the text; an offset outside it is clamped. */
  complete(sql: string, offset: number, catalogue: Catalogue): Completion;
  hover(sql: string, offset: number, catalogue: Catalogue): Hover | null;
  /** Null outside any call, or for a function the catalogue does not have. */
  signatureHelp(sql: string, offset: number, catalogue: Catalogue): SignatureHelp | null;
  standardCatalogue(): Catalogue;
  gisSample(): Catalogue;
  gisSampleText(): string;
  /** Throws CatalogueError naming the place in the file. */
  catalogueFromJson(text: string, source?: string): Catalogue;
}

export interface LoadOptions {
  /** The module's bytes, for a bundle that carries them. */
  wasmBinary?: ArrayBuffer | Uint8Array;
  /** Where the browser finds velmor-sql.wasm. */
  locateFile?: (path: string) => string;
}

/** Loads the WebAssembly module (Node reads it beside the package's files, a browser fetches it). */
export function load(options?: LoadOptions): Promise<VelmorSql>;
