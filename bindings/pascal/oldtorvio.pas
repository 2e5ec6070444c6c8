{ The functions of OldTorvIO.h, which describes them: what is returned, which versions are accepted, and what ends the
  process. Every status but 0 is an ETorvio.

  Names of files are UTF-8; on Windows they are converted to its code page, in which the library expects them. Texts
  are converted from and to the code page AEncoding. }
unit oldtorvio;

{$mode objfpc}{$H+}{$modeswitch advancedrecords}

interface

uses
  SysUtils, Math, torvio_support, oldtorvio_raw;

type
  TSixValues = array[0..5] of Single;
  TThreeValues = array[0..2] of Single;
  TFourValues = array[0..3] of Single;

  { Nine 32-bit values of a shape: each as a number or as bits. }
  TShapeValues = record
    case Boolean of
      False: (Reals: array[0..8] of Single);
      True: (Bits: array[0..8] of LongWord);
  end;

  { A new part of the part builder. Empty texts select the defaults of their fields. }
  TNewPart = record
    Width, Height, Thickness: Single;
    Kind: SmallInt;
    Name, Assembly, Material: string;
    CustomTexts: array[0..2] of string;
  end;

  { A new shape of the part builder; HasTool says whether it has the tool ToolName. }
  TNewShape = record
    X, Y: Single;
    ShapeType: Byte;
    Flags: LongWord;
    Values: TShapeValues;
    ItemWord1: LongWord;
    ItemWord2, PairA, PairB, PairC, PairD: Single;
    HasTool: Boolean;
    ToolName: string;
    ItemShort1, ItemShort2: SmallInt;
    ItemWord3, ItemWord4: Single;
  end;

  { The part builder, which exists once per process. The functions return the number of shapes. }
  TPartBuilder = class
  private
    class var FShapeCount: LongInt;
    class var FStarted: Boolean;
    class function Counted(const AFunction, ATool: string; ACount: LongInt): LongInt;
    class procedure CheckStarted;
  public
    class procedure Start(const APart: TNewPart; const AEncoding: string = DefaultEncoding);
    class function Add(const AShape: TNewShape; const AEncoding: string = DefaultEncoding): LongInt;
    class function AddGroup(AX, AY, AAngle: Single; const AToolName: string;
      const AEncoding: string = DefaultEncoding): LongInt;
    { AGroupIndex is the position of the head of the group, from 1. }
    class function AddToGroup(AGroupIndex: LongInt; AX, AY: Single; AShapeType: Byte;
      const AValues: TShapeValues): LongInt;
    class procedure Save(const APath: string; AVersion: SmallInt = 180);
  end;

  TPartInfo = record
    MaterialType: string;
    Width, Height, Thickness: Single;
  end;

  TPartFile = class
  public
    class function Info(const APath: string; const AEncoding: string = DefaultEncoding): TPartInfo;
    class function Value(const APath, AKey: string; const AEncoding: string = DefaultEncoding): string;
    class function Tools(const APath: string; const AEncoding: string = DefaultEncoding): string;
    class function SpecialTools(const APath: string; const AEncoding: string = DefaultEncoding): string;
  end;

  TGroupPartFile = class
  public
    class function SpecialTools(const APath: string; const AEncoding: string = DefaultEncoding): string;
  end;

  TToolShape = record
    ShapeType: LongInt;
    X, Y: Single;
    Values: TFourValues;
  end;

  TSpecialTool = record
    Orientation, SpecialValue: Single;
    Dimensions: TThreeValues;
    FirstValueCount: LongInt;
    FirstValues: TSixValues;
    SecondValueCount: LongInt;
    SecondValues: TSixValues;
    ExtraValues: array[0..1] of Single;
    LateFlag: Byte;
    Shapes: array of TToolShape;
  end;

  TSpecialToolFile = class
  public
    { The header says what is returned for a file without shapes. }
    class function Open(const APath: string): TSpecialTool;
  end;

  TInventoryTool = record
    Name: string;
    Dimensions: TThreeValues;
    Orientation: Single;
    FirstValueCount: LongInt;
    FirstValues: TSixValues;
    SecondValueCount: LongInt;
    SecondValues: TSixValues;
  end;
  TInventoryTools = array of TInventoryTool;

  TToolInventoryFile = class
  public
    { A damaged file looks like an empty one. A special tool whose file is not in the list ends the process. }
    class function Open(const APath: string; const AEncoding: string = DefaultEncoding): TInventoryTools;
  end;

  TStation = record
    StationNumber, StationType: LongInt;
    Orientation, RealF, StationValue: Single;
    ValueCount: LongInt;
    Values: TSixValues;
    Limits: TFourValues;
    ShapeCode: LongInt;
    Dimensions, Offsets: TThreeValues;
    SpecialToolPath: string;
    PairValues: array[0..1] of Single;
    WordF: LongInt;
  end;

  TMachine = record
    Kind, Version: LongInt;
    SizeX, SizeY: Single;
    Text1, Text2: string;
    StationWord: LongInt;
    Extra1, Extra2: LongWord;
    StationMode: LongInt;
    Stations: array of TStation;
  end;

  TMachineName = record
    DisplayName: string;
    Kind: LongWord;
    Text2, SecondText, LateText: string;
  end;

  TMachineSize = record
    SizeX, SizeY: Single;
    ClampCount, BlockMode: LongInt;
    StationMinX, StationMinY, StationMaxX, StationMaxY: Single;
    Area: TFourValues;
  end;

  TMachineFile = class
  private
    class function StationAt(AIndex: LongInt; const AEncoding: string): TStation;
  public
    class function Open(const APath: string; const AEncoding: string = DefaultEncoding): TMachine;
    class function Name(const APath: string; const AEncoding: string = DefaultEncoding): TMachineName;
    class function Size(const APath: string): TMachineSize;
  end;

  TSheetInfo = record
    MaterialName, MaterialGroup, MaterialType, MaterialText3, MaterialText4, MaterialText5, MachinePath, SheetLabel,
      MaterialFile: string;
    Width, Height, Thickness: Single;
    LateValue: Double;
    PartNames, Tools: string;
  end;

  TSheetClamps = record
    Word: LongWord;
    Bits: array[0..2] of LongWord;
    Positions: array[0..7] of Single;
    Count: LongWord;
    Spacing: Single;
  end;

  TDriverFlags = array[0..600] of LongInt;

  TSheetFile = class
  public
    class function Info(const APath: string; const AEncoding: string = DefaultEncoding): TSheetInfo;
    class function Clamps(const APath: string): TSheetClamps;
    class procedure MaterialTexts(const APath: string; out AText3, AText5: string;
      const AEncoding: string = DefaultEncoding);
    class function Utilization(const APath: string): Single;
    class function DriverFlags(const APath: string): TDriverFlags;
    class function SequenceSize(const APath: string): LongWord;
    { Fails if LoadOldSheetInformation returns a status other than 0. }
    class procedure Verify(const APath: string);
    { The edits can ruin sheets below version 152: read the header first. }
    class procedure ReplaceNcPath(const APath, ANcPath: string; const AEncoding: string = DefaultEncoding);
    class procedure ReplaceSkeleton(const APath, APartPath: string);
    { Changes parts with any number. }
    class procedure UpdateWorkOrder(const APath, APartName, ANewNumber: string;
      const AEncoding: string = DefaultEncoding);
    { Changes parts with the number AOldNumber. }
    class procedure UpdateWorkOrderFrom(const APath, APartName, AOldNumber, ANewNumber: string;
      const AEncoding: string = DefaultEncoding);
  end;

  { A sheet in memory. }
  TSheet = class
  private
    FSheet: POldSheet;
    { The bytes of all files that were loaded: no text about their patterns needs more. Negative if unknown. }
    FBytes: Int64;
    procedure Loaded(const APath: string; ASizeBefore, AStatus: Int64);
  public
    { A new sheet. }
    constructor Create;
    { The sheet of a file. }
    constructor Open(const APath: string);
    destructor Destroy; override;
    procedure Load(const APath: string);
    procedure Save(const APath: string; AVersion: Word = 180);
    function Value(const AKey: string; const AEncoding: string = DefaultEncoding): string;
    function PartGroupIds: string;
    { For the raw functions. }
    property Handle: POldSheet read FSheet;
  end;

  { The parts of group part files; only shows whether they can be loaded. }
  TPartList = class
  private
    FList: PSheetPartList;
  public
    constructor Create;
    destructor Destroy; override;
    procedure Load(const APath: string);
    property Handle: PSheetPartList read FList;
  end;

