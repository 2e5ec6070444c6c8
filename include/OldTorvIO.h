/* OldTorvIO: the older binary files of a sheet-metal fabrication suite.
 *
 * This header is the manual of the library. It compiles as C and as C++.
 *
 * Conventions that hold for every function below
 *
 *   Status      A function that answers with a status gives one of
 *                  0  done
 *                  1  the file ended too early, or holds a value that the library refuses
 *                 -1  the file's version is not one that this kind of file accepts
 *                 -2  the file cannot be opened, a required pointer is null, or a save failed
 *               Some functions give the status as 64 bits, some as 32: see each.
 *               Where the system fails to read on, the file counts as ended there. Closing a file that
 *               was read matters to nobody.
 *   Paths       NUL-terminated narrow texts, handed to the operating system as they stand. A folder
 *               cannot be opened, nor a path that is too long for the system. A pipe or device is
 *               read as far as it gives bytes; a load takes memory for what was read, never for what
 *               a count claims.
 *   Saves       A save writes in place: the file is emptied first, and a save that fails behind that leaves
 *               the first bytes of what it would have stored.
 *   Records     Owned by the caller. A C++ program constructs them (the headers in OldTorvIO/
 *               tell every field); in C they are opaque. A load fills a record that is already
 *               constructed: what the file's version does not store keeps what the record held.
 *               A load that fails leaves in the record what had been read up to the fault; the
 *               record stays safe to read, to load again and to destroy.
 *   Outputs     Where a function fails, its outputs keep what they held, unless it says otherwise.
 *               Text outputs have no size argument unless one is named: the caller provides room.
 *   Null        Loads answer -2 for a null path or record. Other pointers must be valid unless a
 *               function says what null does.
 *   Process end A text that does not fit where a function says so, or an index that a function
 *               says is fatal, ends the process (abort). What a file holds does so in four places
 *               alone: see GetOldToolInventoryInformation, LoadOldStationToolFromMachine,
 *               SaveOldSheet (and the edits, which save) and GetOldSheetInfo.
 *   Threads     Functions on a caller's own record may run at the same time on different records.
 *               The part builder, the current special tool, the current tool inventory, the
 *               current machine and the current sheet exist once in the process: one thread at a
 *               time.
 *   Memory      Out of memory gives status 1 in a load or query, -2 in a save, null in a Create,
 *               -1 from the part builder's adding calls (0 from AddPatIntoGroupPat). Functions that
 *               give 0 to a body that cannot be read give 0 here as well, once the version word
 *               is read: the queries by file that refer to GetOldSheetInfo,
 *               LoadOldSheetInformation, LoadOldMachineInformation, GetOldVLMQMachineName,
 *               LoadOldToolInventoryForCount and the edits of sheet files
 *               (ReplaceSheetSknPatListWithPartPatList -2 where the part finds no memory).
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
#else
#define OLDTORVIO_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define OLDTORVIO_NOEXCEPT noexcept
namespace oldtorvio {
struct TorvPart;
struct SheetPartList;
struct OldSpecialTool;
struct OldToolInventory;
struct OldMacro;
struct OldMaterial;
struct OldMachine;
struct OldSheet;
}  // namespace oldtorvio
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

/* ---- Part files ---------------------------------------------------------------------------- */

/* Loads the part file `path` into `part`.
 *
 * Accepted versions: 2, 3, 5, 52, 54, 60, 61, 62, 71, 80, 90, 91, 92, 100, 101, 102, 110, 111, 112,
 * 120, 121, 130, 140, 141, 150 to 162, 170, 180. A file of version 2 or 3 is read as far as its
 * setup entries and shapes and then always answers 1; width, height, shapes, setupList and one
 * pattern hold what it gave.
 *
 * `part->version` holds the file's version word as soon as it has been read, also when the version
 * is then refused. For an accepted version `partFullDosName` becomes the path (its first 259
 * characters) and the five option fields are reset. The pattern list and the work list are emptied
 * where the reading comes to them (at versions 2, 3 and 5 at its very beginning); `nestShapeGroups` is never emptied, so a load adds to it. Every other
 * list with a stored count of 0 keeps the elements of a record in use. Status -2 leaves the record
 * untouched. */
