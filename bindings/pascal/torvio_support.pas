{ Exceptions and texts: what the units torvio and oldtorvio share.

  Strings of these units are UTF-8 in the type string, as in Lazarus. A program without Lazarus should begin with
  SetMultiByteConversionCodePage(CP_UTF8), so that nothing converts them. Texts of files are bytes of a code page. }
unit torvio_support;

{$mode objfpc}{$H+}{$modeswitch advancedrecords}

interface

uses
  SysUtils, Math;

type
  { A function has returned a status other than 0. }
  ETorvio = class(Exception)
  private
    FFunctionName: string;
    FStatus: Int64;
    FHasOffset: Boolean;
    FOffset: QWord;
    FField: string;
    FResult: RawByteString;
    FReport: string;
  public
    constructor CreateStatus(const AFunction, AFile, AMessage: string; AStatus: Int64);
    constructor CreatePlace(const AFunction, AFile, AMessage: string; AStatus: Int64; AHasOffset: Boolean;
      AOffset: QWord; const AField: string; const AResult: RawByteString; const AReport: string);
    { The name of the function in its header, which lists the statuses. }
    property FunctionName: string read FFunctionName;
    property Status: Int64 read FStatus;
    { Where a damaged file breaks, in bytes from its start, if HasOffset. }
    property HasOffset: Boolean read FHasOffset;
    property Offset: QWord read FOffset;
    { The field of the file that is damaged; empty if there is none. }
    property Field: string read FField;
    { What was read of a damaged file: what the function would have returned. }
    property ResultText: RawByteString read FResult;
    { What would be lost, if a conversion is refused. }
    property Report: string read FReport;
  end;

  { The libraries compute as C does, with all floating-point exceptions masked: Pascal programs do not mask them. }
  TForeignCall = record
  private
    FMask: TFPUExceptionMask;
  public
    procedure Enter;
    procedure Leave;
  end;

const
  DefaultEncoding = 'cp1252';

{ A text as bytes of the code page. More than AMost bytes would end the process. }
function EncodeText(const AText: string; const AEncoding: string = DefaultEncoding;
  AMost: SizeInt = MaxInt): RawByteString;
{ The bytes up to the first zero as a text. }
function DecodeText(const ABytes: RawByteString; const AEncoding: string = DefaultEncoding): string;

{ A string without zeros, which C would take as its end. }
function WithoutNul(const AText: string): RawByteString;

{ A string and a file as bytes. }
function BytesOfString(const AText: RawByteString): TBytes;
function StringOfBytes(const ABytes: TBytes): RawByteString;

implementation

uses
  oldtorvio_codepages;

function Named(const AFile, AMessage: string): string;
begin
  if AFile = '' then
    Result := AMessage
  else
    Result := AFile + ': ' + AMessage;
end;

constructor ETorvio.CreateStatus(const AFunction, AFile, AMessage: string; AStatus: Int64);
begin
  inherited Create(Named(AFile, AMessage));
  FFunctionName := AFunction;
  FStatus := AStatus;
end;

constructor ETorvio.CreatePlace(const AFunction, AFile, AMessage: string; AStatus: Int64; AHasOffset: Boolean;
  AOffset: QWord; const AField: string; const AResult: RawByteString; const AReport: string);
begin
  CreateStatus(AFunction, AFile, AMessage, AStatus);
  FHasOffset := AHasOffset;
  FOffset := AOffset;
  FField := AField;
  FResult := AResult;
  FReport := AReport;
end;

procedure TForeignCall.Enter;
begin
  FMask := SetExceptionMask([exInvalidOp, exDenormalized, exZeroDivide, exOverflow, exUnderflow, exPrecision]);
end;

procedure TForeignCall.Leave;
begin
  { An exception that occurred in the library must not be raised by the next computation. }
  ClearExceptions(False);
  SetExceptionMask(FMask);
end;

function CodePageOf(const AEncoding: string): Integer;
begin
  for Result := Low(CodePageNames) to High(CodePageNames) do
    if CodePageNames[Result] = AEncoding then
      Exit;
  raise EArgumentException.Create('there is no code page ' + AEncoding);
