{ Made by bindings/generate.py from functions.json: do not edit. }
{ The functions of torvio.h, which describes them. }
unit torvio_raw;

{$mode objfpc}{$H+}
{$packrecords c}

interface

const
{$ifdef windows}
  torvioLibrary = 'libtorvio';
{$else}
  torvioLibrary = 'torvio';
{$endif}
  TORVIO_OK = 0;
  TORVIO_DAMAGED = 1;
  TORVIO_BAD_ARGUMENT = 2;
  TORVIO_NOT_READ = 3;
  TORVIO_REFUSED = 4;
  TORVIO_NO_MEMORY = 5;
  TORVIO_INTERNAL_ERROR = 6;
  TORVIO_PRETTY = 1;
  TORVIO_PAGE = 2;
  TORVIO_COMMON = 4;
  TORVIO_ALLOW_LOSS = 8;
  TORVIO_NO_OFFSET = QWord($FFFFFFFFFFFFFFFF);

type
  PTorvioBuffer = ^TTorvioBuffer;
  PPTorvioBuffer = ^PTorvioBuffer;
  TTorvioBuffer = record
    Data: PAnsiChar;
    Size: SizeUInt;
  end;
  PTorvioError = ^TTorvioError;
  PPTorvioError = ^PTorvioError;
  TTorvioError = record
    Message: PAnsiChar;
    Field: PAnsiChar;
    Offset: QWord;
    Status: LongInt;
  end;
  PTorvioInput = ^TTorvioInput;
  TTorvioInput = record
    Path: PAnsiChar;
    Data: Pointer;
    Size: SizeUInt;
    Name: PAnsiChar;
    Kind: PAnsiChar;
    Encoding: PAnsiChar;
  end;

{ Frees a result or an error. }
procedure torvio_free(AResultOrError: Pointer); cdecl; external torvioLibrary;

{ Judges a file. }
function torvio_check(AInput: PTorvioInput; AFlags: LongWord; AResult: PPTorvioBuffer;
  AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ A file at a glance. }
function torvio_info(AInput: PTorvioInput; AFlags: LongWord; AResult: PPTorvioBuffer;
  AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ The complete record of a file as JSON. }
function torvio_json(AInput: PTorvioInput; AFlags: LongWord; AResult: PPTorvioBuffer;
  AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ Makes a file from the JSON of its record. }
function torvio_from_json(AInput: PTorvioInput; AVersion: LongInt; AFlags: LongWord; AResult: PPTorvioBuffer;
  AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ The JSON Schema of a kind of file. }
function torvio_schema(AKind: PAnsiChar; AResult: PPTorvioBuffer;
  AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ The fields of a file with their offsets. }
function torvio_map(AInput: PTorvioInput; AFind: PAnsiChar; ARange: PAnsiChar; AFlags: LongWord;
  AResult: PPTorvioBuffer; AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ The stored form of a kind of file. }
function torvio_format(AName: PAnsiChar; ALanguage: PAnsiChar; AResult: PPTorvioBuffer;
  AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ A picture of a file as SVG. }
function torvio_draw(AInput: PTorvioInput; AFlags: LongWord; AResult: PPTorvioBuffer;
  AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ Pictures of several files on an HTML page. }
function torvio_draw_page(AInputs: PTorvioInput; ACount: SizeUInt; ATitle: PAnsiChar; AFlags: LongWord;
  AResult: PPTorvioBuffer; AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ Where two files differ. }
function torvio_diff(AA: PTorvioInput; AB: PTorvioInput; APart: PAnsiChar; ATolerance: Double; AFlags: LongWord;
  ASame: PLongInt; AResult: PPTorvioBuffer; AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ Saves a file in another version. }
function torvio_convert(AInput: PTorvioInput; AVersion: LongInt; AFlags: LongWord; AResult: PPTorvioBuffer;
  AReport: PPTorvioBuffer; AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ Makes a file from the sound beginning of a damaged one. }
function torvio_recover(AInput: PTorvioInput; AFlags: LongWord; AResult: PPTorvioBuffer; AReport: PPTorvioBuffer;
  AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ What the functions accept. }
function torvio_supported(AResult: PPTorvioBuffer; AError: PPTorvioError): LongInt; cdecl; external torvioLibrary;

{ The version of the library. }
function torvio_version: PAnsiChar; cdecl; external torvioLibrary;

implementation

{$ifdef unix}{$linklib c}{$endif}

end.