OLDTORVIO_API int64_t LoadOldPart(const char* path, TorvPart* part) OLDTORVIO_NOEXCEPT;

/* Starts a new part in the part builder: everything added before is gone.
 *
 * width, height, thickness in the suite's length unit; partKind is kept as a signed number. A text
 * that is null keeps the default of its field ("NEW PART", "NEW ASSEMBLY", "NEW MATERIAL", empty for
 * the custom texts). Texts hold at most 255 characters, assemblyName and materialName at most 20; a
 * longer one ends the process, nothing is ever cut. */
OLDTORVIO_API void InitTorvPart(float width, float height, float thickness, int16_t partKind, const char* partName,
                                const char* assemblyName, const char* materialName, const char* customText1,
                                const char* customText2, const char* customText3) OLDTORVIO_NOEXCEPT;

/* Adds one shape, and the pattern item that says how it is worked, to the part builder.
 *
 * x, y        placing point
 * type        shape type, kept as a signed byte
 * flags       128 marks a member of a group
 * values      nine 32-bit values, taken bit by bit
 * itemWord1   the item's fields of the same names (itemShort1 and itemShort2 with their sign);
 *             itemWord2 is also the stationValue of a new station
 * pairA..D    itemPair1 (A, B) and itemPair2 (C, D)
 * toolName    null: the item names no tool. Otherwise the name of a special tool without folder
 *             and extension: the folder of special tools (see OpenSpecialToolFile) is searched for
 *             a file of that name, with the extension ".spt" or as it stands, without regard to
 *             case, and the part gets a new station and tool from it, once for each call. An empty
 *             name takes the part's first station; without one a file named ".spt" is searched for.
 *             A full path above 255 characters ends the process.
 *
 * Gives the number of shapes in the part, or -1 when the special tool is not found or cannot be
 * loaded; then nothing has been added. */
OLDTORVIO_API int32_t AddPatternToTorvPart(float x, float y, uint8_t type, uint32_t flags, const uint32_t* values,
                                           uint32_t itemWord1, float itemWord2, float pairA, float pairB, float pairC,
                                           float pairD, const char* toolName, int16_t itemShort1, int16_t itemShort2,
                                           float itemWord3, float itemWord4) OLDTORVIO_NOEXCEPT;

/* Adds a group to the part builder: a head (shape type 7) at x, y with the angle (radians, reduced
 * by the tool's symmetry), and behind it a copy of each shape of the special tool file but those of
 * type 7. The file is the folder of special tools, the name and ".spt" put together as they stand
 * (no separator is added, no case is folded). A path above 259 characters ends the process, and so
 * does one above 255 whose file can be loaded.
 *
 * Gives the number of shapes in the part, or -1 for a null name, a file that does not exist or that
 * cannot be loaded; then nothing has been added. */
OLDTORVIO_API int32_t AddGroupPatIntoTorvPart(float x, float y, float angle, const char* toolName) OLDTORVIO_NOEXCEPT;

/* Adds one more member to a group of the part builder. groupIndex is the 1-based position of the
 * head among the part's shapes; a position past the new member itself ends the process. `ignored`
 * is not looked at. values: nine 32-bit values.
 *
 * Gives the number of shapes in the part, cut to 16 bits, or 0 for a groupIndex below 1; then
 * nothing has been added. */
OLDTORVIO_API uint16_t AddPatIntoGroupPat(int32_t groupIndex, float x, float y, uint8_t type, uint64_t ignored,
                                          const uint32_t* values) OLDTORVIO_NOEXCEPT;

/* Saves the part builder as a part file in the layout of `version`; the builder keeps everything, so
 * that more can be added and saved again. Only the first pattern is stored.
 *
 * 0 saved; -1 for a version that part files do not have (the list of LoadOldPart), which leaves an
 * empty file; -2 when the file cannot be opened or written, when the builder has no shape yet (such
 * a part has no pattern), or for a null path. Versions 2, 3 and 5 store the fields of the main
 * layout, which the loader of those versions cannot read back. A path of 260 characters or more ends
 * the process. */
OLDTORVIO_API int64_t SaveTorvPart(const char* path, int16_t version) OLDTORVIO_NOEXCEPT;

