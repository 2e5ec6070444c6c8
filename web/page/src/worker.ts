// All calls of the library. Requests come one at a time; the page ends this worker if one takes too long.
import {Torvio, TorvioError} from '../../package/index.js';
import {JsonText} from './json_text.js';
import {placementsOf} from './placements.js';
import type {Ask, Check, Fields, Info, Operations, PartShapes, Report, Source} from './protocol.js';

let torvio: Torvio;
let kept: {key: number, bytes: Uint8Array} | null = null;
let record: {key: string, json: JsonText} | null = null;

async function bytesOf(source: Source): Promise<Uint8Array> {
  if (kept?.key === source.key) return kept.bytes;
  kept = record = null;
  const bytes = new Uint8Array(await source.file.arrayBuffer());
  kept = {key: source.key, bytes};
  return bytes;
}

const options = ({name, kind, encoding}: Source) => ({name, ...(kind ? {kind} : {}), encoding});

async function recordOf(source: Source): Promise<JsonText> {
  const key = JSON.stringify([source.key, source.kind, source.encoding]);
  if (record?.key !== key) {
    const bytes = await bytesOf(source);
    record = null;
    record = {key, json: new JsonText(torvio.toJson(bytes, options(source)))};
  }
  return record.json;
}

// Offset and size of each line, without parsing the lines.
function linesOf(text: string, from: number, to: number): Fields {
  const starts: number[] = [], offsets: number[] = [], sizes: number[] = [];
  const offsetAt = '{"offset":'.length, sizeName = ',"size":';
  for (let start = 0; start < text.length;) {
    starts.push(start);
    let at = start + offsetAt, value = 0;
    const digits = (): void => {
      value = 0;
      for (let c = text.charCodeAt(at); c >= 0x30 && c <= 0x39; c = text.charCodeAt(++at))
        value = 10 * value + c - 0x30;
    };
    digits();
    offsets.push(value);
    if (text.startsWith(sizeName, at)) {
      at += sizeName.length;
      digits();
    } else {
      value = 0; // a fault has no size
    }
    sizes.push(value);
    start = text.indexOf('\n', at) + 1;
    if (start === 0) break;
  }
  starts.push(text.length);
  return {from, to, text, starts: Uint32Array.from(starts), offsets: Float64Array.from(offsets),
          sizes: Uint32Array.from(sizes)};
}

const svgType = {type: 'image/svg+xml'}, anyType = {type: 'application/octet-stream'};
const asJson = {type: 'application/json'};

function attempt(make: () => {bytes: Uint8Array, report: unknown}) {
  try {
    const {bytes, report} = make();
    return {blob: new Blob([bytes], anyType), report: report as Report, error: ''};
  } catch (error) {
    if (!(error instanceof TorvioError)) throw error;
    return {blob: null, report: error.report as Report | null, error: error.message};
  }
}

