/* Four jobs on the files of a folder, and two files that cannot be read. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "OldTorvIO.h"
#include "torvio.h"

static void stop(const char* what) {
  fprintf(stderr, "%s\n", what);
  exit(1);
}

/* ---- Parts of a sheet ---- */

static char* value_of(const OldSheet* sheet, const char* key, size_t room) {
  char* value = calloc(room, 1);
  if (value == NULL || GetOldSheetInfoByName(sheet, key, value) != 0) stop(key);
  return value;
}

static Status ask_parts(const char* path) {
  OldSheet* sheet = NULL;
  char *width, *height, *count, *details, *part;
  const Status status = GetOldSheetHandle(path, &sheet);
  if (status != 0) return status;
  width = value_of(sheet, "width", 64);
  height = value_of(sheet, "height", 64);
  count = value_of(sheet, "part_count", 64);
  printf("%s x %s, %s parts\n", width, height, count);
  /* Six texts for each part: path, width, height, quantity, work order and ";". */
  details = value_of(sheet, "part_details_01", 1 + 1024 * (size_t)atoi(count));
  for (part = details; part != NULL && *part != '\0';) {
    char text[5][261] = {"", "", "", "", ""};
    int i;
    for (i = 0; i < 5; ++i) {
      const size_t length = strcspn(part, "|");
      memcpy(text[i], part, length < 260 ? length : 260);
      part += length + (part[length] == '|');
    }
    printf("  %s of %s, %s x %s, for %s\n", text[3], text[0], text[1], text[2], text[4]);
    part = strchr(part, '|');
    if (part != NULL) ++part;
  }
  free(width);
  free(height);
  free(count);
  free(details);
  FreeSheetHandle(sheet);
  return 0;
}

/* ---- Records, field by field ---- */

/* Calls line(text) for each field of the file that `find` selects. A line is a JSON object. */
static void each_field(const char* path, const char* find, void (*line)(const char* text)) {
  torvio_input input = {0};
  torvio_buffer* result = NULL;
  const char* text;
  input.path = path;
  if (torvio_map(&input, find, NULL, 0, &result, NULL) != TORVIO_OK) stop(path);
  for (text = result->data; *text != '\0'; text = strchr(text, '\n') + 1) line(text);
  torvio_free(result);
}

/* The texts of these files have no characters that JSON escapes. */
static int text_is(const char* line, const char* end_of_field, char* text) {
  const char* at = strstr(line, end_of_field);
  return at != NULL && at < strchr(line, '\n') &&
         sscanf(at + strlen(end_of_field), "\",\"type\":\"text\",\"value\":\"%255[^\"]", text) == 1;
}

static int number_is(const char* line, const char* end_of_field, double* number) {
  const char* at = strstr(line, end_of_field);
  return at != NULL && at < strchr(line, '\n') &&
         sscanf(at + strlen(end_of_field), "\",\"type\":\"%*3c\",\"value\":%lf", number) == 1;
}

static void line_of_nest(const char* line) {
  static char name[256];
  static double columns, rows, x, y, shapes;
  /* The fields come in this order. */
  if (text_is(line, ".partName", name)) return;
  if (number_is(line, "].shapes.shapes.count", &shapes)) printf("%s: %.0f shapes\n", name, shapes);
  if (number_is(line, ".gridCount1", &columns) || number_is(line, ".gridCount2", &rows)) return;
  if (number_is(line, ".originX", &x)) return;
  if (number_is(line, ".originY", &y)) printf("  %.0f x %.0f at %.4f, %.4f\n", columns, rows, x, y);
}

static void walk_nest(const char* path) { each_field(path, "partList.parts[*].**", line_of_nest); }

static void line_of_material(const char* line) {
  static double key;
  char text[256];
  if (number_is(line, "].entryKey", &key)) return;
  if (text_is(line, "].entryText", text)) printf("  %.0f: %s\n", key, text);
}

static void name_of_material(const char* line) {
  char text[256];
  if (text_is(line, "name.text", text)) printf("%s\n", text);
}