/* ---- Questions about part files: each loads the file, answers and forgets it ------------------ */

/* The part's material type and size. materialType: room for the text and its NUL, at most 257 bytes.
 * -2 for a null path, otherwise the status of the load; on failure all outputs stay. */
OLDTORVIO_API int64_t GetOldPartInfo(const char* path, char* materialType, float* width, float* height,
                                     float* thickness) OLDTORVIO_NOEXCEPT;

/* One value as text. key, without regard to case:
 *   "angle"      rotation of the first pattern in radians, as "%g"; "0" without a pattern
 *   "Revision"   the revision text
 *   "MatType"    the material type text
 *   "Thickness"  the thickness, as "%g"
 * 1 for a null pointer; otherwise the status of the load, and behind a load that succeeded 1 for any
 * other key. `value` (room for 257 bytes) changes only with status 0. */
OLDTORVIO_API int64_t GetOldPartInfo_v1(const char* path, const char* key, char* value) OLDTORVIO_NOEXCEPT;

/* The part's tools as one text, each item closed by ",":
 *   shape code 108      "%d %s %6.3f": code, base name of the special tool, orientation
 *   shape code 0        nothing
 *   any other           "%d %6.3f %6.3f %6.3f %6.3f": code, three dimensions, orientation
 * With status 0 *length is the text's length without NUL, and the text is copied only if that is
 * below `size`. -2 for a null path. */
OLDTORVIO_API int64_t GetOldPartTool(const char* path, char* text, int32_t size, uint32_t* length) OLDTORVIO_NOEXCEPT;

/* Appends to `text`, for each special tool of the part, ",", its full path and ",". `text` must be a
 * NUL-terminated text with room behind it, at most 258 characters for each such tool; it is not cleared. -2
 * for a null path. */
OLDTORVIO_API int64_t GetOldSptFromPart(const char* path, char* text) OLDTORVIO_NOEXCEPT;

/* The full paths of the special tools of all parts of a group part file, each closed by ",".
 * length, size and text as in GetOldPartTool. -2 for a null path. */
OLDTORVIO_API int64_t GetOldSptFromGroupPart(const char* path, char* text, int32_t size,
                                             uint32_t* length) OLDTORVIO_NOEXCEPT;

/* ---- Group part files --------------------------------------------------------------------------- */

/* A new empty list, or null when there is no memory. To be freed with DeleteOldPartlistInfo. */
OLDTORVIO_API SheetPartList* CreateOldPartlistInfo(void) OLDTORVIO_NOEXCEPT;

/* Frees a list from CreateOldPartlistInfo with all its parts. Null is allowed. */
OLDTORVIO_API void DeleteOldPartlistInfo(SheetPartList* list) OLDTORVIO_NOEXCEPT;

/* Appends each part of a group part file to `list`, in stored order. A file of a version below 152
 * gives 1 (never -1); there is no upper version. On a fault the parts read before it stay in the
 * list. */
OLDTORVIO_API int64_t LoadGroupPart(const char* path, SheetPartList* list) OLDTORVIO_NOEXCEPT;

/* ---- Special tool files --------------------------------------------------------------------------- */

/* Loads a special tool file into `tool`. Accepted versions: those of part files from 52 on without
 * 61, 62, 71 and 80. `tool->tool.fileVersion` holds the version word, also when it is refused. A list with
 * a stored count of 0 keeps the elements of a record in use. */
OLDTORVIO_API int64_t LoadOldSpecialTool(const char* path, OldSpecialTool* tool) OLDTORVIO_NOEXCEPT;

/* Loads a special tool file into the process-wide current special tool and hands out its values.
 *
 * *shapeCount becomes 0 before anything else. A file that is missing, has no whole version word or is
 * refused leaves all else as it was. Behind that, whatever came of the reading, the current special tool
 * is looked at: if it holds shapes, *shapeCount becomes their number and all outputs are set, if not, they
 * stay. So a file that stores no shapes, or ends in front of them, answers with the shapes of the file
 * before it.
 *
 * The folder of special tools that the part builder uses is the value of the key
 * ZRK_DEFAULT_SPECIAL_TOOL_PATH in "win.ini", in the section [Kestrada64bit] or else [Kestrada], or
 * else "C:\KESTRADA\SPECTOOL\". On POSIX hosts "win.ini" is looked for in
 * $XDG_CONFIG_HOME/OldTorvIO/ (default ~/.config/OldTorvIO/), then in OldTorvIO/ of each of
 * $XDG_CONFIG_DIRS (default /etc/xdg). */
