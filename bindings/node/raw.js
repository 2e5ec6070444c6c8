// Made by bindings/generate.py from functions.json: do not edit.
'use strict';
const koffi = require('koffi');

// The names of types are those of the process: another copy of this module may have declared them.
function declare(name, type) {
  try {
    koffi.type(name);
  } catch {
    type();
  }
}

// Records are opaque.
declare('OldSheet', () => koffi.opaque('OldSheet'));
declare('SheetPartList', () => koffi.opaque('SheetPartList'));
declare('TorvPart', () => koffi.opaque('TorvPart'));
declare('OldSpecialTool', () => koffi.opaque('OldSpecialTool'));
declare('OldToolInventory', () => koffi.opaque('OldToolInventory'));
declare('OldMacro', () => koffi.opaque('OldMacro'));
declare('OldMaterial', () => koffi.opaque('OldMaterial'));
declare('OldMachine', () => koffi.opaque('OldMachine'));

declare('MachineInformation', () => koffi.struct('MachineInformation', {
  infoKind: 'int32_t',
  infoVersion: 'int32_t',
  infoSizeX: 'float',
  infoSizeY: 'float',
  infoText1: koffi.array('uint8_t', 256),
  infoText2: koffi.array('uint8_t', 256),
  infoStationWord: 'int32_t',
  infoExtra1: 'uint32_t',
  infoExtra2: 'uint32_t',
  infoStationMode: 'int32_t',
  infoStationCount: 'int32_t',
}));
declare('torvio_buffer', () => koffi.struct('torvio_buffer', {
  data: 'void *',
  size: 'size_t',
}));
declare('torvio_error', () => koffi.struct('torvio_error', {
  message: 'void *',
  field: 'void *',
  offset: 'uint64_t',
  status: 'int32_t',
}));
declare('torvio_input', () => koffi.struct('torvio_input', {
  path: 'void *',
  data: 'void *',
  size: 'size_t',
  name: 'void *',
  kind: 'void *',
  encoding: 'void *',
}));

exports.constants = {
  TORVIO_OK: 0,
  TORVIO_DAMAGED: 1,
  TORVIO_BAD_ARGUMENT: 2,
  TORVIO_NOT_READ: 3,
  TORVIO_REFUSED: 4,
  TORVIO_NO_MEMORY: 5,
  TORVIO_INTERNAL_ERROR: 6,
  TORVIO_PRETTY: 1,
  TORVIO_PAGE: 2,
  TORVIO_COMMON: 4,
  TORVIO_ALLOW_LOSS: 8,
  TORVIO_NO_OFFSET: 18446744073709551615n,
};

// The names of the files in which systems install the libraries.
exports.files = {
  OldTorvIO: {
    win32: ['OldTorvIO.dll'],
    darwin: ['libOldTorvIO.0.1.dylib', 'libOldTorvIO.dylib'],
    linux: ['libOldTorvIO.so.0.1', 'libOldTorvIO.so'],
  },
  torvio: {
    win32: ['libtorvio.dll'],
    darwin: ['libtorvio.0.1.dylib', 'libtorvio.dylib'],
    linux: ['libtorvio.so.0.1', 'libtorvio.so'],
  },
};

