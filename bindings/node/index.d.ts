// The older binary files of a sheet-metal fabrication suite. The headers OldTorvIO.h and torvio.h say what the
// functions do, which versions they accept and what they return for damaged files.
import {RawOldTorvIO, RawTorvio} from './raw';

/** A function has returned a status other than 0. */
export class TorvioError extends Error {
  /** The name of the function in its header, which lists the statuses. */
  readonly function: string;
  readonly status: number;
  /** Where a damaged file breaks, in bytes from its start; null if that is unknown. */
  readonly offset: number | null;
  /** The field of the file that is damaged; empty if there is none. */
  readonly field: string;
  /** What was read of a damaged file: what the function would have returned. */
  readonly result: string | Uint8Array | null;
  /** What would be lost, if a conversion is refused. */
  readonly report: string | null;
}

/** A file in memory or with options. Either path or data must be given. */
export interface TorvioInput {
  path?: string;
  data?: Uint8Array;
  /** The name of the file in results. */
  name?: string;
  /** The kind of the file, such as "sheet"; by default it is detected. */
  kind?: string;
  /** The code page of the texts in the file: "cp1252" by default. */
  encoding?: string;
}

/** A path, the bytes of a file, or a file with options. */
export type Input = string | Uint8Array | TorvioInput;

/** A new file, and what became of the old one as JSON. */
export interface NewFile {
  data: Uint8Array;
  report: string;
}

/** The functions of torvio.h. Results are texts as the header describes them: use JSON.parse where they are JSON. */
export const torvio: {
  version(): string;
  supported(): string;
  /** Returns a verdict for every file, even if it is damaged or cannot be read. */
  check(input: Input): string;
  info(input: Input): string;
  json(input: Input, options?: {pretty?: boolean}): string;
  fromJson(input: Input, options?: {version?: number}): Uint8Array;
  schema(kind: string): string;
  map(input: Input, options?: {find?: string | null, range?: string | null}): string;
  mapPage(input: Input): string;
  format(name: string, language?: 'markdown' | 'json' | 'kaitai' | null): string;
  draw(input: Input): string;
  drawPage(inputs: Input[], options?: {title?: string | null}): string;
  diff(a: Input, b: Input, options?: {part?: string | null, tolerance?: number, common?: boolean}):
    {same: boolean, lines: string};
  convert(input: Input, version: number, options?: {allowLoss?: boolean}): NewFile;
  recover(input: Input): NewFile;
};

/** The name of a file: a string, or the bytes that the system uses. */
export type Path = string | Uint8Array;

/** The code page of texts: "cp1252" by default; torvio.supported lists all. */
export interface Encoding {
  encoding?: string;
}

/** Numbers are stored as 32-bit floats, the elements of an Int32Array or Uint32Array as they are; at most nine. */
export type Values = ArrayLike<number>;

/** The part builder, which exists once per process. */
export const PartBuilder: {
  start(part: {width: number, height: number, thickness: number, kind?: number, name?: string | null,
               assembly?: string | null, material?: string | null, customTexts?: (string | null)[]} & Encoding): void;
  /** Returns the number of shapes in the part. */
  add(shape: {x: number, y: number, type: number, flags?: number, values?: Values, itemWord1?: number,
              itemWord2?: number, pairA?: number, pairB?: number, pairC?: number, pairD?: number,
              toolName?: string | null, itemShort1?: number, itemShort2?: number, itemWord3?: number,
              itemWord4?: number} & Encoding): number;
  addGroup(group: {x: number, y: number, angle?: number, toolName: string} & Encoding): number;
  /** groupIndex: the position of the head of the group, from 1. */
  addToGroup(groupIndex: number, shape: {x: number, y: number, type: number, values?: Values}): number;
  save(path: Path, version?: number): void;
};

export const PartFile: {
  info(path: Path, options?: Encoding): {materialType: string, width: number, height: number, thickness: number};
  value(path: Path, key: string, options?: Encoding): string;
  tools(path: Path, options?: Encoding): string;
  specialTools(path: Path, options?: Encoding): string;
};

