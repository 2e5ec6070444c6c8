{ Calls everything that bindings/pascal has: calls FILES OUTPUT }
program calls;

{$mode objfpc}{$H+}{$modeswitch nestedprocvars}

uses
  Classes, SysUtils, torvio_support, torvio, oldtorvio, oldtorvio_raw;

type
  TJob = procedure is nested;

var
  Files, Output: string;

function InFiles(const AName: string): string;
begin
  Result := Files + '/' + AName;
end;

procedure Line(const AValues: array of const);
var
  I: Integer;
begin
  for I := 0 to High(AValues) do
  begin
    if I > 0 then
      Write(' | ');
    case AValues[I].VType of
      vtInteger: Write(AValues[I].VInteger);
      vtInt64: Write(AValues[I].VInt64^);
      vtQWord: Write(AValues[I].VQWord^);
      vtAnsiString: Write(AnsiString(AValues[I].VAnsiString));
      vtChar: Write(AValues[I].VChar);
      vtString: Write(AValues[I].VString^);
    else
      raise Exception.Create('no such value');
    end;
  end;
  WriteLn;
end;

function Real(AValue: Double): string;
begin
  Str(AValue:0:4, Result);
end;

function Reals(const AValues: array of Single): string;
var
  I: Integer;
begin
  Result := '';
  for I := 0 to High(AValues) do
  begin
    if I > 0 then
      Result := Result + ' ';
    Result := Result + Real(AValues[I]);
  end;
end;

procedure WriteBytes(const AName: string; const AContent: TBytes);
var
  Stream: TFileStream;
begin
  Stream := TFileStream.Create(Output + '/' + AName, fmCreate);
  try
    if Length(AContent) > 0 then
      Stream.WriteBuffer(AContent[0], Length(AContent));
  finally
    Stream.Free;
  end;
end;

procedure WriteText(const AName: string; const AContent: RawByteString);
begin
  WriteBytes(AName, BytesOfString(AContent));
end;

function BytesOfFile(const AName: string): TBytes;
var
  Stream: TFileStream;
begin
  Result := nil;
  Stream := TFileStream.Create(InFiles(AName), fmOpenRead);
  try
    SetLength(Result, Stream.Size);
    Stream.ReadBuffer(Result[0], Length(Result));
  finally
    Stream.Free;
  end;
end;

procedure Status(const ALabel: string; AJob: TJob);
begin
  try
    AJob();
    Line([ALabel, 'no error']);
  except
    on Error: ETorvio do
      Line([ALabel, Error.FunctionName, Error.Status]);
  end;
end;

procedure Refused(const ALabel: string; AJob: TJob);
begin
  try
    AJob();
    Line([ALabel, 'accepted']);
  except
    on Error: EArgumentException do
      Line([ALabel, 'refused']);
    on Error: EInvalidOpException do
      Line([ALabel, 'refused']);
  end;
end;

function PlainShape(AX, AY: Single; AType: Byte): TNewShape;
begin
  Result := Default(TNewShape);
  Result.X := AX;
  Result.Y := AY;
  Result.ShapeType := AType;
end;

procedure Parts;

  procedure AddPlain;
  begin
    TPartBuilder.Add(PlainShape(1, 1, 1));
  end;

  procedure AddUnknownTool;
  var
    Shape: TNewShape;
  begin
    Shape := PlainShape(1, 1, 2);
    Shape.HasTool := True;
    Shape.ToolName := 'no such tool';
    TPartBuilder.Add(Shape);
  end;

  procedure AddUnknownGroup;
  begin
    TPartBuilder.AddGroup(1, 1, 0, 'no such tool');
  end;

  procedure AddToUnknownGroup;
  begin
    TPartBuilder.AddToGroup(9, 1, 1, 1, Default(TShapeValues));
  end;

  procedure StartLong;
  var
    Part: TNewPart;
  begin
    Part := Default(TNewPart);
    Part.Material := StringOfChar('x', 21);
    TPartBuilder.Start(Part);
  end;

  procedure SaveAt63;
  begin
    TPartBuilder.Save(InFiles('calls.part'), 63);
  end;

  procedure SaveNowhere;
  begin
    TPartBuilder.Save(InFiles('no such folder/calls.part'));
  end;

  procedure SaveLong;
  begin
    TPartBuilder.Save(StringOfChar('x', 260));
  end;

  procedure UnknownKey;
  begin
    TPartFile.Value(InFiles('calls.part'), 'colour');
  end;

