"""Made by tools/make_stubs.py from the records of the library: run it again after a change of a record."""
from typing import Any, Iterable, Iterator, List as _List, MutableSequence, Sequence, Tuple, TypeVar, overload

_T = TypeVar("_T")

__version__: str

class Array(Sequence[_T]):
    """An array of a record. Its length is fixed."""
    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: int) -> _T: ...
    @overload
    def __getitem__(self, index: slice) -> _List[_T]: ...
    @overload
    def __setitem__(self, index: int, value: _T) -> None: ...
    @overload
    def __setitem__(self, index: slice, value: Iterable[_T]) -> None: ...
    def __iter__(self) -> Iterator[_T]: ...
    def tolist(self) -> _List[Any]: ...

class List(MutableSequence[_T]):
    """A list of a record. It holds copies of what is put into it."""
    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: int) -> _T: ...
    @overload
    def __getitem__(self, index: slice) -> _List[_T]: ...
    @overload
    def __setitem__(self, index: int, value: _T) -> None: ...
    @overload
    def __setitem__(self, index: slice, value: Iterable[_T]) -> None: ...
    def __delitem__(self, index: int | slice) -> None: ...
    def __iter__(self) -> Iterator[_T]: ...
    def insert(self, index: int, value: _T) -> None: ...
    def add(self, **members: Any) -> _T: ...
    def tolist(self) -> _List[Any]: ...

class Record:
    """What all records have in common."""
    def __copy__(self: _T) -> _T: ...
    def __deepcopy__(self: _T, memo: Any) -> _T: ...

def raw(owner: Record | Array[bytes] | List[bytes], member: str | int) -> bytes: ...
def set_raw(owner: Record | Array[bytes] | List[bytes], member: str | int, data: bytes) -> None: ...
def decode(text: bytes, encoding: str = ...) -> str: ...
def encode(text: str, encoding: str = ...) -> bytes: ...

class Shape(Record):
    """A record that files embed."""
    type: int
    auxWord: int
    flags: int
    x: float
    y: float
    values: Array[float]  # 9 elements
    linkIndex: int
    auxValue1: int
    extraValues: Array[int]  # 2 elements
    textFlag: int
    auxValue2: int
    auxValue3: int
    auxValue4: int
    trailerValue: int
    valueCount: int
    extraCount: int
    rangeValue: int
    lateByte1: int
    lateByte2: int
    lateByte3: int
    lateWord1: int
    lateByte4: int
    lateWord2: int
    note: bytes
    tailPair: Array[int]  # 2 elements
    text: bytes  # 256 bytes
    def __init__(self, **members: Any) -> None: ...

class ShapeList(Record):
    """A record that files embed."""
    shapes: List[Shape]
    listKind: int
    listTag: int
    def __init__(self, **members: Any) -> None: ...

class SetupEntry(Record):
    """A record that files embed."""
    setupShort1: int
    setupShort2: int
    setupByte1: int
    memoryByte1: int
    setupShort3: int
    setupByte2: int
    memoryByte2: int
    setupShort4: int
    setupByte3: int
    memoryBytes: bytes  # 3 bytes
    setupBlock: bytes  # 8 bytes
    setupWord1: int
    setupByte4: int
    setupWord2: int
    setupShort5: int
    setupWord3: int
    setupReal1: float
    setupReal2: float
    memoryWord: int
    def __init__(self, **members: Any) -> None: ...

class SetupList(Record):
    """A record that files embed."""
    entries: List[SetupEntry]
    current: SetupEntry
    tailBlock: bytes  # 8 bytes
    tailWord1: int
    tailWord2: int
    def __init__(self, **members: Any) -> None: ...

class PatternItem(Record):
    """A record that files embed."""
    itemWord1: int
    toolNumber: int
    memoryWord1: int
    itemWord2: int
    itemPair1: Array[int]  # 2 elements
    itemPair2: Array[int]  # 2 elements
    itemShort1: int
    itemShort2: int
    itemWord3: int
    itemWord4: int
    memoryWord2: int
    lateWord: int
    def __init__(self, **members: Any) -> None: ...

class StepTable(Record):
    """A record that files embed."""
    tableFlag: int
    tableWord1: int
    tableBlock: bytes  # 8 bytes
    tableWord2: int
    tableWord3: int
    stepCount: int
    stepByteA: bytes  # 20 bytes
    stepWord: Array[int]  # 20 elements
    stepByteB: bytes  # 20 bytes
    stepByteC: bytes  # 20 bytes
    memoryFlag1: int
    memoryFlag2: int
    memoryWords: Array[int]  # 3 elements
    lateFlag: int
    def __init__(self, **members: Any) -> None: ...

class MotionBlock(Record):
    """A record that files embed."""
    motionKind: int
    motionWord: int
    motionValue: float
    motionLength1: float
    motionAngle1: float
    motionAngle2: float
    motionLength2: float
    lateWord1: int
    lateWord2: int
    lateWord3: int
    lateWord4: int
    lateWord5: int
    steps: StepTable
    def __init__(self, **members: Any) -> None: ...

