// The package against the tool's golden cases (check, format, rename, columns, complete, hover,
// signature), the
// parser's golden trees, and tables of the cases the JavaScript boundary adds: UTF-16 offsets,
// errors, catalogues and the nesting limit.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, readFileSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { load, SqlSyntaxError, SqlValueError, CatalogueError, SqlFaultError } from '../lib/index.js';

const dataDir = process.env.VELMOR_TEST_DATA_DIR ?? fileURLToPath(new URL('../../tests/data', import.meta.url));
const cliDir = join(dataDir, 'cli');
const vs = await load();
const gis = vs.gisSample();

// --- The tool's golden cases -------------------------------------------------------------------

function readCases(file) {
  const cases = [];
  readFileSync(join(cliDir, file), 'utf8').split('\n').forEach((line, index) => {
    if (line.startsWith('## ')) {
      cases.push({ file, line: index + 1, name: line.slice(3), args: '', input: [], status: 0, out: [], err: [] });
      return;
    }
    const current = cases.at(-1);
    if (!current || line === '' || line.startsWith('#')) return;
    const rest = line.length > 2 ? line.slice(2) : '';
    if (line[0] === '$') current.args = rest;
    else if (line[0] === '<') current.input.push(rest.replaceAll('{nul}', '\0'));
    else if (line[0] === '?') current.status = Number(rest);
    else if (line[0] === '>') current.out.push(rest);
    else if (line[0] === '!') current.err.push(rest);
  });
  return cases;
}

// The tool's words and options, or null for a case that uses what the package leaves to the tool
// (documents, JSON and SARIF output, --strict, --verify, usage errors).
function readCommand(c) {
  const words = c.args.split(/[ \t\n\v\f\r]+/).filter((word) => word !== '');
  const command = { name: words.shift(), catalogue: null, scoping: 'standard', at: null, context: 'standard', words: [] };
  while (words.length > 0 && words[0].startsWith('-')) {
    const option = words.shift();
    const [key, inline] = option.split(/=(.*)/s);
    const value = () => (inline !== undefined ? inline : words.shift()) ?? '';
    if (key === '--catalog') command.catalogue = value().replaceAll('{data}', cliDir);
    else if (key === '--scoping') command.scoping = value();
    else if (key === '--at') command.at = value();
    else if (key === '--no-context') command.context = null;
    else return null;
  }
  command.words = words;
  command.text = words.length > 0 ? words.join(' ') : c.input.map((line) => `${line}\n`).join('');
  return command;
}

// A place as the tool counts it (a column per code point, tabs to a grid of 4) to and from a
// UTF-16 index of the text.
function offsetAt(text, line, column) {
  let l = 1, col = 1;
  for (let i = 0; ; ) {
    if (l === line && col === column) return i;
    if (i >= text.length) return null;
    const point = text.codePointAt(i);
    if (point === 10) { ++l; col = 1; } else if (point === 9) col = ((col - 1) & ~3) + 5; else ++col;
    i += point > 0xffff ? 2 : 1;
  }
}

function placeOf(text, offset) {
  let line = 1, column = 1;
  for (let i = 0; i < offset; ) {
    const point = text.codePointAt(i);
    if (point === 10) { ++line; column = 1; } else if (point === 9) column = ((column - 1) & ~3) + 5; else ++column;
    i += point > 0xffff ? 2 : 1;
  }
  return `${line}:${column}`;
}

function catalogueFor(command) {
  if (command.catalogue === null) return gis;
  return vs.catalogueFromJson(readFileSync(command.catalogue, 'utf8'), command.catalogue);
}

function aligned(rows) {
  const widths = rows[0].map((_, k) => Math.max(...rows.map((row) => row[k].length)));
  return rows.map((row) => row.map((cell, k) => (k < row.length - 1 ? cell.padEnd(widths[k] + 2) : cell)).join(''));
}