implementation

type
  TText257 = array[0..256] of AnsiChar;
  TText261 = array[0..260] of AnsiChar;

const
  { A NaN that differs from those of files: a file with exactly these bits would look damaged. }
  UnchangedBits: LongWord = $7FC0DEAD;

function Meaning(AStatus: Int64): string;
begin
  case AStatus of
    1: Result := 'the file ends too early, or contains a value that is refused';
    -1: Result := 'this version is not accepted';
    -2: Result := 'the file cannot be opened or saved';
  else
    Result := 'status ' + IntToStr(AStatus);
  end;
end;

procedure Check(const AFunction, APath: string; AStatus: Int64);
begin
  if AStatus <> 0 then
    raise ETorvio.CreateStatus(AFunction, APath, Meaning(AStatus), AStatus);
end;

{ Some functions return 0 and change nothing if a file has a fault after its version word. Outputs begin with a value
  that no file has, so that this is noticed. }
procedure CheckChanged(const AFunction, APath: string; AChanged: Boolean);
begin
  if not AChanged then
    raise ETorvio.CreateStatus(AFunction, APath, 'the file is damaged after its version word', 1);
end;

procedure MarkText(var AText);
begin
  PAnsiChar(@AText)[0] := #1;
  PAnsiChar(@AText)[1] := #1;
  PAnsiChar(@AText)[2] := #0;