class ProfileRecord(Record):
    """A record that files embed."""
    profileHead: bytes  # 16 bytes
    profileIndex: int
    profileWord1: int
    profileWord2: int
    profileWord3: int
    profileCondition1: int
    profileBlock: bytes  # 8 bytes
    profileCondition2: int
    profileWord4: int
    profileWord5: int
    profileLink: int
    profileWords: Array[int]  # 14 elements
    firstBlock: MotionBlock
    secondBlock: MotionBlock
    tailWord1: int
    tailWord2: int
    tailWord3: int
    tailByte1: int
    tailByte2: int
    tailByte3: int
    tailWord4: int
    tailByte4: int
    tailByte5: int
    tailWord5: int
    def __init__(self, **members: Any) -> None: ...

class Pattern(Record):
    """A record that files embed."""
    headWord: int
    gridCount1: int
    gridCount2: int
    gridStep1: int
    gridStep2: int
    originX: float
    originY: float
    rotationCos: float
    rotationSin: float
    items: List[PatternItem]
    patternWord: int
    groupBlock: bytes  # 8 bytes
    groupKind: int
    groupWords: Array[int]  # 7 elements
    profiles: List[ProfileRecord]
    transformKind: int
    transform: Array[float]  # 9 elements
    scratchShapes: ShapeList
    stepTables: List[StepTable]
    bindWord1: int
    bindWord2: int
    bindWord3: int
    lateWord1: int
    bindByte: int
    bindWord4: int
    bindShorts: Array[int]  # 8 elements
    lateWord2: int
    lateWord3: int
    bindFirst: List[Tuple[int, int]]
    bindSecond: List[Tuple[int, int]]
    bindThird: List[int]
    bindFourth: List[int]
    bindFifth: List[int]
    def __init__(self, **members: Any) -> None: ...

class MarkEntry(Record):
    """A record that files embed."""
    markWord1: int
    markShort: int
    markWord2: int
    markWord3: int
    def __init__(self, **members: Any) -> None: ...

class WorkEntry(Record):
    """A record that files embed."""
    workWord1: int
    workByte: int
    workValue1: int
    workValue2: int
    workValue3: int
    workValue4: int
    workValue5: int
    workWord2: int
    workWord3: int
    workWord4: int
    workWord5: int
    workWord6: int
    workWord7: int
    workWord8: int
    workWord9: int
    workBlock: bytes  # 8 bytes
    def __init__(self, **members: Any) -> None: ...

class ProcessSlot(Record):
    """A record that files embed."""
    slotWord1: int
    slotWord2: int
    slotBlock: bytes  # 8 bytes
    slotWord3: int
    slotWord4: int
    firstLength: float
    firstAngle: float
    secondLength: float
    secondAngle: float
    toolUse: int
    toolActive: int
    slotByte: int
    toolChoice: int
    firstToolNumber: int
    secondToolNumber: int
    slotKind: int
    def __init__(self, **members: Any) -> None: ...

class ToolStation(Record):
    """A record that files embed."""
    placeValue: float
    placeWord: int
    stationNumber: int
    orientation: float
    stationType: int
    toolCount: int
    stationValue: float
    limits: Array[float]  # 4 elements
    valueCount: int
    values: Array[float]  # 6 elements
    offsets: Array[float]  # 3 elements
    byteA: int
    byteB: int
    byteC: int
    wordA: int
    realA: float
    realB: float
    byteD: int
    byteE: int
    realC: float
    wordB: int
    realD: float
    wordsC: Array[int]  # 5 elements
    realsE: Array[float]  # 4 elements
    byteF: int
    byteG: int
    byteH: int
    stationText: bytes  # 24 bytes
    wordD: int
    pairValues: Array[float]  # 2 elements
    wordE: int
    wordF: int
    realF: float
    wordG: int
    wordH: int
    wordI: int
    wordJ: int
    def __init__(self, **members: Any) -> None: ...

class OldTool(Record):
    """A record that files embed."""
    orientation: float
    shapeCode: int
    name: bytes
    specialToolIndex: int
    auxWord1: int
    dimension1: float
    dimension2: float
    dimension3: float
    firstValueCount: int
    firstValues: Array[float]  # 6 elements
    secondValueCount: int
    secondValues: Array[float]  # 6 elements
    auxWord2: int
    auxWord3: int
    symmetryFlags: int
    runtimeIndexA: int
    runtimeIndexB: int
    extraValues: Array[float]  # 2 elements
    specialBlock: bytes  # 24 bytes
    fileVersion: int
    specialToolPath: bytes  # 256 bytes
    lateFlag: int
    lateFlag2: int
    lateWords: Array[int]  # 4 elements
    tailBlock: bytes  # 8 bytes
    tailText: bytes  # 256 bytes
    def __init__(self, **members: Any) -> None: ...

class ToolStationList(Record):
    """A record that files embed."""
    stations: List[ToolStation]
    headerWord: int
    secondHeaderWord: int
    stationModeWord: int
    spareWord: int
    tools: List[OldTool]
    extraWords: Array[int]  # 2 elements
    stationModeCode: int
    def __init__(self, **members: Any) -> None: ...

class PlacedShapeList(Record):
    """A record that files embed."""
    placedBlock: bytes  # 8 bytes
    shapes: ShapeList
    def __init__(self, **members: Any) -> None: ...

