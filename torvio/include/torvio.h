/* torvio: what is in the older binary files of a sheet-metal fabrication suite.
 *
 * This header is the manual of the library libtorvio and the only one that a program needs. It compiles as C (C99 and
 * later) and as C++. The library does what the command line torvio does, for programs in any language that can call C
 * functions:
 *
 *   torvio_input input = {0};
 *   torvio_buffer* result = NULL;
 *   torvio_error* error = NULL;
 *   input.path = "nest.sheet";
 *   if (torvio_info(&input, 0, &result, &error) != TORVIO_OK && error != NULL) puts(error->message);
 *   if (result != NULL) fwrite(result->data, 1, result->size, stdout);
 *   torvio_free(result);
 *   torvio_free(error);
 *
 * Conventions of every function below
 *
 *   Files       A file is read from a path or from memory, see torvio_input. It is opened and read once, so it may be
 *               a pipe, and nothing writes to it. A file at a path is refused if it has more than 1024 MiB.
 *   Texts       NUL-terminated UTF-8 on every system, including paths and names. Texts in files are bytes of a code
 *               page, which input->encoding names; in results they are UTF-8.
 *   Results     A function with `result` sets *result to a new torvio_buffer, or to NULL if there is no result; what
 *               *result held before is ignored. Results are UTF-8 (JSON, SVG, HTML, Markdown) unless the function
 *               says that they are bytes of a file. JSON is one object on one line that ends with a newline, unless
 *               the function says otherwise. Contents of a file are escaped wherever they might have an effect: no text
 *               of a file can end a line, break out of a JSON string, or act as markup or script in SVG and HTML.
 *   Errors      A function with `error` returns a torvio_status. If that is not TORVIO_OK it also sets *error to a new
 *               torvio_error, otherwise to NULL. `error` may be NULL if only the status is wanted. *error is also NULL
 *               if there is no memory for it.
 *   Ownership   The library never keeps a pointer that it was given. What it returns belongs to the caller, who frees
 *               it with torvio_free; results and errors are independent of each other. torvio_version() is the
 *               exception: it is never freed.
 *   Failures    Wrong arguments, unreadable files and lack of memory affect only the status and the error. No function
 *               ends the process, prints or throws an exception. The locale of the process is not changed; it only
 *               affects the language of messages of the system in an error, such as "No such file".
 *   Threads     There is no state between calls: all functions may run at the same time in any number of threads, also
 *               on the same input. A result or error may be freed in another thread.
 *   Memory      A damaged or hostile file never makes the library read or write outside its memory, or allocate memory
 *               just because a count in the file claims many elements. Expect the file, its record (a few times the
 *               size of the file) and the result in memory at the same time.
 *   Flags       `flags` is 0 or a sum of the constants that the function names. Any other value is TORVIO_BAD_ARGUMENT.
 *   Stack       A call needs no more than 128 KiB of stack.
 *
 * Binary interface: the calling convention is that of C on the platform (cdecl on 32-bit Windows). torvio_input never
 * gets more members; later versions add flags or functions instead. torvio_buffer and torvio_error are created only by
 * the library and may get more members at their end: do not copy them by value. All integers have a fixed width except
 * size_t, which is as wide as a pointer.
 */
#ifndef TORVIO_H
#define TORVIO_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#if defined(TORVIO_BUILDING)
#define TORVIO_API
#else
#define TORVIO_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define TORVIO_API __attribute__((visibility("default")))
#else
#define TORVIO_API
#endif

