// The playground: an editor with live faults, completion and hover, and beside it what the library
// says about the statement at the cursor (canonical text, result columns, tree) and the catalogue.
import { EditorView, basicSetup } from 'codemirror';
import { EditorState } from '@codemirror/state';
import { hoverTooltip } from '@codemirror/view';
import { autocompletion } from '@codemirror/autocomplete';
import { linter, lintGutter, forceLinting } from '@codemirror/lint';
import { sql as sqlLanguage } from '@codemirror/lang-sql';
import wasmBinary from '../dist/velmor-sql.wasm';
import { load } from '../lib/index.js';

const sample = `SELECT p.parcel_id, p.area_sqm * 2 AS twice, upper(p.city_name)
FROM parcels AS p
WHERE p.land_use LIKE 'res%' AND p.area_sqm > 500
ORDER BY twice DESC;

SELECT road_nm, speed_lim FROM roads WHERE lane_cnt > 'two';
`;

const $ = (id) => document.getElementById(id);

// Completion kinds as the editor draws them.
const completionType = {
  keyword: 'keyword', punctuation: 'text', table: 'class', alias: 'variable', column: 'property', function: 'function',
};

function element(tag, attributes = {}, ...children) {
  const node = document.createElement(tag);
  for (const [key, value] of Object.entries(attributes)) {
    if (key === 'class') node.className = value;
    else node.setAttribute(key, value);
  }
  for (const child of children) node.append(child);
  return node;
}