class ShapeGroup(Record):
    """A record that files embed."""
    shapes: ShapeList
    groupWord: int
    groupByte: int
    def __init__(self, **members: Any) -> None: ...

class ContourGroup(Record):
    """A record that files embed."""
    shapes: List[Shape]
    contourWord1: int
    contourWord2: int
    contourWord3: int
    contourByte: int
    def __init__(self, **members: Any) -> None: ...

class BindingEntry(Record):
    """A record that files embed."""
    entryWord1: int
    entryWord2: int
    shape: Shape
    def __init__(self, **members: Any) -> None: ...

class BindingSet(Record):
    """A record that files embed."""
    numbers: List[int]
    entries: List[BindingEntry]
    setWord: int
    def __init__(self, **members: Any) -> None: ...

class TorvPart(Record):
    """The record of a part file."""
    recordWord: int
    partName: bytes  # 256 bytes
    partFullDosName: bytes  # 260 bytes
    width: float
    height: float
    productName: bytes  # 21 bytes
    assemblyName: bytes  # 21 bytes
    materialName: bytes  # 21 bytes
    partKind: int
    partWord1: int
    thickness: float
    descriptionA: bytes  # 256 bytes
    descriptionB: bytes  # 256 bytes
    revision: bytes  # 21 bytes
    materialType: bytes  # 256 bytes
    descriptionC: bytes  # 256 bytes
    lateIndex: int
    version: int
    shapes: ShapeList
    setupList: SetupList
    patterns: List[Pattern]
    marks: List[MarkEntry]
    profiles: List[ProfileRecord]
    transformKind: int
    transform: Array[float]  # 9 elements
    scratchShapes: ShapeList
    stepTables: List[StepTable]
    workList: List[WorkEntry]
    processSlotCount: int
    processSlots: Array[ProcessSlot]  # 250 elements
    memoryWord1: int
    partWord2: int
    memoryWord2: int
    workKind: int
    headFlag: int
    optionWord: int
    optionReal: float
    optionCount: int
    optionValue: int
    optionText: bytes  # 256 bytes
    noteText: bytes  # 256 bytes
    hasOptions: int
    toolStations: ToolStationList
    tailWord1: int
    tailWord2: int
    placedShapes: PlacedShapeList
    customTextA: bytes  # 256 bytes
    customTextB: bytes  # 256 bytes
    memoryWord3: int
    customWord1: int
    customWord2: int
    customText1: bytes  # 256 bytes
    customText2: bytes  # 256 bytes
    customText3: bytes  # 256 bytes
    customWord3: int
    customWord4: int
    customTextC: bytes  # 256 bytes
    customTextD: bytes  # 256 bytes
    customTextE: bytes  # 256 bytes
    lateBlock1: bytes  # 8 bytes
    lateBlock2: bytes  # 8 bytes
    lateWords: Array[int]  # 6 elements
    woNumber: bytes  # 256 bytes
    nestShapeGroups: List[ShapeGroup]
    contourGroups: List[ContourGroup]
    bindingSets: List[BindingSet]
    finalTextA: bytes  # 256 bytes
    finalTextB: bytes  # 256 bytes
    finalTextC: bytes  # 256 bytes
    finalTextD: bytes  # 256 bytes
    finalWord1: int
    finalWord2: int
    def __init__(self, **members: Any) -> None: ...

class SheetPartList(Record):
    """The record of a group-part file."""
    parts: List[TorvPart]
    nameWidth: int
    def __init__(self, **members: Any) -> None: ...

class OldSpecialTool(Record):
    """The record of a special-tool file."""
    tool: OldTool
    specialValue: float
    shapes: ShapeList
    setupList: SetupList
    def __init__(self, **members: Any) -> None: ...

class MachineFrame(Record):
    """A record that files embed."""
    frameValue1: float
    frameValue2: float
    frameValue3: float
    frameValue4: float
    frameValue5: float
    frameValue6: float
    frameValue7: float
    frameValue8: float
    frameValue9: float
    frameValue10: float
    frameValue11: float
    def __init__(self, **members: Any) -> None: ...

class ClampInfo(Record):
    """A record that files embed."""
    clampWord1: int
    clampWord2: int
    clampWord3: int
    clampWord4: int
    clampPositions: Array[float]  # 8 elements
    clampCount: int
    clampSpacing: float
    def __init__(self, **members: Any) -> None: ...

class WorkArea(Record):
    """A record that files embed."""
    areaValues: Array[float]  # 4 elements
    areaTail: bytes  # 12 bytes
    def __init__(self, **members: Any) -> None: ...

class MachineGrid(Record):
    """A record that files embed."""
    gridHead1: int
    gridHead2: int
    gridCells: bytes  # 40000 bytes
    cellSizeX: float
    cellSizeY: float
    gridWidth: int
    gridValue1: int
    gridValue2: float
    gridValue3: float
    cellByteCount: int
    gridIsNarrow: int
    def __init__(self, **members: Any) -> None: ...