OLDTORVIO_API int32_t OpenSpecialToolFile(const char* path, uint32_t* shapeCount, float* orientation,
                                          float* specialValue, float* dimension1, float* dimension2, float* dimension3,
                                          int32_t* firstValueCount, float* firstValue0, float* firstValue1,
                                          float* firstValue2, float* firstValue3, float* firstValue4,
                                          float* firstValue5, int32_t* secondValueCount, float* secondValue0,
                                          float* secondValue1, float* secondValue2, float* secondValue3,
                                          float* secondValue4, float* secondValue5, float* extraValue0,
                                          float* extraValue1, uint8_t* lateFlag) OLDTORVIO_NOEXCEPT;

/* One shape of the current special tool, index from 0: its type (with sign), placing point and
 * first four values. An index outside 0 to count - 1 leaves all outputs as they were. */
OLDTORVIO_API void GetShapeAt(int32_t index, int32_t* type, float* x, float* y, float* value0, float* value1,
                              float* value2, float* value3) OLDTORVIO_NOEXCEPT;

/* ---- Tool inventories ---------------------------------------------------------------------------- */

/* Loads a tool inventory into `inventory`. Accepted versions: 54, 60, 80, 90, 91, 92, 100, 101, 102,
 * 110, 111, 112, 120, 121, 130, 140, 141, 150 to 162, 170, 180. `inventory->version` and
 * `inventory->path` (its first 255 characters) are set before the version is judged. tools and
 * specialToolFiles are emptied where the reading comes to them; a file without entries keeps those of the
 * record. A file that ends in an entry's late fields ends that entry there, with status 0 if nothing else
 * is missing. */
OLDTORVIO_API int64_t LoadOldToolInventory(const char* path, OldToolInventory* inventory) OLDTORVIO_NOEXCEPT;

/* Loads a tool inventory into the process-wide current inventory; *count becomes its number of tools.
 * -2 for a file that cannot be opened, 1 without a whole version word, -1 for a version that is not
 * accepted; *count is then 0. A fault behind the version word gives 0 with a count of 0: a damaged file
 * looks like an empty one. */
OLDTORVIO_API int32_t LoadOldToolInventoryForCount(const char* path, uint32_t* count) OLDTORVIO_NOEXCEPT;

/* One tool of the current inventory, index from 0. An index outside its tools ends the process, and so
 * does a special tool (shape code 108) whose file is not in the inventory's list.
 *
 * name        the kind of the tool ("ROUND", "SQUARE", ...), or the base name of a special tool's
 *             file; room for 257 bytes. A code without a text leaves it as it was.
 * counts      firstValueCount and secondValueCount as stored; of the values behind each, as many are
 *             set as it says if it is 1 to 6, otherwise none. */
OLDTORVIO_API void GetOldToolInventoryInformation(int32_t index, char* name, float* dimension1, float* dimension2,
                                                  float* dimension3, float* orientation, int32_t* firstValueCount,
                                                  float* firstValue0, float* firstValue1, float* firstValue2,
                                                  float* firstValue3, float* firstValue4, float* firstValue5,
                                                  int32_t* secondValueCount, float* secondValue0, float* secondValue1,
                                                  float* secondValue2, float* secondValue3, float* secondValue4,
                                                  float* secondValue5) OLDTORVIO_NOEXCEPT;

/* ---- Macros ---------------------------------------------------------------------------------------- */

/* Loads a macro file into `macro`. Accepted versions: those of tool inventories, and 52, 61 and 62.
 * `macro->version` holds the version word, also when it is refused. A list with a stored count of 0 keeps
 * the elements of a record in use. */
OLDTORVIO_API int64_t LoadOldMacro(const char* path, OldMacro* macro) OLDTORVIO_NOEXCEPT;