var
  List: TPartList;

  procedure LoadMaterial;
  begin
    List.Load(InFiles('steel.mat'));
  end;

var
  Part: TNewPart;
  Shape: TNewShape;
  Info: TPartInfo;
  Key: string;
const
  Keys: array[0..3] of string = ('angle', 'Revision', 'MATTYPE', 'Thickness');
begin
  Refused('a shape before the first part', @AddPlain);
  Part := Default(TNewPart);
  Part.Width := 24;
  Part.Height := 12.5;
  Part.Thickness := 0.0625;
  Part.Kind := -1;
  Part.Name := 'COVER';
  Part.Assembly := 'CABINET';
  Part.Material := 'STEEL';
  Part.CustomTexts[0] := 'first';
  Part.CustomTexts[1] := 'Ä€';
  TPartBuilder.Start(Part);
  Shape := PlainShape(1, 1, 1);
  Shape.Values.Reals[0] := 0.5;
  Shape.Values.Reals[1] := 1;
  Line(['shapes', TPartBuilder.Add(Shape)]);
  Shape := PlainShape(2, 1, 2);
  Shape.Flags := 3;
  Shape.Values.Bits[0] := $3F000000;
  Shape.Values.Bits[1] := 7;
  Shape.ItemWord1 := 16;
  Shape.ItemWord2 := 0.25;
  Shape.PairA := 1;
  Shape.PairB := 2;
  Shape.PairC := 3;
  Shape.PairD := 4;
  Shape.HasTool := True;
  Shape.ToolName := 'corner punch';
  Shape.ItemShort1 := -1;
  Shape.ItemShort2 := 7;
  Shape.ItemWord3 := 0.5;
  Shape.ItemWord4 := 0.75;
  Line(['shapes', TPartBuilder.Add(Shape)]);
  Status('no such tool', @AddUnknownTool);
  Status('no such group', @AddUnknownGroup);
  Line(['shapes', TPartBuilder.AddGroup(5, 6, 4, 'Corner Punch')]);
  Shape := PlainShape(0, 0, 0);
  Shape.Values.Reals[0] := 0.5;
  Line(['shapes', TPartBuilder.AddToGroup(3, 5.5, 6.5, 1, Shape.Values)]);
  Refused('a group that does not exist', @AddToUnknownGroup);
  Refused('a long material', @StartLong);
  Status('version 63', @SaveAt63);
  Status('no such folder', @SaveNowhere);
  TPartBuilder.Save(InFiles('calls.part'));
  Refused('a long path', @SaveLong);

  Info := TPartFile.Info(InFiles('calls.part'));
  Line(['part', Info.MaterialType, Real(Info.Width), Real(Info.Height), Real(Info.Thickness)]);
  for Key in Keys do
    Line([Key, TPartFile.Value(InFiles('calls.part'), Key)]);
  Status('an unknown key', @UnknownKey);
  Line(['tools', TPartFile.Tools(InFiles('calls.part'))]);
  Line(['special tools', StringReplace(TPartFile.SpecialTools(InFiles('calls.part')), Files, '', [rfReplaceAll])]);
  Line(['special tools', TPartFile.SpecialTools(InFiles('tooled.part'))]);
  Line(['special tools', TGroupPartFile.SpecialTools(InFiles('brackets.group'))]);
  List := TPartList.Create;
  try
    List.Load(InFiles('brackets.group'));
    Status('a list from a material', @LoadMaterial);
  finally
    List.Free;
  end;