class GridSegment(Record):
    """A record that files embed."""
    segmentHead: bytes  # 8 bytes
    segmentValue: float
    segmentWord: int
    segmentKind: int
    def __init__(self, **members: Any) -> None: ...

class MachineExtensionEntry(Record):
    """A record that files embed."""
    headBlock: bytes  # 16 bytes
    words: Array[int]  # 4 elements
    def __init__(self, **members: Any) -> None: ...

class MachineExtension(Record):
    """A record that files embed."""
    extensionValue1: int
    extensionValue2: float
    extensionValue3: float
    extensionValue4: float
    extensionValue5: int
    extensionValue6: int
    extensionValue7: float
    extensionValue8: float
    extensionValue9: int
    extensionValue10: int
    extensionValue11: float
    extensionValue12: float
    extensionValue13: float
    extensionValue14: float
    extensionValue15: float
    extensionValue16: float
    extensionValue17: float
    extensionValue18: float
    extensionValue19: float
    extensionValue20: float
    extensionValue21: float
    extensionValue22: float
    extensionValue23: float
    extensionValue24: float
    extensionValue25: float
    extensionValue26: float
    extensionValue27: float
    extensionValue28: float
    extensionValue29: float
    extensionValue30: float
    extensionValue31: float
    extensionValue32: float
    extensionValue33: float
    extensionValue34: float
    extensionValue35: float
    extensionValue36: float
    extensionValue37: float
    extensionValue38: float
    extensionValue39: float
    extensionValue40: float
    extensionValue41: float
    extensionValue42: float
    extensionValue43: float
    extensionValue44: float
    extensionValue45: float
    extensionValue46: float
    extensionValue47: float
    extensionValue48: float
    extensionValue49: float
    extensionValue50: int
    extensionWords: List[int]
    extensionEntries: List[MachineExtensionEntry]
    def __init__(self, **members: Any) -> None: ...

class GroupQuad(Record):
    """A record that files embed."""
    quadWords: Array[int]  # 4 elements
    def __init__(self, **members: Any) -> None: ...

class ShapeProgramGroup(Record):
    """A record that files embed."""
    groupShapes: ShapeList
    groupQuads: List[GroupQuad]
    groupSlots: List[ProcessSlot]
    groupSteps: List[StepTable]
    def __init__(self, **members: Any) -> None: ...

class ShapeProgram(Record):
    """A record that files embed."""
    programWord1: int
    programWord2: int
    programWord3: int
    programWord4: int
    programWord5: int
    programWord6: int
    programValue1: float
    programValue2: float
    programValue3: float
    programValue4: float
    programGroups: List[ShapeProgramGroup]
    programWord7: int
    def __init__(self, **members: Any) -> None: ...

class ShapeProgramEx(Record):
    """A record that files embed."""
    programWord1: int
    programWord2: int
    programWord3: int
    programWord4: int
    programWord5: int
    programWord6: int
    programValue1: float
    programValue2: float
    programValue3: float
    programValue4: float
    programGroups: List[ShapeProgramGroup]
    programWord7: int
    extFlag1: int
    extValue1: float
    extValue2: float
    extFlag2: int
    extValue3: float
    extFlag3: int
    def __init__(self, **members: Any) -> None: ...

class MaterialEntry(Record):
    """A record that files embed."""
    entryKey: int
    entryText: bytes  # 256 bytes
    def __init__(self, **members: Any) -> None: ...

class MaterialToolSet(Record):
    """A record that files embed."""
    setWord1: int
    setWord2: int
    setWord3: int
    setWord4: int
    setWord5: int
    setWord6: int
    stepsA: StepTable
    stepsB: StepTable
    def __init__(self, **members: Any) -> None: ...

class MaterialToolSetTable(Record):
    """A record that files embed."""
    toleranceA: float
    toleranceB: float
    toleranceC: float
    toleranceD: float
    sets: Array[MaterialToolSet]  # 6 elements
    setCount: int
    def __init__(self, **members: Any) -> None: ...

class SettingEntry(Record):
    """A record that files embed."""
    entryWord1: int
    entryWord2: int
    entryWide: bytes  # 8 bytes
    entryText: bytes  # 21 bytes
    entryWord3: int
    def __init__(self, **members: Any) -> None: ...

class SettingGroup(Record):
    """A record that files embed."""
    groupWord: int
    groupList: List[SettingEntry]
    def __init__(self, **members: Any) -> None: ...

class MaterialPalette(Record):
    """A record that files embed."""
    paletteMode: int
    red: bytes  # 20 bytes
    green: bytes  # 20 bytes
    blue: bytes  # 20 bytes
    listA: List[SettingEntry]
    listB: List[SettingEntry]
    listC: List[SettingEntry]
    groupsA: Array[SettingGroup]  # 5 elements
    groupsB: Array[SettingGroup]  # 5 elements
    groupsC: Array[SettingGroup]  # 5 elements
    groupsD: Array[SettingGroup]  # 5 elements
    groupsE: Array[SettingGroup]  # 5 elements
    groupsF: Array[SettingGroup]  # 5 elements
    groupsG: Array[SettingGroup]  # 5 elements
    groupsH: Array[SettingGroup]  # 5 elements
    colourCount: int
    groupCount: int
    def __init__(self, **members: Any) -> None: ...

