// Bundles the playground into dist/playground/: one classic script with the module's bytes
// inside, so that the page opens from file:// as well as from any static server, offline.
import { build } from 'esbuild';
import { copyFile, mkdir } from 'node:fs/promises';

const here = new URL('.', import.meta.url);
const out = new URL('../dist/playground/', import.meta.url);
await mkdir(out, { recursive: true });
await build({
  entryPoints: [new URL('main.js', here).pathname],
  outfile: new URL('playground.js', out).pathname,
  bundle: true,
  format: 'iife',
  platform: 'browser',
  target: 'es2020',
  minify: true,
  loader: { '.wasm': 'binary' },
  // Node's file access in the package is behind a check that a page never passes.
  external: ['node:*'],
  // The loader asks import.meta for the module's address only when it is given neither the bytes
  // nor locateFile; the page gives both.
  define: { 'import.meta.url': '"file:///"' },
  logLevel: 'warning',
});
for (const file of ['index.html', 'style.css']) await copyFile(new URL(file, here), new URL(file, out));