end;

{ The character at APosition, which moves to the next one. }
function NextCharacter(const AText: string; var APosition: SizeInt): LongWord;
var
  First, Next: Byte;
  More, I: Integer;
const
  Least: array[0..3] of LongWord = (0, $80, $800, $10000);
begin
  First := Ord(AText[APosition]);
  Inc(APosition);
  case First of
    $00..$7F: begin More := 0; Result := First; end;
    $C2..$DF: begin More := 1; Result := First and $1F; end;
    $E0..$EF: begin More := 2; Result := First and $0F; end;
    $F0..$F4: begin More := 3; Result := First and $07; end;
  else
    raise EArgumentException.Create('the text is not UTF-8');
  end;
  for I := 1 to More do
  begin
    Next := 0;
    if APosition <= Length(AText) then
      Next := Ord(AText[APosition]);
    if Next and $C0 <> $80 then
      raise EArgumentException.Create('the text is not UTF-8');
    Result := (Result shl 6) or (Next and $3F);
    Inc(APosition);
  end;
  if (Result < Least[More]) or (Result > $10FFFF) or ((Result >= $D800) and (Result <= $DFFF)) then
    raise EArgumentException.Create('the text is not UTF-8');
end;

function WithoutNul(const AText: string): RawByteString;
begin
  if Pos(#0, AText) > 0 then
    raise EArgumentException.Create('the text must not contain a NUL');
  Result := AText;
end;

function EncodeText(const AText: string; const AEncoding: string; AMost: SizeInt): RawByteString;
var
  Page, Byte: Integer;
  Position, Count: SizeInt;
  Character: LongWord;
begin
  Page := CodePageOf(AEncoding);
  WithoutNul(AText);
  SetLength(Result, Length(AText));
  Position := 1;
  Count := 0;
  while Position <= Length(AText) do
  begin
    Character := NextCharacter(AText, Position);
    Byte := -1;
    if Character < $80 then
      Byte := Character
    else
      for Byte := 127 downto -1 do
        if (Byte < 0) or (CodePageCharacters[Page][Byte] = Character) then
          Break;
    if Byte < 0 then
      raise EArgumentException.CreateFmt('the code page %s has no U+%.4x', [AEncoding, Character]);
    if Character >= $80 then
      Inc(Byte, $80);
    Inc(Count);
    Result[Count] := AnsiChar(Byte);
  end;
  SetLength(Result, Count);
  if Count > AMost then
    raise EArgumentException.CreateFmt('a text must have at most %d characters here', [AMost]);
end;

function DecodeText(const ABytes: RawByteString; const AEncoding: string): string;
var
  Page: Integer;
  I, Count: SizeInt;
  Character: LongWord;

  procedure Append(AByte: LongWord);
  begin
    Inc(Count);
    Result[Count] := AnsiChar(AByte);
  end;

begin
  Page := CodePageOf(AEncoding);
  SetLength(Result, 3 * Length(ABytes));
  Count := 0;
  for I := 1 to Length(ABytes) do
  begin
    Character := Ord(ABytes[I]);
    if Character = 0 then
      Break;
    if Character >= $80 then
      Character := CodePageCharacters[Page][Character - $80];
    if Character < $80 then
      Append(Character)
    else if Character < $800 then
    begin
      Append($C0 or (Character shr 6));
      Append($80 or (Character and $3F));
    end
    else
    begin
      Append($E0 or (Character shr 12));
      Append($80 or ((Character shr 6) and $3F));
      Append($80 or (Character and $3F));
    end;
  end;
  SetLength(Result, Count);
end;

function BytesOfString(const AText: RawByteString): TBytes;
begin
  Result := nil;
  SetLength(Result, Length(AText));
  if AText <> '' then
    Move(AText[1], Result[0], Length(AText));
end;

function StringOfBytes(const ABytes: TBytes): RawByteString;
begin
  SetLength(Result, Length(ABytes));
  if Length(ABytes) > 0 then
    Move(ABytes[0], Result[1], Length(ABytes));
end;

end.