end;

procedure Tools;

  procedure OpenNothing;
  begin
    TToolInventoryFile.Open(InFiles('nothing'));
  end;

var
  Tool: TSpecialTool;
  Shape: TToolShape;
  One: TInventoryTool;
begin
  Tool := TSpecialToolFile.Open(InFiles('Corner Punch.spt'));
  Line(['special tool', Real(Tool.Orientation), Real(Tool.SpecialValue), Reals(Tool.Dimensions), Tool.FirstValueCount,
    Reals(Tool.FirstValues), Tool.SecondValueCount, Reals(Tool.SecondValues), Reals(Tool.ExtraValues), Tool.LateFlag]);
  for Shape in Tool.Shapes do
    Line(['shape', Shape.ShapeType, Real(Shape.X), Real(Shape.Y), Reals(Shape.Values)]);
  for One in TToolInventoryFile.Open(InFiles('shop.inv')) do
    Line(['tool', One.Name, Reals(One.Dimensions), Real(One.Orientation), One.FirstValueCount, Reals(One.FirstValues),
      One.SecondValueCount, Reals(One.SecondValues)]);
  Status('no inventory', @OpenNothing);
end;

procedure Machines;

  procedure OpenDamaged;
  begin
    TMachineFile.Open(InFiles('damaged.mch'));
  end;

  procedure NameOfDamaged;
  begin
    TMachineFile.Name(InFiles('damaged.mch'));
  end;

  procedure SizeOfDamaged;
  begin
    TMachineFile.Size(InFiles('damaged.mch'));
  end;

var
  Machine: TMachine;
  One: TStation;
  Name: TMachineName;
  Size: TMachineSize;
begin
  Machine := TMachineFile.Open(InFiles('punch.mch'));
  Line(['machine', Machine.Kind, Machine.Version, Real(Machine.SizeX), Real(Machine.SizeY), Machine.Text1,
    Machine.Text2, Machine.StationWord, Machine.Extra1, Machine.Extra2, Machine.StationMode]);
  for One in Machine.Stations do
    Line(['station', One.StationNumber, One.StationType, Real(One.Orientation), Real(One.RealF), Real(One.StationValue),
      One.ValueCount, Reals(One.Values), Reals(One.Limits), One.ShapeCode, Reals(One.Dimensions), Reals(One.Offsets),
      One.SpecialToolPath, Reals(One.PairValues), One.WordF]);
  Name := TMachineFile.Name(InFiles('punch.mch'));
  Line(['name', Name.DisplayName, Name.Kind, Name.Text2, Name.SecondText, Name.LateText]);
  Size := TMachineFile.Size(InFiles('punch.mch'));
  Line(['size', Real(Size.SizeX), Real(Size.SizeY), Size.ClampCount, Size.BlockMode, Real(Size.StationMinX),
    Real(Size.StationMinY), Real(Size.StationMaxX), Real(Size.StationMaxY), Reals(Size.Area)]);
  Status('a damaged machine', @OpenDamaged);
  Status('its name', @NameOfDamaged);
  Status('its size', @SizeOfDamaged);
end;