export const GroupPartFile: {
  specialTools(path: Path, options?: Encoding): string;
};

export interface SpecialTool {
  orientation: number;
  specialValue: number;
  dimensions: number[];
  firstValueCount: number;
  firstValues: number[];
  secondValueCount: number;
  secondValues: number[];
  extraValues: number[];
  lateFlag: number;
  shapes: {type: number, x: number, y: number, values: number[]}[];
}

export const SpecialToolFile: {
  /** The header says what is returned for a file without shapes. */
  open(path: Path): SpecialTool;
};

export interface Tool {
  name: string;
  dimensions: number[];
  orientation: number;
  firstValueCount: number;
  firstValues: number[];
  secondValueCount: number;
  secondValues: number[];
}

export const ToolInventoryFile: {
  /** A damaged file looks like an empty one. A special tool whose file is not in the list ends the process. */
  open(path: Path, options?: Encoding): Tool[];
};

export interface Station {
  stationNumber: number;
  stationType: number;
  orientation: number;
  realF: number;
  stationValue: number;
  valueCount: number;
  values: number[];
  limits: number[];
  shapeCode: number;
  dimensions: number[];
  offsets: number[];
  specialToolPath: string;
  pairValues: number[];
  wordF: number;
}

export interface Machine {
  kind: number;
  version: number;
  sizeX: number;
  sizeY: number;
  text1: string;
  text2: string;
  stationWord: number;
  extra1: number;
  extra2: number;
  stationMode: number;
  stations: Station[];
}

export const MachineFile: {
  open(path: Path, options?: Encoding): Machine;
  name(path: Path, options?: Encoding):
    {displayName: string, kind: number, text2: string, secondText: string, lateText: string};
  size(path: Path): {sizeX: number, sizeY: number, clampCount: number, blockMode: number, stationMinX: number,
                     stationMinY: number, stationMaxX: number, stationMaxY: number, area: number[]};
};

export interface SheetInfo {
  materialName: string;
  materialGroup: string;
  materialType: string;
  materialText3: string;
  materialText4: string;
  materialText5: string;
  machinePath: string;
  sheetLabel: string;
  materialFile: string;
  width: number;
  height: number;
  thickness: number;
  lateValue: number;
  partNames: string;
  tools: string;
}

export const SheetFile: {
  info(path: Path, options?: Encoding): SheetInfo;
  clamps(path: Path): {word: number, bits: number[], positions: number[], count: number, spacing: number};
  materialTexts(path: Path, options?: Encoding): {text3: string, text5: string};
  utilization(path: Path): number;
  driverFlags(path: Path): Int32Array;
  sequenceSize(path: Path): number;
  /** Fails if LoadOldSheetInformation returns a status other than 0. */
  verify(path: Path): void;
  /** The edits can ruin sheets below version 152: read the header first. */
  replaceNcPath(path: Path, ncPath: string, options?: Encoding): void;
  replaceSkeleton(path: Path, partPath: Path): void;
  /** oldNumber: null means any number. */
  updateWorkOrder(path: Path, partName: string, oldNumber: string | null, newNumber: string, options?: Encoding): void;
};

/** A sheet in memory. Close it when it is not needed any more: it is large. */
export class Sheet {
  /** A new sheet. */
  constructor();
  static open(path: Path): Sheet;
  load(path: Path): void;
  save(path: Path, version?: number): void;
  value(key: string, options?: Encoding): string;
  partGroupIds(): string;
  /** For the raw functions. */
  readonly address: bigint;
  close(): void;
}

/** The parts of group part files; only shows whether they can be loaded. Close it when it is not needed any more. */
export class PartList {
  constructor();
  load(path: Path): void;
  readonly address: bigint;
  close(): void;
}

/** A text as bytes of a code page that end with a zero, and back. */
export function encodeText(text: string, encoding?: string): Uint8Array;
export function decodeText(bytes: Uint8Array, encoding?: string): string;

/** The functions without any checks. Most arguments that the headers forbid end the process. */
export const raw: {
  torvio: RawTorvio;
  oldTorvIO: RawOldTorvIO;
  constants: Record<string, number | bigint>;
};