/* ---- Materials ------------------------------------------------------------------------------------- */

/* Loads a material file into `material`. Accepted versions: 52, 60, 61, 62, 71, 80, 90, 91, 92, 101,
 * 102, 110, 111, 112, 120, 121, 130, 140, 141, 150 to 162, 170, 180, 500, 501, 502.
 *
 * `material->path` (its first 263 characters) and `material->version` are set before the version is
 * judged. A file of version 52, 60, 500, 501 or 502 is a parameter table and sets `params` alone,
 * and `name` to the table's name if that has 1 to 255 characters. It is opened a second
 * time for that; -2 if this fails. In any other file the parameter table stands in front of the material
 * and has a version of its own; one without a layout gives -1 before the material is read. A file may end
 * in the 500 reserved bytes in front of what version 90 added: the load then gives 0, and what stands
 * behind keeps what it held. */
OLDTORVIO_API int64_t LoadOldMaterial(const char* path, OldMaterial* material) OLDTORVIO_NOEXCEPT;

/* ---- Machines -------------------------------------------------------------------------------------- */

/* Loads a machine file into `machine`. Accepted versions: 52 to 180, without gaps. `machine->version`
 * holds the version word, also when it is refused. A machine that holds trailer values of a sheet's
 * shapes gives 1: it loads as part of its sheet only.
 *
 * A file may end in limitC and limitWord, in the count of the grid's segments, from lateByteA to the count
 * of the triads and from lateText1 to lateByteC: the load then gives 0, what stands behind keeps what it
 * held, and limitA, limitB, setup2 and setup3 are not brought up to date. */
OLDTORVIO_API int64_t LoadOldMachine(const char* path, OldMachine* machine) OLDTORVIO_NOEXCEPT;

/* What LoadOldMachineInformation tells of a machine. */
typedef struct MachineInformation {
  int32_t infoKind;    /* 1: a machine without station limits, 2: one without a work area */
  int32_t infoVersion; /* version word of the file */
  float infoSizeX;     /* first pair of dimensions, in the suite's length unit */
  float infoSizeY;
  char infoText1[256]; /* a text that fills its field has no NUL; bytes behind a NUL stay */
  char infoText2[256];
  int32_t infoStationWord;
  uint32_t infoExtra1;
  uint32_t infoExtra2;
  int32_t infoStationMode;  /* 0 to 15 */
  int32_t infoStationCount; /* stations for LoadOldStationToolFromMachine */
} MachineInformation;

/* Loads a machine file into the process-wide current machine and tells of it. -2 for a file that
 * cannot be opened, 1 without a whole version word, -1 for a version that tool inventories do not
 * have. Any fault behind the version word gives 0 and leaves `information` as it was. What a file
 * does not store keeps the value of the machine before. */
OLDTORVIO_API int32_t LoadOldMachineInformation(const char* path, MachineInformation* information) OLDTORVIO_NOEXCEPT;

/* One station of the current machine and its tool, index from 0; an index outside its stations ends
 * the process, and so does a station without a tool, as a load that failed in between leaves it. A load
 * that fails does not tell the number of stations: ask again only behind one that did.
 *
 * values      six numbers: those that count, then zeros
 * shapeCode,  of the tool; 0 and zeros for a station without tools
 * dimensions  three numbers
 * offsets     three numbers
 * specialToolPath  the tool's file, at most 256 characters and a NUL; set only if shapeCode is 108
 * Every other output is the station's value of that name (wordF with its sign). */
OLDTORVIO_API void LoadOldStationToolFromMachine(int32_t index, int32_t* stationNumber, int32_t* stationType,
                                                 float* orientation, float* realF, float* stationValue,
                                                 int32_t* valueCount, float* values, float* limit0, float* limit1,
                                                 float* limit2, float* limit3, int32_t* shapeCode, float* dimensions,
                                                 float* offsets, char* specialToolPath, float* pairValue0,
                                                 float* pairValue1, int32_t* wordF) OLDTORVIO_NOEXCEPT;

/* Loads a machine file into the current machine, with the results of LoadOldMachineInformation (64
 * bits), and hands out its name, kind and three further texts. Each text needs room for 257 bytes. On
 * any fault the outputs stay. */
