// The built playground in headless Chromium: it starts from file://, underlines a fault with its
// message, offers and accepts a completion, shows a hover, and draws something (screenshots).
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { mkdtempSync, mkdirSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';
import puppeteer from 'puppeteer-core';

const pageUrl = pathToFileURL(fileURLToPath(new URL('../dist/playground/index.html', import.meta.url))).href;
const shots = process.env.VELMOR_SCREENSHOT_DIR ?? fileURLToPath(new URL('../dist/screenshots/', import.meta.url));
const profile = mkdtempSync(join(tmpdir(), 'velmor-chromium-'));
let browser;
let page;

before(async () => {
  mkdirSync(shots, { recursive: true });
  browser = await puppeteer.launch({
    executablePath: process.env.VELMOR_CHROMIUM ?? '/usr/bin/chromium',
    headless: true,
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync',
      `--user-data-dir=${profile}`],
  });
  page = await browser.newPage();
  await page.setViewport({ width: 1280, height: 800 });
  const problems = [];
  page.on('pageerror', (error) => problems.push(error.message));
  await page.goto(pageUrl);
  await page.waitForSelector('#status[data-ready="true"]', { timeout: 10000 });
  assert.deepEqual(problems, []);
});

after(async () => {
  await browser?.close();
  rmSync(profile, { recursive: true, force: true });
});

// Replaces the editor's text by typing it, as a person would.
async function typeStatement(text) {
  await page.click('.cm-content');
  await page.keyboard.down('Control');
  await page.keyboard.press('a');
  await page.keyboard.up('Control');
  await page.keyboard.press('Backspace');
  await page.keyboard.type(text);
}

// The screen coordinates of the middle of a stretch of the editor's text.
async function placeOf(from, to) {
  return page.evaluate((a, b) => {
    const { view } = window.velmorPlayground;
    const start = view.coordsAtPos(a), end = view.coordsAtPos(b, -1);
    return { x: (start.left + end.right) / 2, y: (start.top + start.bottom) / 2 };
  }, from, to);
}

// A screenshot kept for a person to look at, and checked to show more than one flat colour.
async function screenshot(name) {
  const png = await page.screenshot({ type: 'png' });
  writeFileSync(join(shots, `${name}.png`), png);
  // Counted in the page itself: opening another tab would take the focus and close any popup.
  const colours = await page.evaluate(async (data) => {
    const image = new Image();
    image.src = `data:image/png;base64,${data}`;
    await image.decode();
    const canvas = document.createElement('canvas');
    canvas.width = image.width;
    canvas.height = image.height;
    const context = canvas.getContext('2d');
    context.drawImage(image, 0, 0);
    const pixels = context.getImageData(0, 0, image.width, image.height).data;
    const seen = new Set();
    for (let i = 0; i < pixels.length; i += 4 * 7) seen.add((pixels[i] << 16) | (pixels[i + 1] << 8) | pixels[i + 2]);
    return seen.size;
  }, Buffer.from(png).toString('base64'));
  assert.ok(colours > 20, `${name}.png has ${colours} colours`);
}

test('the first analysis is shown: canonical text, columns, tree and tables', async () => {
  const status = await page.$eval('#status', (node) => node.textContent);
  console.log(`playground: ${status}`);
  assert.match(await page.$eval('#canonical', (node) => node.textContent), /^SELECT p\.parcel_id, p\.area_sqm \* 2 AS twice/);
  assert.ok(await page.$$eval('#columns td', (cells) => cells.map((cell) => cell.textContent).includes('twice')));
  assert.match(await page.$eval('#tree summary', (node) => node.textContent), /statement: QuerySpecification/);
  assert.ok(await page.$$eval('#tables summary', (nodes) => nodes.map((node) => node.textContent).includes('parcels')));
  await page.waitForSelector('.cm-lintRange-error');
  await screenshot('first-analysis');
});

test('a fault is underlined and its message shown', async () => {
  const text = 'SELECT parcel_id, nosuch FROM parcels';
  await typeStatement(text);
  await page.waitForFunction(() => [...document.querySelectorAll('.cm-lintRange-error')]
    .some((node) => node.textContent === 'nosuch'), { timeout: 5000 });
  const at = text.indexOf('nosuch');
  const { x, y } = await placeOf(at, at + 6);
  await page.mouse.move(x, y);
  await page.waitForFunction(() => document.querySelector('.cm-tooltip-lint')?.textContent
    .includes('unknown column "nosuch" [UnknownColumnReference]'), { timeout: 5000 });
  await screenshot('fault');
});

test('a completion is offered and accepted', async () => {
  await page.mouse.move(5, 5);
  await typeStatement('SELECT  FROM parcels');
  await page.keyboard.press('Home');
  for (let i = 0; i < 7; ++i) await page.keyboard.press('ArrowRight');
  await page.keyboard.type('ar');
  await page.waitForFunction(() => [...document.querySelectorAll('.cm-tooltip-autocomplete li')]
    .some((node) => node.textContent.startsWith('area_sqm')), { timeout: 5000 });
  await screenshot('completion');
  await page.keyboard.press('Enter');
  const doc = await page.evaluate(() => window.velmorPlayground.view.state.doc.toString());
  assert.equal(doc, 'SELECT area_sqm FROM parcels');
});

test('inside a call, its overloads are shown with the argument at the cursor', async () => {
  await page.mouse.move(5, 5);
  await typeStatement('SELECT buffer(shape, 1) FROM parcels');
  await page.keyboard.press('Escape');
  await page.keyboard.press('Home');
  for (let i = 0; i < 'SELECT buffer(shape, '.length; ++i) await page.keyboard.press('ArrowRight');
  await page.waitForFunction(() => document.querySelector('#signature .active b')?.textContent === 'Double',
    { timeout: 5000 });
});

test('hovering a column shows its type', async () => {
  const text = 'SELECT area_sqm FROM parcels';
  await typeStatement(text);
  const { x, y } = await placeOf(7, 15);
  await page.mouse.move(x, y);
  await page.waitForSelector('.hover-title', { timeout: 5000 });
  assert.equal(await page.$eval('.hover-title', (node) => node.textContent), 'column parcels.area_sqm: Decimal(12,2)');
  await screenshot('hover');
});