end;

function IsMarked(const AText): Boolean;
begin
  Result := StrComp(PAnsiChar(@AText), #1#1) = 0;
end;

procedure MarkNumber(var ANumber: Single);
begin
  Move(UnchangedBits, ANumber, SizeOf(ANumber));
end;

function BitsOf(const ANumber: Single): LongWord;
begin
  Result := 0;
  Move(ANumber, Result, SizeOf(Result));
end;

function FileName(const APath: string; AMost: SizeInt = MaxInt): RawByteString;
begin
{$ifdef windows}
  Result := UTF8ToAnsi(WithoutNul(APath));
{$else}
  Result := WithoutNul(APath);
{$endif}
  if Length(Result) > AMost then
    raise EArgumentException.CreateFmt('the name of a file must have at most %d bytes here', [AMost]);
end;

function Decode(AText: PAnsiChar; const AEncoding: string): string;
begin
  Result := DecodeText(RawByteString(AText), AEncoding);
end;

{ A text that fills its field has no zero. }
function DecodeField(AText: PAnsiChar; ASize: SizeInt; const AEncoding: string): string;
var
  Bytes: RawByteString;
begin
  SetString(Bytes, AText, ASize);
  Result := DecodeText(Bytes, AEncoding);
end;

{ Empty texts select defaults. }
function OrNil(const AText: RawByteString): PAnsiChar;
begin
  if AText = '' then
    Result := nil
  else
    Result := PAnsiChar(AText);
end;

{ ---- Parts ---- }

class procedure TPartBuilder.CheckStarted;
begin
  if not FStarted then
    raise EInvalidOpException.Create('TPartBuilder.Start must be called first');
end;

class function TPartBuilder.Counted(const AFunction, ATool: string; ACount: LongInt): LongInt;
begin
  if ACount < 0 then
    raise ETorvio.CreateStatus(AFunction, ATool, 'the special tool cannot be loaded', -1);
  FShapeCount := ACount;
  Result := ACount;
end;

class procedure TPartBuilder.Start(const APart: TNewPart; const AEncoding: string);
var
  Call: TForeignCall;
  Name, Assembly, Material: RawByteString;
  Custom: array[0..2] of RawByteString;
  I: Integer;
begin
  Name := EncodeText(APart.Name, AEncoding, 255);
  Assembly := EncodeText(APart.Assembly, AEncoding, 20);
  Material := EncodeText(APart.Material, AEncoding, 20);
  for I := 0 to 2 do
    Custom[I] := EncodeText(APart.CustomTexts[I], AEncoding, 255);
  Call.Enter;
  InitTorvPart(APart.Width, APart.Height, APart.Thickness, APart.Kind, OrNil(Name), OrNil(Assembly), OrNil(Material),
    OrNil(Custom[0]), OrNil(Custom[1]), OrNil(Custom[2]));
  Call.Leave;
  FStarted := True;
  FShapeCount := 0;
end;

class function TPartBuilder.Add(const AShape: TNewShape; const AEncoding: string): LongInt;
var
  Call: TForeignCall;
  Tool: RawByteString;
  ToolName: PAnsiChar;
  Values: TShapeValues;
begin
  CheckStarted;
  Tool := EncodeText(AShape.ToolName, AEncoding, 255);
  ToolName := nil;
  if AShape.HasTool then
    ToolName := PAnsiChar(Tool);
  Values := AShape.Values;
  Call.Enter;
  Result := AddPatternToTorvPart(AShape.X, AShape.Y, AShape.ShapeType, AShape.Flags, @Values.Bits[0], AShape.ItemWord1,
    AShape.ItemWord2, AShape.PairA, AShape.PairB, AShape.PairC, AShape.PairD, ToolName, AShape.ItemShort1,
    AShape.ItemShort2, AShape.ItemWord3, AShape.ItemWord4);
  Call.Leave;
  Result := Counted('AddPatternToTorvPart', AShape.ToolName, Result);
end;

class function TPartBuilder.AddGroup(AX, AY, AAngle: Single; const AToolName, AEncoding: string): LongInt;
var
  Call: TForeignCall;
  Tool: RawByteString;
begin
  CheckStarted;
  Tool := EncodeText(AToolName, AEncoding, 255);
  Call.Enter;
  Result := AddGroupPatIntoTorvPart(AX, AY, AAngle, PAnsiChar(Tool));
  Call.Leave;
  Result := Counted('AddGroupPatIntoTorvPart', AToolName, Result);
end;

class function TPartBuilder.AddToGroup(AGroupIndex: LongInt; AX, AY: Single; AShapeType: Byte;
  const AValues: TShapeValues): LongInt;
var
  Call: TForeignCall;
  Count: Word;
  Values: TShapeValues;
begin
  CheckStarted;
  { A position after the new member would end the process. }
  if (AGroupIndex < 1) or (AGroupIndex > FShapeCount) then
    raise EArgumentOutOfRangeException.CreateFmt('the part has no shape %d', [AGroupIndex]);
  Values := AValues;
  Call.Enter;
  Count := AddPatIntoGroupPat(AGroupIndex, AX, AY, AShapeType, 0, @Values.Bits[0]);
  Call.Leave;
  if Count <> (FShapeCount + 1) and $FFFF then
    raise ETorvio.CreateStatus('AddPatIntoGroupPat', 'the part', 'memory ran out', 0);
  Inc(FShapeCount);
  Result := FShapeCount;
end;

class procedure TPartBuilder.Save(const APath: string; AVersion: SmallInt);
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath, 259);
  Call.Enter;
  Status := SaveTorvPart(PAnsiChar(Path), AVersion);
  Call.Leave;
  Check('SaveTorvPart', APath, Status);
