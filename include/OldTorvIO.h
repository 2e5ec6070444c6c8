/* OldTorvIO: the older binary files of a sheet-metal fabrication suite.
 *
 * This header is the manual of the library. It compiles as C (C99 and later) and as C++ (C++17 and later). In
 * C++ it also brings the complete record types, which the headers in OldTorvIO/ describe field by field.
 *
 * Conventions of every function below
 *
 *   Status      Loads, saves and most queries return a status:
 *                  0  done
 *                  1  the file ends too early, or contains a value that the library refuses
 *                 -1  the version of the file is not one that this kind of file accepts
 *                 -2  the file cannot be opened, a required pointer is null, or a save failed
 *               A read error is treated as the end of the file. Errors from closing a file opened for
 *               reading are ignored.
 *   Paths       NUL-terminated narrow strings, passed to the operating system unchanged. A folder cannot be
 *               opened, nor a path that is too long for the system. A pipe or device is read to its end.
 *   Saves       A save writes in place: it empties the file first, and if it fails after that, it leaves the
 *               first bytes of what it would have stored.
 *   Records     Owned by the caller. A C++ program constructs them; in C they are opaque. A load fills a
 *               record that is already constructed: a field that the version of the file does not store keeps
 *               its value. A load that fails leaves what it read before the fault; the record can still be
 *               read, loaded again and destroyed.
 *   Outputs     If a function fails, its outputs are unchanged unless its description says otherwise. Text
 *               outputs have no size argument unless one is named: the caller provides enough room.
 *   Null        A null path returns -2 (1 from GetOldPartInfo_v1), and so does a null record of a load or save. Other
 *               pointers must be valid unless the description of the function says what null does.
 *   Process end Some misuse ends the process (abort), as each function says: a text that does not fit where
 *               it is copied, an index outside a list. The contents of a file can do so only in these
 *               functions: GetOldToolInventoryInformation, LoadOldStationToolFromMachine, GetOldSheetInfo,
 *               and SaveOldSheet with the edits of sheet files, which call it.
 *   Threads     Functions may run at the same time unless they use the same record, or one writes a file that another
 *               uses. Queries of a loaded sheet may use the same sheet. The part builder and the current special tool,
 *               tool inventory, machine and sheet exist once per process: use each from one thread at a time.
 *   Memory      A load allocates for bytes that it has read, never for what a count in the file claims.
 *               Out of memory is status 1 in a load or query, -2 in a save, null from a Create function, -1
 *               from the adding calls of the part builder (0 from AddPatIntoGroupPat). Functions that return
 *               0 for a body that cannot be read also return 0 if memory runs out after the version word:
 *               GetOldSheetInfo and the sheet queries with the same statuses, LoadOldSheetInformation,
 *               LoadOldMachineInformation, GetOldVLMQMachineName, LoadOldToolInventoryForCount and the edits
 *               of sheet files (but ReplaceSheetSknPatListWithPartPatList returns -2 if there is no memory
 *               for the part).
 *
 * What a caller must share with the library
 *
 *   The flat functions  Nothing: they take and return plain C types. Any language that can call C functions
 *                       can use them, whatever compiler and runtime it uses.
 *   The C++ records     The memory layout of the records and of the standard library types in them: the same ABI
 *                       (GCC and Clang on the same system agree; MSVC and MinGW do not), the same standard
 *                       library in a compatible version, and the same values of the switches that change its
 *                       types: _GLIBCXX_USE_CXX11_ABI and _GLIBCXX_DEBUG (libstdc++), _LIBCPP_ABI_VERSION and
 *                       hardening modes (libc++), _ITERATOR_DEBUG_LEVEL and the runtime, /MD or /MDd (MSVC).
 *                       Do not change structure packing around these headers. The layout of the records may
 *                       change with every minor version before 1.0: build against the headers of the library
 *                       that you load.
 */
#ifndef OLDTORVIO_H
#define OLDTORVIO_H

#include <stdint.h>

#if defined(_WIN32)
#if defined(OLDTORVIO_BUILDING)
#define OLDTORVIO_API __declspec(dllexport)
#elif defined(OLDTORVIO_STATIC)
#define OLDTORVIO_API
#else
#define OLDTORVIO_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define OLDTORVIO_API __attribute__((visibility("default")))
#else
#define OLDTORVIO_API
#endif

