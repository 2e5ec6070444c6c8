// The functions of torvio.h on files in memory. docs/web.md describes the package, the header each function.

/** The compiled module, its bytes, a response that has them, or where they are: a URL as object or string. */
export type Source = URL | string | Response | ArrayBuffer | Uint8Array | WebAssembly.Module;

/** The bytes of a file. Nothing writes to them or keeps them. */
export type Bytes = Uint8Array | ArrayBuffer;

/** What is known of a file besides its bytes. */
export interface InputOptions {
  /** What results call the file; its extension is a hint of the kind. */
  name?: string | null;
  /** The kind of the file, such as "sheet"; by default it is detected. */
  kind?: string | null;
  /** The code page of the texts in the file: "cp1252" by default. */
  encoding?: string | null;
}

/** A version or a range of versions, both included. */
export type VersionRange = [first: number, last: number];

/** What the other functions accept. */
export interface Supported {
  version: string;
  kinds: {name: string, versions: VersionRange[], drawable: boolean}[];
  records: string[];
  encodings: string[];
}

export type Verdict = 'sound' | 'sound with losses' | 'damaged' | 'refused version' | 'foreign' | 'unreadable';

/** Where a file breaks, and why. */
export interface Fault {
  offset: number;
  field: string;
  reason: string;
}

/** What torvio_check of torvio.h says of a file. */
export interface Check {
  path: string;
  verdict: Verdict;
  /** Missing if the file is foreign, as are status and walked. */
  kind?: string;
  version?: number;
  size?: number;
  status?: number;
  walked?: number;
  fault?: Fault;
  tolerated?: Fault;
  warnings?: {code: string, field: string, text: string}[];
}

/** Names, sizes, parts, tools: further members depend on the kind. */
export interface Info {
  path: string;
  verdict: Verdict;
  kind?: string;
  version?: number;
  remark?: string;
  [member: string]: unknown;
}

/** A new file, and what became of the old one: docs/convert.md describes the reports. */
export interface NewFile {
  bytes: Uint8Array;
  report: Record<string, unknown>;
}

/** A function has no result. */
export class TorvioError extends Error {
  private constructor();
  /** The status of torvio.h, and its name there. */
  readonly status: number;
  readonly statusName: 'TORVIO_BAD_ARGUMENT' | 'TORVIO_DAMAGED' | 'TORVIO_NOT_READ' | 'TORVIO_REFUSED' |
                       'TORVIO_NO_MEMORY' | 'TORVIO_INTERNAL_ERROR';
  /** The field of the file that is damaged; empty if there is none. */
  readonly field: string;
  /** Where that field begins, in bytes from the start of the file; null if there is none. */
  readonly offset: number | null;
  /** Why a conversion or a recovery is refused; null of all other errors. */
  readonly report: Record<string, unknown> | null;
}

/** The functions do all their work before they return: call them in a worker if a page must not wait. */
export class Torvio {
  private constructor();
  /** Without a source: the file torvio.wasm beside this one. */
  static load(source?: Source | Promise<Source>): Promise<Torvio>;

  /** Of the library, such as "0.1.0". */
  readonly version: string;
  supported(): Supported;

  /** A verdict of any file, also of a damaged or foreign one. */
  check(bytes: Bytes, options?: InputOptions): Check;
  /** Of a damaged file: what was read. */
  info(bytes: Bytes, options?: InputOptions): Info;

  /** The complete record as JSON. Of a damaged file: the record as far as it was read, and the fault. */
  toJson(bytes: Bytes, options?: InputOptions & {pretty?: boolean}): string;
  /** The bytes of a file; version 0 is the one in the text. */
  fromJson(text: string | Bytes, version?: number): Uint8Array;
  /** The JSON Schema of what toJson() returns. */
  schema(kind: string): string;

  /** Every field with its offset, an object a line. Of a damaged file the last line is its fault. */
  map(bytes: Bytes, options?: InputOptions & {find?: string | null, range?: string | null}): string;
  /** An HTML page with bytes and fields side by side. */
  mapPage(bytes: Bytes, options?: InputOptions): string;
  /** How a kind of file or a record is stored. */
  format(name: string, language?: 'markdown' | 'json' | 'kaitai'): string;

  /** An SVG document. Of a damaged file: what was read. */
  draw(bytes: Bytes, options?: InputOptions): string;
  /** An HTML page with the pictures of several files. */
  drawPage(files: Iterable<InputOptions & {bytes: Bytes}>, options?: {title?: string | null}): string;

  /** A line of JSON for each difference, and a last one with the totals. */
  diff(a: Bytes, b: Bytes, options?: {
    nameA?: string | null, nameB?: string | null, kindA?: string | null, kindB?: string | null,
    encoding?: string | null, part?: string | null, tolerance?: number, common?: boolean,
  }): {same: boolean, lines: string};

  /** The file in another version. Refused with a report if something would be lost, unless that is allowed. */
  convert(bytes: Bytes, version: number, options?: InputOptions & {allowLoss?: boolean}): NewFile;
  /** A file that loads, made of the sound beginning of a damaged one. */
  recover(bytes: Bytes, options?: InputOptions): NewFile;
}