end;

class function TPartFile.Info(const APath, AEncoding: string): TPartInfo;
var
  Call: TForeignCall;
  Path: RawByteString;
  Material: TText257;
  Status: Int64;
begin
  Path := FileName(APath);
  Result := Default(TPartInfo);
  Material := Default(TText257);
  Call.Enter;
  Status := GetOldPartInfo(PAnsiChar(Path), @Material[0], Result.Width, Result.Height, Result.Thickness);
  Call.Leave;
  Check('GetOldPartInfo', APath, Status);
  Result.MaterialType := Decode(@Material[0], AEncoding);
end;

class function TPartFile.Value(const APath, AKey, AEncoding: string): string;
var
  Call: TForeignCall;
  Path, Key: RawByteString;
  Text: TText257;
  Status: Int64;
begin
  Path := FileName(APath);
  Key := EncodeText(AKey);
  Text := Default(TText257);
  Call.Enter;
  Status := GetOldPartInfo_v1(PAnsiChar(Path), PAnsiChar(Key), @Text[0]);
  Call.Leave;
  Check('GetOldPartInfo_v1', APath, Status);
  Result := Decode(@Text[0], AEncoding);
end;

{ The buffer grows until the text fits: at the latest in the second call, unless the file changes. }
function RawTools(const APath: string; AOfGroupPart: Boolean): RawByteString;
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: Int64;
  Needed: LongWord;
begin
  Path := FileName(APath);
  SetLength(Result, 4096);
  repeat
    Needed := 0;
    Call.Enter;
    if AOfGroupPart then
      Status := GetOldSptFromGroupPart(PAnsiChar(Path), PAnsiChar(Result), Length(Result), Needed)
    else
      Status := GetOldPartTool(PAnsiChar(Path), PAnsiChar(Result), Length(Result), Needed);
    Call.Leave;
    if AOfGroupPart then
      Check('GetOldSptFromGroupPart', APath, Status)
    else
      Check('GetOldPartTool', APath, Status);
    if Needed < Length(Result) then
    begin
      SetLength(Result, Needed);
      Exit;
    end;
    SetLength(Result, SizeInt(Needed) + 1);
  until False;
end;

class function TPartFile.Tools(const APath, AEncoding: string): string;
begin
  Result := DecodeText(RawTools(APath, False), AEncoding);
end;

class function TPartFile.SpecialTools(const APath, AEncoding: string): string;
var
  Call: TForeignCall;
  Path, Text: RawByteString;
  Status: Int64;
  Most: SizeInt;
  One: AnsiChar;
