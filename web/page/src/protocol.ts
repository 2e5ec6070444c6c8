// What the page and its worker say to each other.
import type {JsonNode} from './json_text.js';
import type {Placements} from './placements.js';

export interface Source {
  key: number; // of the file in the list; the worker keeps the contents of the file with the last key
  file: File;
  name: string;
  kind?: string;
  encoding: string;
}

export interface Check {
  verdict: string;
  kind?: string;
  version?: number;
  size?: number;
  status?: number;
  walked?: number;
  fault?: {offset: number, field: string, reason: string};
  tolerated?: {offset: number, field: string, reason: string};
  warnings?: {code: string, field: string, text: string}[];
  error?: string;
}

export type Info = Record<string, unknown>;

export interface Supported {
  version: string;
  kinds: {name: string, versions: [number, number][], drawable: boolean}[];
  records: string[];
  encodings: string[];
}

export interface Fields { // the fields in a range of bytes of the file
  from: number;
  to: number;
  text: string; // JSON lines
  starts: Uint32Array; // where each line begins in the text; one more for its end
  offsets: Float64Array;
  sizes: Uint32Array;
}

export interface PartShapes {
  name: string;
  width: number;
  height: number;
  total: number;
  shapes: {type: number, x: number, y: number, values: unknown[], text: unknown}[];
}

export interface Report {
  from?: number;
  to?: number;
  size?: number;
  newSize?: number;
  error?: string;
  fault?: {offset: number, field: string, reason: string};
  leftOut?: {offset: number, size: number, reason: string}[];
  shorter?: {list: string, kept: number, stored: number, brokenAt: string}[];
  losses?: {effect: string, member: string, count: number, first: string, before: string, after: string}[];
  defaults?: string[];
  notes?: string[];
  fixed?: string[];
}

export interface Drawn {
  svg: Blob;
  width: number;
  height: number;
  title: string;
  description: string;
  placements: Placements;
}

export interface Operations {
  check: {in: Source, out: Check};
  info: {in: Source, out: Info};
  draw: {in: Source, out: Drawn};
  root: {in: Source, out: {node: JsonNode, size: number}};
  children: {in: Source & {node: JsonNode}, out: JsonNode[]};
  find: {in: Source & {query: string, most: number}, out: number[]};
  text: {in: Source & {node: JsonNode}, out: string};
  part: {in: Source & {part: number, most: number}, out: PartShapes | null};
  fields: {in: Source & {from: number, to: number}, out: Fields};
  // Finds the field or record with that path; otherwise, unless it must be exact, the first with that name.
  locate: {in: Source & {path: string, isExact: boolean}, out: {offset: number, size: number} | null};
  json: {in: Source & {pretty: boolean}, out: Blob};
  convert:
    {in : Source&{version: number, allowLoss: boolean}, out: {blob: Blob|null, report: Report|null, error: string}};
  recover: {in: Source, out: {blob: Blob | null, report: Report | null, error: string}};
  diff: {
    in: Source & {other: Source, part: string, tolerance: number, common: boolean, most: number},
    out: {same: boolean, lines: string[], total: number, all: Blob}
  };
}
export type Operation = keyof Operations;

export type Ask = {id: number, operation: Operation, parameters: unknown} | {id: number, module: WebAssembly.Module};
export type Reply = {id: number, value: unknown} | {id: number, error: string};