class MaterialStageTable(Record):
    """A record that files embed."""
    stageWord1: int
    stageWord2: int
    blocks: Array[MotionBlock]  # 8 elements
    stageTail: bytes  # 16 bytes
    def __init__(self, **members: Any) -> None: ...

class AngleRule(Record):
    """A record that files embed."""
    ruleCode: int
    angleCount: int
    ruleValues: Array[float]  # 10 elements
    ruleAngles: Array[float]  # 10 elements
    sizeLimitX: float
    sizeLimitY: float
    def __init__(self, **members: Any) -> None: ...

class SizeRule(Record):
    """A record that files embed."""
    sizeValue1: int
    sizeValue2: float
    sizeValue3: float
    sizeValue4: float
    sizeValue5: float
    sizeValue6: float
    sizeFlagA: int
    sizeFlagB: int
    def __init__(self, **members: Any) -> None: ...

class MaterialRuleLists(Record):
    """A record that files embed."""
    angleRules: List[AngleRule]
    pairRules: List[AngleRule]
    sizeRulesA: List[SizeRule]
    sizeRulesB: List[SizeRule]
    ruleFlag1: int
    ruleFlag2: int
    ruleFlag3: int
    ruleFlag4: int
    ruleWord1: int
    ruleWord2: int
    ruleAngle1: float
    ruleAngle2: float
    def __init__(self, **members: Any) -> None: ...

class ParamTable(Record):
    """A record that files embed."""
    version: int
    title: bytes  # 256 bytes
    intParams: Array[int]  # 601 elements
    realParams: Array[float]  # 601 elements
    textParams: Array[bytes]  # 601 elements
    nameLength: int
    name: bytes  # 256 bytes
    def __init__(self, **members: Any) -> None: ...

class MaterialHeadRecord(Record):
    """A record that files embed."""
    headWords: Array[int]  # 10 elements
    headWord11: int
    optionA: ShapeProgram
    optionB: ShapeProgramEx
    headTail1: int
    headTail2: int
    headTail3: int
    def __init__(self, **members: Any) -> None: ...

class OldMaterial(Record):
    """The record of a material file."""
    path: bytes  # 264 bytes
    name: bytes
    entryList: List[MaterialEntry]
    toolSets: MaterialToolSetTable
    palette: MaterialPalette
    stages: MaterialStageTable
    rules: MaterialRuleLists
    modeA: int
    modeB: int
    modeC: int
    settingLists: Array[List[SettingEntry]]  # 6 elements
    setting1: int
    setting2: int
    setting3: int
    setting4: int
    setting5: int
    setting6: int
    setting7: int
    setting8: int
    setting9: int
    setting10: int
    setting11: int
    setting12: int
    setting13: int
    setting14: int
    setting15: float
    setting16: float
    setting17: float
    setting18: float
    setting19: float
    setting20: int
    setting21: int
    setting22: int
    setting23: int
    setting24: int
    setting25: int
    setting26: int
    setting27: int
    setting28: int
    setting29: int
    setting30: int
    setting31: int
    setting32: int
    setting33: int
    setting34: int
    setting35: float
    setting36: float
    setting37: float
    setting38: float
    setting39: float
    setting40: int
    setting41: int
    setting42: int
    setting43: float
    setting44: int
    setting45: int
    setting46: int
    setting47: float
    setting48: float
    setting49: int
    setting50: int
    setting51: int
    setting52: float
    setting53: float
    setting54: int
    setting55: int
    setting56: int
    setting57: int
    setting58: float
    setting59: float
    setting60: float
    setting61: float
    setting62: float
    setting63: float
    setting64: float
    setting65: float
    setting66: float
    setting67: float
    setting68: int
    setting69: int
    setting70: int
    setting71: int
    setting72: int
    setting73: int
    setting74: int
    setting75: int
    setting76: int
    setting77: int
    setting78: int
    setting79: int
    setting80: float
    setting81: float
    setting82: float
    setting83: float
    setting84: float
    setting85: float
    setting86: int
    setting87: int
    setting88: int
    setting89: int
    setting90: int
    setting91: int
    setting92: int
    setting93: int
    setting94: int
    setting95: int
    setting96: int
    setting97: int
    setting98: int
    setting99: int
    setting100: int
    setting101: int
    setting102: float
    setting103: float
    setting104: float
    setting105: float
    setting106: int
    setting107: int
    setting108: float
    setting109: float
    setting110: int
    setting111: float
    setting112: float
    setting113: int
    setting114: int
    setting115: int
    setting116: float
    setting117: float
    setting118: int
    setting119: float
    setting120: int
    setting121: int
    setting122: int
    setting123: int
    setting124: int
    setting125: int
    setting126: int
    setting127: int
    setting128: int
    setting163: float
    setting164: float
    setting165: int
    setting166: int
    choice1: int
    choice2: int
    choice3: int
    choice4: int
    choice5: int
    choice6: int
    choice7: int
    choice8: int
    version: int
    settingListCount: int
    params: ParamTable
    head: MaterialHeadRecord
    def __init__(self, **members: Any) -> None: ...

