// velmor-sql for JavaScript: the library compiled to WebAssembly, behind plain functions that take
// and give strings, numbers and plain objects. Offsets are JavaScript string indexes (UTF-16).
import createModule from '../dist/velmor-sql.mjs';

/** A text that does not parse; `line` and `column` count as the tool does, `offset` in UTF-16. */
export class SqlSyntaxError extends Error {
  constructor(message, place) {
    super(message);
    this.name = 'SqlSyntaxError';
    this.line = place ? place.line : 0;
    this.column = place ? place.column : 0;
    this.offset = place ? place.offset : 0;
  }
}

/** A catalogue file that cannot be read; the message names the place in the file. */
export class CatalogueError extends Error {
  constructor(message) {
    super(message);
    this.name = 'CatalogueError';
  }
}

/** A statement the call does not apply to (an INSERT for columns), or a bad argument. */
export class SqlValueError extends Error {
  constructor(message) {
    super(message);
    this.name = 'SqlValueError';
  }
}

/** The fault that stops `columns` (an unknown table, a type clash); `fault` holds its data. */
export class SqlFaultError extends Error {
  constructor(fault) {
    super(fault.message);
    this.name = 'SqlFaultError';
    this.fault = fault;
  }
}

function raise(error) {
  switch (error.kind) {
    case 'syntax': throw new SqlSyntaxError(error.message, error.place);
    case 'catalogue': throw new CatalogueError(error.message);
    default: throw new SqlValueError(error.message);
  }
}

// Reads a core answer; a call that overran the engine's stack leaves the module's own stack
// pointer where it was, so it is put back before the error goes on.
function call(core, name, ...args) {
  const top = core.stackSave ? core.stackSave() : undefined;
  let text;
  try {
    text = core[name](...args);
  } catch (error) {
    if (top !== undefined) core.stackRestore(top);
    if (error instanceof RangeError) throw new SqlValueError('the statement nests too deeply for this engine');
    throw error;
  }
  const result = JSON.parse(text);
  if (result.error) raise(result.error);
  return result;
}

const disposer = typeof FinalizationRegistry === 'function'
  ? new FinalizationRegistry(({ core, handle }) => core.catalogueDispose(handle))
  : null;

/** Tables, functions, operators and types that statements are checked against. Read-only. */
export class Catalogue {
  constructor(core, handle) {
    this._core = core;
    this._handle = handle;
    disposer?.register(this, { core, handle }, this);
  }

  /** Each table with its columns and their types: [{name, columns: [{name, type}]}]. */
  tables() { return call(this._core, 'catalogueTables', this._live()).tables; }

  /** The names of the functions. */
  functions() { return call(this._core, 'catalogueTables', this._live()).functions; }

  /** The catalogue as a JSON catalogue file. */
  toJson() { return call(this._core, 'catalogueToJson', this._live()).text; }

  /** Frees the catalogue now rather than when it is collected; it may not be used after. */
  dispose() {
    if (this._handle === 0) return;
    disposer?.unregister(this);
    this._core.catalogueDispose(this._handle);
    this._handle = 0;
  }

  _live() {
    if (this._handle === 0) throw new SqlValueError('the catalogue was disposed of');
    return this._handle;
  }
}

function handleOf(context) {
  if (context === undefined || context === 'standard') return -1;
  if (context === null) return 0;
  if (context instanceof Catalogue) return context._live();
  throw new SqlValueError('context must be "standard", a Catalogue or null');
}

function catalogueOf(catalogue) {
  if (!(catalogue instanceof Catalogue)) throw new SqlValueError('a Catalogue is needed');
  return catalogue._live();
}

function scopingOf(options) {
  const scoping = options?.scoping ?? 'standard';
  if (scoping !== 'standard' && scoping !== 'compatible') {
    throw new SqlValueError('scoping must be "standard" or "compatible"');
  }
  return scoping;
}

