{ Four jobs on the files of a folder, and two files that cannot be read. }
program example;

{$mode objfpc}{$H+}

uses
  SysUtils, fpjson, jsonparser, torvio_support, torvio, oldtorvio;

procedure AskParts(const APath: string);
var
  Sheet: TSheet;
  Details: TStringArray;
  I: SizeInt;
begin
  Sheet := TSheet.Open(APath);
  try
    WriteLn(Sheet.Value('width'), ' x ', Sheet.Value('height'), ', ', Sheet.Value('part_count'), ' parts');
    { Six texts for each part: path, width, height, quantity, work order and ";". }
    Details := Sheet.Value('part_details_01').Split(['|']);
    for I := 0 to Length(Details) div 6 - 1 do
      WriteLn(Format('  %s of %s, %s x %s, for %s', [Details[6 * I + 3], Details[6 * I], Details[6 * I + 1],
        Details[6 * I + 2], Details[6 * I + 4]]));
  finally
    Sheet.Free;
  end;
end;

procedure WalkNest(const APath: string);
var
  Json: TJSONData;
  Part, Pattern: TJSONEnum;
begin
  Json := GetJSON(TTorvio.Json(APath));
  try
    for Part in TJSONArray(Json.FindPath('record.partList.parts')) do
    begin
      WriteLn(Part.Value.FindPath('partName').AsString, ': ', Part.Value.FindPath('shapes.shapes').Count, ' shapes');
      for Pattern in TJSONArray(Part.Value.FindPath('patterns')) do
        with TJSONObject(Pattern.Value) do
          WriteLn('  ', Integers['gridCount1'], ' x ', Integers['gridCount2'], ' at ', Floats['originX']:0:4, ', ',
            Floats['originY']:0:4);
    end;
  finally
    Json.Free;
  end;
end;

procedure BuildPart(const APath: string);
var
  Part: TNewPart;
  Shape: TNewShape;
  Info: TPartInfo;
  Json: TJSONData;
begin
  Part := Default(TNewPart);
  Part.Width := 24;
  Part.Height := 12;
  Part.Thickness := 0.0625;
  Part.Kind := 1;
  Part.Material := 'STEEL';
  Part.CustomTexts[0] := 'Träger 7';
  TPartBuilder.Start(Part);
  Shape := Default(TNewShape);
  Shape.ShapeType := 1;
  Shape.Values.Reals[0] := 0.5;
  Shape.Y := 6;
  Shape.X := 6;
  TPartBuilder.Add(Shape);
  Shape.X := 18;
  TPartBuilder.Add(Shape);
  TPartBuilder.Save(APath, 180);

  Info := TPartFile.Info(APath);
  WriteLn(Info.Width:0:4, ' x ', Info.Height:0:4, ' x ', Info.Thickness:0:4);
  Json := GetJSON(TTorvio.Json(APath));
  try
    WriteLn(Json.FindPath('record.customText1').AsString, ': ', Json.FindPath('record.shapes.shapes').Count,
      ' shapes, the last at ', Json.FindPath('record.shapes.shapes[1].x').AsFloat:0:4);
  finally
    Json.Free;
  end;
end;

procedure ReadRecord(const APath: string);
var
  Json: TJSONData;
  Entry: TJSONEnum;
begin
  Json := GetJSON(TTorvio.Json(APath));
  try
    WriteLn(Json.FindPath('kind').AsString, ' of version ', Json.FindPath('version').AsInteger, ': ',
      Json.FindPath('record.name').AsString);
    for Entry in TJSONArray(Json.FindPath('record.entryList')) do
      with TJSONObject(Entry.Value) do
        WriteLn('  ', Integers['entryKey'], ': ', Strings['entryText']);
  finally
    Json.Free;
  end;
end;

procedure Report(AError: ETorvio);
var
  Json: TJSONData;
begin
  Write(AError.FunctionName, ': status ', AError.Status);
  if AError.HasOffset then
    Write(', at ', AError.Offset, ' in ', AError.Field);
  WriteLn;
  if AError.ResultText = '' then
    Exit;
  Json := GetJSON(AError.ResultText);
  WriteLn('  ', Json.FindPath('record.partList.parts').Count, ' parts were read');
  Json.Free;
end;

var
  Folder: string;
begin
  { Strings are UTF-8. }
  SetMultiByteConversionCodePage(CP_UTF8);
  SetTextCodePage(Output, CP_UTF8);

  Folder := IncludeTrailingPathDelimiter(ParamStr(1));
  WriteLn('Parts of a sheet');
  AskParts(Folder + 'nest_180.sheet');
  WriteLn('A nest');
  WalkNest(Folder + 'nest_180.sheet');
  WriteLn('A new part');
  BuildPart(Folder + 'Träger.part');
  WriteLn('A material');
  ReadRecord(Folder + 'steel.mat');
  WriteLn('A file that does not exist');
  try
    TTorvio.Json(Folder + 'nothing.sheet');
  except
    on Error: ETorvio do Report(Error);
  end;
  try
    TPartFile.Info(Folder + 'nothing.part');
  except
    on Error: ETorvio do Report(Error);
  end;
  WriteLn('A damaged file');
  try
    TTorvio.Json(Folder + 'damaged.sheet');
  except
    on Error: ETorvio do Report(Error);
  end;
  try
    TSheet.Open(Folder + 'damaged.sheet').Free;
  except
    on Error: ETorvio do Report(Error);
  end;
end.
