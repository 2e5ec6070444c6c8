{ Made by bindings/generate.py from functions.json: do not edit. }
{ The functions of OldTorvIO.h, which describes them. }
unit oldtorvio_raw;

{$mode objfpc}{$H+}
{$packrecords c}

interface

const
  OldTorvIOLibrary = 'OldTorvIO';

type
  TOldSheetRecord = record end;  { opaque }
  POldSheet = ^TOldSheetRecord;
  TSheetPartListRecord = record end;  { opaque }
  PSheetPartList = ^TSheetPartListRecord;
  TTorvPartRecord = record end;  { opaque }
  PTorvPart = ^TTorvPartRecord;
  TOldSpecialToolRecord = record end;  { opaque }
  POldSpecialTool = ^TOldSpecialToolRecord;
  TOldToolInventoryRecord = record end;  { opaque }
  POldToolInventory = ^TOldToolInventoryRecord;
  TOldMacroRecord = record end;  { opaque }
  POldMacro = ^TOldMacroRecord;
  TOldMaterialRecord = record end;  { opaque }
  POldMaterial = ^TOldMaterialRecord;
  TOldMachineRecord = record end;  { opaque }
  POldMachine = ^TOldMachineRecord;
  PMachineInformation = ^TMachineInformation;
  TMachineInformation = record
    InfoKind: LongInt;
    InfoVersion: LongInt;
    InfoSizeX: Single;
    InfoSizeY: Single;
    InfoText1: array[0..255] of AnsiChar;
    InfoText2: array[0..255] of AnsiChar;
    InfoStationWord: LongInt;
    InfoExtra1: LongWord;
    InfoExtra2: LongWord;
    InfoStationMode: LongInt;
    InfoStationCount: LongInt;
  end;

{ Loads a part file into a record. Only C++ programs can create its record: torvio_json reads such files in other
  languages. }
function LoadOldPart(APath: PAnsiChar; APart: PTorvPart): Int64; cdecl; external OldTorvIOLibrary;

{ Starts a new part in the part builder. }
procedure InitTorvPart(AWidth: Single; AHeight: Single; AThickness: Single; APartKind: SmallInt; APartName: PAnsiChar;
  AAssemblyName: PAnsiChar; AMaterialName: PAnsiChar; ACustomText1: PAnsiChar; ACustomText2: PAnsiChar;
  ACustomText3: PAnsiChar); cdecl; external OldTorvIOLibrary;

{ Adds a shape to the part builder. }
function AddPatternToTorvPart(AX: Single; AY: Single; AType: Byte; AFlags: LongWord; AValues: PLongWord;
  AItemWord1: LongWord; AItemWord2: Single; APairA: Single; APairB: Single; APairC: Single; APairD: Single;
  AToolName: PAnsiChar; AItemShort1: SmallInt; AItemShort2: SmallInt; AItemWord3: Single;
  AItemWord4: Single): LongInt; cdecl; external OldTorvIOLibrary;

{ Adds the shapes of a special tool as a group to the part builder. }
function AddGroupPatIntoTorvPart(AX: Single; AY: Single; AAngle: Single;
  AToolName: PAnsiChar): LongInt; cdecl; external OldTorvIOLibrary;

{ Adds a member to a group of the part builder. }
function AddPatIntoGroupPat(AGroupIndex: LongInt; AX: Single; AY: Single; AType: Byte; AIgnored: QWord;
  AValues: PLongWord): Word; cdecl; external OldTorvIOLibrary;

{ Saves the part builder as a part file. }
function SaveTorvPart(APath: PAnsiChar; AVersion: SmallInt): Int64; cdecl; external OldTorvIOLibrary;

{ Material type and size of a part file. }
function GetOldPartInfo(APath: PAnsiChar; AMaterialType: PAnsiChar; var AWidth: Single; var AHeight: Single;
  var AThickness: Single): Int64; cdecl; external OldTorvIOLibrary;