function offsetOf(offset) {
  if (typeof offset !== 'number' || Number.isNaN(offset)) throw new SqlValueError('an offset must be a number');
  return offset;
}

/** The library, once loaded: every call is synchronous. */
export class VelmorSql {
  constructor(core) { this._core = core; }

  /** The syntax tree as plain objects, each with its record name in `node`. */
  parse(sql) { return call(this._core, 'parse', String(sql)).tree; }

  /** Canonical SQL; `context` gives the precedence: "standard" (the default), a Catalogue, or null. */
  format(sql, context) { return call(this._core, 'format', String(sql), handleOf(context)).text; }

  /** Canonical SQL with table `from` renamed `to` wherever the statement names it. */
  rename(sql, from, to, context) {
    return call(this._core, 'rename', String(sql), String(from), String(to), handleOf(context)).text;
  }

  /** The faults of one statement, each with its message and range; empty when it is good. */
  check(sql, catalogue, options) {
    return call(this._core, 'check', String(sql), catalogueOf(catalogue), scopingOf(options)).faults;
  }

  /** Every statement of a text of many (split at ";"), with its outcome and faults. */
  checkDocument(text, catalogue, options) {
    return call(this._core, 'checkDocument', String(text), catalogueOf(catalogue), scopingOf(options)).statements;
  }

  /** The result columns of a query: [{name, names, type, table, column}]. */
  columns(sql, catalogue, options) {
    const result = call(this._core, 'columns', String(sql), catalogueOf(catalogue), scopingOf(options));
    if (result.fault) throw new SqlFaultError(result.fault);
    return result.columns;
  }

  /** What may stand at `offset`: {from, to, candidates: [{text, kind, detail}]}. */
  complete(sql, offset, catalogue) {
    return call(this._core, 'complete', String(sql), offsetOf(offset), catalogueOf(catalogue));
  }

  /** What the thing at `offset` is ({kind, from, to, title, details, type}), or null. */
  hover(sql, offset, catalogue) {
    return call(this._core, 'hover', String(sql), offsetOf(offset), catalogueOf(catalogue)).hover;
  }

  /**
   * The call whose parentheses hold `offset`: {function, signatures: [{label, parameters: [{from,
   * to}]}], activeSignature, activeParameter, from, to}, parameters placed in their label; or null.
   */
  signatureHelp(sql, offset, catalogue) {
    return call(this._core, 'signatureHelp', String(sql), offsetOf(offset), catalogueOf(catalogue)).signature;
  }

  /** The standard SQL set alone: operators, conversions, ranking, precedence; no tables. */
  standardCatalogue() { return new Catalogue(this._core, call(this._core, 'catalogueStandard').handle); }

  /** The built-in GIS sample: parcels, roads, buildings and their functions. */
  gisSample() { return new Catalogue(this._core, call(this._core, 'catalogueGisSample').handle); }

  /** The GIS sample as a catalogue file, to start one of your own from. */
  gisSampleText() { return this._core.gisSampleText(); }

  /** A catalogue from the text of a JSON catalogue file; `source` names it in messages. */
  catalogueFromJson(text, source = 'catalogue') {
    return new Catalogue(this._core, call(this._core, 'catalogueFromJson', String(text), String(source)).handle);
  }
}

const isNode = typeof process === 'object' && typeof process.versions?.node === 'string';

/**
 * Loads the module. `options.wasmBinary` hands it the module's bytes (a bundle that carries
 * them); otherwise Node reads velmor-sql.wasm beside this file and a browser fetches it.
 */
export async function load(options = {}) {
  const settings = {};
  if (options.locateFile) settings.locateFile = options.locateFile;
  if (options.wasmBinary) {
    settings.wasmBinary = options.wasmBinary;
  } else if (isNode) {
    const { readFile } = await import('node:fs/promises');
    settings.wasmBinary = await readFile(new URL('../dist/velmor-sql.wasm', import.meta.url));
  }
  return new VelmorSql(await createModule(settings));
}