#ifdef __cplusplus
#define TORVIO_NOEXCEPT noexcept
extern "C" {
#else
#define TORVIO_NOEXCEPT
#endif

/* ---- Status, results and errors -------------------------------------------------------------- */

typedef int32_t torvio_status;

enum {
  /* Done: there is a result. A file that was read is sound, perhaps with bytes that a load does not read. */
  TORVIO_OK = 0,
  /* There is a result, but of a file that is damaged, of a refused version, or of no known kind: it shows what was
   * read. The error says what is wrong, and if the file is damaged, where. */
  TORVIO_DAMAGED = 1,
  /* A required pointer is NULL, or an argument has an invalid value. No result. */
  TORVIO_BAD_ARGUMENT = 2,
  /* The file at input->path could not be opened or read to its end, or is too large. No result unless the function
   * says so. */
  TORVIO_NOT_READ = 3,
  /* The requested result cannot be made from this input, for example a picture of a macro. No result. */
  TORVIO_REFUSED = 4,
  /* Memory ran out. No result. */
  TORVIO_NO_MEMORY = 5,
  /* The library failed unexpectedly, because of a defect in it. No result. */
  TORVIO_INTERNAL_ERROR = 6
};

/* A result. */
typedef struct torvio_buffer {
  const char* data; /* never NULL; one NUL follows after the `size` bytes */
  size_t size;      /* bytes at data, without that NUL */
} torvio_buffer;

/* Why a function did not return TORVIO_OK. */
typedef struct torvio_error {
  const char* message;  /* one line, as the command line prints it after the name of the file; without file names */
  const char* field;    /* the damaged field of the file, such as "partList.parts[3].x"; empty if there is none */
  uint64_t offset;      /* where that field begins, in bytes from the start of the file, or TORVIO_NO_OFFSET */
  torvio_status status; /* the value that the function returned */
} torvio_error;

#define TORVIO_NO_OFFSET UINT64_MAX

/* Frees a torvio_buffer or torvio_error with everything in it. NULL is allowed and does nothing. */
TORVIO_API void torvio_free(const void* result_or_error) TORVIO_NOEXCEPT;

/* ---- Input ------------------------------------------------------------------------------------ */

/* One file, by its path or in memory. Set unused members to zero. It is a struct because most functions take a file and
 * some take several; it consists only of pointers and a size, so that every language lays it out in the same way. A
 * function neither changes nor keeps anything in it. */
typedef struct torvio_input {
  const char* path; /* the file to read; NULL for one in memory */
  const void* data; /* if path is NULL: the bytes of the file. Not NULL, even for a file of no bytes */
  size_t size;      /* if path is NULL: how many bytes there are at data */
  /* The name of the file in results; its extension is a hint of the kind (".spt" is always a special tool). NULL: the
   * path, or an empty name if the file is in memory. */
  const char* name;
  /* The kind of the file, such as "sheet"; torvio_supported lists all. NULL: the kind is detected from the extension or
   * the contents, which may fail for a damaged file. */
  const char* kind;
  /* The code page of the texts in the file, such as "cp437"; torvio_supported lists all. NULL: "cp1252". */
  const char* encoding;
} torvio_input;

/* ---- What a file is --------------------------------------------------------------------------- */

/* Judges a file. The result is the object of `torvio check --json`:
 *
 *   {"path":"nest.sheet","verdict":"damaged","kind":"sheet","version":180,"size":400,"status":1,"walked":398,
 *    "fault":{"offset":398,"field":"width","reason":"needs 4 bytes, the file has 2"}}
 *
 *   path       the name of the input; "pathBytes" has its bytes in hexadecimal digits if it is not UTF-8
 *   verdict    "sound", "sound with losses" (bytes that a load does not read), "damaged", "refused version",
 *              "foreign" (no file of the suite) or "unreadable"
 *   kind       missing if foreign or unreadable, as are status and walked
 *   version    the first two bytes of the file; missing if it has fewer
 *   size       in bytes
 *   status     what the load of OldTorvIO returns: 0, 1, -1
 *   walked     bytes from the start to the end of the last field that was read
 *   fault      of a damaged file or a refused version: where and why; called "tolerated" if the load continues
 *   warnings   problems of values in a sound structure, such as numbers that harm programs that use them: objects with
 *              "code", "field" and "text"; docs/catalogue.md lists the codes. Missing if there are none
 *   error      of an unreadable file: why; the other members are then only path and verdict
 *
 * Returns TORVIO_OK for a file that loads, TORVIO_DAMAGED for any other file that was read, and TORVIO_NOT_READ, with
 * a result whose verdict is "unreadable", for a file that was not. flags: 0. input->encoding has no effect. */
TORVIO_API torvio_status torvio_check(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                                      torvio_error** error) TORVIO_NOEXCEPT;

/* What a file contains at a glance: names, sizes, parts, tools. The result is the object of `torvio info --json`:
 * "path", "kind", "version", "verdict", "remark", then members that depend on the kind. Lengths are in the unit of the
 * file. Returns the statuses of torvio_check; there is a result even for a file that was not read. For a damaged file
 * it has what was read before the fault. flags: 0. */
TORVIO_API torvio_status torvio_info(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                                     torvio_error** error) TORVIO_NOEXCEPT;

/* ---- Complete contents ------------------------------------------------------------------------ */

/* The complete record of a file: torvio_from_json saves it as a file that loads into the same record. The result is the
 * text of `torvio json`; docs/json.md describes it, and torvio_schema returns its schema. For a damaged file it has the
 * record as far as it was read, and the fault; for a file of unknown kind or refused version the record is null. Both
 * return TORVIO_DAMAGED. flags: 0 or TORVIO_PRETTY. */
TORVIO_API torvio_status torvio_json(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                                     torvio_error** error) TORVIO_NOEXCEPT;

#define TORVIO_PRETTY UINT32_C(1) /* every member on a line of its own */

/* Makes a file from the JSON of its record. The input is the JSON text, of at most 8192 MiB; its kind and encoding have
 * no effect, because the text says both. The result is the bytes of the file, saved in `version`; 0 is the version in
 * the text. Below version 152, saves of sheets and machines store bytes that no load expects (docs/quirks.md);
 * torvio_convert makes a file without them. Returns TORVIO_REFUSED if the text is not the JSON of a record, or if its
 * record cannot be saved in that version: the message names the member or line of the text if it can. flags: 0. */
TORVIO_API torvio_status torvio_from_json(const torvio_input* input, int32_t version, uint32_t flags,
                                          torvio_buffer** result, torvio_error** error) TORVIO_NOEXCEPT;

/* The JSON Schema (draft 2020-12) of what torvio_json returns for files of that kind, on several lines. `kind` must
 * not be NULL. */
TORVIO_API torvio_status torvio_schema(const char* kind, torvio_buffer** result, torvio_error** error) TORVIO_NOEXCEPT;

/* ---- Bytes and their meaning ------------------------------------------------------------------- */

/* Every field of a file with its offset, as `torvio map --json` prints it: one object per line,
 *
 *   {"offset":2,"size":4,"field":"width","type":"f32","value":12.5}
 *
 * with offset and size in bytes. Texts are strings up to their first NUL, raw bytes strings of hexadecimal digits,
 * reserved bytes null; "note" says what the value leaves out. A damaged file ends with its fault,
 * {"offset":40,"field":"height","fault":"needs 4 bytes, the file has 2"}, and returns TORVIO_DAMAGED.
 *
 * find      selects fields by their names, as --find of the command line: "width", "shapes[3].x", "**.*Count".
 *           NULL: all
 * range     selects fields by their bytes, the last one included: "500", "0x1f4..0x200", "500..". NULL: all
 * flags     0 or TORVIO_PAGE
 *
 * If no field is selected, the result has no lines, except for the fault. A `find` or `range` of any other form is
 * TORVIO_BAD_ARGUMENT.
 *
 * With TORVIO_PAGE, the result is an HTML page with bytes and fields side by side, as `torvio map --html` prints it.
 * `find` and `range` must then be NULL. Returns TORVIO_REFUSED for a file of more than 16 MiB or 3 million fields. */
TORVIO_API torvio_status torvio_map(const torvio_input* input, const char* find, const char* range, uint32_t flags,
                                    torvio_buffer** result, torvio_error** error) TORVIO_NOEXCEPT;

#define TORVIO_PAGE UINT32_C(2) /* an HTML page: complete, without scripts from elsewhere, makes no connection */

/* The stored form of a kind of file, or of a record that files embed ("clamp-info"; torvio_supported lists both).
 *
 * name      the kind or record; must not be NULL
 * language  "markdown" or NULL: a table. "json": its rows, one object per line with the names of the "fields", how each
 *           is "storedAs", and under which "condition". "kaitai": a definition for Kaitai Struct (.ksy); TORVIO_REFUSED
 *           for a record and for a kind that Kaitai Struct cannot describe */
TORVIO_API torvio_status torvio_format(const char* name, const char* language, torvio_buffer** result,
                                       torvio_error** error) TORVIO_NOEXCEPT;

/* ---- Pictures --------------------------------------------------------------------------------- */

/* A sheet, part, group part or machine to scale, as one SVG document of bounded size without scripts or references.
 * The outline of each placement of a sheet has the class "part" with the number of its part, from 1: "part3". For a
 * damaged file it shows what was read, and returns TORVIO_DAMAGED. Returns TORVIO_REFUSED for files of other kinds
 * and of unknown kind or version. flags: 0. */
TORVIO_API torvio_status torvio_draw(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                                     torvio_error** error) TORVIO_NOEXCEPT;

/* A contact sheet: the pictures of `count` files, at least one, on an HTML page without scripts or references. A file
 * that cannot be read or drawn has the reason in place of its picture. Files are read one after the other.
 *
 * inputs    an array of `count` inputs
 * title     of the page. NULL: the name of the file if there is one, else "Contact sheet"
 * flags     0
 *
 * Returns TORVIO_DAMAGED if any file was not read or not drawn completely; the error is about the first of them, and
 * its message begins with its number, counted from 1: "file 3: is a folder". */
TORVIO_API torvio_status torvio_draw_page(const torvio_input* inputs, size_t count, const char* title, uint32_t flags,
                                          torvio_buffer** result, torvio_error** error) TORVIO_NOEXCEPT;

/* ---- Differences ------------------------------------------------------------------------------ */

/* Where two files differ, member by member, as `torvio diff --json` prints it: a line with an object for each
 * difference, and a last line with the totals and what was compared; docs/diff.md describes both. Parts and other
 * records with a name are matched by name, elements of other lists by content. What no load reads is not compared.
 *
 * a, b       the files. Their kinds may differ if one contains what the other is, such as a sheet and one of its parts.
 *            Both must name the same encoding
 * part       in sheets and group part files, the part to compare: its name, or its position from 0. NULL: the complete
 *            files, or the part that is in both
 * tolerance  real numbers that differ by no more than this are the same, at most 1e300; 0 compares every bit
 * flags      0 or TORVIO_COMMON
 * same       set to 1 if there is no difference, to 0 if there is one. Unchanged without a result; may be NULL
 *
 * Differences are not errors: the status is TORVIO_OK. What was read of a damaged file is compared; the status is then
 * TORVIO_DAMAGED, and the message of the error begins with "a: " or "b: ". TORVIO_REFUSED if the files have nothing in
 * common to compare, or one is of unknown kind or refused version. */
TORVIO_API torvio_status torvio_diff(const torvio_input* a, const torvio_input* b, const char* part, double tolerance,
                                     uint32_t flags, int32_t* same, torvio_buffer** result,
                                     torvio_error** error) TORVIO_NOEXCEPT;

/* Leaves out the version, and members that the version of one of the files does not store. */
#define TORVIO_COMMON UINT32_C(4)

/* ---- New files of old ones -------------------------------------------------------------------- */

/* Saves a file in another version, as `torvio convert` does, without writing it anywhere.
 *
 * version   of the new file. If it is the version of the input, the new file is a clean copy: all that a load reads,
 *           and no other bytes
 * flags     0 or TORVIO_ALLOW_LOSS
 * result    the bytes of the new file
 * report    what the new version cannot store or stores with another value, as the JSON object of
 *           `torvio convert --json` without "written", which docs/convert.md describes. May be NULL
 *
 * TORVIO_REFUSED if something would be lost and the flag is not set, if the file is damaged or of unknown kind, or if
 * files of its kind are not saved in that version: there is no result then, but a report unless the kind is unknown. */
TORVIO_API torvio_status torvio_convert(const torvio_input* input, int32_t version, uint32_t flags,
                                        torvio_buffer** result, torvio_buffer** report,
                                        torvio_error** error) TORVIO_NOEXCEPT;

#define TORVIO_ALLOW_LOSS UINT32_C(8) /* makes the file even if something is lost or changed */

/* Builds a loadable file from the sound part of a damaged one, as `torvio recover` does, without writing it
 * anywhere. Everything before the first fault is kept; what follows has the defaults of a new record.
 *
 * flags     0
 * result    the bytes of the new file. For a sound file they are its own
 * report    where the file breaks, which bytes are left out, which list is shorter and which members have defaults, as
 *           the JSON object of `torvio recover --json` without "written". Check it before the file is used. May be NULL
 *
 * Returns TORVIO_OK for a damaged file, too. TORVIO_REFUSED if nothing can be kept or the kind is unknown: there is no
 * result then, but a report unless the kind is unknown. */
TORVIO_API torvio_status torvio_recover(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                                        torvio_buffer** report, torvio_error** error) TORVIO_NOEXCEPT;

/* ---- The library ------------------------------------------------------------------------------ */

/* What the other functions accept: {"version":"0.1.0","kinds":[{"name":"sheet","versions":[[52,180],[500,32767]],
 * "drawable":true},...],"records":["clamp-info",...],"encodings":["cp1252",...]}. `versions` are those that a load
 * accepts, as ranges with both ends included. */
TORVIO_API torvio_status torvio_supported(torvio_buffer** result, torvio_error** error) TORVIO_NOEXCEPT;

/* The version of the library, such as "0.1.0". Never freed. */
TORVIO_API const char* torvio_version(void) TORVIO_NOEXCEPT;

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