procedure Sheets;
var
  Damaged, Copy, Text3, Text5: string;
  Sheet: TSheet;

  procedure AskInfo;
  begin
    TSheetFile.Info(Damaged);
  end;

  procedure AskClamps;
  begin
    TSheetFile.Clamps(Damaged);
  end;

  procedure AskTexts;
  begin
    TSheetFile.MaterialTexts(Damaged, Text3, Text5);
  end;

  procedure AskUtilization;
  begin
    TSheetFile.Utilization(Damaged);
  end;

  procedure AskFlags;
  begin
    TSheetFile.DriverFlags(Damaged);
  end;

  procedure AskSequence;
  begin
    TSheetFile.SequenceSize(Damaged);
  end;

  procedure Verify;
  begin
    TSheetFile.Verify(Damaged);
  end;

  procedure VerifyNothing;
  begin
    TSheetFile.Verify(InFiles('nothing'));
  end;

  procedure UnknownKey;
  begin
    Sheet.Value('colour');
  end;

  procedure ReplaceByNothing;
  begin
    TSheetFile.ReplaceSkeleton(Copy, InFiles('nothing'));
  end;

  procedure SaveAt51;
  begin
    Sheet.Save(InFiles('refused.sheet'), 51);
  end;

  procedure LoadMaterial;
  begin
    Sheet.Load(InFiles('steel.mat'));
  end;

var
  Name, Path, Key: string;
  Info: TSheetInfo;
  Clamps: TSheetClamps;
  Flags: TDriverFlags;
const
  Names: array[0..1] of string = ('nest_180.sheet', 'nest_80.sheet');
  Keys: array[0..13] of string = ('Material_Group', 'width', 'height', 'part_count', 'partfulldosname_and_count',
    'partfulldosname_and_count_and_wonumber', 'partname_and_count_and_wonumber', 'PART_DETAILS_01', 'sheet_mat_type',
    'sheet_thickness', 'preSkeletonDosName', 'totalSknPartCutArea', 'sheet_utilization', 'sheet_sequence_size');
begin
  for Name in Names do
  begin
    Path := InFiles(Name);
    Info := TSheetFile.Info(Path);
    Clamps := TSheetFile.Clamps(Path);
    Line(['sheet', Info.MaterialName, Info.MaterialGroup, Info.MaterialType, Info.MaterialText3, Info.MaterialText4,
      Info.MaterialText5, Info.MachinePath, Info.SheetLabel, Info.MaterialFile, Real(Info.Width), Real(Info.Height),
      Real(Info.Thickness), Real(Info.LateValue), Info.PartNames, Info.Tools]);
    Line(['clamps', Clamps.Word, IntToStr(Clamps.Bits[0]) + ' ' + IntToStr(Clamps.Bits[1]) + ' ' +
      IntToStr(Clamps.Bits[2]), Reals(Clamps.Positions), Clamps.Count, Real(Clamps.Spacing)]);
    TSheetFile.MaterialTexts(Path, Text3, Text5);
    Line(['texts', Text3, Text5]);
    Line(['utilization', Real(TSheetFile.Utilization(Path))]);
    Flags := TSheetFile.DriverFlags(Path);
    Line(['flags', Length(Flags), Flags[55], Flags[101], Flags[600]]);
    Line(['sequence', TSheetFile.SequenceSize(Path)]);
    TSheetFile.Verify(Path);
  end;
  Damaged := InFiles('damaged.sheet');
  Status('info', @AskInfo);
  Status('clamps', @AskClamps);
  Status('materialTexts', @AskTexts);
  Status('utilization', @AskUtilization);
  Status('driverFlags', @AskFlags);
  Status('sequenceSize', @AskSequence);
  Status('verify', @Verify);
  Status('no sheet', @VerifyNothing);

  Copy := InFiles('cöpy.sheet');
  with TFileStream.Create(Copy, fmCreate) do
  try
    WriteBuffer(BytesOfFile('nest_180.sheet')[0], Length(BytesOfFile('nest_180.sheet')));
  finally
    Free;
  end;
  TSheetFile.UpdateWorkOrderFrom(Copy, 'BRACKET 01', 'no such number', 'WO-1');
  TSheetFile.UpdateWorkOrderFrom(Copy, 'BRACKET 02', 'WO-7001', 'WO-2');
  TSheetFile.UpdateWorkOrder(Copy, 'BRACKET 03', 'Prüfung');
  TSheetFile.ReplaceNcPath(Copy, 'D:\NC');
  Sheet := TSheet.Open(Copy);
  try
    for Key in Keys do
      Line([Key, Sheet.Value(Key)]);
    Line(['groups', Sheet.PartGroupIds]);
    Refused('an unknown key', @UnknownKey);
  finally
    Sheet.Free;
  end;
  TSheetFile.ReplaceSkeleton(Copy, InFiles('calls.part'));
  Status('no skeleton', @ReplaceByNothing);

  Sheet := TSheet.Create;
  try
    Line(['a new sheet', Sheet.Value('width'), Sheet.PartGroupIds]);
    Sheet.Save(InFiles('made.sheet'));
    Sheet.Load(InFiles('made.sheet'));
    Sheet.Load(Copy);
    Line(['parts', Sheet.Value('part_count'), Sheet.Value('totalSknPartCutArea')]);
    Status('version 51', @SaveAt51);
    Status('a sheet of a material', @LoadMaterial);
  finally
    Sheet.Free;
  end;