OLDTORVIO_API int64_t GetOldVLMQMachineName(const char* path, char* displayName, uint32_t* kind, char* text2,
                                            char* secondText, char* lateText) OLDTORVIO_NOEXCEPT;

/* Size, clamps, station limits and work area of a machine file of version 52 to 180; the current
 * machine does not change. clampCount and blockMode are 32-bit integers handed out in the four bytes
 * of a float, not converted: the caller takes the bits. The station limits are the smallest and
 * largest over all stations, counted from 999999 and 0, which are never passed the other way; 0 for a
 * machine of kind 1. The area is 0 for one of kind 2. -2 for a null path, otherwise the status of the load; outputs change only with
 * status 0. */
OLDTORVIO_API int64_t GetMachineDatasForQD(const char* path, float* sizeX, float* sizeY, float* clampCount,
                                           float* blockMode, float* stationMinX, float* stationMinY, float* stationMaxX,
                                           float* stationMaxY, float* area0, float* area1, float* area2,
                                           float* area3) OLDTORVIO_NOEXCEPT;

/* ---- Sheets ---------------------------------------------------------------------------------------- */

/* A new empty sheet ("NEW SHEET", 60 by 45, 0.048 thick), or null when there is no memory. It can be
 * saved as it is. To be freed with DeleteSheetInfo. */
OLDTORVIO_API OldSheet* CreateSheetInfo(void) OLDTORVIO_NOEXCEPT;

/* Frees a sheet from CreateSheetInfo or GetOldSheetHandle. Null is allowed. The two are the same. */
OLDTORVIO_API void DeleteSheetInfo(OldSheet* sheet) OLDTORVIO_NOEXCEPT;
OLDTORVIO_API void FreeSheetHandle(OldSheet* sheet) OLDTORVIO_NOEXCEPT;

/* Loads a sheet file into `sheet`. Accepted versions: 52 to 180, and 500 to 32767, which are read with
 * the newest layout. `sheet->version` holds the version word, also when it is refused.
 *
 * A count of 0 leaves the parts of a sheet in use as they were, and a file without shapes of its own all
 * that belongs to them. A file may end in the spare word in front of the parameter table, in
 * materialText5 and lateValue and, at 152 to 160, in blocks: the load then gives 0, and what stands behind
 * keeps what it held. So may namedWorkLists break off, where nothing but them is missing. */
OLDTORVIO_API int64_t LoadOldSheet(const char* path, OldSheet* sheet) OLDTORVIO_NOEXCEPT;

/* Saves a sheet in the layout of `version`, 52 to 180; `sheet->version` is not looked at.
 *
 * 0 saved; -1 for another version, which leaves a file of two bytes; -2 when the file cannot be opened
 * or written, when the sheet holds what no file can (a width of 0, counts beyond their arrays), or for
 * a null sheet or path. A save that fails leaves what had been stored before the fault. A sheet whose
 * parameter table has version 0 gets an empty table of the file's version, and its machine a text
 * width of 256 if it has none. In the record the choices of the machine's material change as told in
 * OldTorvIO/material.h. From version 152 on a list `sheet->blocks` that is not empty and in which no
 * element from the second on can be stored ends the process: so does every list of one. Such a list comes
 * only from a damaged file.
 *
 * A parameter table that a fresh record loaded in one of the layouts 500 to 502 has a nameLength of 0 and
 * cannot be saved: -2, with a file that ends in the table. A machine whose textWidth or secondTextWidth is not 256 is saved
 * with widths that no load agrees with.
 *
 * Below version 152 the machine stores its machineWord124 to machineWord132 and lateByteC, which a load
 * of that version does not take: what stands behind the machine is then read out of step. With these
 * fields at 0 such a file loads; a load of a sheet below 151 makes some of them other than 0, and once
 * saved again at 60 to 150 it gives status 1. */
OLDTORVIO_API int64_t SaveOldSheet(const char* path, OldSheet* sheet, uint16_t version) OLDTORVIO_NOEXCEPT;

/* Loads a sheet file into the process-wide current sheet, which nothing reads: the result is all that it
 * gives. -2 for a file that cannot be opened, 1 without a whole version word, -1 for a version that tool
 * inventories do not have; a fault behind the version word gives 0. */