static void read_record(const char* path) {
  torvio_input input = {0};
  torvio_buffer* result = NULL;
  char kind[32];
  int version;
  input.path = path;
  if (torvio_json(&input, 0, &result, NULL) != TORVIO_OK) stop(path);
  /* The text begins with format, kind and version; a JSON library reads the rest. */
  if (sscanf(result->data, "{\"format\":1,\"kind\":\"%31[^\"]\",\"version\":%d", kind, &version) != 2) stop(path);
  printf("%s of version %d: ", kind, version);
  torvio_free(result);
  each_field(path, "name.text", name_of_material);
  each_field(path, "entryList[*].*", line_of_material);
}

/* ---- A new part ---- */

static char first_text[256];
static double last_x;
static int shape_count;
static void line_of_part(const char* line) {
  if (text_is(line, "\"customText1", first_text)) return;
  shape_count += number_is(line, "].x", &last_x);
}

static void build_part(const char* path) {
  const float radius = 0.5f;
  uint32_t values[9] = {0};
  char material[257];
  float width, height, thickness;
  memcpy(values, &radius, sizeof radius);
  InitTorvPart(24.0f, 12.0f, 0.0625f, 1, NULL, NULL, "STEEL", "Tr\xE4ger 7", NULL, NULL); /* cp1252 */
  AddPatternToTorvPart(6.0f, 6.0f, 1, 0, values, 0, 0, 0, 0, 0, 0, NULL, 0, 0, 0, 0);
  AddPatternToTorvPart(18.0f, 6.0f, 1, 0, values, 0, 0, 0, 0, 0, 0, NULL, 0, 0, 0, 0);
  if (SaveTorvPart(path, 180) != 0) stop(path);

  if (GetOldPartInfo(path, material, &width, &height, &thickness) != 0) stop(path);
  printf("%.4f x %.4f x %.4f\n", width, height, thickness);
  each_field(path, NULL, line_of_part);
  printf("%s: %d shapes, the last at %.4f\n", first_text, shape_count, last_x);
}

/* ---- Files that cannot be read ---- */

static void report_json(const char* path) {
  torvio_input input = {0};
  torvio_buffer* result = NULL;
  torvio_error* error = NULL;
  input.path = path;
  if (torvio_json(&input, 0, &result, &error) != TORVIO_OK && error != NULL) {
    printf("torvio_json: status %d", (int)error->status);
    if (error->offset != TORVIO_NO_OFFSET) printf(", at %llu in %s", (unsigned long long)error->offset, error->field);
    printf("\n");
  }
  if (result != NULL) {
    const char* at = result->data;
    int parts = 0;
    while ((at = strstr(at, "\"partName\":")) != NULL) ++at, ++parts;
    printf("  %d parts were read\n", parts);
  }
  torvio_free(result);
  torvio_free(error);
}

static const char* in_folder(const char* folder, const char* name) {
  static char path[1024];
  if (snprintf(path, sizeof path, "%s/%s", folder, name) >= (int)sizeof path) stop("a long folder name");
  return path;
}

int main(int argc, char** argv) {
  OldSheet* sheet = NULL;
  char material[257];
  float width, height, thickness;
  const char* path;
  if (argc != 2) stop("usage: example FOLDER");
  printf("Parts of a sheet\n");
  path = in_folder(argv[1], "nest_180.sheet");
  if (ask_parts(path) != 0) stop(path);
  printf("A nest\n");
  walk_nest(path);
  printf("A new part\n");
  build_part(in_folder(argv[1], "Tr\xC3\xA4ger.part")); /* UTF-8 */
  printf("A material\n");
  read_record(in_folder(argv[1], "steel.mat"));
  printf("A file that does not exist\n");
  report_json(in_folder(argv[1], "nothing.sheet"));
  path = in_folder(argv[1], "nothing.part");
  printf("GetOldPartInfo: status %d\n", (int)GetOldPartInfo(path, material, &width, &height, &thickness));
  printf("A damaged file\n");
  path = in_folder(argv[1], "damaged.sheet");
  report_json(path);
  printf("GetOldSheetHandle: status %d\n", (int)GetOldSheetHandle(path, &sheet));
  return 0;
}