// The prototypes of the functions; the C headers describe them.
exports.prototypes = {
  OldTorvIO: {
    LoadOldPart: 'int64_t LoadOldPart(const uint8_t *path, TorvPart *part)',
    InitTorvPart: 'void InitTorvPart(float width, float height, float thickness, int16_t partKind, ' +
        'const uint8_t *partName, const uint8_t *assemblyName, const uint8_t *materialName, ' +
        'const uint8_t *customText1, const uint8_t *customText2, const uint8_t *customText3)',
    AddPatternToTorvPart: 'int32_t AddPatternToTorvPart(float x, float y, uint8_t type, uint32_t flags, ' +
        'const uint32_t *values, uint32_t itemWord1, float itemWord2, float pairA, float pairB, float pairC, ' +
        'float pairD, const uint8_t *toolName, int16_t itemShort1, int16_t itemShort2, float itemWord3, ' +
        'float itemWord4)',
    AddGroupPatIntoTorvPart: 'int32_t AddGroupPatIntoTorvPart(float x, float y, float angle, ' +
        'const uint8_t *toolName)',
    AddPatIntoGroupPat: 'uint16_t AddPatIntoGroupPat(int32_t groupIndex, float x, float y, uint8_t type, ' +
        'uint64_t ignored, const uint32_t *values)',
    SaveTorvPart: 'int64_t SaveTorvPart(const uint8_t *path, int16_t version)',
    GetOldPartInfo: 'int64_t GetOldPartInfo(const uint8_t *path, uint8_t *materialType, float *width, float *height, ' +
        'float *thickness)',
    GetOldPartInfo_v1: 'int64_t GetOldPartInfo_v1(const uint8_t *path, const uint8_t *key, uint8_t *value)',
    GetOldPartTool: 'int64_t GetOldPartTool(const uint8_t *path, uint8_t *text, int32_t size, uint32_t *length)',
    GetOldSptFromPart: 'int64_t GetOldSptFromPart(const uint8_t *path, uint8_t *text)',
    GetOldSptFromGroupPart: 'int64_t GetOldSptFromGroupPart(const uint8_t *path, uint8_t *text, int32_t size, ' +
        'uint32_t *length)',
    CreateOldPartlistInfo: 'SheetPartList *CreateOldPartlistInfo()',
    DeleteOldPartlistInfo: 'void DeleteOldPartlistInfo(SheetPartList *list)',
    LoadGroupPart: 'int64_t LoadGroupPart(const uint8_t *path, SheetPartList *list)',
    LoadOldSpecialTool: 'int64_t LoadOldSpecialTool(const uint8_t *path, OldSpecialTool *tool)',
    OpenSpecialToolFile: 'int32_t OpenSpecialToolFile(const uint8_t *path, uint32_t *shapeCount, float *orientation, ' +
        'float *specialValue, float *dimension1, float *dimension2, float *dimension3, int32_t *firstValueCount, ' +
        'float *firstValue0, float *firstValue1, float *firstValue2, float *firstValue3, float *firstValue4, ' +
        'float *firstValue5, int32_t *secondValueCount, float *secondValue0, float *secondValue1, ' +
        'float *secondValue2, float *secondValue3, float *secondValue4, float *secondValue5, float *extraValue0, ' +
        'float *extraValue1, uint8_t *lateFlag)',
    GetShapeAt: 'void GetShapeAt(int32_t index, int32_t *type, float *x, float *y, float *value0, float *value1, ' +
        'float *value2, float *value3)',
    LoadOldToolInventory: 'int64_t LoadOldToolInventory(const uint8_t *path, OldToolInventory *inventory)',
    LoadOldToolInventoryForCount: 'int32_t LoadOldToolInventoryForCount(const uint8_t *path, uint32_t *count)',
    GetOldToolInventoryInformation: 'void GetOldToolInventoryInformation(int32_t index, uint8_t *name, ' +
        'float *dimension1, float *dimension2, float *dimension3, float *orientation, int32_t *firstValueCount, ' +
        'float *firstValue0, float *firstValue1, float *firstValue2, float *firstValue3, float *firstValue4, ' +
        'float *firstValue5, int32_t *secondValueCount, float *secondValue0, float *secondValue1, ' +
        'float *secondValue2, float *secondValue3, float *secondValue4, float *secondValue5)',
    LoadOldMacro: 'int64_t LoadOldMacro(const uint8_t *path, OldMacro *macro)',
    LoadOldMaterial: 'int64_t LoadOldMaterial(const uint8_t *path, OldMaterial *material)',
    LoadOldMachine: 'int64_t LoadOldMachine(const uint8_t *path, OldMachine *machine)',
    LoadOldMachineInformation: 'int32_t LoadOldMachineInformation(const uint8_t *path, ' +
        '_Inout_ MachineInformation *information)',
    LoadOldStationToolFromMachine: 'void LoadOldStationToolFromMachine(int32_t index, int32_t *stationNumber, ' +
        'int32_t *stationType, float *orientation, float *realF, float *stationValue, int32_t *valueCount, ' +
        'float *values, float *limit0, float *limit1, float *limit2, float *limit3, int32_t *shapeCode, ' +
        'float *dimensions, float *offsets, uint8_t *specialToolPath, float *pairValue0, float *pairValue1, ' +
        'int32_t *wordF)',
    GetOldVLMQMachineName: 'int64_t GetOldVLMQMachineName(const uint8_t *path, uint8_t *displayName, uint32_t *kind, ' +
        'uint8_t *text2, uint8_t *secondText, uint8_t *lateText)',
    GetMachineDatasForQD: 'int64_t GetMachineDatasForQD(const uint8_t *path, float *sizeX, float *sizeY, ' +
        'float *clampCount, float *blockMode, float *stationMinX, float *stationMinY, float *stationMaxX, ' +
        'float *stationMaxY, float *area0, float *area1, float *area2, float *area3)',
    CreateSheetInfo: 'OldSheet *CreateSheetInfo()',
    DeleteSheetInfo: 'void DeleteSheetInfo(OldSheet *sheet)',
    FreeSheetHandle: 'void FreeSheetHandle(OldSheet *sheet)',
    LoadOldSheet: 'int64_t LoadOldSheet(const uint8_t *path, OldSheet *sheet)',
    SaveOldSheet: 'int64_t SaveOldSheet(const uint8_t *path, OldSheet *sheet, uint16_t version)',
    LoadOldSheetInformation: 'int32_t LoadOldSheetInformation(const uint8_t *path)',
    GetOldSheetHandle: 'int64_t GetOldSheetHandle(const uint8_t *path, _Inout_ OldSheet **sheet)',
    GetOldSheetInfoByName: 'int64_t GetOldSheetInfoByName(OldSheet *sheet, const uint8_t *key, uint8_t *value)',
    GetOldSheetInfoPartGroupIDs: 'int64_t GetOldSheetInfoPartGroupIDs(OldSheet *sheet, uint8_t *value)',
    GetOldSheetInfo: 'int64_t GetOldSheetInfo(const uint8_t *path, uint8_t *materialName, uint8_t *materialGroup, ' +
        'uint8_t *materialType, uint8_t *materialText3, uint8_t *materialText4, uint8_t *materialText5, ' +
        'uint8_t *machinePath, uint8_t *sheetLabel, uint8_t *materialFile, float *width, float *height, ' +
        'float *thickness, double *lateValue, uint8_t *partNames, int32_t partNamesSize, int32_t *partNamesLength, ' +
        'uint8_t *tools, int32_t toolsSize, int32_t *toolsLength)',
    GetOldClampInfo: 'int64_t GetOldClampInfo(const uint8_t *path, uint32_t *word, float *first, float *second, ' +
        'float *third, float *positions, uint32_t *count, float *spacing)',
    GetOldVLMQMaterialName: 'int64_t GetOldVLMQMaterialName(const uint8_t *path, uint8_t *text3, uint8_t *text5)',
    GetOldSkeletonUtil: 'int64_t GetOldSkeletonUtil(const uint8_t *path, float *utilization)',
    GetSheetDriverFlags: 'int64_t GetSheetDriverFlags(const uint8_t *path, int32_t *flags)',
    GetSheetSequenceListSize: 'int64_t GetSheetSequenceListSize(const uint8_t *path, uint32_t *count)',
    ReplaceSheetMachineNcPath: 'int64_t ReplaceSheetMachineNcPath(const uint8_t *path, const uint8_t *ncPath)',
    ReplaceSheetSknPatListWithPartPatList: 'int64_t ReplaceSheetSknPatListWithPartPatList(const uint8_t *path, ' +
        'const uint8_t *partPath)',
    UpdateSheetPartWONumber: 'int64_t UpdateSheetPartWONumber(const uint8_t *path, const uint8_t *partName, ' +
        'const uint8_t *oldNumber, const uint8_t *newNumber)',
  },
  torvio: {
    torvio_free: 'void torvio_free(void *result_or_error)',
    torvio_check: 'int32_t torvio_check(const torvio_input *input, uint32_t flags, _Inout_ torvio_buffer **result, ' +
        '_Inout_ torvio_error **error)',
    torvio_info: 'int32_t torvio_info(const torvio_input *input, uint32_t flags, _Inout_ torvio_buffer **result, ' +
        '_Inout_ torvio_error **error)',
    torvio_json: 'int32_t torvio_json(const torvio_input *input, uint32_t flags, _Inout_ torvio_buffer **result, ' +
        '_Inout_ torvio_error **error)',
    torvio_from_json: 'int32_t torvio_from_json(const torvio_input *input, int32_t version, uint32_t flags, ' +
        '_Inout_ torvio_buffer **result, _Inout_ torvio_error **error)',
    torvio_schema: 'int32_t torvio_schema(const uint8_t *kind, _Inout_ torvio_buffer **result, ' +
        '_Inout_ torvio_error **error)',
    torvio_map: 'int32_t torvio_map(const torvio_input *input, const uint8_t *find, const uint8_t *range, ' +
        'uint32_t flags, _Inout_ torvio_buffer **result, _Inout_ torvio_error **error)',
    torvio_format: 'int32_t torvio_format(const uint8_t *name, const uint8_t *language, ' +
        '_Inout_ torvio_buffer **result, _Inout_ torvio_error **error)',
    torvio_draw: 'int32_t torvio_draw(const torvio_input *input, uint32_t flags, _Inout_ torvio_buffer **result, ' +
        '_Inout_ torvio_error **error)',
    torvio_draw_page: 'int32_t torvio_draw_page(const torvio_input *inputs, size_t count, const uint8_t *title, ' +
        'uint32_t flags, _Inout_ torvio_buffer **result, _Inout_ torvio_error **error)',
    torvio_diff: 'int32_t torvio_diff(const torvio_input *a, const torvio_input *b, const uint8_t *part, ' +
        'double tolerance, uint32_t flags, int32_t *same, _Inout_ torvio_buffer **result, ' +
        '_Inout_ torvio_error **error)',
    torvio_convert: 'int32_t torvio_convert(const torvio_input *input, int32_t version, uint32_t flags, ' +
        '_Inout_ torvio_buffer **result, _Inout_ torvio_buffer **report, _Inout_ torvio_error **error)',
    torvio_recover: 'int32_t torvio_recover(const torvio_input *input, uint32_t flags, ' +
        '_Inout_ torvio_buffer **result, _Inout_ torvio_buffer **report, _Inout_ torvio_error **error)',
    torvio_supported: 'int32_t torvio_supported(_Inout_ torvio_buffer **result, _Inout_ torvio_error **error)',
    torvio_version: 'char *torvio_version()',
  },
};