OLDTORVIO_API int32_t LoadOldSheetInformation(const char* path) OLDTORVIO_NOEXCEPT;

/* Loads a sheet file into a new sheet and stores it in *sheet. -2 for a file that cannot be opened or a
 * null `sheet`, -1 for a version that tool inventories do not have, otherwise the status of the load;
 * with a status other than 0 *sheet stays. To be freed with FreeSheetHandle. */
OLDTORVIO_API int64_t GetOldSheetHandle(const char* path, OldSheet** sheet) OLDTORVIO_NOEXCEPT;

/* ---- Questions about a loaded sheet ---------------------------------------------------------------- */

/* One value of a loaded sheet as text. key, without regard to case:
 *   "Material_Group", "sheet_mat_type"       the texts
 *   "width", "height", "sheet_thickness"     as "%f"
 *   "part_count", "sheet_sequence_size"      numbers of parts and of work entries
 *   "partfulldosname_and_count"              for each part "%s |%d |": path, quantity
 *   "partfulldosname_and_count_and_wonumber" for each part "%s |%d |%s |": path, quantity, work order
 *   "partname_and_count_and_wonumber"        the same with the part's name
 *   "part_details_01"                        for each part "%s|%f|%f|%d|%s|;|": path, width, height,
 *                                            quantity, work order
 *   "preSkeletonDosName"                     the name, taken as a format without values: "%%" gives
 *                                            "%", a directive what it prints for zero or an empty
 *                                            text; at most 260 characters
 *   "totalSknPartCutArea"                    sum over the skeleton's cut shapes, as "%f"
 *   "sheet_utilization"                      as "%f"
 * The lists lose their last "|" and are empty without parts. The quantity of a part is the sum over its
 * patterns of gridCount1 times gridCount2, in 32 bits. Sizes are in the suite's length unit.
 * -2 for any null pointer, otherwise 0; an unknown key leaves `value`. It needs room for the answer: 261
 * bytes for a text, 64 for a number, and for a list as many as its items take: of each part at most 260 for
 * its path, 256 for a name or work order and 64 for a number. */
OLDTORVIO_API int64_t GetOldSheetInfoByName(const OldSheet* sheet, const char* key, char* value) OLDTORVIO_NOEXCEPT;

/* For each part the group ids above zero of its patterns, "%d|" each (at most 11 characters), and ",".
 * An empty text without parts. -2 for a null sheet, otherwise 0. */
OLDTORVIO_API int64_t GetOldSheetInfoPartGroupIDs(const OldSheet* sheet, char* value) OLDTORVIO_NOEXCEPT;

/* ---- Questions about sheet files: each loads the file, answers and forgets it ----------------------- */

/* What a sheet is made of and the tools that its nest really uses.
 *
 * materialName, materialFile  the parameter table's name and ".mat"; room for 261 bytes
 * other texts                 of those names, machinePath the path of its machine; room for 261 bytes each
 * width, height, thickness    of the plate, in the suite's length unit
 * partNames                   "," and for each part its name and ","
 * tools                       "," and for each distinct tool, in order of first use, an item as in
 *                             GetOldPartTool; an item equal to the one before it is left out. Used are
 *                             the tools of the parts' patterns and slots, of the sheet's own items from
 *                             the 29th on and slots, and, if the machine is of kind 4 and a profile says
 *                             so, of its first station with the bit of value 2 in byteA
 * Of these two *length is the text's length without NUL; the text is copied only if that is below the
 * size. -2 for a file that cannot be opened, 1 without a whole version word, -1 for a version that tool
 * inventories do not have; a fault behind the version word gives 0 and leaves all outputs. A tool number
 * one past the last station ends the process. */
OLDTORVIO_API int64_t GetOldSheetInfo(const char* path, char* materialName, char* materialGroup, char* materialType,
                                      char* materialText3, char* materialText4, char* materialText5, char* machinePath,
                                      char* sheetLabel, char* materialFile, float* width, float* height,
                                      float* thickness, double* lateValue, char* partNames, int32_t partNamesSize,
                                      int32_t* partNamesLength, char* tools, int32_t toolsSize,
                                      int32_t* toolsLength) OLDTORVIO_NOEXCEPT;

