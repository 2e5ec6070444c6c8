{ The functions of torvio.h, which describes their results. Results are texts in UTF-8, often JSON. Every status but 0
  is an ETorvio, whose ResultText has what was read of a damaged file. }
unit torvio;

{$mode objfpc}{$H+}{$modeswitch advancedrecords}

interface

uses
  SysUtils, torvio_support, torvio_raw;

type
  { A file by its path or in memory. A string is the path of a file. }
  TTorvioFile = record
    Path: string;
    InMemory: Boolean;
    Data: TBytes;
    Name: string;      { what results call the file; empty: the path }
    Kind: string;      { such as 'sheet'; empty: it is detected }
    Encoding: string;  { the code page of the texts in the file; empty: 'cp1252' }
  end;
  TTorvioFiles = array of TTorvioFile;

  { A new file, and what became of the old one as JSON. }
  TNewFile = record
    Data: TBytes;
    Report: string;
  end;

  TTorvio = class
  public
    class function Version: string;
    class function Supported: string;
    { Returns a verdict for every file, even if it is damaged or cannot be read. }
    class function Check(const AFile: TTorvioFile): string;
    class function Info(const AFile: TTorvioFile): string;
    class function Json(const AFile: TTorvioFile; APretty: Boolean = False): string;
    class function FromJson(const AFile: TTorvioFile; AVersion: LongInt = 0): TBytes;
    class function Schema(const AKind: string): string;
    { Empty AFind and ARange select all fields. }
    class function Map(const AFile: TTorvioFile; const AFind: string = ''; const ARange: string = ''): string;
    class function MapPage(const AFile: TTorvioFile): string;
    class function Format(const AName: string; const ALanguage: string = 'markdown'): string;
    class function Draw(const AFile: TTorvioFile): string;
    class function DrawPage(const AFiles: array of TTorvioFile; const ATitle: string = ''): string;
    class function Diff(const AFirst, ASecond: TTorvioFile; out ASame: Boolean; const APart: string = '';
      ATolerance: Double = 0; ACommon: Boolean = False): string;
    class function Convert(const AFile: TTorvioFile; AVersion: LongInt; AAllowLoss: Boolean = False): TNewFile;
    class function Recover(const AFile: TTorvioFile): TNewFile;
  end;

operator := (const APath: string): TTorvioFile;
function InMemory(const AData: TBytes; const AName: string = ''; const AKind: string = '';
  const AEncoding: string = ''): TTorvioFile;

implementation

type
  { A torvio_input with the strings to which it points. }
  TInput = record
    Path, Name, Kind, Encoding: RawByteString;
    Input: TTorvioInput;
  end;

  { What a call returns. }
  TAnswer = record
    Call: TForeignCall;
    Buffer, ReportBuffer: PTorvioBuffer;
    Error: PTorvioError;
    procedure Enter;
    { Frees everything. Raises the exception for a status that is not accepted. }
    function Take(const AFunction, AFile: string; AStatus: LongInt; out AReport: string;
      AHighestAccepted: LongInt = TORVIO_OK): RawByteString;
    function Text(const AFunction, AFile: string; AStatus: LongInt): string;
  end;

operator := (const APath: string): TTorvioFile;
begin
  Result := Default(TTorvioFile);
  Result.Path := APath;
end;

function InMemory(const AData: TBytes; const AName, AKind, AEncoding: string): TTorvioFile;
begin
  Result := Default(TTorvioFile);
  Result.InMemory := True;
  Result.Data := AData;
  Result.Name := AName;
  Result.Kind := AKind;
  Result.Encoding := AEncoding;
end;

function OrNil(const AText: RawByteString): PAnsiChar;
begin
  if AText = '' then
    Result := nil
  else
    Result := PAnsiChar(AText);
end;

{ AInput must stay where it is until the call is over. }
procedure Prepare(const AFile: TTorvioFile; var AInput: TInput);
begin
  AInput := Default(TInput);
  AInput.Path := WithoutNul(AFile.Path);
  AInput.Name := WithoutNul(AFile.Name);
  AInput.Kind := WithoutNul(AFile.Kind);
  AInput.Encoding := WithoutNul(AFile.Encoding);
  if AFile.InMemory then
  begin
    { A file of no bytes needs an address, too. }
    AInput.Input.Data := PAnsiChar('');
    if Length(AFile.Data) > 0 then
      AInput.Input.Data := @AFile.Data[0];
    AInput.Input.Size := Length(AFile.Data);
  end
  else
    AInput.Input.Path := PAnsiChar(AInput.Path);
  AInput.Input.Name := OrNil(AInput.Name);
  AInput.Input.Kind := OrNil(AInput.Kind);
  AInput.Input.Encoding := OrNil(AInput.Encoding);