#ifdef __cplusplus
#include "OldTorvIO/records.h"
#define OLDTORVIO_NOEXCEPT noexcept
using oldtorvio::OldMachine;
using oldtorvio::OldMacro;
using oldtorvio::OldMaterial;
using oldtorvio::OldSheet;
using oldtorvio::OldSpecialTool;
using oldtorvio::OldToolInventory;
using oldtorvio::SheetPartList;
using oldtorvio::TorvPart;
extern "C" {
#else
#define OLDTORVIO_NOEXCEPT
typedef struct TorvPart TorvPart;
typedef struct SheetPartList SheetPartList;
typedef struct OldSpecialTool OldSpecialTool;
typedef struct OldToolInventory OldToolInventory;
typedef struct OldMacro OldMacro;
typedef struct OldMaterial OldMaterial;
typedef struct OldMachine OldMachine;
typedef struct OldSheet OldSheet;
#endif

/* Xlib defines a macro of this name. It is restored at the end of this header. */
#pragma push_macro("Status")
#undef Status

typedef int64_t Status;      /* 0, 1, -1 or -2: see above */
typedef int32_t Status32;    /* the same in the four functions that return 32 bits */
typedef int16_t VersionWord; /* the first two bytes of every file, little-endian; never negative in a file that loads */

/* ---- Part files ---------------------------------------------------------------------------- */

/* Loads the part file `path` into `part`.
 *
 * Accepted versions: 2, 3, 5, 52, 54, 60, 61, 62, 71, 80, 90, 91, 92, 100, 101, 102, 110, 111, 112, 120, 121, 130,
 * 140, 141, 150 to 162, 170, 180. A file of version 2 or 3 always returns 1: only its size, setup entries and shapes
 * are read, into width, height, setupList, shapes and one pattern.
 *
 * `part->version` becomes the version word as soon as it has been read, even if it is then refused. For an accepted
 * version, `partFullDosName` becomes the path (its first 259 characters) and the five option fields get their defaults.
 * The pattern list and the work list are emptied when the load reaches them (at versions 2, 3 and 5 at the start).
 * `nestShapeGroups` is never emptied: a load appends to it. Every other list with a stored count of 0 keeps the
 * elements that the record already holds. With status -2 the record is unchanged. */
OLDTORVIO_API Status LoadOldPart(const char* path, TorvPart* part) OLDTORVIO_NOEXCEPT;

/* Starts a new part in the part builder and discards everything added before.
 *
 * width, height and thickness are in the suite's length unit, which no file names; partKind keeps its sign. A null text
 * selects the default of its field ("NEW PART", "NEW ASSEMBLY", "NEW MATERIAL", empty for the custom texts). A text has
 * at most 255 characters, assemblyName and materialName at most 20; a longer one ends the process. */
OLDTORVIO_API void InitTorvPart(float width, float height, float thickness, int16_t partKind, const char* partName,
                                const char* assemblyName, const char* materialName, const char* customText1,
                                const char* customText2, const char* customText3) OLDTORVIO_NOEXCEPT;

/* Adds one shape to the part builder, with the pattern item that describes how it is machined.
 *
 * x, y        placing point
 * type        shape type, stored as a signed byte
 * flags       128 marks a member of a group
 * values      nine 32-bit values; their bits are copied
 * item...     the fields of these names in the item (itemShort1 and itemShort2 are sign-extended); itemWord2 is also
 *             the stationValue of a new station
 * pairA..D    itemPair1 (A, B) and itemPair2 (C, D)
 * toolName    null: the item has no tool. Otherwise the name of a special tool without folder and extension. The
 *             folder of special tools (see OpenSpecialToolFile) is searched, ignoring case, for a file with that name
 *             and the extension ".spt"; each call adds a new station and tool from it to the part. An empty name
 *             selects the first station of the part; if there is none, a file named ".spt" is searched for. A full
 *             path of more than 255 characters ends the process.
 *
 * Returns the number of shapes in the part, or -1 if the special tool is not found or cannot be loaded; then nothing
 * has been added. */
OLDTORVIO_API int32_t AddPatternToTorvPart(float x, float y, uint8_t type, uint32_t flags, const uint32_t* values,
                                           uint32_t itemWord1, float itemWord2, float pairA, float pairB, float pairC,
                                           float pairD, const char* toolName, int16_t itemShort1, int16_t itemShort2,
                                           float itemWord3, float itemWord4) OLDTORVIO_NOEXCEPT;

/* Adds a group to the part builder: a head (shape type 7) at x, y with the angle (radians, reduced by the symmetry
 * of the tool), followed by a copy of each shape of the special tool file except those of type 7. The path of the
 * file is the folder of special tools, the name and ".spt", concatenated unchanged: no separator is added, and case
 * is not ignored. A path of more than 259 characters ends the process, and so does one of more than 255 if its file
 * can be loaded.
 *
 * Returns the number of shapes in the part, or -1 for a null name, a file that does not exist or one that cannot be
 * loaded; then nothing has been added. */
OLDTORVIO_API int32_t AddGroupPatIntoTorvPart(float x, float y, float angle, const char* toolName) OLDTORVIO_NOEXCEPT;

/* Adds one more member to a group of the part builder. groupIndex is the 1-based position of the head in the shapes
 * of the part; a position after the new member ends the process. `ignored` has no effect. values: nine 32-bit values.
 *
 * Returns the number of shapes in the part, reduced to 16 bits, or 0 for a groupIndex below 1; then nothing has been
 * added. */
OLDTORVIO_API uint16_t AddPatIntoGroupPat(int32_t groupIndex, float x, float y, uint8_t type, uint64_t ignored,
                                          const uint32_t* values) OLDTORVIO_NOEXCEPT;

/* Saves the part builder as a part file in the layout of `version`. The builder keeps its contents: more can be added,
 * and it can be saved again.
 *
 * 0 saved; -1 for a version that LoadOldPart does not accept, which leaves an empty file; -2 if the file cannot be
 * opened or written, if the builder has no shape yet (such a part has no pattern), or for a null path. Versions 2, 3
 * and 5 are stored in the main layout, which a load of these versions misreads. A path of 260 characters or more ends
 * the process. */
OLDTORVIO_API Status SaveTorvPart(const char* path, VersionWord version) OLDTORVIO_NOEXCEPT;

/* ---- Queries of part files: each loads the file, copies the results out and discards the rest ---------- */

/* The material type and the size of the part. materialType needs room for the text and its NUL, at most 257 bytes. -2
 * for a null path, otherwise the status of the load; the outputs change only with status 0. */
OLDTORVIO_API Status GetOldPartInfo(const char* path, char* materialType, float* width, float* height,
                                    float* thickness) OLDTORVIO_NOEXCEPT;

/* One value of the part as text. key, ignoring case:
 *   "angle"      rotation of the first pattern in radians, as "%g"; "0" without a pattern
 *   "Revision"   the revision text
 *   "MatType"    the material type text
 *   "Thickness"  the thickness, as "%g"
 * 1 for a null pointer; otherwise the status of the load, or 1 if the load succeeds and the key is unknown. `value`
 * (room for 257 bytes) changes only with status 0. */
OLDTORVIO_API Status GetOldPartInfo_v1(const char* path, const char* key, char* value) OLDTORVIO_NOEXCEPT;

/* The tools of the part as one text, each item followed by ",":
 *   shape code 108      "%d %s %6.3f": code, base name of the special tool, orientation
 *   shape code 0        nothing
 *   any other           "%d %6.3f %6.3f %6.3f %6.3f": code, three dimensions, orientation
 * With status 0, *length is the length of the text without its NUL; the text is copied only if that is below `size`.
 * With a size of 0, `text` may be null. -2 for a null path, otherwise the status of the load. */
OLDTORVIO_API Status GetOldPartTool(const char* path, char* text, int32_t size, uint32_t* length) OLDTORVIO_NOEXCEPT;

/* Appends ",", the full path and "," to `text` for each special tool of the part. `text` must contain a NUL-terminated
 * text, which is kept, and have room after it for 258 characters for each special tool. Status as in GetOldPartTool. */
OLDTORVIO_API Status GetOldSptFromPart(const char* path, char* text) OLDTORVIO_NOEXCEPT;

/* The full paths of the special tools of all parts of a group part file, each followed by ",". text, size and length
 * as in GetOldPartTool. -2 for a null path, otherwise the status of LoadGroupPart. */
OLDTORVIO_API Status GetOldSptFromGroupPart(const char* path, char* text, int32_t size,
                                            uint32_t* length) OLDTORVIO_NOEXCEPT;

/* ---- Group part files --------------------------------------------------------------------------- */

/* Returns a new empty list, or null if there is no memory. Free it with DeleteOldPartlistInfo. */
OLDTORVIO_API SheetPartList* CreateOldPartlistInfo(void) OLDTORVIO_NOEXCEPT;

/* Frees a list from CreateOldPartlistInfo with all its parts. Null is allowed. */
OLDTORVIO_API void DeleteOldPartlistInfo(SheetPartList* list) OLDTORVIO_NOEXCEPT;

/* Appends each part of a group part file to `list`, in stored order. A version below 152 returns 1, not -1; there is no
 * highest version. If the load fails, the parts read before the fault stay in the list. */
OLDTORVIO_API Status LoadGroupPart(const char* path, SheetPartList* list) OLDTORVIO_NOEXCEPT;

/* ---- Special tool files --------------------------------------------------------------------------- */

/* Loads a special tool file into `tool`. Accepted versions: those of part files from 52 on, except 61, 62, 71 and 80.
 * `tool->tool.fileVersion` becomes the version word, even if it is refused. A list with a stored count of 0 keeps the
 * elements that the record already holds. */
OLDTORVIO_API Status LoadOldSpecialTool(const char* path, OldSpecialTool* tool) OLDTORVIO_NOEXCEPT;

/* Loads a special tool file into the process-wide current special tool and returns its values.
 *
 * The status is that of LoadOldSpecialTool. *shapeCount becomes 0 first. If the file cannot be opened, or its version
 * word is incomplete or refused, nothing else changes. Otherwise, even after a fault, the outputs depend on the current
 * special tool: if it has shapes, *shapeCount becomes their number and all outputs are set; if not, they are unchanged.
 * So for a file that stores no shapes, or ends before them, the shapes are those of the previous file.
 *
 * The part builder takes the folder of special tools from the key ZRK_DEFAULT_SPECIAL_TOOL_PATH of "win.ini", in the
 * section [Kestrada64bit] or else [Kestrada]; the default is "C:\KESTRADA\SPECTOOL\". POSIX hosts look for "win.ini"
 * in $XDG_CONFIG_HOME/OldTorvIO/ (default ~/.config/OldTorvIO/), then in OldTorvIO/ of each of $XDG_CONFIG_DIRS
 * (default /etc/xdg), and they try a special tool path that contains "\" unchanged first, then with "/" in place of
 * each "\". */
OLDTORVIO_API Status32 OpenSpecialToolFile(const char* path, uint32_t* shapeCount, float* orientation,
                                           float* specialValue, float* dimension1, float* dimension2, float* dimension3,
                                           int32_t* firstValueCount, float* firstValue0, float* firstValue1,
                                           float* firstValue2, float* firstValue3, float* firstValue4,
                                           float* firstValue5, int32_t* secondValueCount, float* secondValue0,
                                           float* secondValue1, float* secondValue2, float* secondValue3,
                                           float* secondValue4, float* secondValue5, float* extraValue0,
                                           float* extraValue1, uint8_t* lateFlag) OLDTORVIO_NOEXCEPT;

/* One shape of the current special tool, index from 0: its type (sign-extended), placing point and first four values.
 * An index outside its shapes leaves all outputs unchanged. */
OLDTORVIO_API void GetShapeAt(int32_t index, int32_t* type, float* x, float* y, float* value0, float* value1,
                              float* value2, float* value3) OLDTORVIO_NOEXCEPT;

/* ---- Tool inventories ---------------------------------------------------------------------------- */

/* Loads a tool inventory into `inventory`. Accepted versions: 54, 60, 80, 90, 91, 92, 100, 101, 102, 110, 111, 112,
 * 120, 121, 130, 140, 141, 150 to 162, 170, 180. `inventory->version` and `inventory->path` (the first 255 characters
 * of the path) are set even if the version is refused. tools and specialToolFiles are emptied when the load reaches
 * them; a file without entries keeps those of the record. If a file ends in entryLateWord or entryLateReals of an
 * entry, that entry ends there without an error of its own; since the file names are then missing, the load returns
 * 1. */
OLDTORVIO_API Status LoadOldToolInventory(const char* path, OldToolInventory* inventory) OLDTORVIO_NOEXCEPT;

/* Loads a tool inventory into the process-wide current inventory; *count becomes its number of tools. -2 if the file
 * cannot be opened, 1 if it has no complete version word, -1 for a version that LoadOldToolInventory does not accept:
 * *count is then 0. A fault after the version word returns 0 with a count of 0: a damaged file looks like an empty
 * one. */
OLDTORVIO_API Status32 LoadOldToolInventoryForCount(const char* path, uint32_t* count) OLDTORVIO_NOEXCEPT;

/* One tool of the current inventory, index from 0. An index outside its tools ends the process. So does a special
 * tool (shape code 108) whose specialToolIndex is not the position of an entry of specialToolFiles: an uncaught
 * std::out_of_range ends the process with the text "invalid vector<T> subscript" on standard error.
 *
 * name        the kind of the tool ("ROUND", "SQUARE", ...), or the base name of the file of a special tool; room for
 *             257 bytes. Unchanged for a shape code without a name.
 * counts      firstValueCount and secondValueCount as stored. If a count is 1 to 6, that many of the values that
 *             follow it are set, otherwise none. */
OLDTORVIO_API void GetOldToolInventoryInformation(int32_t index, char* name, float* dimension1, float* dimension2,
                                                  float* dimension3, float* orientation, int32_t* firstValueCount,
                                                  float* firstValue0, float* firstValue1, float* firstValue2,
                                                  float* firstValue3, float* firstValue4, float* firstValue5,
                                                  int32_t* secondValueCount, float* secondValue0, float* secondValue1,
                                                  float* secondValue2, float* secondValue3, float* secondValue4,
                                                  float* secondValue5) OLDTORVIO_NOEXCEPT;

/* ---- Macros ---------------------------------------------------------------------------------------- */

/* Loads a macro file into `macro`. Accepted versions: those of tool inventories, and 52, 61 and 62. `macro->version`
 * becomes the version word, even if it is refused. A list with a stored count of 0 keeps the elements that the record
 * already holds. */
OLDTORVIO_API Status LoadOldMacro(const char* path, OldMacro* macro) OLDTORVIO_NOEXCEPT;

/* ---- Materials ------------------------------------------------------------------------------------- */

/* Loads a material file into `material`. Accepted versions: 52, 60, 61, 62, 71, 80, 90, 91, 92, 101, 102, 110, 111,
 * 112, 120, 121, 130, 140, 141, 150 to 162, 170, 180, 500, 501, 502.
 *
 * `material->path` (the first 263 characters of the path) and `material->version` are set even if the version is
 * refused. A file of version 52, 60, 500, 501 or 502 is a parameter table: a load sets only `params`, and `name` if
 * the name of the table has 1 to 255 characters. Such a file is opened twice; -2 if the second time fails. In any
 * other file a parameter table with its own version word comes before the material; if that version has no layout,
 * the load returns -1 and the material is not read. A file may end in the 500 reserved bytes before the fields of
 * version 90: the load then returns 0, and the remaining fields keep their values. */
OLDTORVIO_API Status LoadOldMaterial(const char* path, OldMaterial* material) OLDTORVIO_NOEXCEPT;

/* ---- Machines -------------------------------------------------------------------------------------- */

/* Loads a machine file into `machine`. Accepted versions: 52 to 180, without gaps. `machine->version` becomes the
 * version word, even if it is refused. A machine that stores trailer values for the shapes of a sheet (shapesPresent 1,
 * from version 80 on) returns 1: it loads only as part of its sheet.
 *
 * A file may end in limitC and limitWord, in the count of `segments`, from lateByteA to triadCount, and from lateText1
 * to lateByteC: the load then returns 0, the remaining fields keep their values, and limitA, limitB, setup2 and setup3
 * are not updated. */
OLDTORVIO_API Status LoadOldMachine(const char* path, OldMachine* machine) OLDTORVIO_NOEXCEPT;

/* What LoadOldMachineInformation returns. */
typedef struct MachineInformation {
  int32_t infoKind;    /* 1: no station limits, 2: no work area (see GetMachineDatasForQD) */
  int32_t infoVersion; /* version word of the file */
  float infoSizeX;     /* first pair of dimensions, in the suite's length unit */
  float infoSizeY;
  char infoText1[256]; /* a text that fills its field has no NUL; bytes after a NUL are unchanged */
  char infoText2[256];
  int32_t infoStationWord;
  uint32_t infoExtra1;
  uint32_t infoExtra2;
  int32_t infoStationMode;  /* 0 to 15 */
  int32_t infoStationCount; /* stations for LoadOldStationToolFromMachine */
} MachineInformation;

/* Loads a machine file into the process-wide current machine and fills `information` from it. -2 if the file cannot be
 * opened, 1 if it has no complete version word, -1 for a version that LoadOldToolInventory does not accept. A fault
 * after the version word returns 0 and leaves `information` unchanged. What a file does not store keeps the value of
 * the previous machine. infoText1 is its secondText, infoText2 its machineText2; stations are those of stationsA. */
OLDTORVIO_API Status32 LoadOldMachineInformation(const char* path, MachineInformation* information) OLDTORVIO_NOEXCEPT;

/* One of stationsA of the current machine and its tool, index from 0. An index outside stationsA ends the process, and
 * so does a station whose tool is missing. A load that fails inside a tool leaves such a station at the end of the
 * list. That load returns no station count; but if the next file stores no stations, the list stays, and the
 * infoStationCount of that load includes the station.
 *
 * values           six numbers: the first valueCount of the station, then zeros
 * shapeCode        of the tool; 0 for a station with a toolCount below 1
 * dimensions       three numbers, of the tool; zeros for a station with a toolCount below 1
 * offsets          three numbers
 * specialToolPath  the file of the tool, at most 256 characters and a NUL; set only if shapeCode is 108
 * Every other output is the field of that name of the station. */
OLDTORVIO_API void LoadOldStationToolFromMachine(int32_t index, int32_t* stationNumber, int32_t* stationType,
                                                 float* orientation, float* realF, float* stationValue,
                                                 int32_t* valueCount, float* values, float* limit0, float* limit1,
                                                 float* limit2, float* limit3, int32_t* shapeCode, float* dimensions,
                                                 float* offsets, char* specialToolPath, float* pairValue0,
                                                 float* pairValue1, int32_t* wordF) OLDTORVIO_NOEXCEPT;

/* Loads a machine file into the current machine and returns its displayName, machineKind, machineText2, secondText and
 * lateText1; each text needs room for 257 bytes. Statuses and faults as in LoadOldMachineInformation. */
OLDTORVIO_API Status GetOldVLMQMachineName(const char* path, char* displayName, uint32_t* kind, char* text2,
                                           char* secondText, char* lateText) OLDTORVIO_NOEXCEPT;

/* Size, clamps, station limits and work area of a machine file of version 52 to 180; the current machine does not
 * change. clampCount and blockMode are 32-bit integers copied into the bytes of a float without conversion: read the
 * bits. The station limits are the minimum and maximum over all stations, starting from 999999 and 0 (so a minimum is
 * never above 999999, a maximum never below 0); for a machine of kind 1 they are 0. The area is 0 for a machine of
 * kind 2. -2 for a null path, otherwise the status of the load; the outputs change only with status 0. */
OLDTORVIO_API Status GetMachineDatasForQD(const char* path, float* sizeX, float* sizeY, float* clampCount,
                                          float* blockMode, float* stationMinX, float* stationMinY, float* stationMaxX,
                                          float* stationMaxY, float* area0, float* area1, float* area2,
                                          float* area3) OLDTORVIO_NOEXCEPT;

/* ---- Sheets ---------------------------------------------------------------------------------------- */

/* Returns a new empty sheet ("NEW SHEET", 60 by 45, 0.048 thick), or null if there is no memory. It can be saved
 * unchanged. Free it with DeleteSheetInfo. */
OLDTORVIO_API OldSheet* CreateSheetInfo(void) OLDTORVIO_NOEXCEPT;

/* Free a sheet from CreateSheetInfo or GetOldSheetHandle. Null is allowed. The two are the same function. */
OLDTORVIO_API void DeleteSheetInfo(OldSheet* sheet) OLDTORVIO_NOEXCEPT;
OLDTORVIO_API void FreeSheetHandle(OldSheet* sheet) OLDTORVIO_NOEXCEPT;

/* Loads a sheet file into `sheet`. Accepted versions: 52 to 180, and 500 to 32767, which are read with the newest
 * layout. `sheet->version` becomes the version word, even if it is refused.
 *
 * A part count of 0 keeps the parts that the record already holds. If the file stores no shapes of the sheet itself,
 * the record keeps the fields that depend on them (OldTorvIO/sheet.h lists them). A file may end in the spare word
 * before the parameter table, in materialText5 and lateValue and, at 152 to 160, in blocks: the load then returns 0,
 * and the remaining fields keep their values. It may also end in namedWorkLists, if no field must follow. */
OLDTORVIO_API Status LoadOldSheet(const char* path, OldSheet* sheet) OLDTORVIO_NOEXCEPT;

/* Saves a sheet in the layout of `version`, 52 to 180; `sheet->version` is ignored.
 *
 * 0 saved; -1 for any other version, which leaves a file of two bytes; -2 if the file cannot be opened or written, if
 * the sheet contains values that cannot be stored (a text width of 0, counts beyond their arrays), or for a null sheet
 * or path. A failed save leaves what was stored before the fault. A save changes the record in one way: it reduces the
 * choices of the machine's material, as OldTorvIO/material.h describes.
 *
 * A parameter table of version 0 was never loaded. It is stored with the version of the file (52 for a file of
 * version 52 to 59) and the numbers, texts, title and name of the record. The stored nameLength is then at least the
 * length of the name plus 1 (at most 256), and a textWidth of 0 of the machine is stored as 256. So a new sheet can be
 * saved. A table that was loaded into a fresh record from one of the layouts 500 to 502 has a nameLength of 0 and
 * cannot be saved: -2, with a file that ends in the table. A machine whose textWidth is not 256, or whose
 * secondTextWidth is not 256 while secondTextPresent is 1, is saved with widths that do not match its texts, so a load
 * misreads it.
 *
 * From version 152 on, a save ends the process if `sheet->blocks` is not empty and no element after the first can be
 * stored, as in every list of one element. Such a list comes only from a damaged file.
 *
 * Below version 152 the machine stores machineWord124 to machineWord132 and lateByteC, which a load of that version
 * does not expect: it misreads what follows the machine. While these fields are 0, such a file still loads. A load
 * of a sheet below version 151 sets some of them to other values; if that sheet is saved at 60 to 150, a load of the
 * file returns 1. */
OLDTORVIO_API Status SaveOldSheet(const char* path, OldSheet* sheet, uint16_t version) OLDTORVIO_NOEXCEPT;

/* Loads a sheet file into the process-wide current sheet, which no other function reads: only the status matters. -2 if
 * the file cannot be opened, 1 if it has no complete version word, -1 for a version that LoadOldToolInventory does not
 * accept. A fault after the version word returns 0. */
OLDTORVIO_API Status32 LoadOldSheetInformation(const char* path) OLDTORVIO_NOEXCEPT;

/* Loads a sheet file into a new sheet and stores its address in *sheet. -2 if the file cannot be opened or `sheet` is
 * null, -1 for a version that LoadOldToolInventory does not accept, otherwise the status of the load. With any status
 * other than 0, *sheet is unchanged. Free the sheet with FreeSheetHandle. */
OLDTORVIO_API Status GetOldSheetHandle(const char* path, OldSheet** sheet) OLDTORVIO_NOEXCEPT;

/* ---- Queries of a loaded sheet ---------------------------------------------------------------------- */

/* One value of a loaded sheet as text. key, ignoring case:
 *   "Material_Group", "sheet_mat_type"       materialGroup, materialType
 *   "width", "height", "sheet_thickness"     as "%f"
 *   "part_count", "sheet_sequence_size"      the number of parts, of work entries
 *   "partfulldosname_and_count"              for each part "%s |%d |": path, quantity
 *   "partfulldosname_and_count_and_wonumber" for each part "%s |%d |%s |": path, quantity, work order
 *   "partname_and_count_and_wonumber"        the same with the name of the part
 *   "part_details_01"                        for each part "%s|%f|%f|%d|%s|;|": path, width, height, quantity, work
 *                                            order
 *   "preSkeletonDosName"                     skeletonDosName as a printf format without arguments: "%%" prints "%", any
 *                                            other directive as for 0 or an empty text; at most 260 characters
 *   "totalSknPartCutArea"                    the sum of values[7] of the cut shapes of the skeleton, as "%f"; they
 *                                            have type 17 and a values[8] within 0.0001 of -0.17456
 *   "sheet_utilization"                      as "%f"
 * The lists have no "|" at their end, and are empty without parts. The quantity of a part is the sum of gridCount1
 * times gridCount2 over its patterns, in 32 bits. Sizes are in the suite's length unit. -2 for any null pointer,
 * otherwise 0; an unknown key leaves `value` unchanged. `value` needs room for the result: 261 bytes for a text, 64
 * for a number; for a list, at most 260 for the path of each part, 256 for each name and work order and 64 for each
 * number. */
OLDTORVIO_API Status GetOldSheetInfoByName(const OldSheet* sheet, const char* key, char* value) OLDTORVIO_NOEXCEPT;

/* For each part, "%d|" for each group id (patternWord) above 0 of its patterns, at most 11 characters each, and then
 * ",". Empty without parts. -2 for a null sheet, otherwise 0. */
OLDTORVIO_API Status GetOldSheetInfoPartGroupIDs(const OldSheet* sheet, char* value) OLDTORVIO_NOEXCEPT;

/* ---- Queries of sheet files: each loads the file, copies the results out and discards the rest --------- */

/* The material and size of a sheet and the tools that its nest uses.
 *
 * materialName, materialFile  both the name of the parameter table followed by ".mat"; room for 261 bytes each
 * machinePath, other texts    the path of the machine, the fields of these names; room for 261 bytes each
 * width, height, thickness    of the plate, in the suite's length unit
 * lateValue                   the field of that name
 * partNames                   ",", then the name of each part and ","
 * tools                       ",", then an item as in GetOldPartTool for each tool number in order of first use; an
 *                             item equal to the one before it is left out. Used tools are those of the patterns and
 *                             slots of the parts, of the sheet's own items from the 29th on and of its slots, and, if
 *                             the machine is of kind 4 and a profile asks for it, of the first station with the bit
 *                             of value 2 in byteA. Numbers refer to stationsB of the machine if its stationWord is
 *                             not 0 and stationsB is not empty, otherwise to stationsA
 * partNamesLength and toolsLength are the lengths of these two texts without their NUL; a text is copied only if its
 * length is below its size argument. -2 if the file cannot be opened, 1 if it has no complete version word, -1 for a
 * version that LoadOldToolInventory does not accept; a fault after the version word returns 0 and leaves all outputs
 * unchanged. A used tool number one above the number of stations ends the process. */
OLDTORVIO_API Status GetOldSheetInfo(const char* path, char* materialName, char* materialGroup, char* materialType,
                                     char* materialText3, char* materialText4, char* materialText5, char* machinePath,
                                     char* sheetLabel, char* materialFile, float* width, float* height,
                                     float* thickness, double* lateValue, char* partNames, int32_t partNamesSize,
                                     int32_t* partNamesLength, char* tools, int32_t toolsSize,
                                     int32_t* toolsLength) OLDTORVIO_NOEXCEPT;

/* The clamps of the sheet: their number, their spacing and four words without a known meaning, of which first, second
 * and third are returned as the bits of a float. positions: always eight numbers, those of the machine of the sheet.
 * Statuses as in GetOldSheetInfo. */
OLDTORVIO_API Status GetOldClampInfo(const char* path, uint32_t* word, float* first, float* second, float* third,
                                     float* positions, uint32_t* count, float* spacing) OLDTORVIO_NOEXCEPT;

/* The third and the fifth of partTexts, empty below version 111; room for 257 bytes each. Statuses as in
 * GetOldSheetInfo. */
OLDTORVIO_API Status GetOldVLMQMaterialName(const char* path, char* text3, char* text5) OLDTORVIO_NOEXCEPT;

/* The utilization of the plate as stored; 0 below version 102. Statuses as in GetOldSheetInfo. */
OLDTORVIO_API Status GetOldSkeletonUtil(const char* path, float* utilization) OLDTORVIO_NOEXCEPT;

/* All 601 driver flags, the integers of the parameter table, of a sheet of any version that LoadOldSheet accepts.
 * Returns the status of the load. With status 0 or 1 all are set; those that were not read are 0. With -1 or -2, or
 * without memory for the sheet, they are unchanged. */
OLDTORVIO_API Status GetSheetDriverFlags(const char* path, int32_t* flags) OLDTORVIO_NOEXCEPT;

/* The number of work entries of a sheet of any version that LoadOldSheet accepts. Returns the status of the load;
 * *count is set only with status 0. */
OLDTORVIO_API Status GetSheetSequenceListSize(const char* path, uint32_t* count) OLDTORVIO_NOEXCEPT;

/* ---- Edits of sheet files ---------------------------------------------------------------------------- */
/* Each loads the file, changes one thing and saves it under the same path and version. What a load does not keep is
 * lost. -2 if the file cannot be opened, 1 if it has no complete version word, -1 for a version other than 1, 6, 52 and
 * those of LoadOldToolInventory. Everything after that returns 0: the status does not say whether the file changed. A
 * file that cannot be loaded, including one of version 1 or 6, does not change; a failed save leaves an incomplete
 * file. There is no temporary file and no backup.
 *
 * Warning: an edit can silently ruin a sound sheet (see SaveOldSheet). After an edit at version 60 to 150 the sheet
 * cannot be loaded any more; at 151 what follows the machine is read one byte out of place; at 52 to 59 optionWord or
 * extensionEntries are lost. For such files use LoadOldSheet, and SaveOldSheet with a version of 152 or above. At
 * every version, a sheet with a parameter table of version 500 to 502 loses everything after the table; one whose
 * machine has a textWidth other than 256 cannot be loaded any more; one whose machine has secondTextPresent 1
 * and another secondTextWidth loses smallValue. */

/* Sets the NC path of the machine (ncPath, not null). If it differs from the old one at most in case, the file is not
 * written. Otherwise a path of 256 characters or more ends the process. Files below version 62 do not store it. */
OLDTORVIO_API Status ReplaceSheetMachineNcPath(const char* path, const char* ncPath) OLDTORVIO_NOEXCEPT;

/* Empties the part list and replaces the skeleton with the shapes of a part file; the name of the skeleton and the
 * utilization do not change. -2 also if the part cannot be loaded; the version of the sheet is checked first. Files
 * below version 100 do not store a skeleton. */
OLDTORVIO_API Status ReplaceSheetSknPatListWithPartPatList(const char* path, const char* partPath) OLDTORVIO_NOEXCEPT;

/* Sets the work order number to newNumber in each part whose path has the base name partName (without drive, folder and
 * extension, case-sensitive) and whose number is oldNumber; a null oldNumber matches any number. A sheet without such a
 * part is not written. -2 also if any other pointer is null. If a part matches, a newNumber of 256 characters or more
 * ends the process. Files below version 162 do not store work order numbers. */
OLDTORVIO_API Status UpdateSheetPartWONumber(const char* path, const char* partName, const char* oldNumber,
                                             const char* newNumber) OLDTORVIO_NOEXCEPT;

#pragma pop_macro("Status")

#ifdef __cplusplus
}
#endif

#endif /* OLDTORVIO_H */