end;

function Named(const AName, ACalled: string): TTorvioFile;
begin
  Result := InFiles(AName);
  Result.Name := ACalled;
end;

procedure Companion;

  procedure DrawMacro;
  begin
    TTorvio.Draw(InFiles('tab.mac'));
  end;

  procedure InfoOfFolder;
  begin
    TTorvio.Info(Files);
  end;

  procedure FromNoJson;
  begin
    TTorvio.FromJson(InMemory(BytesOfString('{}')));
  end;

  procedure SchemaOfNothing;
  begin
    TTorvio.Schema('plate');
  end;

  procedure EmptyPage;
  var
    None: TTorvioFiles;
  begin
    None := nil;
    TTorvio.DrawPage(None);
  end;

  procedure WrongTolerance;
  var
    Same: Boolean;
  begin
    TTorvio.Diff(InFiles('tab.mac'), InFiles('tab.mac'), Same, '', -1);
  end;

var
  Nest: TTorvioFile;
  Macro: TBytes;
  Same, PartSame: Boolean;
  Made: TNewFile;
begin
  Nest := InMemory(BytesOfFile('nest_180.sheet'), 'Träger', 'sheet', 'cp437');
  WriteText('version', TTorvio.Version);
  WriteText('supported', TTorvio.Supported);
  WriteText('check', TTorvio.Check(InFiles('nest_180.sheet')));
  WriteText('check damaged', TTorvio.Check(Named('damaged.sheet', 'a')));
  WriteText('check nothing', TTorvio.Check(Named('nothing', 'a')));
  WriteText('check empty', TTorvio.Check(InMemory(nil)));
  WriteText('info', TTorvio.Info(Nest));
  WriteText('json', TTorvio.Json(Nest));
  WriteText('json pretty', TTorvio.Json(InFiles('calls.part'), True));
  Macro := BytesOfString(TTorvio.Json(InFiles('tab.mac')));
  WriteBytes('from json', TTorvio.FromJson(InMemory(Macro)));
  WriteBytes('from json 180', TTorvio.FromJson(InMemory(Macro), 180));
  WriteText('schema', TTorvio.Schema('part'));
  WriteText('map', TTorvio.Map(InFiles('nest_180.sheet'), '**.*Count', '0..20000'));
  WriteText('map page', TTorvio.MapPage(InFiles('tab.mac')));
  WriteText('format', TTorvio.Format('macro'));
  WriteText('format json', TTorvio.Format('clamp-info', 'json'));
  WriteText('draw', TTorvio.Draw(Nest));
  WriteText('page', TTorvio.DrawPage([Nest, InFiles('punch.mch')], '<Seite>'));
  WriteText('diff', TTorvio.Diff(InFiles('nest_112.sheet'), InFiles('nest_180.sheet'), Same));
  Nest.Encoding := '';
  WriteText('diff part', TTorvio.Diff(InFiles('nest_180.sheet'), Nest, PartSame, 'BRACKET 02', 0.5, True));
  Line(['same', Ord(Same), Ord(PartSame)]);
  Made := TTorvio.Convert(InFiles('nest_180.sheet'), 112, True);
  WriteBytes('convert', Made.Data);
  WriteText('convert report', Made.Report);
  Made := TTorvio.Recover(InFiles('damaged.sheet'));
  WriteBytes('recover', Made.Data);
  WriteText('recover report', Made.Report);
  try
    TTorvio.Convert(InFiles('nest_180.sheet'), 112);
  except
    on Error: ETorvio do
    begin
      WriteText('convert refused', Error.Report);
      if Error.ResultText = '' then
        Line([Error.FunctionName, Error.Status, 'no result'])
      else
        Line([Error.FunctionName, Error.Status, 'a result']);
    end;
  end;
  try
    TTorvio.Map(InFiles('damaged.sheet'), '*');
  except
    on Error: ETorvio do
    begin
      WriteText('map damaged', Error.ResultText);
      Line([Error.FunctionName, Error.Status, Error.Offset, Error.Field]);
    end;
  end;
  Status('a macro', @DrawMacro);
  Status('a folder', @InfoOfFolder);
  Status('no JSON', @FromNoJson);
  Status('no kind', @SchemaOfNothing);
  Status('no file', @EmptyPage);
  Status('a flag', @WrongTolerance);
  { A number that signals: no computation with it may end the program. }
  WriteText('signals', TTorvio.Json(InMemory(BytesOfFile('signals.sheet'), 'a')));
  WriteText('draw signals', TTorvio.Draw(InMemory(BytesOfFile('signals.sheet'), 'a')));
