// Compiled (never run) by the package test: the declarations describe the calls as the README shows them.
import { load, SqlSyntaxError, type PlacedFault, type Column } from '../lib/index.js';

const vs = await load();
const gis = vs.gisSample();
const faults: PlacedFault[] = vs.check('SELECT parcel_id FROM parcels', gis, { scoping: 'compatible' });
const first: number | undefined = faults[0]?.range?.begin.offset;
const columns: Column[] = vs.columns('SELECT parcel_id FROM parcels', gis);
const canonical: string = vs.format('SELECT a FROM t', null) + vs.format('SELECT a FROM t', gis);
const completion = vs.complete('SELECT ar FROM parcels', 9, gis);
const kinds: string[] = completion.candidates.map((c) => c.kind);
const hover = vs.hover('SELECT area_sqm FROM parcels', 9, gis);
const title: string | undefined = hover?.title;
const argument: number | undefined = vs.signatureHelp('SELECT buffer(shape, ) FROM parcels', 21, gis)?.activeParameter;
try {
  vs.parse('SELECT');
} catch (error) {
  if (error instanceof SqlSyntaxError) console.log(error.line, error.column, error.offset);
}
console.log(first, argument, columns, canonical, kinds, title, vs.parse('SELECT a FROM t').node);