// What the tool prints for a command, worked out from the package's answers.
function perform(command) {
  const text = command.text;
  const context = command.context === null ? null : command.catalogue === null ? 'standard' : catalogueFor(command);
  switch (command.name) {
    case 'check': {
      const faults = vs.check(text, catalogueFor(command), { scoping: command.scoping });
      if (faults.length === 0) return { status: 0, out: ['ok'] };
      return {
        status: 1,
        out: faults.map((f) => {
          const range = f.range ? `${f.range.begin.line}:${f.range.begin.column}-${f.range.end.line}:${f.range.end.column} ` : '';
          return `${range}${f.message} [${f.className}]`;
        }),
      };
    }
    case 'format': return { status: 0, out: [vs.format(text, context)] };
    case 'rename': {
      const [from, to, ...rest] = command.words;
      return { status: 0, out: [vs.rename(rest.join(' '), from, to, context)] };
    }
    case 'columns': {
      try {
        const columns = vs.columns(text, catalogueFor(command), { scoping: command.scoping });
        const dash = (s) => (s === '' ? '-' : s);
        return { status: 0, out: aligned(columns.map((c) => [dash(c.names.join('|')), c.type, dash(c.table), dash(c.column)])) };
      } catch (error) {
        if (!(error instanceof SqlFaultError)) throw error;
        return { status: 1, out: [`${error.fault.message} [${error.fault.className}]`] };
      }
    }
    case 'complete': {
      const [line, column] = command.at.split(':').map(Number);
      const answer = vs.complete(text, offsetAt(text, line, column), catalogueFor(command));
      const width = Math.max(0, ...answer.candidates.map((c) => Buffer.byteLength(c.text)));
      return {
        status: 0,
        out: [`replace ${placeOf(text, answer.from)}-${placeOf(text, answer.to)} "${text.slice(answer.from, answer.to)}"`,
          ...answer.candidates.map((c) => c.kind.padEnd(13) + c.text +
            (c.detail ? ' '.repeat(width - Buffer.byteLength(c.text) + 2) + c.detail : ''))],
      };
    }
    case 'hover': {
      const [line, column] = command.at.split(':').map(Number);
      const found = vs.hover(text, offsetAt(text, line, column), catalogueFor(command));
      if (!found) return { status: 0, out: ['nothing'] };
      return {
        status: 0,
        out: [`${placeOf(text, found.from)}-${placeOf(text, found.to)} ${found.kind}`, found.title,
          ...found.details.map((detail) => `  ${detail}`)],
      };
    }
    case 'signature': {
      const [line, column] = command.at.split(':').map(Number);
      const help = vs.signatureHelp(text, offsetAt(text, line, column), catalogueFor(command));
      if (!help) return { status: 0, out: ['nothing'] };
      return {
        status: 0,
        out: [`call ${placeOf(text, help.from)}-${placeOf(text, help.to)} argument ${help.activeParameter + 1}`,
          ...help.signatures.map(({ label, parameters }, i) => {
            const active = i === help.activeSignature ? parameters[help.activeParameter] : undefined;
            const shown = active ? `${label.slice(0, active.from)}<${label.slice(active.from, active.to)}>${label.slice(active.to)}` : label;
            return `${i === help.activeSignature ? '* ' : '  '}${shown}`;
          })],
      };
    }
    default: return null;
  }
}

const mirrored = new Set(['check', 'format', 'rename', 'columns', 'complete', 'hover', 'signature']);
const cliCases = readdirSync(cliDir).filter((f) => f.endsWith('.txt')).sort().flatMap(readCases);
let ran = 0;
for (const c of cliCases) {
  const command = readCommand(c);
  if (!command || !mirrored.has(command.name)) continue;
  // The package refuses what the tool calls a usage error, but words it its own way.
  if (c.status === 2 && !(command.catalogue && c.err.some((line) => line.startsWith('velmor-sql: catalogue')))) continue;
  ++ran;
  test(`${c.file}:${c.line} ${c.name}`, () => {
    if (c.status === 3) {
      assert.throws(() => perform(command), (error) => {
        assert.ok(error instanceof SqlSyntaxError, error.message);
        assert.equal(error.message, c.err.find((line) => !line.startsWith('warning: ')));
        return true;
      });
      return;
    }
    if (c.status === 2) {
      assert.throws(() => perform(command), (error) => {
        assert.ok(error instanceof CatalogueError, error.message);
        assert.equal(`velmor-sql: ${error.message}`.replaceAll(cliDir, '{data}'), c.err[0]);
        return true;
      });
      return;
    }
    const outcome = perform(command);
    assert.deepEqual(outcome.out, c.out);
    assert.equal(outcome.status, c.status);
  });
}
test('the tool\'s golden cases that the package mirrors are found', () => assert.ok(ran >= 40, `only ${ran}`));

// --- The parser's golden trees ------------------------------------------------------------------

const parserDir = join(dataDir, 'parser');
for (const file of readdirSync(parserDir).filter((f) => f.endsWith('.golden')).sort()) {
  const lines = readFileSync(join(parserDir, file), 'utf8').split('\n');
  const cases = [];
  lines.forEach((line, index) => {
    if (line.startsWith('=> ') && index > 0 && !lines[index - 1].startsWith('#')) {
      cases.push({ line: index, sql: lines[index - 1], expected: line.slice(3) });
    }
  });
  test(`parser/${file}: ${cases.length} trees and errors`, () => {
    for (const c of cases) {
      let got;
      try {
        got = JSON.stringify(vs.parse(c.sql));
      } catch (error) {
        assert.ok(error instanceof SqlSyntaxError, `${file}:${c.line} ${error.message}`);
        got = `error: ${error.message}`;
      }
      assert.equal(got, c.expected, `${file}:${c.line} ${c.sql}`);
    }
  });
}