class MachineUnitEntry(Record):
    """A record that files embed."""
    entryValue1: int
    entryValue2: int
    entryValue3: int
    entryValue4: int
    entryValue5: int
    entryValue6: int
    entryValue7: int
    entryValue8: int
    def __init__(self, **members: Any) -> None: ...

class MachineUnit(Record):
    """A record that files embed."""
    unitKey1: int
    unitKey2: int
    unitEntries: List[MachineUnitEntry]
    def __init__(self, **members: Any) -> None: ...

class MachineUnitTable(Record):
    """A record that files embed."""
    unitFlag1: int
    unitFlag2: int
    unitValue1: int
    unitValue2: int
    unitValue3: int
    unitValue4: int
    unitValue5: int
    unitValue6: int
    unitValue7: int
    units: List[MachineUnit]
    unitValue8: int
    unitValue9: int
    unitValue10: int
    unitValue11: int
    unitValue12: int
    unitValue13: int
    unitValue14: int
    unitValue15: int
    unitValue16: int
    unitFlag3: int
    unitFlag4: int
    unitValue17: int
    unitValue18: int
    unitValue19: int
    unitValue20: int
    unitValue21: int
    unitFlag5: int
    unitValue22: int
    def __init__(self, **members: Any) -> None: ...

class MachineSetup(Record):
    """A record that files embed."""
    sizeX: float
    sizeY: float
    clampInfo: ClampInfo
    clampValue1: float
    clampValue2: float
    machineWord91: int
    machineWord92: int
    def __init__(self, **members: Any) -> None: ...

class OldMachine(Record):
    """The record of a machine file."""
    version: int
    path: bytes  # 260 bytes
    textWidth: int
    machineText1: bytes  # 256 bytes
    machineKind: int
    limitsPresent: int
    limitA: float
    limitB: float
    limitC: float
    limitWord: int
    secondTextPresent: int
    secondTextWidth: int
    secondText: bytes  # 256 bytes
    smallValue: int
    shapesPresent: int
    sizeX: float
    sizeY: float
    frame: MachineFrame
    clampInfo: ClampInfo
    clampValue1: float
    clampValue2: float
    clampWord: int
    machineText2: bytes  # 256 bytes
    machineText3: bytes  # 256 bytes
    workArea: WorkArea
    stationsA: ToolStationList
    stationWord: int
    stationsB: ToolStationList
    stationsC: ToolStationList
    blockMode: int
    blockA: bytes  # 16 bytes
    blockB: bytes  # 16 bytes
    gridMode: int
    gridA: MachineGrid
    gridB: MachineGrid
    gridWord1: int
    gridAngle: float
    gridWord3: int
    segmentBox: bytes  # 16 bytes
    segments: List[GridSegment]
    gridFlag1: int
    gridFlag2: int
    hasExtension: int
    extension: MachineExtension
    programMode: int
    programA: ShapeProgram
    programB: ShapeProgramEx
    stepListPresent: int
    stepTables: List[StepTable]
    ncPath: bytes  # 256 bytes
    ncExtension: bytes  # 11 bytes
    programC: ShapeProgram
    programD: ShapeProgramEx
    wideValue1: bytes  # 8 bytes
    wideValue2: bytes  # 8 bytes
    material: OldMaterial
    lateByteA: int
    lateWord8: int
    flagTriple: bytes  # 3 bytes
    triadWord1: int
    triadWord2: int
    triadCount: int
    triads: Array[bytes]  # 255 elements
    unitWord: int
    unitTable: MachineUnitTable
    numberColumns: Array[Array[int]]  # 6 elements
    textColumnA: Array[bytes]  # 3 elements
    textColumnB: Array[bytes]  # 3 elements
    displayName: bytes  # 256 bytes
    displayTail: bytes  # 20 bytes
    lateWord1: int
    lateWord2: int
    lateWord3: int
    lateWord4: int
    lateWord5: float
    lateText1: bytes  # 256 bytes
    lateWord6: int
    lateText2: bytes  # 256 bytes
    lateExtension: bytes  # 11 bytes
    lateWord7: int
    lateByteB: int
    lateByteC: int
    setup2: MachineSetup
    setupWords: Array[float]  # 5 elements
    setup3: MachineSetup
    endText1: bytes  # 256 bytes
    endWord: int
    endText2: bytes  # 256 bytes
    machineWord1: float
    machineWord2: int
    machineWord3: int
    machineWord4: int
    machineWord5: int
    machineWord6: int
    machineWord7: int
    machineWord8: int
    machineWord9: int
    machineWord10: int
    machineWord11: int
    machineWord12: int
    machineWord13: int
    machineWord14: int
    machineWord15: int
    machineWord16: int
    machineWord17: int
    machineWord18: int
    machineWord19: int
    machineWord20: int
    machineWord21: int
    machineWord22: int
    machineWord23: int
    machineWord24: int
    machineWord25: int
    machineWord26: int
    machineWord27: int
    machineWord28: int
    machineWord29: int
    machineWord30: int
    machineWord31: int
    machineWord32: int
    machineWord33: int
    machineWord34: int
    machineWord35: int
    machineWord36: int
    machineWord37: int
    machineWord38: int
    machineWord39: int
    machineWord40: int
    machineWord41: int
    machineWord42: int
    machineWord43: int
    machineWord44: int
    machineWord45: int
    machineWord46: int
    machineWord47: int
    machineWord48: int
    machineWord49: int
    machineWord50: int
    machineWord51: int
    machineWord52: int
    machineWord53: int
    machineWord54: int
    machineWord55: int
    machineWord56: int
    machineWord57: int
    machineWord58: int
    machineWord59: int
    machineWord60: int
    machineWord61: int
    machineWord62: int
    machineWord63: int
    machineWord64: int
    machineWord65: int
    machineWord66: int
    machineWord67: int
    machineWord68: int
    machineWord69: int
    machineWord70: int
    machineWord71: int
    machineWord72: int
    machineWord73: int
    machineWord74: int
    machineWord75: int
    machineWord76: int
    machineWord77: float
    machineWord78: int
    machineWord79: int
    machineWord80: int
    machineWord81: int
    machineWord82: float
    machineWord83: int
    machineWord84: int
    machineWord85: int
    machineWord86: int
    machineWord87: int
    machineWord88: int
    machineWord89: int
    machineWord90: int
    machineWord91: int
    machineWord92: int
    machineWord93: int
    machineWord94: int
    machineWord95: int
    machineWord96: int
    machineWord97: float
    machineWord98: int
    machineWord99: int
    machineWord100: int
    machineWord101: int
    machineWord102: int
    machineWord103: int
    machineWord104: int
    machineWord105: int
    machineWord106: int
    machineWord107: int
    machineWord108: int
    machineWord109: int
    machineWord110: int
    machineWord111: int
    machineWord112: int
    machineWord113: int
    machineWord114: int
    machineWord115: int
    machineWord116: int
    machineWord117: int
    machineWord118: int
    machineWord119: int
    machineWord120: int
    machineWord121: int
    machineWord122: int
    machineWord123: int
    machineWord124: int
    machineWord125: float
    machineWord126: int
    machineWord127: float
    machineWord128: int
    machineWord129: int
    machineWord130: int
    machineWord131: int
    machineWord132: int
    def __init__(self, **members: Any) -> None: ...