// The characters of the bytes from 0x80 on of each code page.
exports.codePages = {
  cp1252:
    '\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u008D\u017D\u008F' +
    '\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u009D\u017E\u0178' +
    '\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u00AF' +
    '\u00B0\u00B1\u00B2\u00B3\u00B4\u00B5\u00B6\u00B7\u00B8\u00B9\u00BA\u00BB\u00BC\u00BD\u00BE\u00BF' +
    '\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C6\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF' +
    '\u00D0\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D7\u00D8\u00D9\u00DA\u00DB\u00DC\u00DD\u00DE\u00DF' +
    '\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E6\u00E7\u00E8\u00E9\u00EA\u00EB\u00EC\u00ED\u00EE\u00EF' +
    '\u00F0\u00F1\u00F2\u00F3\u00F4\u00F5\u00F6\u00F7\u00F8\u00F9\u00FA\u00FB\u00FC\u00FD\u00FE\u00FF',
  cp1250:
    '\u20AC\u0081\u201A\u0083\u201E\u2026\u2020\u2021\u0088\u2030\u0160\u2039\u015A\u0164\u017D\u0179' +
    '\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u0098\u2122\u0161\u203A\u015B\u0165\u017E\u017A' +
    '\u00A0\u02C7\u02D8\u0141\u00A4\u0104\u00A6\u00A7\u00A8\u00A9\u015E\u00AB\u00AC\u00AD\u00AE\u017B' +
    '\u00B0\u00B1\u02DB\u0142\u00B4\u00B5\u00B6\u00B7\u00B8\u0105\u015F\u00BB\u013D\u02DD\u013E\u017C' +
    '\u0154\u00C1\u00C2\u0102\u00C4\u0139\u0106\u00C7\u010C\u00C9\u0118\u00CB\u011A\u00CD\u00CE\u010E' +
    '\u0110\u0143\u0147\u00D3\u00D4\u0150\u00D6\u00D7\u0158\u016E\u00DA\u0170\u00DC\u00DD\u0162\u00DF' +
    '\u0155\u00E1\u00E2\u0103\u00E4\u013A\u0107\u00E7\u010D\u00E9\u0119\u00EB\u011B\u00ED\u00EE\u010F' +
    '\u0111\u0144\u0148\u00F3\u00F4\u0151\u00F6\u00F7\u0159\u016F\u00FA\u0171\u00FC\u00FD\u0163\u02D9',
  cp1251:
    '\u0402\u0403\u201A\u0453\u201E\u2026\u2020\u2021\u20AC\u2030\u0409\u2039\u040A\u040C\u040B\u040F' +
    '\u0452\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u0098\u2122\u0459\u203A\u045A\u045C\u045B\u045F' +
    '\u00A0\u040E\u045E\u0408\u00A4\u0490\u00A6\u00A7\u0401\u00A9\u0404\u00AB\u00AC\u00AD\u00AE\u0407' +
    '\u00B0\u00B1\u0406\u0456\u0491\u00B5\u00B6\u00B7\u0451\u2116\u0454\u00BB\u0458\u0405\u0455\u0457' +
    '\u0410\u0411\u0412\u0413\u0414\u0415\u0416\u0417\u0418\u0419\u041A\u041B\u041C\u041D\u041E\u041F' +
    '\u0420\u0421\u0422\u0423\u0424\u0425\u0426\u0427\u0428\u0429\u042A\u042B\u042C\u042D\u042E\u042F' +
    '\u0430\u0431\u0432\u0433\u0434\u0435\u0436\u0437\u0438\u0439\u043A\u043B\u043C\u043D\u043E\u043F' +
    '\u0440\u0441\u0442\u0443\u0444\u0445\u0446\u0447\u0448\u0449\u044A\u044B\u044C\u044D\u044E\u044F',
  cp1253:
    '\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u0088\u2030\u008A\u2039\u008C\u008D\u008E\u008F' +
    '\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u0098\u2122\u009A\u203A\u009C\u009D\u009E\u009F' +
    '\u00A0\u0385\u0386\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u2015' +
    '\u00B0\u00B1\u00B2\u00B3\u0384\u00B5\u00B6\u00B7\u0388\u0389\u038A\u00BB\u038C\u00BD\u038E\u038F' +
    '\u0390\u0391\u0392\u0393\u0394\u0395\u0396\u0397\u0398\u0399\u039A\u039B\u039C\u039D\u039E\u039F' +
    '\u03A0\u03A1\u00D2\u03A3\u03A4\u03A5\u03A6\u03A7\u03A8\u03A9\u03AA\u03AB\u03AC\u03AD\u03AE\u03AF' +
    '\u03B0\u03B1\u03B2\u03B3\u03B4\u03B5\u03B6\u03B7\u03B8\u03B9\u03BA\u03BB\u03BC\u03BD\u03BE\u03BF' +
    '\u03C0\u03C1\u03C2\u03C3\u03C4\u03C5\u03C6\u03C7\u03C8\u03C9\u03CA\u03CB\u03CC\u03CD\u03CE\u00FF',
  cp1254:
    '\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u008D\u008E\u008F' +
    '\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u009D\u009E\u0178' +
    '\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u00AF' +
    '\u00B0\u00B1\u00B2\u00B3\u00B4\u00B5\u00B6\u00B7\u00B8\u00B9\u00BA\u00BB\u00BC\u00BD\u00BE\u00BF' +
    '\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C6\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF' +
    '\u011E\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D7\u00D8\u00D9\u00DA\u00DB\u00DC\u0130\u015E\u00DF' +
    '\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E6\u00E7\u00E8\u00E9\u00EA\u00EB\u00EC\u00ED\u00EE\u00EF' +
    '\u011F\u00F1\u00F2\u00F3\u00F4\u00F5\u00F6\u00F7\u00F8\u00F9\u00FA\u00FB\u00FC\u0131\u015F\u00FF',
  cp437:
    '\u00C7\u00FC\u00E9\u00E2\u00E4\u00E0\u00E5\u00E7\u00EA\u00EB\u00E8\u00EF\u00EE\u00EC\u00C4\u00C5' +
    '\u00C9\u00E6\u00C6\u00F4\u00F6\u00F2\u00FB\u00F9\u00FF\u00D6\u00DC\u00A2\u00A3\u00A5\u20A7\u0192' +
    '\u00E1\u00ED\u00F3\u00FA\u00F1\u00D1\u00AA\u00BA\u00BF\u2310\u00AC\u00BD\u00BC\u00A1\u00AB\u00BB' +
    '\u2591\u2592\u2593\u2502\u2524\u2561\u2562\u2556\u2555\u2563\u2551\u2557\u255D\u255C\u255B\u2510' +
    '\u2514\u2534\u252C\u251C\u2500\u253C\u255E\u255F\u255A\u2554\u2569\u2566\u2560\u2550\u256C\u2567' +
    '\u2568\u2564\u2565\u2559\u2558\u2552\u2553\u256B\u256A\u2518\u250C\u2588\u2584\u258C\u2590\u2580' +
    '\u03B1\u00DF\u0393\u03C0\u03A3\u03C3\u00B5\u03C4\u03A6\u0398\u03A9\u03B4\u221E\u03C6\u03B5\u2229' +
    '\u2261\u00B1\u2265\u2264\u2320\u2321\u00F7\u2248\u00B0\u2219\u00B7\u221A\u207F\u00B2\u25A0\u00A0',
  cp850:
    '\u00C7\u00FC\u00E9\u00E2\u00E4\u00E0\u00E5\u00E7\u00EA\u00EB\u00E8\u00EF\u00EE\u00EC\u00C4\u00C5' +
    '\u00C9\u00E6\u00C6\u00F4\u00F6\u00F2\u00FB\u00F9\u00FF\u00D6\u00DC\u00F8\u00A3\u00D8\u00D7\u0192' +
    '\u00E1\u00ED\u00F3\u00FA\u00F1\u00D1\u00AA\u00BA\u00BF\u00AE\u00AC\u00BD\u00BC\u00A1\u00AB\u00BB' +
    '\u2591\u2592\u2593\u2502\u2524\u00C1\u00C2\u00C0\u00A9\u2563\u2551\u2557\u255D\u00A2\u00A5\u2510' +
    '\u2514\u2534\u252C\u251C\u2500\u253C\u00E3\u00C3\u255A\u2554\u2569\u2566\u2560\u2550\u256C\u00A4' +
    '\u00F0\u00D0\u00CA\u00CB\u00C8\u0131\u00CD\u00CE\u00CF\u2518\u250C\u2588\u2584\u00A6\u00CC\u2580' +
    '\u00D3\u00DF\u00D4\u00D2\u00F5\u00D5\u00B5\u00FE\u00DE\u00DA\u00DB\u00D9\u00FD\u00DD\u00AF\u00B4' +
    '\u00AD\u00B1\u2017\u00BE\u00B6\u00A7\u00F7\u00B8\u00B0\u00A8\u00B7\u00B9\u00B3\u00B2\u25A0\u00A0',
  latin1:
    '\u0080\u0081\u0082\u0083\u0084\u0085\u0086\u0087\u0088\u0089\u008A\u008B\u008C\u008D\u008E\u008F' +
    '\u0090\u0091\u0092\u0093\u0094\u0095\u0096\u0097\u0098\u0099\u009A\u009B\u009C\u009D\u009E\u009F' +
    '\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u00AF' +
    '\u00B0\u00B1\u00B2\u00B3\u00B4\u00B5\u00B6\u00B7\u00B8\u00B9\u00BA\u00BB\u00BC\u00BD\u00BE\u00BF' +
    '\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C6\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF' +
    '\u00D0\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D7\u00D8\u00D9\u00DA\u00DB\u00DC\u00DD\u00DE\u00DF' +
    '\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E6\u00E7\u00E8\u00E9\u00EA\u00EB\u00EC\u00ED\u00EE\u00EF' +
    '\u00F0\u00F1\u00F2\u00F3\u00F4\u00F5\u00F6\u00F7\u00F8\u00F9\u00FA\u00FB\u00FC\u00FD\u00FE\u00FF',
};