// --- The JavaScript boundary ---------------------------------------------------------------------

test('offsets are UTF-16 indexes of the string, both ways', () => {
  const cases = [
    // [text, the name whose fault is placed]
    ['SELECT nosuch FROM parcels', 'nosuch'],
    ['SELECT \'é\', nosuch FROM parcels', 'nosuch'],
    ['SELECT \'😀😀\', nosuch FROM parcels', 'nosuch'],
    ['SELECT \'\t中\', nosuch FROM parcels', 'nosuch'],
    ['SELECT \'😀\'\n, \'é\', nosuch FROM parcels', 'nosuch'],
  ];
  for (const [text, name] of cases) {
    const [fault] = vs.check(text, gis);
    const at = text.indexOf(name);
    assert.deepEqual([fault.range.begin.offset, fault.range.end.offset], [at, at + name.length], text);
    // Inside a word, the whole word is replaced.
    const completion = vs.complete(text, at + 3, gis);
    assert.deepEqual([completion.from, completion.to], [at, at + name.length], text);
  }
});

test('a completion offset outside the text or inside a pair is clamped', () => {
  const text = 'SELECT \'😀\', ar';
  const end = text.length;
  const table = [
    [-5, 0, 6],
    [Number.NEGATIVE_INFINITY, 0, 6],
    [end + 10, end - 2, end],
    [end, end - 2, end],
    [end - 1, end - 2, end],
    // Inside the pair of 😀: taken as after it, in a string, where nothing is offered.
    [text.indexOf('😀') + 1, text.indexOf('😀') + 2, text.indexOf('😀') + 2],
  ];
  for (const [offset, from, to] of table) {
    const answer = vs.complete(text, offset, gis);
    assert.deepEqual([answer.from, answer.to], [from, to], `offset ${offset}`);
  }
  assert.throws(() => vs.complete(text, Number.NaN, gis), SqlValueError);
});

test('syntax errors carry the place in lines, columns and UTF-16', () => {
  const table = [
    ['SELECT FROM t', 1, 8, 7],
    ['SELECT \'😀\' FROM', 1, 16, 16],
    ['SELECT a\n\tFROM', 2, 9, 14],
    ['SELECT é)', 1, 9, 8],
    ['SELECT 😀)', 1, 9, 9],
    ['SELECT a FROM t WHERE', 1, 22, 21],
  ];
  for (const [text, line, column, offset] of table) {
    assert.throws(() => vs.parse(text), (error) => {
      assert.ok(error instanceof SqlSyntaxError);
      assert.deepEqual([error.line, error.column, error.offset], [line, column, offset], text);
      return true;
    });
  }
});

test('a document: each statement with its range, outcome and faults in document offsets', () => {
  const text = 'SELECT \'😀\' FROM parcels;\nSELECT nosuch FROM parcels; SELECT FROM;\nINSERT INTO parcels VALUES (1)';
  const statements = vs.checkDocument(text, gis);
  assert.deepEqual(statements.map((s) => s.outcome), ['ok', 'faults', 'syntax error', 'faults']);
  assert.equal(text.slice(statements[1].begin.offset, statements[1].end.offset), 'SELECT nosuch FROM parcels');
  const fault = statements[1].faults[0];
  assert.equal(text.slice(fault.range.begin.offset, fault.range.end.offset), 'nosuch');
  assert.equal(text.slice(statements[2].syntaxError.place.offset).slice(0, 4), 'FROM');
  assert.equal(statements[3].text, 'INSERT INTO parcels VALUES (1)');
  assert.deepEqual(vs.checkDocument('', gis), []);
  const compatible = vs.checkDocument('DELETE FROM parcels', gis, { scoping: 'compatible' });
  assert.deepEqual([compatible[0].outcome, compatible[0].kind], ['not checkable', 'DeleteStatement']);
});

test('check: scoping, statements it refuses, and the fault data', () => {
  const [fault] = vs.check('SELECT parcel_id, nosuch FROM parcels', gis);
  assert.deepEqual([fault.number, fault.className, fault.fields], [7, 'UnknownColumnReference', { tableName: '', columnName: 'nosuch' }]);
  assert.throws(() => vs.check('DELETE FROM parcels', gis, { scoping: 'compatible' }), /not checkable: DeleteStatement/);
  assert.deepEqual(vs.check('DELETE FROM parcels', gis), []);
  assert.throws(() => vs.check('SELECT 1 FROM t', gis, { scoping: 'loose' }), SqlValueError);
  assert.throws(() => vs.check('SELECT 1 FROM t', 'gis'), SqlValueError);
});