begin
  { Each special tool is an item of the tools, and each item ends with a comma. }
  Most := 0;
  for One in RawTools(APath, False) do
    if One = ',' then
      Inc(Most);
  Text := StringOfChar(#0, 1 + 258 * Most);
  Path := FileName(APath);
  Call.Enter;
  Status := GetOldSptFromPart(PAnsiChar(Path), PAnsiChar(Text));
  Call.Leave;
  Check('GetOldSptFromPart', APath, Status);
  Result := DecodeText(Text, AEncoding);
end;

class function TGroupPartFile.SpecialTools(const APath, AEncoding: string): string;
begin
  Result := DecodeText(RawTools(APath, True), AEncoding);
end;

{ ---- Special tools, inventories, machines ---- }

class function TSpecialToolFile.Open(const APath: string): TSpecialTool;
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: LongInt;
  Count: LongWord;
  I: LongInt;
begin
  Path := FileName(APath);
  Result := Default(TSpecialTool);
  Count := 0;
  with Result do
  begin
    Call.Enter;
    Status := OpenSpecialToolFile(PAnsiChar(Path), Count, Orientation, SpecialValue, Dimensions[0], Dimensions[1],
      Dimensions[2], FirstValueCount, FirstValues[0], FirstValues[1], FirstValues[2], FirstValues[3], FirstValues[4],
      FirstValues[5], SecondValueCount, SecondValues[0], SecondValues[1], SecondValues[2], SecondValues[3],
      SecondValues[4], SecondValues[5], ExtraValues[0], ExtraValues[1], LateFlag);
    Call.Leave;
    Check('OpenSpecialToolFile', APath, Status);
    SetLength(Shapes, Count);
    for I := 0 to High(Shapes) do
      with Shapes[I] do
      begin
        Call.Enter;
        GetShapeAt(I, ShapeType, X, Y, Values[0], Values[1], Values[2], Values[3]);
        Call.Leave;
      end;
  end;
end;

class function TToolInventoryFile.Open(const APath, AEncoding: string): TInventoryTools;
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: LongInt;
  Count: LongWord;
  I: LongInt;
  Text: TText257;
begin
  Path := FileName(APath);
  Result := nil;
  Count := 0;
  Call.Enter;
  Status := LoadOldToolInventoryForCount(PAnsiChar(Path), Count);
  Call.Leave;
  Check('LoadOldToolInventoryForCount', APath, Status);
  SetLength(Result, Count);
  for I := 0 to High(Result) do
    with Result[I] do
    begin
      Text := Default(TText257);
      Call.Enter;
      GetOldToolInventoryInformation(I, @Text[0], Dimensions[0], Dimensions[1], Dimensions[2], Orientation,
        FirstValueCount, FirstValues[0], FirstValues[1], FirstValues[2], FirstValues[3], FirstValues[4], FirstValues[5],
        SecondValueCount, SecondValues[0], SecondValues[1], SecondValues[2], SecondValues[3], SecondValues[4],
        SecondValues[5]);
      Call.Leave;
      Name := Decode(@Text[0], AEncoding);
    end;
end;

class function TMachineFile.StationAt(AIndex: LongInt; const AEncoding: string): TStation;
var
  Call: TForeignCall;
  Text: TText257;
begin
  Result := Default(TStation);
  Text := Default(TText257);
  with Result do
  begin
    Call.Enter;
    LoadOldStationToolFromMachine(AIndex, StationNumber, StationType, Orientation, RealF, StationValue, ValueCount,
      @Values[0], Limits[0], Limits[1], Limits[2], Limits[3], ShapeCode, @Dimensions[0], @Offsets[0], @Text[0],
      PairValues[0], PairValues[1], WordF);
    Call.Leave;
    SpecialToolPath := Decode(@Text[0], AEncoding);
  end;
end;

class function TMachineFile.Open(const APath, AEncoding: string): TMachine;
var
  Call: TForeignCall;
  Path: RawByteString;
  Information: TMachineInformation;
  Status, I: LongInt;
begin
  Path := FileName(APath);
  Result := Default(TMachine);
  Information := Default(TMachineInformation);
  Call.Enter;
  Status := LoadOldMachineInformation(PAnsiChar(Path), Information);
  Call.Leave;
  Check('LoadOldMachineInformation', APath, Status);
  CheckChanged('LoadOldMachineInformation', APath, Information.InfoVersion <> 0);
  Result.Kind := Information.InfoKind;
  Result.Version := Information.InfoVersion;
  Result.SizeX := Information.InfoSizeX;
  Result.SizeY := Information.InfoSizeY;
  Result.Text1 := DecodeField(@Information.InfoText1[0], Length(Information.InfoText1), AEncoding);
  Result.Text2 := DecodeField(@Information.InfoText2[0], Length(Information.InfoText2), AEncoding);
  Result.StationWord := Information.InfoStationWord;
  Result.Extra1 := Information.InfoExtra1;
  Result.Extra2 := Information.InfoExtra2;
  Result.StationMode := Information.InfoStationMode;
  SetLength(Result.Stations, Information.InfoStationCount);
  for I := 0 to High(Result.Stations) do
    Result.Stations[I] := StationAt(I, AEncoding);
end;

class function TMachineFile.Name(const APath, AEncoding: string): TMachineName;
var
  Call: TForeignCall;
  Path: RawByteString;
  Texts: array[0..3] of TText257;
  Status: Int64;
begin
  Path := FileName(APath);
  Result := Default(TMachineName);
  FillChar(Texts, SizeOf(Texts), 0);
  MarkText(Texts[0]);
  Call.Enter;
  Status := GetOldVLMQMachineName(PAnsiChar(Path), @Texts[0], Result.Kind, @Texts[1], @Texts[2], @Texts[3]);
  Call.Leave;
  Check('GetOldVLMQMachineName', APath, Status);
  CheckChanged('GetOldVLMQMachineName', APath, not IsMarked(Texts[0]));
  Result.DisplayName := Decode(@Texts[0], AEncoding);
  Result.Text2 := Decode(@Texts[1], AEncoding);
  Result.SecondText := Decode(@Texts[2], AEncoding);
  Result.LateText := Decode(@Texts[3], AEncoding);
end;

class function TMachineFile.Size(const APath: string): TMachineSize;
var
  Call: TForeignCall;
  Path: RawByteString;
  { Integers in the bytes of a float. }
  Clamps, Mode: Single;
  Status: Int64;
begin
  Path := FileName(APath);
  Result := Default(TMachineSize);
  Clamps := 0;
  Mode := 0;
  with Result do
  begin
    Call.Enter;
    Status := GetMachineDatasForQD(PAnsiChar(Path), SizeX, SizeY, Clamps, Mode, StationMinX, StationMinY, StationMaxX,
      StationMaxY, Area[0], Area[1], Area[2], Area[3]);
    Call.Leave;
    Check('GetMachineDatasForQD', APath, Status);
    ClampCount := LongInt(BitsOf(Clamps));
    BlockMode := LongInt(BitsOf(Mode));
  end;
end;

{ ---- Sheets ---- }

class function TSheetFile.Info(const APath, AEncoding: string): TSheetInfo;
var
  Call: TForeignCall;
  Path, Names, ToolsText: RawByteString;
  Texts: array[0..8] of TText261;
  NamesLength, ToolsLength: LongInt;
  Status: Int64;
begin
  Path := FileName(APath);
  NamesLength := 4095;
  ToolsLength := 4095;
  repeat
    { Both buffers grow until their texts fit: at the latest in the second call, unless the file changes. }
    Names := StringOfChar(#0, NamesLength + 1);
    ToolsText := StringOfChar(#0, ToolsLength + 1);
    FillChar(Texts, SizeOf(Texts), 0);
    Result := Default(TSheetInfo);
    NamesLength := -1;
    ToolsLength := 0;
    Call.Enter;
    Status := GetOldSheetInfo(PAnsiChar(Path), @Texts[0], @Texts[1], @Texts[2], @Texts[3], @Texts[4], @Texts[5],
      @Texts[6], @Texts[7], @Texts[8], Result.Width, Result.Height, Result.Thickness, Result.LateValue,
      PAnsiChar(Names), Length(Names), NamesLength, PAnsiChar(ToolsText), Length(ToolsText), ToolsLength);
    Call.Leave;
    Check('GetOldSheetInfo', APath, Status);
    CheckChanged('GetOldSheetInfo', APath, NamesLength >= 0);
  until (NamesLength < Length(Names)) and (ToolsLength < Length(ToolsText));
  Result.MaterialName := Decode(@Texts[0], AEncoding);
  Result.MaterialGroup := Decode(@Texts[1], AEncoding);
  Result.MaterialType := Decode(@Texts[2], AEncoding);
  Result.MaterialText3 := Decode(@Texts[3], AEncoding);
  Result.MaterialText4 := Decode(@Texts[4], AEncoding);
  Result.MaterialText5 := Decode(@Texts[5], AEncoding);
  Result.MachinePath := Decode(@Texts[6], AEncoding);
  Result.SheetLabel := Decode(@Texts[7], AEncoding);
  Result.MaterialFile := Decode(@Texts[8], AEncoding);
  Result.PartNames := DecodeText(Names, AEncoding);
  Result.Tools := DecodeText(ToolsText, AEncoding);
end;

class function TSheetFile.Clamps(const APath: string): TSheetClamps;
var
  Call: TForeignCall;
  Path: RawByteString;
  Values: array[0..2] of Single;
  Status: Int64;
  I: Integer;
begin
  Path := FileName(APath);
  Result := Default(TSheetClamps);
  FillChar(Values, SizeOf(Values), 0);
  MarkNumber(Result.Positions[0]);
  Call.Enter;
  Status := GetOldClampInfo(PAnsiChar(Path), Result.Word, Values[0], Values[1], Values[2], @Result.Positions[0],
    Result.Count, Result.Spacing);
  Call.Leave;
  Check('GetOldClampInfo', APath, Status);
  CheckChanged('GetOldClampInfo', APath, BitsOf(Result.Positions[0]) <> UnchangedBits);
  for I := 0 to 2 do
    Result.Bits[I] := BitsOf(Values[I]);
end;

class procedure TSheetFile.MaterialTexts(const APath: string; out AText3, AText5: string; const AEncoding: string);
var
  Call: TForeignCall;
  Path: RawByteString;
  Text3, Text5: TText257;
  Status: Int64;
begin
  Path := FileName(APath);
  Text3 := Default(TText257);
  Text5 := Default(TText257);
  MarkText(Text3);
  Call.Enter;
  Status := GetOldVLMQMaterialName(PAnsiChar(Path), @Text3[0], @Text5[0]);
  Call.Leave;
  Check('GetOldVLMQMaterialName', APath, Status);
  CheckChanged('GetOldVLMQMaterialName', APath, not IsMarked(Text3));
  AText3 := Decode(@Text3[0], AEncoding);
  AText5 := Decode(@Text5[0], AEncoding);
end;

class function TSheetFile.Utilization(const APath: string): Single;
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath);
  MarkNumber(Result);
  Call.Enter;
  Status := GetOldSkeletonUtil(PAnsiChar(Path), Result);
  Call.Leave;
  Check('GetOldSkeletonUtil', APath, Status);
  CheckChanged('GetOldSkeletonUtil', APath, BitsOf(Result) <> UnchangedBits);
end;

class function TSheetFile.DriverFlags(const APath: string): TDriverFlags;
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath);
  Result := Default(TDriverFlags);
  Call.Enter;
  Status := GetSheetDriverFlags(PAnsiChar(Path), @Result[0]);
  Call.Leave;
  Check('GetSheetDriverFlags', APath, Status);
end;

class function TSheetFile.SequenceSize(const APath: string): LongWord;
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath);
  Result := 0;
  Call.Enter;
  Status := GetSheetSequenceListSize(PAnsiChar(Path), Result);
  Call.Leave;
  Check('GetSheetSequenceListSize', APath, Status);
