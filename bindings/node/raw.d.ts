// Made by bindings/generate.py from functions.json: do not edit.
// The functions of OldTorvIO.h and torvio.h, which describe them. Texts and names of files are bytes that end
// with a zero. What a function writes is the content of an array.

/** An address. */
export type Pointer = bigint;

export interface RawMachineInformation {
  infoKind: number;
  infoVersion: number;
  infoSizeX: number;
  infoSizeY: number;
  infoText1: Uint8Array;
  infoText2: Uint8Array;
  infoStationWord: number;
  infoExtra1: number;
  infoExtra2: number;
  infoStationMode: number;
  infoStationCount: number;
}

export interface RawInput {
  path: Uint8Array | null;
  data: Uint8Array | null;
  size: number;
  name: Uint8Array | null;
  kind: Uint8Array | null;
  encoding: Uint8Array | null;
}

export interface RawOldTorvIO {
  /** Loads a part file into a record.
   * Only C++ programs can create its record: torvio_json reads such files in other languages. */
  LoadOldPart(path: Uint8Array | null, part: Pointer | null): number;
  /** Starts a new part in the part builder. */
  InitTorvPart(width: number, height: number, thickness: number, partKind: number, partName: Uint8Array | null,
    assemblyName: Uint8Array | null, materialName: Uint8Array | null, customText1: Uint8Array | null,
    customText2: Uint8Array | null, customText3: Uint8Array | null): void;
  /** Adds a shape to the part builder. */
  AddPatternToTorvPart(x: number, y: number, type: number, flags: number, values: Uint32Array, itemWord1: number,
    itemWord2: number, pairA: number, pairB: number, pairC: number, pairD: number, toolName: Uint8Array | null,
    itemShort1: number, itemShort2: number, itemWord3: number, itemWord4: number): number;
  /** Adds the shapes of a special tool as a group to the part builder. */
  AddGroupPatIntoTorvPart(x: number, y: number, angle: number, toolName: Uint8Array | null): number;
  /** Adds a member to a group of the part builder. */
  AddPatIntoGroupPat(groupIndex: number, x: number, y: number, type: number, ignored: number | bigint,
    values: Uint32Array): number;
  /** Saves the part builder as a part file. */
  SaveTorvPart(path: Uint8Array | null, version: number): number;
  /** Material type and size of a part file. */
  GetOldPartInfo(path: Uint8Array | null, materialType: Uint8Array, width: Float32Array, height: Float32Array,
    thickness: Float32Array): number;
  /** One value of a part file as text. */
  GetOldPartInfo_v1(path: Uint8Array | null, key: Uint8Array | null, value: Uint8Array): number;
  /** The tools of a part file as text. */
  GetOldPartTool(path: Uint8Array | null, text: Uint8Array | null, size: number, length: Uint32Array): number;
  /** The special tools of a part file as text. */
  GetOldSptFromPart(path: Uint8Array | null, text: Uint8Array): number;
  /** The special tools of a group part file as text. */
  GetOldSptFromGroupPart(path: Uint8Array | null, text: Uint8Array | null, size: number, length: Uint32Array): number;
  /** A new list of parts. */
  CreateOldPartlistInfo(): Pointer | null;
  /** Frees a list of parts. */
  DeleteOldPartlistInfo(list: Pointer | null): void;
  /** Appends the parts of a group part file to a list. */
  LoadGroupPart(path: Uint8Array | null, list: Pointer | null): number;
  /** Loads a special tool file into a record.
   * Only C++ programs can create its record: torvio_json reads such files in other languages. */
  LoadOldSpecialTool(path: Uint8Array | null, tool: Pointer | null): number;
  /** Loads the current special tool and returns its values. */
  OpenSpecialToolFile(path: Uint8Array | null, shapeCount: Uint32Array, orientation: Float32Array,
    specialValue: Float32Array, dimension1: Float32Array, dimension2: Float32Array, dimension3: Float32Array,
    firstValueCount: Int32Array, firstValue0: Float32Array, firstValue1: Float32Array, firstValue2: Float32Array,
    firstValue3: Float32Array, firstValue4: Float32Array, firstValue5: Float32Array, secondValueCount: Int32Array,
    secondValue0: Float32Array, secondValue1: Float32Array, secondValue2: Float32Array, secondValue3: Float32Array,
    secondValue4: Float32Array, secondValue5: Float32Array, extraValue0: Float32Array, extraValue1: Float32Array,
    lateFlag: Uint8Array): number;
  /** One shape of the current special tool. */
  GetShapeAt(index: number, type: Int32Array, x: Float32Array, y: Float32Array, value0: Float32Array,
    value1: Float32Array, value2: Float32Array, value3: Float32Array): void;
  /** Loads a tool inventory into a record.
   * Only C++ programs can create its record: torvio_json reads such files in other languages. */
  LoadOldToolInventory(path: Uint8Array | null, inventory: Pointer | null): number;
  /** Loads the current tool inventory and counts its tools. */
  LoadOldToolInventoryForCount(path: Uint8Array | null, count: Uint32Array): number;
  /** One tool of the current inventory. */
  GetOldToolInventoryInformation(index: number, name: Uint8Array, dimension1: Float32Array, dimension2: Float32Array,
    dimension3: Float32Array, orientation: Float32Array, firstValueCount: Int32Array, firstValue0: Float32Array,
    firstValue1: Float32Array, firstValue2: Float32Array, firstValue3: Float32Array, firstValue4: Float32Array,
    firstValue5: Float32Array, secondValueCount: Int32Array, secondValue0: Float32Array, secondValue1: Float32Array,
    secondValue2: Float32Array, secondValue3: Float32Array, secondValue4: Float32Array,
    secondValue5: Float32Array): void;
  /** Loads a macro file into a record.
   * Only C++ programs can create its record: torvio_json reads such files in other languages. */
  LoadOldMacro(path: Uint8Array | null, macro: Pointer | null): number;
  /** Loads a material file into a record.
   * Only C++ programs can create its record: torvio_json reads such files in other languages. */
  LoadOldMaterial(path: Uint8Array | null, material: Pointer | null): number;
  /** Loads a machine file into a record.
   * Only C++ programs can create its record: torvio_json reads such files in other languages. */
  LoadOldMachine(path: Uint8Array | null, machine: Pointer | null): number;
  /** Loads the current machine and returns facts about it. */
  LoadOldMachineInformation(path: Uint8Array | null, information: RawMachineInformation): number;
  /** One station of the current machine and its tool. */
  LoadOldStationToolFromMachine(index: number, stationNumber: Int32Array, stationType: Int32Array,
    orientation: Float32Array, realF: Float32Array, stationValue: Float32Array, valueCount: Int32Array,
    values: Float32Array, limit0: Float32Array, limit1: Float32Array, limit2: Float32Array, limit3: Float32Array,
    shapeCode: Int32Array, dimensions: Float32Array, offsets: Float32Array, specialToolPath: Uint8Array,
    pairValue0: Float32Array, pairValue1: Float32Array, wordF: Int32Array): void;
  /** Loads the current machine and returns its name, kind and texts. */
  GetOldVLMQMachineName(path: Uint8Array | null, displayName: Uint8Array, kind: Uint32Array, text2: Uint8Array,
    secondText: Uint8Array, lateText: Uint8Array): number;
  /** Size, clamps, station limits and work area of a machine file. */
  GetMachineDatasForQD(path: Uint8Array | null, sizeX: Float32Array, sizeY: Float32Array, clampCount: Float32Array,
    blockMode: Float32Array, stationMinX: Float32Array, stationMinY: Float32Array, stationMaxX: Float32Array,
    stationMaxY: Float32Array, area0: Float32Array, area1: Float32Array, area2: Float32Array,
    area3: Float32Array): number;
  /** A new sheet. */
  CreateSheetInfo(): Pointer | null;
  /** Frees a sheet. */
  DeleteSheetInfo(sheet: Pointer | null): void;
  /** Frees a sheet. */
  FreeSheetHandle(sheet: Pointer | null): void;
  /** Loads a sheet file into a sheet. */
  LoadOldSheet(path: Uint8Array | null, sheet: Pointer | null): number;
  /** Saves a sheet. */
  SaveOldSheet(path: Uint8Array | null, sheet: Pointer | null, version: number): number;
  /** Loads a sheet file as the current sheet: only the status matters. */
  LoadOldSheetInformation(path: Uint8Array | null): number;
  /** Loads a sheet file into a new sheet. */
  GetOldSheetHandle(path: Uint8Array | null, sheet: [Pointer | null]): number;
  /** One value of a sheet as text. */
  GetOldSheetInfoByName(sheet: Pointer | null, key: Uint8Array | null, value: Uint8Array): number;
  /** The group ids of the parts of a sheet as text. */
  GetOldSheetInfoPartGroupIDs(sheet: Pointer | null, value: Uint8Array): number;
  /** Material, size, parts and tools of a sheet file. */
  GetOldSheetInfo(path: Uint8Array | null, materialName: Uint8Array, materialGroup: Uint8Array,
    materialType: Uint8Array, materialText3: Uint8Array, materialText4: Uint8Array, materialText5: Uint8Array,
    machinePath: Uint8Array, sheetLabel: Uint8Array, materialFile: Uint8Array, width: Float32Array,
    height: Float32Array, thickness: Float32Array, lateValue: Float64Array, partNames: Uint8Array | null,
    partNamesSize: number, partNamesLength: Int32Array, tools: Uint8Array | null, toolsSize: number,
    toolsLength: Int32Array): number;
  /** The clamps of a sheet file. */
  GetOldClampInfo(path: Uint8Array | null, word: Uint32Array, first: Float32Array, second: Float32Array,
    third: Float32Array, positions: Float32Array, count: Uint32Array, spacing: Float32Array): number;
  /** Two material texts of a sheet file. */
  GetOldVLMQMaterialName(path: Uint8Array | null, text3: Uint8Array, text5: Uint8Array): number;
  /** The utilization of a sheet file. */
  GetOldSkeletonUtil(path: Uint8Array | null, utilization: Float32Array): number;
  /** The driver flags of a sheet file. */
  GetSheetDriverFlags(path: Uint8Array | null, flags: Int32Array): number;
  /** The number of work entries of a sheet file. */
  GetSheetSequenceListSize(path: Uint8Array | null, count: Uint32Array): number;
  /** Edits a sheet file: the NC path of its machine. */
  ReplaceSheetMachineNcPath(path: Uint8Array | null, ncPath: Uint8Array | null): number;
  /** Edits a sheet file: its parts and its skeleton. */
  ReplaceSheetSknPatListWithPartPatList(path: Uint8Array | null, partPath: Uint8Array | null): number;
  /** Edits a sheet file: the work order number of a part. */
  UpdateSheetPartWONumber(path: Uint8Array | null, partName: Uint8Array | null, oldNumber: Uint8Array | null,
    newNumber: Uint8Array | null): number;
}