const unescaped = (text: string): string => text.replace(
  /&(lt|gt|quot|#39|amp);/g, (_, name: string) => ({lt: '<', gt: '>', quot: '"', '#39': '\'', amp: '&'})[name] ?? '');

type Handlers = {[Name in keyof Operations]: (source: Operations[Name]['in']) => Promise<Operations[Name]['out']>};

const handlers: Handlers = {
  async check(source) {
    // The bytes are not kept: the next check is of another file.
    const bytes = kept?.key === source.key ? kept.bytes : new Uint8Array(await source.file.arrayBuffer());
    const {name, kind} = source;
    return torvio.check(bytes, {name, ...(kind ? {kind} : {})}) as Check;
  },
  async info(source) { return torvio.info(await bytesOf(source), options(source)) as Info; },
  async draw(source) {
    const bytes = await bytesOf(source);
    const svg = torvio.draw(bytes, options(source));
    const size = /<svg [^>]*? width="([\d.]+)" height="([\d.]+)"/.exec(svg);
    return {
      svg: new Blob([svg], svgType),
      width: Number(size?.[1] ?? 1400),
      height: Number(size?.[2] ?? 1000),
      title: unescaped(/<title>([^<]*)<\/title>/.exec(svg)?.[1] ?? ''),
      description: unescaped(/<desc>([^<]*)<\/desc>/.exec(svg)?.[1] ?? ''),
      placements: placementsOf(svg),
    };
  },
  async root(source) {
    const json = await recordOf(source);
    return {node: json.root(), size: json.text.length};
  },
  async children(source) { return (await recordOf(source)).children(source.node); },
  async find(source) { return (await recordOf(source)).find(source.query, source.most); },
  async text(source) { return (await recordOf(source)).text.slice(source.node.start, source.node.end); },
  async part(source) {
    const json = await recordOf(source);
    const part = ['record', 'partList', 'parts', source.part];
    const valueAt = (...path: string[]): unknown => {
      const node = json.at([...part, ...path]);
      return node === null ? null : json.value(node);
    };
    const list = json.at([...part, 'shapes', 'shapes']);
    if (list === null || list.kind !== 'array') return null;
    const nodes = list.count === 0 ? [] : json.elements(json.marksOf(list.start), 0, Math.min(list.count, source.most));
    const name = valueAt('partName');
    return {
      name: typeof name === 'string' ? name : (name as {text?: string} | null)?.text ?? '',
      width: Number(valueAt('width')),
      height: Number(valueAt('height')),
      total: list.count,
      shapes: nodes.map((node) => {
        const {note, ...shape} = json.value(node) as PartShapes['shapes'][number] & {note: unknown};
        const {type, x, y, values, text} = shape;
        return {type, x, y, values, text: text || note};
      }),
    };
  },
  async fields(source) {
    const range = `${source.from}..${source.to - 1}`;
    return linesOf(torvio.map(await bytesOf(source), {...options(source), range}), source.from, source.to);
  },
  async locate(source) {
    const lines = torvio.map(await bytesOf(source), {...options(source), find: source.path});
    const {text, starts, offsets, sizes} = linesOf(lines, 0, 0);
    const beginning = `"field":${JSON.stringify(source.path).slice(0, -1)}`;
    let named = null as {offset: number, size: number} | null, exact = null as typeof named;
    for (let i = 0; i < sizes.length; ++i) {
      const offset = offsets[i] as number, size = sizes[i] as number;
      if (size === 0) continue;
      named ??= {offset, size};
      const at = text.indexOf('"field":', starts[i]);
      // Itself, a member or an element of it.
      if (!text.startsWith(beginning, at) || !'".['.includes(text.charAt(at + beginning.length))) continue;
      exact ??= {offset, size};
      exact.size = offset + size - exact.offset;
    }
    return exact ?? (source.isExact ? null : named);
  },
  async json(source) {
    if (!source.pretty) return new Blob([(await recordOf(source)).text], asJson);
    return new Blob([torvio.toJson(await bytesOf(source), {...options(source), pretty: true})], asJson);
  },
  async convert(source) {
    const bytes = await bytesOf(source);
    return attempt(() => torvio.convert(bytes, source.version, {...options(source), allowLoss: source.allowLoss}));
  },
  async recover(source) {
    const bytes = await bytesOf(source);
    return attempt(() => torvio.recover(bytes, options(source)));
  },
  async diff(source) {
    const a = await bytesOf(source), b = new Uint8Array(await source.other.file.arrayBuffer());
    const {other, part, tolerance, common} = source;
    const {same, lines} = torvio.diff(a, b, {
      nameA: source.name, nameB: other.name, encoding: source.encoding, ...(source.kind ? {kindA: source.kind} : {}),
      ...(other.kind ? {kindB: other.kind} : {}), ...(part ? {part} : {}), tolerance, common,
    });
    const shown: string[] = [];
    let total = 0;
    for (let start = 0; start < lines.length; ++total) {
      const end = lines.indexOf('\n', start);
      if (total < source.most) shown.push(lines.slice(start, end));
      if (end < 0) break;
      start = end + 1;
    }
    const last = lines.slice(lines.lastIndexOf('\n', lines.length - 2) + 1).trim();
    if (shown.length < total) shown.push(last);
    return {same, lines: shown, total: total - 1, all: new Blob([lines], {type: 'application/x-ndjson'})};
  },
};

self.onmessage = async ({data}: MessageEvent<Ask>): Promise<void> => {
  try {
    if ('module' in data) {
      torvio = await Torvio.load(data.module);
      self.postMessage({id: data.id, value: {...torvio.supported() as object, version: torvio.version}});
      return;
    }
    const handle = handlers[data.operation] as (parameters: unknown) => Promise<unknown>;
    const value = await handle(data.parameters);
    self.postMessage({id: data.id, value});
  } catch (error) {
    self.postMessage({id: data.id, error: error instanceof Error ? error.message : String(error)});
  }
};