class InventoryEntry(Record):
    """A record that files embed."""
    entryWord: int
    entrySteps: StepTable
    entryNameA: bytes  # 256 bytes
    entryByteA: int
    entryByteB: int
    entryNameB: bytes  # 256 bytes
    entryShortA: int
    entryShortB: int
    entryNameC: bytes  # 256 bytes
    entryHead: int
    entryLateWord: int
    entryLateReals: Array[float]  # 2 elements
    def __init__(self, **members: Any) -> None: ...

class OldToolInventory(Record):
    """The record of a tool-inventory file."""
    tools: List[OldTool]
    pairFirst: Array[int]  # 20 elements
    pairSecond: Array[int]  # 20 elements
    path: bytes  # 256 bytes
    entries: List[InventoryEntry]
    specialToolFiles: List[bytes]
    version: int
    def __init__(self, **members: Any) -> None: ...

class OldMacro(Record):
    """The record of a macro file."""
    macroHead: bytes  # 16 bytes
    macroHeadSecond: bytes  # 8 bytes
    macroHeadWord: int
    shapes: ShapeList
    items: List[PatternItem]
    macroBlock: bytes  # 8 bytes
    macroBlockLong: bytes  # 36 bytes
    version: int
    stationList: ToolStationList
    macroTailWords: Array[int]  # 2 elements
    def __init__(self, **members: Any) -> None: ...

class SheetSetupEntry(Record):
    """A record that files embed."""
    entry: SetupEntry
    entryBlocks: Array[bytes]  # 3 elements
    def __init__(self, **members: Any) -> None: ...

class SheetSetupList(Record):
    """A record that files embed."""
    entries: List[SheetSetupEntry]
    current: SetupEntry
    currentBlocks: Array[bytes]  # 3 elements
    tailBlock: bytes  # 8 bytes
    tailWord1: int
    tailWord2: int
    def __init__(self, **members: Any) -> None: ...

class ShapeWorkBlock(Record):
    """A record that files embed."""
    blockValues: Array[bytes]  # 4 elements
    work: List[WorkEntry]
    blockShapes: ShapeList
    blockWords: Array[int]  # 5 elements
    def __init__(self, **members: Any) -> None: ...

class RowTable(Record):
    """A record that files embed."""
    count: int
    words: Array[int]  # 25 elements
    values: Array[bytes]  # 25 elements
    def __init__(self, **members: Any) -> None: ...

class ClampRowTable(Record):
    """A record that files embed."""
    count: int
    words: Array[Array[int]]  # 25 elements
    values: Array[bytes]  # 25 elements
    def __init__(self, **members: Any) -> None: ...

class SheetTextEntry(Record):
    """A record that files embed."""
    entryWord1: int
    entryWord2: int
    entryWord3: int
    entryText1: bytes  # 256 bytes
    entryText2: bytes  # 256 bytes
    entryText3: bytes  # 256 bytes
    entryText4: bytes  # 256 bytes
    entryWord4: int
    entryWord5: int
    entryWord6: int
    entryWord7: int
    entryWord8: int
    entryWord9: int
    def __init__(self, **members: Any) -> None: ...