/* The sheet's clamps: their number, their spacing and four carried words, of which first, second and
 * third are handed out as the floats that their bits are. positions: always eight numbers, those of the
 * sheet's machine. Results as in GetOldSheetInfo. */
OLDTORVIO_API int64_t GetOldClampInfo(const char* path, uint32_t* word, float* first, float* second, float* third,
                                      float* positions, uint32_t* count, float* spacing) OLDTORVIO_NOEXCEPT;

/* Two of the sheet's five part texts, the third and the fifth, empty below version 111; room for 257
 * bytes each. Results as in GetOldSheetInfo. */
OLDTORVIO_API int64_t GetOldVLMQMaterialName(const char* path, char* text3, char* text5) OLDTORVIO_NOEXCEPT;

/* The utilization of the plate as stored; 0 below version 102. Results as in GetOldSheetInfo. */
OLDTORVIO_API int64_t GetOldSkeletonUtil(const char* path, float* utilization) OLDTORVIO_NOEXCEPT;

/* All 601 driver flags of a sheet of any version that LoadOldSheet accepts: the integers of its parameter
 * table. The status is that of the load; the flags are set with status 0 and 1, as far as they were read
 * (zero where nothing was), and stay with -1 and -2 and without memory for the sheet. */
OLDTORVIO_API int64_t GetSheetDriverFlags(const char* path, int32_t* flags) OLDTORVIO_NOEXCEPT;

/* The number of work entries of a sheet of any version that LoadOldSheet accepts. The status is that of
 * the load; *count is set with status 0. */
OLDTORVIO_API int64_t GetSheetSequenceListSize(const char* path, uint32_t* count) OLDTORVIO_NOEXCEPT;

/* ---- Edits of sheet files ---------------------------------------------------------------------------- */
/* Each loads the file, changes one thing and saves it under the same path and version. What a load does
 * not keep is lost. -2 for a file that cannot be opened, 1 without a whole version word, -1 for a version
 * that is not one of 1, 6, 52 and those of tool inventories; behind that 0, whatever came of it: the
 * result does not tell whether the file changed. A file that cannot be loaded, also one of version 1 or 6,
 * stays as it is; a save that fails leaves half a file. There is no temporary file and no way back.
 *
 * Warning: an edit can ruin a sound sheet without telling (see SaveOldSheet). One of version 60 to 150
 * cannot be loaded any more. At 151 what stands behind the machine is read one byte out of step, at 52 to
 * 59 optionWord and extensionEntries are lost. For such files use LoadOldSheet and SaveOldSheet with a
 * version of 152 or above. At every version, a sheet whose table has one of the layouts 500 to 502 loses
 * all behind the table, one whose machine has a textWidth other than 256 cannot be loaded any more, and one
 * with another secondTextWidth loses smallValue. */

/* Sets the machine's NC path (ncPath, not null), unless it differs in case only; then the file stays. A
 * path of 256 characters or more that is set ends the process. Files below version 62 do not store it. */
OLDTORVIO_API int64_t ReplaceSheetMachineNcPath(const char* path, const char* ncPath) OLDTORVIO_NOEXCEPT;

/* Empties the part list and makes the shapes of a part file the skeleton; its name and the utilization
 * stay. -2 also for a part that cannot be loaded; the version of the sheet is judged first. Files below
 * version 100 do not store a skeleton. */
OLDTORVIO_API int64_t ReplaceSheetSknPatListWithPartPatList(const char* path, const char* partPath) OLDTORVIO_NOEXCEPT;

/* Sets the work order number of each part whose path has the base name partName (without drive, folder
 * and extension, with regard to case) and, unless oldNumber is null, whose number is oldNumber. A sheet
 * without such a part stays as it is. -2 also if any other pointer is null. A number of 256 characters or
 * more that is set ends the process. Files below version 162 do not store it. */
OLDTORVIO_API int64_t UpdateSheetPartWONumber(const char* path, const char* partName, const char* oldNumber,
                                              const char* newNumber) OLDTORVIO_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif /* OLDTORVIO_H */