async function main() {
  const vs = await load({ wasmBinary, locateFile: (path) => path });
  let catalogue = vs.gisSample();
  let analysis = { statements: [] };

  // Faults of every statement of the text, and the text they were found in.
  function analyse(text) {
    analysis = { text, statements: vs.checkDocument(text, catalogue) };
    return analysis;
  }

  function diagnostics(view) {
    const text = view.state.doc.toString();
    const { statements } = analyse(text);
    const found = [];
    for (const statement of statements) {
      if (statement.syntaxError) {
        // The unexpected word, or the character before the end when the text stops too soon.
        let from = Math.min(statement.syntaxError.place.offset, text.length);
        let to = from;
        while (to < text.length && /[\p{L}\p{N}_]/u.test(text[to])) ++to;
        if (to === from) to = Math.min(from + 1, text.length);
        if (to === from && from > 0) from -= 1;
        found.push({
          from, to,
          severity: 'error', message: `${statement.syntaxError.message} [SyntaxError]`,
        });
      }
      for (const fault of statement.faults) {
        const range = fault.range ?? { begin: statement.begin, end: statement.end };
        found.push({
          from: range.begin.offset, to: Math.max(range.end.offset, range.begin.offset),
          severity: 'error', message: `${fault.message} [${fault.className}]`,
        });
      }
    }
    showStatement(view);
    return found;
  }

  function completions(context) {
    const text = context.state.doc.toString();
    const answer = vs.complete(text, context.pos, catalogue);
    if (answer.candidates.length === 0) return null;
    return {
      from: answer.from,
      to: answer.to,
      // The library's order (by kind, then by text) is kept: the editor sorts by boost.
      options: answer.candidates.map((candidate, index) => ({
        label: candidate.text, type: completionType[candidate.kind] ?? 'text', detail: candidate.detail || undefined,
        boost: Math.max(-99, 99 - index),
      })),
      filter: false,
    };
  }

  const hovers = hoverTooltip((view, pos) => {
    const found = vs.hover(view.state.doc.toString(), pos, catalogue);
    if (!found) return null;
    return {
      pos: found.from, end: found.to, above: true,
      create() {
        const dom = element('div', { class: 'hover' }, element('div', { class: 'hover-title' }, found.title));
        for (const line of found.details) dom.append(element('div', { class: 'hover-detail' }, line));
        return { dom };
      },
    };
  });

  // The statement under the cursor, shown in the panels beside the editor.
  let shown = null;
  function showStatement(view) {
    const cursor = view.state.selection.main.head;
    const statements = analysis.statements;
    const statement = statements.find((s) => cursor >= s.begin.offset && cursor <= s.end.offset) ??
      statements.findLast?.((s) => s.begin.offset <= cursor) ?? statements[0];
    const key = statement ? `${statement.text}\u0000${catalogueKey}` : '';
    if (key === shown) return;
    shown = key;
    renderStatement(statement);
  }

  function renderStatement(statement) {
    const canonical = $('canonical'), columns = $('columns'), tree = $('tree');
    canonical.textContent = '';
    columns.replaceChildren();
    tree.replaceChildren();
    if (!statement) {
      canonical.textContent = 'No statement.';
      return;
    }
    try {
      canonical.textContent = vs.format(statement.text, catalogue);
      tree.append(outline(vs.parse(statement.text), 'statement', 0));
    } catch (error) {
      canonical.textContent = error.message;
      canonical.classList.add('failed');
      return;
    }
    canonical.classList.remove('failed');
    try {
      const rows = vs.columns(statement.text, catalogue);
      const table = element('table', {}, element('tr', {}, element('th', {}, 'name'), element('th', {}, 'type'),
        element('th', {}, 'from')));
      for (const column of rows) {
        const from = column.table ? `${column.table}.${column.column}` : '';
        table.append(element('tr', {}, element('td', {}, column.name || '-'), element('td', {}, column.type),
          element('td', {}, from)));
      }
      columns.append(table);
    } catch (error) {
      columns.append(element('p', { class: 'note' }, error.message));
    }
  }

  // A tree node as nested <details>; records open down to the third level.
  function outline(value, label, depth) {
    if (value === null || typeof value !== 'object') {
      return element('div', { class: 'leaf' }, element('span', { class: 'key' }, `${label}: `),
        element('span', { class: 'value' }, JSON.stringify(value)));
    }
    const entries = Array.isArray(value) ? value.map((item, i) => [String(i), item])
      : Object.entries(value).filter(([key]) => key !== 'node');
    const title = Array.isArray(value) ? `${label} [${value.length}]` : `${label}: ${value.node}`;
    if (entries.length === 0) return element('div', { class: 'leaf' }, element('span', { class: 'key' }, title));
    const details = element('details', depth < 3 ? { open: '' } : {}, element('summary', {}, title));
    for (const [key, item] of entries) details.append(outline(item, key, depth + 1));
    return details;
  }

  // The overloads of the call around the cursor, the argument at the cursor in bold.
  function showSignature(view) {
    const strip = $('signature');
    const help = vs.signatureHelp(view.state.doc.toString(), view.state.selection.main.head, catalogue);
    strip.replaceChildren();
    if (!help) return;
    help.signatures.forEach(({ label, parameters }, i) => {
      const line = element('div', i === help.activeSignature ? { class: 'active' } : {});
      const active = i === help.activeSignature ? parameters[help.activeParameter] : undefined;
      if (active) {
        line.append(label.slice(0, active.from), element('b', {}, label.slice(active.from, active.to)), label.slice(active.to));
      } else {
        line.append(label);
      }
      strip.append(line);
    });
  }

  let catalogueKey = 'gis';
  function renderCatalogue() {
    const list = $('tables');
    list.replaceChildren();
    const tables = catalogue.tables();
    if (tables.length === 0) list.append(element('p', { class: 'note' }, 'No tables.'));
    for (const table of tables) {
      const details = element('details', {}, element('summary', {}, table.name));
      for (const column of table.columns) {
        details.append(element('div', { class: 'leaf' }, element('span', { class: 'key' }, column.name),
          element('span', { class: 'value' }, ` ${column.type}`)));
      }
      list.append(details);
    }
  }

  const view = new EditorView({
    parent: $('editor'),
    state: EditorState.create({
      doc: sample,
      extensions: [
        basicSetup,
        sqlLanguage(),
        lintGutter(),
        linter(diagnostics, { delay: 150 }),
        autocompletion({ override: [completions], activateOnTyping: true }),
        hovers,
        EditorView.updateListener.of((update) => {
          if (update.selectionSet && !update.docChanged) showStatement(update.view);
          if (update.selectionSet || update.docChanged) showSignature(update.view);
        }),
      ],
    }),
  });

  function useCatalogue(next, key) {
    catalogue.dispose();
    catalogue = next;
    catalogueKey = key;
    shown = null;
    renderCatalogue();
    forceLinting(view);
  }

  $('catalogue').addEventListener('change', (event) => {
    const choice = event.target.value;
    $('pasted').hidden = choice !== 'json';
    if (choice === 'gis') useCatalogue(vs.gisSample(), 'gis');
    if (choice === 'standard') useCatalogue(vs.standardCatalogue(), 'standard');
    if (choice === 'json') $('catalogue-text').value ||= vs.gisSampleText();
  });
  $('use-json').addEventListener('click', () => {
    const status = $('catalogue-status');
    try {
      useCatalogue(vs.catalogueFromJson($('catalogue-text').value, 'pasted catalogue'), `json${Date.now()}`);
      status.textContent = 'in use';
      status.className = 'ok';
    } catch (error) {
      status.textContent = error.message;
      status.className = 'failed';
    }
  });

  // The first analysis now, not after the linter's delay.
  analyse(view.state.doc.toString());
  showStatement(view);
  renderCatalogue();
  forceLinting(view);
  const ready = $('status');
  // From the start of the page's navigation: loading, compiling the module and the first analysis.
  ready.textContent = `ready in ${Math.round(performance.now())} ms`;
  ready.dataset.ready = 'true';
  window.velmorPlayground = { view, vs };
}

main().catch((error) => {
  $('status').textContent = `failed to start: ${error.message}`;
  throw error;
});