end;

class procedure TSheetFile.Verify(const APath: string);
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: LongInt;
begin
  Path := FileName(APath);
  Call.Enter;
  Status := LoadOldSheetInformation(PAnsiChar(Path));
  Call.Leave;
  Check('LoadOldSheetInformation', APath, Status);
end;

class procedure TSheetFile.ReplaceNcPath(const APath, ANcPath, AEncoding: string);
var
  Call: TForeignCall;
  Path, NcPath: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath);
  NcPath := EncodeText(ANcPath, AEncoding, 255);
  Call.Enter;
  Status := ReplaceSheetMachineNcPath(PAnsiChar(Path), PAnsiChar(NcPath));
  Call.Leave;
  Check('ReplaceSheetMachineNcPath', APath, Status);
end;

class procedure TSheetFile.ReplaceSkeleton(const APath, APartPath: string);
var
  Call: TForeignCall;
  Path, Part: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath);
  Part := FileName(APartPath);
  Call.Enter;
  Status := ReplaceSheetSknPatListWithPartPatList(PAnsiChar(Path), PAnsiChar(Part));
  Call.Leave;
  Check('ReplaceSheetSknPatListWithPartPatList', APath, Status);
end;

procedure UpdateNumbers(const APath: string; const APartName: RawByteString; AOldNumber: PAnsiChar;
  const ANewNumber: RawByteString);
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath);
  Call.Enter;
  Status := UpdateSheetPartWONumber(PAnsiChar(Path), PAnsiChar(APartName), AOldNumber, PAnsiChar(ANewNumber));
  Call.Leave;
  Check('UpdateSheetPartWONumber', APath, Status);