end;

procedure Texts;

  procedure MissingCharacter;
  begin
    TPartFile.Value(InFiles('calls.part'), 'я');
  end;

  procedure UnknownPage;
  begin
    EncodeText('a', 'cp9');
  end;

  procedure NulInPath;
  begin
    TTorvio.Check('a'#0'b');
  end;

  procedure NulInText;
  begin
    TPartFile.Value(InFiles('calls.part'), 'a'#0'b');
  end;

var
  Page, Text: string;
  Bytes: RawByteString;
  I: Integer;
const
  Pages: array[0..7] of string = ('cp1252', 'cp1250', 'cp1251', 'cp1253', 'cp1254', 'cp437', 'cp850', 'latin1');
begin
  SetLength(Bytes, 255);
  for I := 1 to 255 do
    Bytes[I] := AnsiChar(I);
  for Page in Pages do
  begin
    Text := DecodeText(Bytes, Page);
    WriteText('page ' + Page, Text);
    if EncodeText(Text, Page) = Bytes then
      Line([Page, 'comes back'])
    else
      Line([Page, 'is lost']);
  end;
  Refused('a character that is missing', @MissingCharacter);
  Refused('an unknown code page', @UnknownPage);
  Refused('a NUL in a path', @NulInPath);
  Refused('a NUL in a text', @NulInText);
end;

{ Functions for C++ records, which only their status shows here, and the second name of a function. }
procedure RawFunctions;
var
  Path: RawByteString;
begin
  Path := InFiles('calls.part');
  Line(['raw', LoadOldPart(PAnsiChar(Path), nil), LoadOldSpecialTool(PAnsiChar(Path), nil),
    LoadOldToolInventory(PAnsiChar(Path), nil), LoadOldMacro(PAnsiChar(Path), nil),
    LoadOldMaterial(PAnsiChar(Path), nil), LoadOldMachine(PAnsiChar(Path), nil)]);
  DeleteSheetInfo(CreateSheetInfo());
end;

begin
  SetMultiByteConversionCodePage(CP_UTF8);
  SetTextCodePage(System.Output, CP_UTF8);
  Files := ParamStr(1);
  Output := ParamStr(2);
  Parts;
  Tools;
  Machines;
  Sheets;
  Companion;
  Texts;
  RawFunctions;
end.
