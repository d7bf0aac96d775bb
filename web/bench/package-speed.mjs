// Statements a second through the package's calls (strings in, plain objects out), over a corpus
// of one statement a line: what a JavaScript host sees, boundary and JSON included.
//   node web/bench/package-speed.mjs FILE [PASSES]
import { readFileSync } from 'node:fs';
import { load } from '../lib/index.js';

const [file, passesText] = process.argv.slice(2);
const statements = readFileSync(file, 'utf8').split('\n').filter((line) => line !== '');
const bytes = statements.reduce((sum, s) => sum + Buffer.byteLength(s), 0);
const passes = Math.max(1, Number(passesText ?? 3));
const vs = await load();
const gis = vs.gisSample();

function best(body) {
  let fastest = Infinity;
  for (let pass = 0; pass < passes; ++pass) {
    const start = performance.now();
    body();
    fastest = Math.min(fastest, performance.now() - start);
  }
  return fastest;
}

function report(what, ms) {
  const perSecond = (statements.length / ms) * 1e3;
  console.log(`${what.padEnd(22)} ${statements.length} statements in ${ms.toFixed(1)} ms: ` +
    `${perSecond.toFixed(0)} statements/s, ${(bytes / ms / 1e3).toFixed(2)} MB/s`);
}

report('format', best(() => { for (const s of statements) vs.format(s); }));
report('parse (tree objects)', best(() => { for (const s of statements) vs.parse(s); }));
report('check', best(() => { for (const s of statements) vs.check(s, gis); }));
report('checkDocument (whole)', best(() => vs.checkDocument(statements.join(';\n'), gis)));