test('columns: a fault stops it with its data; a statement without columns is refused', () => {
  assert.throws(() => vs.columns('SELECT a FROM nowhere', gis), (error) => error instanceof SqlFaultError &&
    error.fault.className === 'NonExistentTable');
  assert.throws(() => vs.columns('DELETE FROM parcels', gis), /no result columns for DeleteStatement/);
  assert.deepEqual(vs.columns('SELECT parcel_id AS id, 1 FROM parcels', gis).map((c) => [c.name, c.type, c.table]),
    [['id', 'Integer', 'parcels'], ['column_1', 'Decimal(1,0)', '']]);
});

test('format: the grammar\'s precedence, none, or a catalogue\'s', () => {
  const text = 'SELECT (a + b) * c, a + (b * c) FROM t';
  const small = vs.catalogueFromJson(readFileSync(join(cliDir, 'catalogues/small.json'), 'utf8'));
  assert.equal(vs.format(text), 'SELECT (a + b) * c, a + b * c FROM t');
  assert.equal(vs.format(text, small), 'SELECT a + b * c, a + (b * c) FROM t');
  assert.equal(vs.rename('SELECT t.a FROM t', 't', 'u'), 'SELECT u.a FROM u');
  assert.throws(() => vs.format(text, 'gis'), SqlValueError);
  assert.throws(() => vs.format('SELECT ROW() FROM t'), (error) => error instanceof SqlValueError || error instanceof SqlSyntaxError);
});

test('catalogues: tables, files, errors and disposal', () => {
  const parcels = gis.tables().find((t) => t.name === 'parcels');
  assert.deepEqual(parcels.columns.find((c) => c.name === 'area_sqm'), { name: 'area_sqm', type: 'Decimal(12,2)' });
  assert.ok(gis.functions().includes('area'));
  const standard = vs.standardCatalogue();
  assert.deepEqual(standard.tables(), []);
  assert.deepEqual(vs.check('SELECT 1 + 2 FROM t', standard).map((f) => f.className), ['NonExistentTable']);
  const again = vs.catalogueFromJson(gis.toJson(), 'copy');
  assert.deepEqual(again.tables(), gis.tables());
  assert.equal(vs.catalogueFromJson(vs.gisSampleText()).tables().length, gis.tables().length);
  assert.throws(() => vs.catalogueFromJson('{"tables": [', 'mine.json'), (error) => error instanceof CatalogueError &&
    error.message.startsWith('catalogue mine.json: not valid JSON: parse error at line 1, column 13'));
  standard.dispose();
  standard.dispose();
  assert.throws(() => vs.check('SELECT 1', standard), /disposed/);
  assert.throws(() => standard.tables(), /disposed/);
});

test('nesting: the limit in force, and the engine\'s stack never overrun below it', () => {
  // A chain of n - 1 signs under a select item: 998 is the deepest that the limit of 1000 lets in.
  const chain = (n) => `SELECT ${'-'.repeat(n - 1)}parcel_id FROM parcels`;
  assert.deepEqual(vs.check(chain(998), gis), []);
  assert.equal(vs.columns(chain(998), gis).length, 1);
  assert.ok(vs.format(chain(998)).length > 998);
  assert.equal(vs.parse(chain(998)).node, 'QuerySpecification');
  assert.throws(() => vs.parse(chain(999)), /nesting too deep \(limit 1000\)/);
});

test('hover and signature help place their ranges in UTF-16', () => {
  const text = "SELECT '😀', buffer(shape, 2), area_sqm FROM parcels";
  const column = text.indexOf('area_sqm');
  const found = vs.hover(text, column + 2, gis);
  assert.equal(text.slice(found.from, found.to), 'area_sqm');
  assert.equal(found.type, 'Decimal(12,2)');
  const call = text.indexOf('buffer');
  const table = [
    // [offset, the argument the cursor is in, or null outside the call]
    [call + 7, 0],
    [text.indexOf('2)'), 1],
    [text.indexOf('2)') + 2, null],
    [call - 1, null],
  ];
  for (const [offset, argument] of table) {
    const help = vs.signatureHelp(text, offset, gis);
    if (argument === null) {
      assert.equal(help, null, `offset ${offset}`);
      continue;
    }
    assert.equal(help.activeParameter, argument, `offset ${offset}`);
    assert.equal(text.slice(help.from, help.to), 'buffer(shape, 2)');
    const { label, parameters } = help.signatures[help.activeSignature];
    assert.equal(label.slice(parameters[1].from, parameters[1].to), 'Double');
  }
});

test('the TypeScript declarations type the calls as the README shows them', (t) => {
  const tsc = fileURLToPath(new URL('../node_modules/typescript/bin/tsc', import.meta.url));
  if (!existsSync(tsc)) {
    t.skip('typescript is not installed (scripts/web installs it)');
    return;
  }
  execFileSync(process.execPath, [tsc, '-p', fileURLToPath(new URL('..', import.meta.url))], { stdio: 'pipe' });
});