end;

function NameOf(const AFile: TTorvioFile): string;
begin
  Result := AFile.Name;
  if Result = '' then
    Result := AFile.Path;
end;

function Copied(ABuffer: PTorvioBuffer): RawByteString;
begin
  Result := '';
  if ABuffer <> nil then
    SetString(Result, ABuffer^.Data, ABuffer^.Size);
end;

procedure TAnswer.Enter;
begin
  Buffer := nil;
  ReportBuffer := nil;
  Error := nil;
  Call.Enter;
end;

function TAnswer.Take(const AFunction, AFile: string; AStatus: LongInt; out AReport: string;
  AHighestAccepted: LongInt): RawByteString;
var
  Message, Field: string;
  HasOffset, HasResult: Boolean;
  Offset: QWord;
begin
  Call.Leave;
  HasResult := Buffer <> nil;
  HasOffset := False;
  Offset := 0;
  Message := 'memory ran out';
  Field := '';
  try
    Result := Copied(Buffer);
    AReport := Copied(ReportBuffer);
    if Error <> nil then
    begin
      Message := Error^.Message;
      Field := Error^.Field;
      HasOffset := Error^.Offset <> TORVIO_NO_OFFSET;
      if HasOffset then
        Offset := Error^.Offset;
    end;
  finally
    torvio_free(Buffer);
    torvio_free(ReportBuffer);
    torvio_free(Error);
  end;
  if not HasResult or (AStatus > AHighestAccepted) then
    raise ETorvio.CreatePlace(AFunction, AFile, Message, AStatus, HasOffset, Offset, Field, Result, AReport);
end;

function TAnswer.Text(const AFunction, AFile: string; AStatus: LongInt): string;
var
  NoReport: string;
begin
  Result := Take(AFunction, AFile, AStatus, NoReport);
end;

class function TTorvio.Version: string;
begin
  Result := torvio_version();
end;

class function TTorvio.Supported: string;
var
  Answer: TAnswer;
begin
  Answer.Enter;
  Result := Answer.Text('torvio_supported', '', torvio_supported(@Answer.Buffer, @Answer.Error));
end;

class function TTorvio.Check(const AFile: TTorvioFile): string;
var
  Input: TInput;
  Answer: TAnswer;
  NoReport: string;
begin
  Prepare(AFile, Input);
  Answer.Enter;
  { A file that cannot be read has a verdict, too; wrong arguments and lack of memory have no result. }
  Result := Answer.Take('torvio_check', NameOf(AFile),
    torvio_check(@Input.Input, 0, @Answer.Buffer, @Answer.Error), NoReport, TORVIO_NOT_READ);
end;

class function TTorvio.Info(const AFile: TTorvioFile): string;
var
  Input: TInput;
  Answer: TAnswer;
begin
  Prepare(AFile, Input);
  Answer.Enter;
  Result := Answer.Text('torvio_info', NameOf(AFile), torvio_info(@Input.Input, 0, @Answer.Buffer, @Answer.Error));
end;

class function TTorvio.Json(const AFile: TTorvioFile; APretty: Boolean): string;
var
  Input: TInput;
  Answer: TAnswer;
  Flags: LongWord;
begin
  Prepare(AFile, Input);
  Flags := 0;
  if APretty then
    Flags := TORVIO_PRETTY;
  Answer.Enter;
  Result := Answer.Text('torvio_json', NameOf(AFile), torvio_json(@Input.Input, Flags, @Answer.Buffer, @Answer.Error));
end;

class function TTorvio.FromJson(const AFile: TTorvioFile; AVersion: LongInt): TBytes;
var
  Input: TInput;
  Answer: TAnswer;
  NoReport: string;
begin
  Prepare(AFile, Input);
  Answer.Enter;
  Result := BytesOfString(Answer.Take('torvio_from_json', NameOf(AFile),
    torvio_from_json(@Input.Input, AVersion, 0, @Answer.Buffer, @Answer.Error), NoReport));
end;

class function TTorvio.Schema(const AKind: string): string;
var
  Answer: TAnswer;
  Kind: RawByteString;
begin
  Kind := WithoutNul(AKind);
  Answer.Enter;
  Result := Answer.Text('torvio_schema', '', torvio_schema(PAnsiChar(Kind), @Answer.Buffer, @Answer.Error));