{ One value of a part file as text. }
function GetOldPartInfo_v1(APath: PAnsiChar; AKey: PAnsiChar;
  AValue: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

{ The tools of a part file as text. }
function GetOldPartTool(APath: PAnsiChar; AText: PAnsiChar; ASize: LongInt;
  var ALength: LongWord): Int64; cdecl; external OldTorvIOLibrary;

{ The special tools of a part file as text. }
function GetOldSptFromPart(APath: PAnsiChar; AText: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

{ The special tools of a group part file as text. }
function GetOldSptFromGroupPart(APath: PAnsiChar; AText: PAnsiChar; ASize: LongInt;
  var ALength: LongWord): Int64; cdecl; external OldTorvIOLibrary;

{ A new list of parts. }
function CreateOldPartlistInfo: PSheetPartList; cdecl; external OldTorvIOLibrary;

{ Frees a list of parts. }
procedure DeleteOldPartlistInfo(AList: PSheetPartList); cdecl; external OldTorvIOLibrary;

{ Appends the parts of a group part file to a list. }
function LoadGroupPart(APath: PAnsiChar; AList: PSheetPartList): Int64; cdecl; external OldTorvIOLibrary;

{ Loads a special tool file into a record. Only C++ programs can create its record: torvio_json reads such files in
  other languages. }
function LoadOldSpecialTool(APath: PAnsiChar; ATool: POldSpecialTool): Int64; cdecl; external OldTorvIOLibrary;

{ Loads the current special tool and returns its values. }
function OpenSpecialToolFile(APath: PAnsiChar; var AShapeCount: LongWord; var AOrientation: Single;
  var ASpecialValue: Single; var ADimension1: Single; var ADimension2: Single; var ADimension3: Single;
  var AFirstValueCount: LongInt; var AFirstValue0: Single; var AFirstValue1: Single; var AFirstValue2: Single;
  var AFirstValue3: Single; var AFirstValue4: Single; var AFirstValue5: Single; var ASecondValueCount: LongInt;
  var ASecondValue0: Single; var ASecondValue1: Single; var ASecondValue2: Single; var ASecondValue3: Single;
  var ASecondValue4: Single; var ASecondValue5: Single; var AExtraValue0: Single; var AExtraValue1: Single;
  var ALateFlag: Byte): LongInt; cdecl; external OldTorvIOLibrary;

{ One shape of the current special tool. }
procedure GetShapeAt(AIndex: LongInt; var AType: LongInt; var AX: Single; var AY: Single; var AValue0: Single;
  var AValue1: Single; var AValue2: Single; var AValue3: Single); cdecl; external OldTorvIOLibrary;

{ Loads a tool inventory into a record. Only C++ programs can create its record: torvio_json reads such files in
  other languages. }
function LoadOldToolInventory(APath: PAnsiChar; AInventory: POldToolInventory): Int64; cdecl; external OldTorvIOLibrary;

{ Loads the current tool inventory and counts its tools. }
function LoadOldToolInventoryForCount(APath: PAnsiChar;
  var ACount: LongWord): LongInt; cdecl; external OldTorvIOLibrary;

{ One tool of the current inventory. }
procedure GetOldToolInventoryInformation(AIndex: LongInt; AName: PAnsiChar; var ADimension1: Single;
  var ADimension2: Single; var ADimension3: Single; var AOrientation: Single; var AFirstValueCount: LongInt;
  var AFirstValue0: Single; var AFirstValue1: Single; var AFirstValue2: Single; var AFirstValue3: Single;
  var AFirstValue4: Single; var AFirstValue5: Single; var ASecondValueCount: LongInt; var ASecondValue0: Single;
  var ASecondValue1: Single; var ASecondValue2: Single; var ASecondValue3: Single; var ASecondValue4: Single;
  var ASecondValue5: Single); cdecl; external OldTorvIOLibrary;

{ Loads a macro file into a record. Only C++ programs can create its record: torvio_json reads such files in other
  languages. }
function LoadOldMacro(APath: PAnsiChar; AMacro: POldMacro): Int64; cdecl; external OldTorvIOLibrary;

{ Loads a material file into a record. Only C++ programs can create its record: torvio_json reads such files in other
  languages. }
function LoadOldMaterial(APath: PAnsiChar; AMaterial: POldMaterial): Int64; cdecl; external OldTorvIOLibrary;

{ Loads a machine file into a record. Only C++ programs can create its record: torvio_json reads such files in other
  languages. }
function LoadOldMachine(APath: PAnsiChar; AMachine: POldMachine): Int64; cdecl; external OldTorvIOLibrary;

{ Loads the current machine and returns facts about it. }
function LoadOldMachineInformation(APath: PAnsiChar;
  var AInformation: TMachineInformation): LongInt; cdecl; external OldTorvIOLibrary;

{ One station of the current machine and its tool. }
procedure LoadOldStationToolFromMachine(AIndex: LongInt; var AStationNumber: LongInt; var AStationType: LongInt;
  var AOrientation: Single; var ARealF: Single; var AStationValue: Single; var AValueCount: LongInt; AValues: PSingle;
  var ALimit0: Single; var ALimit1: Single; var ALimit2: Single; var ALimit3: Single; var AShapeCode: LongInt;
  ADimensions: PSingle; AOffsets: PSingle; ASpecialToolPath: PAnsiChar; var APairValue0: Single;
  var APairValue1: Single; var AWordF: LongInt); cdecl; external OldTorvIOLibrary;

{ Loads the current machine and returns its name, kind and texts. }
function GetOldVLMQMachineName(APath: PAnsiChar; ADisplayName: PAnsiChar; var AKind: LongWord; AText2: PAnsiChar;
  ASecondText: PAnsiChar; ALateText: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

{ Size, clamps, station limits and work area of a machine file. }
function GetMachineDatasForQD(APath: PAnsiChar; var ASizeX: Single; var ASizeY: Single; var AClampCount: Single;
  var ABlockMode: Single; var AStationMinX: Single; var AStationMinY: Single; var AStationMaxX: Single;
  var AStationMaxY: Single; var AArea0: Single; var AArea1: Single; var AArea2: Single;
  var AArea3: Single): Int64; cdecl; external OldTorvIOLibrary;

{ A new sheet. }
function CreateSheetInfo: POldSheet; cdecl; external OldTorvIOLibrary;

{ Frees a sheet. }
procedure DeleteSheetInfo(ASheet: POldSheet); cdecl; external OldTorvIOLibrary;

{ Frees a sheet. }
procedure FreeSheetHandle(ASheet: POldSheet); cdecl; external OldTorvIOLibrary;

{ Loads a sheet file into a sheet. }
function LoadOldSheet(APath: PAnsiChar; ASheet: POldSheet): Int64; cdecl; external OldTorvIOLibrary;

{ Saves a sheet. }
function SaveOldSheet(APath: PAnsiChar; ASheet: POldSheet; AVersion: Word): Int64; cdecl; external OldTorvIOLibrary;

{ Loads a sheet file as the current sheet: only the status matters. }
function LoadOldSheetInformation(APath: PAnsiChar): LongInt; cdecl; external OldTorvIOLibrary;

{ Loads a sheet file into a new sheet. }
function GetOldSheetHandle(APath: PAnsiChar; var ASheet: POldSheet): Int64; cdecl; external OldTorvIOLibrary;

{ One value of a sheet as text. }
function GetOldSheetInfoByName(ASheet: POldSheet; AKey: PAnsiChar;
  AValue: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

{ The group ids of the parts of a sheet as text. }
function GetOldSheetInfoPartGroupIDs(ASheet: POldSheet; AValue: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

{ Material, size, parts and tools of a sheet file. }
function GetOldSheetInfo(APath: PAnsiChar; AMaterialName: PAnsiChar; AMaterialGroup: PAnsiChar;
  AMaterialType: PAnsiChar; AMaterialText3: PAnsiChar; AMaterialText4: PAnsiChar; AMaterialText5: PAnsiChar;
  AMachinePath: PAnsiChar; ASheetLabel: PAnsiChar; AMaterialFile: PAnsiChar; var AWidth: Single; var AHeight: Single;
  var AThickness: Single; var ALateValue: Double; APartNames: PAnsiChar; APartNamesSize: LongInt;
  var APartNamesLength: LongInt; ATools: PAnsiChar; AToolsSize: LongInt;
  var AToolsLength: LongInt): Int64; cdecl; external OldTorvIOLibrary;

{ The clamps of a sheet file. }
function GetOldClampInfo(APath: PAnsiChar; var AWord: LongWord; var AFirst: Single; var ASecond: Single;
  var AThird: Single; APositions: PSingle; var ACount: LongWord;
  var ASpacing: Single): Int64; cdecl; external OldTorvIOLibrary;

{ Two material texts of a sheet file. }
function GetOldVLMQMaterialName(APath: PAnsiChar; AText3: PAnsiChar;
  AText5: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

{ The utilization of a sheet file. }
function GetOldSkeletonUtil(APath: PAnsiChar; var AUtilization: Single): Int64; cdecl; external OldTorvIOLibrary;

{ The driver flags of a sheet file. }
function GetSheetDriverFlags(APath: PAnsiChar; AFlags: PLongInt): Int64; cdecl; external OldTorvIOLibrary;

{ The number of work entries of a sheet file. }
function GetSheetSequenceListSize(APath: PAnsiChar; var ACount: LongWord): Int64; cdecl; external OldTorvIOLibrary;

{ Edits a sheet file: the NC path of its machine. }
function ReplaceSheetMachineNcPath(APath: PAnsiChar; ANcPath: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

{ Edits a sheet file: its parts and its skeleton. }
function ReplaceSheetSknPatListWithPartPatList(APath: PAnsiChar;
  APartPath: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

{ Edits a sheet file: the work order number of a part. }
function UpdateSheetPartWONumber(APath: PAnsiChar; APartName: PAnsiChar; AOldNumber: PAnsiChar;
  ANewNumber: PAnsiChar): Int64; cdecl; external OldTorvIOLibrary;

implementation

{$ifdef unix}{$linklib c}{$endif}

end.