end;

class procedure TSheetFile.UpdateWorkOrder(const APath, APartName, ANewNumber, AEncoding: string);
begin
  UpdateNumbers(APath, EncodeText(APartName, AEncoding), nil, EncodeText(ANewNumber, AEncoding, 255));
end;

class procedure TSheetFile.UpdateWorkOrderFrom(const APath, APartName, AOldNumber, ANewNumber, AEncoding: string);
var
  OldNumber: RawByteString;
begin
  OldNumber := EncodeText(AOldNumber, AEncoding);
  UpdateNumbers(APath, EncodeText(APartName, AEncoding), PAnsiChar(OldNumber), EncodeText(ANewNumber, AEncoding, 255));
end;

{ The size of a file; pipes and devices have none. }
function SizeOfFile(const APath: string): Int64;
var
  Found: TSearchRec;
begin
  Result := 0;
  if FindFirst(APath, faAnyFile, Found) = 0 then
    Result := Found.Size;
  FindClose(Found);
end;

constructor TSheet.Create;
var
  Call: TForeignCall;
begin
  inherited Create;
  Call.Enter;
  FSheet := CreateSheetInfo();
  Call.Leave;
  if FSheet = nil then
    OutOfMemoryError;
end;

procedure TSheet.Loaded(const APath: string; ASizeBefore, AStatus: Int64);
var
  Size: Int64;