end;

class function TTorvio.Map(const AFile: TTorvioFile; const AFind, ARange: string): string;
var
  Input: TInput;
  Answer: TAnswer;
  Find, Range: RawByteString;
begin
  Prepare(AFile, Input);
  Find := WithoutNul(AFind);
  Range := WithoutNul(ARange);
  Answer.Enter;
  Result := Answer.Text('torvio_map', NameOf(AFile),
    torvio_map(@Input.Input, OrNil(Find), OrNil(Range), 0, @Answer.Buffer, @Answer.Error));
end;

class function TTorvio.MapPage(const AFile: TTorvioFile): string;
var
  Input: TInput;
  Answer: TAnswer;
begin
  Prepare(AFile, Input);
  Answer.Enter;
  Result := Answer.Text('torvio_map', NameOf(AFile),
    torvio_map(@Input.Input, nil, nil, TORVIO_PAGE, @Answer.Buffer, @Answer.Error));
end;

class function TTorvio.Format(const AName, ALanguage: string): string;
var
  Answer: TAnswer;
  Name, Language: RawByteString;
begin
  Name := WithoutNul(AName);
  Language := WithoutNul(ALanguage);
  Answer.Enter;
  Result := Answer.Text('torvio_format', '',
    torvio_format(PAnsiChar(Name), PAnsiChar(Language), @Answer.Buffer, @Answer.Error));
end;

class function TTorvio.Draw(const AFile: TTorvioFile): string;
var
  Input: TInput;
  Answer: TAnswer;
begin
  Prepare(AFile, Input);
  Answer.Enter;
  Result := Answer.Text('torvio_draw', NameOf(AFile), torvio_draw(@Input.Input, 0, @Answer.Buffer, @Answer.Error));
end;

class function TTorvio.DrawPage(const AFiles: array of TTorvioFile; const ATitle: string): string;
var
  Inputs: array of TInput;
  Raw: array of TTorvioInput;
  Answer: TAnswer;
  Title: RawByteString;
  I: SizeInt;
begin
  SetLength(Inputs, Length(AFiles));
  SetLength(Raw, Length(AFiles));
  for I := 0 to High(AFiles) do
  begin
    Prepare(AFiles[I], Inputs[I]);
    Raw[I] := Inputs[I].Input;
  end;
  Title := WithoutNul(ATitle);
  Answer.Enter;
  Result := Answer.Text('torvio_draw_page', '',
    torvio_draw_page(PTorvioInput(Raw), Length(Raw), OrNil(Title), 0, @Answer.Buffer, @Answer.Error));
end;

class function TTorvio.Diff(const AFirst, ASecond: TTorvioFile; out ASame: Boolean; const APart: string;
  ATolerance: Double; ACommon: Boolean): string;
var
  First, Second: TInput;
  Answer: TAnswer;
  Part: RawByteString;
  Flags: LongWord;
  Same: LongInt;
begin
  Prepare(AFirst, First);
  Prepare(ASecond, Second);
  Part := WithoutNul(APart);
  Flags := 0;
  if ACommon then
    Flags := TORVIO_COMMON;
  Same := 0;
  Answer.Enter;
  Result := Answer.Text('torvio_diff', '', torvio_diff(@First.Input, @Second.Input, OrNil(Part), ATolerance, Flags,
    @Same, @Answer.Buffer, @Answer.Error));
  ASame := Same = 1;
end;

class function TTorvio.Convert(const AFile: TTorvioFile; AVersion: LongInt; AAllowLoss: Boolean): TNewFile;
var
  Input: TInput;
  Answer: TAnswer;
  Flags: LongWord;
begin
  Prepare(AFile, Input);
  Flags := 0;
  if AAllowLoss then
    Flags := TORVIO_ALLOW_LOSS;
  Answer.Enter;
  Result.Data := BytesOfString(Answer.Take('torvio_convert', NameOf(AFile), torvio_convert(@Input.Input, AVersion,
    Flags, @Answer.Buffer, @Answer.ReportBuffer, @Answer.Error), Result.Report));
end;

class function TTorvio.Recover(const AFile: TTorvioFile): TNewFile;
var
  Input: TInput;
  Answer: TAnswer;
begin
  Prepare(AFile, Input);
  Answer.Enter;
  Result.Data := BytesOfString(Answer.Take('torvio_recover', NameOf(AFile), torvio_recover(@Input.Input, 0,
    @Answer.Buffer, @Answer.ReportBuffer, @Answer.Error), Result.Report));
end;

end.