class NamedWorkList(Record):
    """A record that files embed."""
    listName: bytes  # 256 bytes
    listWord1: int
    listWord2: int
    listWord3: int
    entries: List[WorkEntry]
    def __init__(self, **members: Any) -> None: ...

class OldSheet(Record):
    """The record of a sheet file."""
    version: int
    sheetName: bytes  # 256 bytes
    sheetPath: bytes  # 260 bytes
    width: float
    height: float
    thickness: float
    partList: SheetPartList
    setupList: SheetSetupList
    shapes: ShapeList
    patternItems: List[PatternItem]
    marks: List[MarkEntry]
    profiles: List[ProfileRecord]
    transformKind: int
    transform: Array[Array[float]]  # 3 elements
    scratchShapes: ShapeList
    headerWord: int
    stepTables: List[StepTable]
    processSlotCount: int
    processSlotMode: int
    processSlots: Array[ProcessSlot]  # 250 elements
    auxiliaryList: List[bytes]
    auxiliaryFlag: int
    blocks: List[ShapeWorkBlock]
    textWidth: int
    sheetLabel: bytes  # 256 bytes
    workList: List[WorkEntry]
    rowTable: RowTable
    clampRowTable: ClampRowTable
    clampInfo: ClampInfo
    paramTable: ParamTable
    leadWords: Array[int]  # 6 elements
    machine: OldMachine
    optionWord: int
    textEntries: List[SheetTextEntry]
    namedWorkLists: List[NamedWorkList]
    trailingWords: Array[int]  # 3 elements
    skeletonShapes: ShapeList
    skeletonDosName: bytes  # 260 bytes
    utilization: float
    partTexts: Array[bytes]  # 5 elements
    partTextWord: int
    materialGroup: bytes  # 256 bytes
    materialType: bytes  # 256 bytes
    materialText3: bytes  # 256 bytes
    materialText4: bytes  # 256 bytes
    materialText5: bytes  # 256 bytes
    lateValue: float
    lateText: bytes  # 256 bytes
    def __init__(self, **members: Any) -> None: ...

def _Batches(*arguments: Any) -> Any: ...
def _Catalogue(*arguments: Any) -> Any: ...
def _GetMachineDatasForQD(*arguments: Any) -> Any: ...
def _GetOldClampInfo(*arguments: Any) -> Any: ...
def _GetOldPartInfo(*arguments: Any) -> Any: ...
def _GetOldPartInfo_v1(*arguments: Any) -> Any: ...
def _GetOldPartTool(*arguments: Any) -> Any: ...
def _GetOldSheetInfo(*arguments: Any) -> Any: ...
def _GetOldSheetInfoByName(*arguments: Any) -> Any: ...
def _GetOldSheetInfoPartGroupIDs(*arguments: Any) -> Any: ...
def _GetOldSkeletonUtil(*arguments: Any) -> Any: ...
def _GetOldSptFromGroupPart(*arguments: Any) -> Any: ...
def _GetOldSptFromPart(*arguments: Any) -> Any: ...
def _GetOldVLMQMachineName(*arguments: Any) -> Any: ...
def _GetOldVLMQMaterialName(*arguments: Any) -> Any: ...
def _GetSheetDriverFlags(*arguments: Any) -> Any: ...
def _GetSheetSequenceListSize(*arguments: Any) -> Any: ...
def _LoadOldMachineInformation(*arguments: Any) -> Any: ...
def _LoadOldSheetInformation(*arguments: Any) -> Any: ...
def _LoadOldToolInventoryForCount(*arguments: Any) -> Any: ...
def _OpenSpecialToolFile(*arguments: Any) -> Any: ...
def _PartBuilder(*arguments: Any) -> Any: ...
def _Results(*arguments: Any) -> Any: ...
def _ScanOptions(*arguments: Any) -> Any: ...
def _Source(*arguments: Any) -> Any: ...
def _catalogue_path(*arguments: Any) -> Any: ...
def _check(*arguments: Any) -> Any: ...
def _convert(*arguments: Any) -> Any: ...
def _diff(*arguments: Any) -> Any: ...
def _draw(*arguments: Any) -> Any: ...
def _draw_page(*arguments: Any) -> Any: ...
def _dumps(*arguments: Any) -> Any: ...
def _examine(*arguments: Any) -> Any: ...
def _file_json(*arguments: Any) -> Any: ...
def _format(*arguments: Any) -> Any: ...
def _from_json(*arguments: Any) -> Any: ...
def _info(*arguments: Any) -> Any: ...
def _json(*arguments: Any) -> Any: ...
def _load(*arguments: Any) -> Any: ...
def _loads(*arguments: Any) -> Any: ...
def _map(*arguments: Any) -> Any: ...
def _not_examined(*arguments: Any) -> Any: ...
def _records(*arguments: Any) -> Any: ...
def _recover(*arguments: Any) -> Any: ...
def _restore(*arguments: Any) -> Any: ...
def _schema(*arguments: Any) -> Any: ...
def _supported(*arguments: Any) -> Any: ...