begin
  Size := Max(ASizeBefore, SizeOfFile(APath));
  { An empty file cannot be loaded: a loaded file of size 0 has an unknown size. }
  if ((Size = 0) and (AStatus >= 0)) or (FBytes < 0) then
    FBytes := -1
  else
    FBytes := FBytes + Size;
end;

constructor TSheet.Open(const APath: string);
var
  Call: TForeignCall;
  Path: RawByteString;
  Status, Size: Int64;
begin
  inherited Create;
  Path := FileName(APath);
  Size := SizeOfFile(APath);
  Call.Enter;
  Status := GetOldSheetHandle(PAnsiChar(Path), FSheet);
  Call.Leave;
  Loaded(APath, Size, Status);
  Check('GetOldSheetHandle', APath, Status);
end;

destructor TSheet.Destroy;
begin
  FreeSheetHandle(FSheet);
  inherited Destroy;
end;

procedure TSheet.Load(const APath: string);
var
  Call: TForeignCall;
  Path: RawByteString;
  Status, Size: Int64;
begin
  Path := FileName(APath);
  Size := SizeOfFile(APath);
  Call.Enter;
  Status := LoadOldSheet(PAnsiChar(Path), FSheet);
  Call.Leave;
  Loaded(APath, Size, Status);
  Check('LoadOldSheet', APath, Status);
end;

procedure TSheet.Save(const APath: string; AVersion: Word);
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath);
  Call.Enter;
  Status := SaveOldSheet(PAnsiChar(Path), FSheet, AVersion);
  Call.Leave;
  Check('SaveOldSheet', APath, Status);
end;

function TSheet.Value(const AKey, AEncoding: string): string;
const
  Lists: array[0..3] of string = ('partfulldosname_and_count', 'partfulldosname_and_count_and_wonumber',
    'partname_and_count_and_wonumber', 'part_details_01');
var
  Call: TForeignCall;
  Key, Text: RawByteString;
  Parts: SizeInt;
  Status: Int64;
  List: string;
begin
  Key := EncodeText(AKey);
  Parts := 0;
  for List in Lists do
    if SameText(List, AKey) then
      Parts := StrToInt(Value('part_count'));
  Text := StringOfChar(#0, 264 + Parts * (260 + 256 + 256 + 3 * 64));
  { An unknown key leaves the value unchanged. }
  MarkText(Text[1]);
  Call.Enter;
  Status := GetOldSheetInfoByName(FSheet, PAnsiChar(Key), PAnsiChar(Text));
  Call.Leave;
  Check('GetOldSheetInfoByName', AKey, Status);
  if IsMarked(Text[1]) then
    raise EArgumentException.Create('sheets have no value ' + AKey);
  Result := DecodeText(Text, AEncoding);
end;

function TSheet.PartGroupIds: string;
var
  Call: TForeignCall;
  Text: RawByteString;
  Status: Int64;
begin
  if FBytes < 0 then
    raise EInvalidOpException.Create('the sheet is from a pipe or device: the size of the text is unknown');
  { A pattern takes more bytes in its file than its id takes in the text. }
  Text := StringOfChar(#0, 1 + FBytes);
  Call.Enter;
  Status := GetOldSheetInfoPartGroupIDs(FSheet, PAnsiChar(Text));
  Call.Leave;
  Check('GetOldSheetInfoPartGroupIDs', '', Status);
  Result := DecodeText(Text);
end;

constructor TPartList.Create;
var
  Call: TForeignCall;
begin
  inherited Create;
  Call.Enter;
  FList := CreateOldPartlistInfo();
  Call.Leave;
  if FList = nil then
    OutOfMemoryError;
end;

destructor TPartList.Destroy;
begin
  DeleteOldPartlistInfo(FList);
  inherited Destroy;
end;

procedure TPartList.Load(const APath: string);
var
  Call: TForeignCall;
  Path: RawByteString;
  Status: Int64;
begin
  Path := FileName(APath);
  Call.Enter;
  Status := LoadGroupPart(PAnsiChar(Path), FList);
  Call.Leave;
  Check('LoadGroupPart', APath, Status);
end;

end.