export interface RawTorvio {
  /** Frees a result or an error. */
  torvio_free(result_or_error: Pointer | null): void;
  /** Judges a file. */
  torvio_check(input: RawInput, flags: number, result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** A file at a glance. */
  torvio_info(input: RawInput, flags: number, result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** The complete record of a file as JSON. */
  torvio_json(input: RawInput, flags: number, result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** Makes a file from the JSON of its record. */
  torvio_from_json(input: RawInput, version: number, flags: number, result: [Pointer | null] | null,
    error: [Pointer | null] | null): number;
  /** The JSON Schema of a kind of file. */
  torvio_schema(kind: Uint8Array | null, result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** The fields of a file with their offsets. */
  torvio_map(input: RawInput, find: Uint8Array | null, range: Uint8Array | null, flags: number,
    result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** The stored form of a kind of file. */
  torvio_format(name: Uint8Array | null, language: Uint8Array | null, result: [Pointer | null] | null,
    error: [Pointer | null] | null): number;
  /** A picture of a file as SVG. */
  torvio_draw(input: RawInput, flags: number, result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** Pictures of several files on an HTML page. */
  torvio_draw_page(inputs: RawInput[], count: number | bigint, title: Uint8Array | null, flags: number,
    result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** Where two files differ. */
  torvio_diff(a: RawInput, b: RawInput, part: Uint8Array | null, tolerance: number, flags: number,
    same: Int32Array | null, result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** Saves a file in another version. */
  torvio_convert(input: RawInput, version: number, flags: number, result: [Pointer | null] | null,
    report: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** Makes a file from the sound beginning of a damaged one. */
  torvio_recover(input: RawInput, flags: number, result: [Pointer | null] | null, report: [Pointer | null] | null,
    error: [Pointer | null] | null): number;
  /** What the functions accept. */
  torvio_supported(result: [Pointer | null] | null, error: [Pointer | null] | null): number;
  /** The version of the library. */
  torvio_version(): string;
}
