/* torvio.h compiled as C, and every function called from C: results, errors, and what is freed. */
#include <stdio.h>
#include <string.h>

#include "torvio.h"

static int failures = 0;
#define EXPECT(condition) ((condition) ? (void)0 : (void)(printf("line %d: %s\n", __LINE__, #condition), ++failures))

/* What a call has returned. */
static torvio_buffer* result;
static torvio_error* error;

/* The result belongs to the caller: NUL-terminated, and without an error only if all is well. */
static int is(torvio_status returned, torvio_status expected) {
  if ((error == NULL) != (returned == TORVIO_OK)) return 0;
  if (error != NULL && (error->status != returned || error->message[0] == '\0')) return 0;
  if (result != NULL && result->data[result->size] != '\0') return 0;
  if (returned != expected) printf("status %d: %s\n", (int)returned, error != NULL ? error->message : "no error");
  return returned == expected;
}

static int contains(const char* text) { return result != NULL && strstr(result->data, text) != NULL; }

static void release(void) {
  torvio_free(result);
  torvio_free(error);
  result = NULL;
  error = NULL;
}

/* Refused: no result, and the error says so. */
#define EXPECT_REFUSED(call, status, text)                         \
  do {                                                             \
    EXPECT(is(call, status));                                      \
    EXPECT(result == NULL);                                        \
    EXPECT(error != NULL && strstr(error->message, text) != NULL); \
    release();                                                     \
  } while (0)

/* A machine of version 54 with one station and its rectangular tool; everything else is zero. */
enum { kMachineSize = 1667 };
static uint8_t machine[kMachineSize] = {54};

static void make_machine(void) {
  enum {
    kTextWidth = 2,
    kMachineText1 = 6,
    kStationCount = 1366,
    kStation = 1370,
    kToolCount = 1382,
    kShapeCode = 1457
  };
  enum { kBlockMode = 1529, kClampCount = 1571 };
  machine[kTextWidth + 1] = 1; /* 256, as saves store texts */
  machine[kMachineText1] = 'M';
  machine[kStationCount] = 1;
  machine[kStation] = 7;
  machine[kToolCount] = 1;
  machine[kShapeCode] = 3;
  machine[kBlockMode] = 3; /* a mode without blocks */
  machine[kClampCount] = 2;
}

static const char kForeign[] = "\x07\x00 nothing of the suite";

static torvio_input in_memory(const void* data, size_t size, const char* kind) {
  torvio_input input = {0};
  input.data = data;
  input.size = size;
  input.kind = kind;
  input.name = "folder/a machine";
  return input;
}

static int written(const char* path, const void* bytes, size_t size) {
  FILE* file = fopen(path, "wb");
  if (file == NULL) return 0;
  const int complete = fwrite(bytes, 1, size, file) == size;
  return fclose(file) == 0 && complete;
}

static int is_file(const torvio_buffer* file) {
  return result != NULL && result->size == file->size && memcmp(result->data, file->data, file->size) == 0;
}

/* A file of JSON text, from memory and from a path, and its JSON back into a file that holds the same. */
static void through_json(const torvio_buffer* json, const char* path) {
  const torvio_input text = in_memory(json->data, json->size, NULL);
  torvio_input from_path = {0};
  torvio_buffer* file;
  torvio_buffer* again;
  result = NULL;
  EXPECT(is(torvio_from_json(&text, 160, 0, &result, &error), TORVIO_OK));
  EXPECT(result != NULL && result->size > kMachineSize && (uint8_t)result->data[0] == 160);
  file = result;
  if (file != NULL) {
    const torvio_input saved = in_memory(file->data, file->size, "machine");
    EXPECT(is(torvio_json(&saved, 0, &result, &error), TORVIO_OK));
    EXPECT(contains("\"version\":160"));
    again = result;
    if (again != NULL) {
      const torvio_input other = in_memory(again->data, again->size, NULL);
      int32_t same = 0;
      EXPECT(is(torvio_from_json(&other, 0, 0, &result, &error), TORVIO_OK));
      torvio_free(again);
      again = result;
      if (again != NULL) {
        const torvio_input saved_again = in_memory(again->data, again->size, "machine");
        EXPECT(is(torvio_diff(&saved, &saved_again, NULL, 0, 0, &same, &result, &error), TORVIO_OK) && same == 1);
        release();
      }
    }
    torvio_free(again);

    EXPECT(written(path, json->data, json->size));
    from_path.path = path;
    EXPECT(is(torvio_from_json(&from_path, 160, 0, &result, &error), TORVIO_OK) && is_file(file));
    release();
    EXPECT(written(path, machine, kMachineSize));
  }
  torvio_free(file);
  EXPECT_REFUSED(torvio_from_json(&text, 51, 0, &result, &error), TORVIO_REFUSED, "version 51");
  EXPECT_REFUSED(torvio_from_json(&text, 40000, 0, &result, &error), TORVIO_BAD_ARGUMENT, "version");
}

static void sound_file(const char* path) {
  const torvio_input input = in_memory(machine, kMachineSize, "machine");
  torvio_input from_path = {0};
  torvio_buffer* other;
  size_t last;
  from_path.path = path;
  from_path.kind = "machine";
  from_path.name = input.name;

  EXPECT(is(torvio_check(&input, 0, &result, &error), TORVIO_OK));
  EXPECT(contains(
      "{\"path\":\"folder/a machine\",\"verdict\":\"sound\",\"kind\":\"machine\",\"version\":54,\"size\":1667,"));
  other = result;
  EXPECT(is(torvio_check(&from_path, 0, &result, &error), TORVIO_OK));
  EXPECT(result != NULL && other != NULL && strcmp(result->data, other->data) == 0);
  torvio_free(other);
  release();

  EXPECT(is(torvio_info(&input, 0, &result, &error), TORVIO_OK));
  EXPECT(contains("\"kind\":\"machine\"") && contains("\"verdict\":\"sound\""));
  release();

  EXPECT(is(torvio_json(&input, TORVIO_PRETTY, &result, &error), TORVIO_OK));
  EXPECT(contains("\n  \"kind\": \"machine\","));
  release();

  EXPECT(is(torvio_json(&input, 0, &result, &error), TORVIO_OK));
  other = result;
  if (other != NULL) through_json(other, path);
  torvio_free(other);

  EXPECT(is(torvio_map(&input, NULL, NULL, 0, &result, &error), TORVIO_OK));
  EXPECT(contains("{\"offset\":0,\"size\":2,\"field\":\"version\",\"type\":\"i16\",\"value\":54}\n"));
  last = result != NULL ? result->size : 0;
  release();
  EXPECT(is(torvio_map(&input, "stations", "1366..1480", 0, &result, &error), TORVIO_OK));
  EXPECT(result != NULL && result->size > 0 && result->size < last && !contains("\"field\":\"version\""));
  release();
  EXPECT(is(torvio_map(&input, "noSuchField", NULL, 0, &result, &error), TORVIO_OK));
  EXPECT(result != NULL && result->size == 0 && result->data[0] == '\0');
  release();
  EXPECT(is(torvio_map(&input, NULL, NULL, TORVIO_PAGE, &result, &error), TORVIO_OK));
  EXPECT(contains("<!doctype html>") && contains("a machine"));
  release();

  EXPECT(is(torvio_draw(&input, 0, &result, &error), TORVIO_OK));
  EXPECT(contains("<svg") && contains("</svg>"));
  release();
}

static void damaged_file(const char* path) {
  const torvio_input input = in_memory(machine, kMachineSize - 100, "machine");
  const torvio_input foreign = in_memory(kForeign, sizeof kForeign, NULL);
  torvio_input all[3];
  memset(all, 0, sizeof all);

  EXPECT(is(torvio_check(&input, 0, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("\"verdict\":\"damaged\"") && contains("\"fault\":{\"offset\":"));
  EXPECT(error != NULL && error->offset <= kMachineSize - 100 && error->field[0] != '\0');
  EXPECT(error != NULL && strstr(error->message, error->field) != NULL && strstr(error->message, "needs") != NULL);
  release();
  EXPECT(is(torvio_info(&input, 0, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("\"verdict\":\"damaged\"") && error != NULL && error->offset != TORVIO_NO_OFFSET);
  release();
  EXPECT(is(torvio_json(&input, 0, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("\"fault\":{\"offset\":") && error != NULL && error->field[0] != '\0');
  release();
  EXPECT(is(torvio_map(&input, NULL, NULL, 0, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("\"fault\":\"needs") && error != NULL && error->field[0] != '\0');
  release();
  EXPECT(is(torvio_map(&input, NULL, NULL, TORVIO_PAGE, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("</html>"));
  release();
  EXPECT(is(torvio_draw(&input, 0, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("</svg>") && error != NULL && error->offset != TORVIO_NO_OFFSET);
  release();

  EXPECT(is(torvio_check(&foreign, 0, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("\"verdict\":\"foreign\"") && error != NULL && error->offset == TORVIO_NO_OFFSET);
  EXPECT(error != NULL && error->field[0] == '\0');
  release();
  EXPECT(is(torvio_info(&foreign, 0, &result, &error), TORVIO_DAMAGED));
  release();
  EXPECT(is(torvio_json(&foreign, 0, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("\"record\":null"));
  release();
  EXPECT_REFUSED(torvio_draw(&foreign, 0, &result, &error), TORVIO_REFUSED, "cannot be drawn");
  EXPECT_REFUSED(torvio_from_json(&foreign, 0, 0, &result, &error), TORVIO_REFUSED, "line 1");

  /* A page has a place for each. */
  all[0] = in_memory(machine, kMachineSize, "machine");
  all[1] = foreign;
  all[2].path = path; /* a folder */
  EXPECT(is(torvio_draw_page(all, 1, NULL, 0, &result, &error), TORVIO_OK));
  EXPECT(contains("<title>a machine</title>"));
  release();
  EXPECT(is(torvio_draw_page(all, 3, "<Three>", 0, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("<title>&lt;Three&gt;</title>") && contains("is a folder") && contains("</html>"));
  EXPECT(error != NULL && strncmp(error->message, "file 2: cannot be drawn", 23) == 0);
  release();
}

static void unreadable_file(const char* folder) {
  torvio_input input = {0};
  input.path = "/no/such/file";
  EXPECT(is(torvio_check(&input, 0, &result, &error), TORVIO_NOT_READ));
  EXPECT(contains("\"verdict\":\"unreadable\",\"error\":\"cannot be opened"));
  release();
  EXPECT(is(torvio_info(&input, 0, &result, &error), TORVIO_NOT_READ));
  EXPECT(contains("\"verdict\":\"unreadable\""));
  release();
  EXPECT_REFUSED(torvio_json(&input, 0, &result, &error), TORVIO_NOT_READ, "cannot be opened");
  EXPECT_REFUSED(torvio_from_json(&input, 0, 0, &result, &error), TORVIO_NOT_READ, "cannot be opened");
  EXPECT_REFUSED(torvio_map(&input, NULL, NULL, 0, &result, &error), TORVIO_NOT_READ, "cannot be opened");
  EXPECT_REFUSED(torvio_draw(&input, 0, &result, &error), TORVIO_NOT_READ, "cannot be opened");
  input.path = "";
  EXPECT_REFUSED(torvio_json(&input, 0, &result, &error), TORVIO_NOT_READ, "cannot be opened");
  input.path = folder;
  EXPECT_REFUSED(torvio_json(&input, 0, &result, &error), TORVIO_NOT_READ, "is a folder");
  EXPECT_REFUSED(torvio_from_json(&input, 0, 0, &result, &error), TORVIO_NOT_READ, "is a folder");
}

static void differences(void) {
  static uint8_t other[kMachineSize];
  torvio_input a = in_memory(machine, kMachineSize, "machine"), b = in_memory(other, kMachineSize, "machine");
  int32_t same = 7;
  memcpy(other, machine, sizeof other);
  EXPECT(is(torvio_diff(&a, &b, NULL, 0, 0, &same, &result, &error), TORVIO_OK));
  EXPECT(same == 1 && contains("{\"summary\":{\"same\":true,\"differences\":0,"));
  release();

  other[1370] = 8; /* the first field of the station */
  EXPECT(is(torvio_diff(&a, &b, NULL, 0, TORVIO_COMMON, &same, &result, &error), TORVIO_OK));
  EXPECT(same == 0 && contains("{\"change\":\"") && contains("{\"summary\":{\"same\":false,"));
  release();
  EXPECT(is(torvio_diff(&a, &b, NULL, 1, 0, NULL, &result, &error), TORVIO_OK));
  release();

  b.size -= 100;
  EXPECT(is(torvio_diff(&a, &b, NULL, 0, 0, &same, &result, &error), TORVIO_DAMAGED));
  EXPECT(contains("\"fault\":{\"offset\":") && error != NULL && strncmp(error->message, "b: at ", 6) == 0);
  EXPECT(error != NULL && error->field[0] != '\0' && error->offset != TORVIO_NO_OFFSET);
  release();

  same = 7;
  b.size = kMachineSize;
  b.kind = "macro";
  EXPECT_REFUSED(torvio_diff(&a, &b, NULL, 0, 0, &same, &result, &error), TORVIO_REFUSED, "");
  b = in_memory(kForeign, sizeof kForeign, NULL);
  EXPECT_REFUSED(torvio_diff(&a, &b, NULL, 0, 0, &same, &result, &error), TORVIO_REFUSED, "b: ");
  b.data = NULL;
  b.path = "/no/such/file";
  EXPECT_REFUSED(torvio_diff(&b, &a, NULL, 0, 0, &same, &result, &error), TORVIO_NOT_READ, "a: cannot be opened");
  b = a;
  EXPECT_REFUSED(torvio_diff(NULL, &b, NULL, 0, 0, &same, &result, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_diff(&a, NULL, NULL, 0, 0, &same, &result, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_diff(&a, &b, NULL, -1, 0, &same, &result, &error), TORVIO_BAD_ARGUMENT, "tolerance");
  EXPECT_REFUSED(torvio_diff(&a, &b, NULL, 0, 1, &same, &result, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_diff(&a, &b, NULL, 0, 0, &same, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  b.encoding = "cp437";
  EXPECT_REFUSED(torvio_diff(&a, &b, NULL, 0, 0, &same, &result, &error), TORVIO_BAD_ARGUMENT, "encodings");
  EXPECT(same == 7);
}

static void new_files(void) {
  const torvio_input sound = in_memory(machine, kMachineSize, "machine");
  const torvio_input cut = in_memory(machine, kMachineSize - 100, "machine");
  const torvio_input foreign = in_memory(kForeign, sizeof kForeign, NULL);
  torvio_buffer* report = NULL;

  /* A save stores another value in place of 0 in one of its fields. */
  EXPECT(is(torvio_convert(&sound, 180, 0, &result, &report, &error), TORVIO_REFUSED));
  EXPECT(result == NULL && report != NULL && strstr(report->data, "\"losses\":[{\"effect\":\"changed\"") != NULL);
  torvio_free(report);
  release();
  EXPECT(is(torvio_convert(&sound, 180, TORVIO_ALLOW_LOSS, &result, &report, &error), TORVIO_OK));
  EXPECT(result != NULL && result->size > kMachineSize && (uint8_t)result->data[0] == 180);
  EXPECT(report != NULL && report->data[report->size] == '\0' && strncmp(report->data, "{\"path\":", 8) == 0);
  if (result != NULL) {
    /* The new file is sound, and has everything that the old one has. */
    const torvio_input made = in_memory(result->data, result->size, "machine");
    torvio_buffer* const kept = result;
    EXPECT(is(torvio_check(&made, 0, &result, &error), TORVIO_OK));
    EXPECT(contains("\"verdict\":\"sound\",\"kind\":\"machine\",\"version\":180,"));
    release();
    EXPECT(is(torvio_convert(&made, 54, TORVIO_ALLOW_LOSS, &result, NULL, &error), TORVIO_OK));
    EXPECT(result != NULL && (uint8_t)result->data[0] == 54);
    torvio_free(kept);
  }
  torvio_free(report);
  release();

  EXPECT(is(torvio_convert(&sound, 51, 0, &result, &report, &error), TORVIO_REFUSED));
  EXPECT(result == NULL && report != NULL && strstr(report->data, "\"error\":") != NULL);
  torvio_free(report);
  release();
  EXPECT_REFUSED(torvio_convert(&foreign, 180, 0, &result, &report, &error), TORVIO_REFUSED, "version");
  EXPECT(report == NULL);
  EXPECT_REFUSED(torvio_convert(&sound, -1, 0, &result, &report, &error), TORVIO_BAD_ARGUMENT, "version");
  EXPECT_REFUSED(torvio_convert(&sound, 180, 1, &result, &report, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_convert(NULL, 180, 0, &result, &report, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_convert(&sound, 180, 0, NULL, &report, &error), TORVIO_BAD_ARGUMENT, "result");

  EXPECT(is(torvio_recover(&cut, 0, &result, &report, &error), TORVIO_OK));
  EXPECT(report != NULL && strstr(report->data, "\"fault\":{") != NULL);
  if (result != NULL) {
    const torvio_input made = in_memory(result->data, result->size, "machine");
    torvio_buffer* const kept = result;
    EXPECT(is(torvio_check(&made, 0, &result, &error), TORVIO_OK));
    EXPECT(contains("\"verdict\":\"sound\",\"kind\":\"machine\",\"version\":54,"));
    torvio_free(kept);
  }
  torvio_free(report);
  release();
  EXPECT(is(torvio_recover(&sound, 0, &result, NULL, &error), TORVIO_OK));
  EXPECT(result != NULL && result->size == kMachineSize && memcmp(result->data, machine, kMachineSize) == 0);
  release();
  EXPECT_REFUSED(torvio_recover(&foreign, 0, &result, &report, &error), TORVIO_REFUSED, "version");
  EXPECT(report == NULL);
  EXPECT_REFUSED(torvio_recover(&sound, 1, &result, &report, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_recover(NULL, 0, &result, &report, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_recover(&sound, 0, NULL, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
}

static void names_and_forms(void) {
  EXPECT(is(torvio_schema("sheet", &result, &error), TORVIO_OK));
  EXPECT(contains("\"title\": \"A sheet file as JSON\""));
  release();
  EXPECT_REFUSED(torvio_schema("sheets", &result, &error), TORVIO_BAD_ARGUMENT, "kind");

  EXPECT(is(torvio_format("macro", NULL, &result, &error), TORVIO_OK));
  EXPECT(result != NULL && result->data[0] == '|');
  release();
  EXPECT(is(torvio_format("clamp-info", "markdown", &result, &error), TORVIO_OK));
  release();
  EXPECT(is(torvio_format("macro", "kaitai", &result, &error), TORVIO_OK));
  EXPECT(contains("meta:\n"));
  release();
  EXPECT_REFUSED(torvio_format("clamp-info", "kaitai", &result, &error), TORVIO_REFUSED, "Kaitai");
  EXPECT_REFUSED(torvio_format("macro", "pascal", &result, &error), TORVIO_BAD_ARGUMENT, "language");
  EXPECT_REFUSED(torvio_format("no record", NULL, &result, &error), TORVIO_BAD_ARGUMENT, "name");

  EXPECT(is(torvio_supported(&result, &error), TORVIO_OK));
  EXPECT(contains("{\"name\":\"group-part\",\"versions\":[[152,32767]],\"drawable\":true}"));
  EXPECT(contains("\"cp1252\"") && contains("\"clamp-info\"") && contains(torvio_version()));
  release();
}

/* Whatever is missing, there is a status and no result. */
static void wrong_arguments(void) {
  const torvio_input good = in_memory(machine, kMachineSize, "machine");
  torvio_input input = good;
  EXPECT_REFUSED(torvio_check(NULL, 0, &result, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_info(NULL, 0, &result, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_json(NULL, 0, &result, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_from_json(NULL, 0, 0, &result, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_map(NULL, NULL, NULL, 0, &result, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_draw(NULL, 0, &result, &error), TORVIO_BAD_ARGUMENT, "input");
  EXPECT_REFUSED(torvio_draw_page(NULL, 1, NULL, 0, &result, &error), TORVIO_BAD_ARGUMENT, "inputs");
  EXPECT_REFUSED(torvio_draw_page(&good, 0, NULL, 0, &result, &error), TORVIO_BAD_ARGUMENT, "count");
  EXPECT_REFUSED(torvio_schema(NULL, &result, &error), TORVIO_BAD_ARGUMENT, "kind");
  EXPECT_REFUSED(torvio_format(NULL, NULL, &result, &error), TORVIO_BAD_ARGUMENT, "name");
  EXPECT_REFUSED(torvio_check(&good, 0, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_info(&good, 0, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_json(&good, 0, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_from_json(&good, 0, 0, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_map(&good, NULL, NULL, 0, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_draw(&good, 0, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_draw_page(&good, 1, NULL, 0, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_schema("sheet", NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_format("sheet", NULL, NULL, &error), TORVIO_BAD_ARGUMENT, "result");
  EXPECT_REFUSED(torvio_supported(NULL, &error), TORVIO_BAD_ARGUMENT, "result");

  EXPECT_REFUSED(torvio_check(&good, 1, &result, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_info(&good, 4, &result, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_json(&good, TORVIO_PAGE, &result, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_from_json(&good, 0, 1, &result, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_map(&good, NULL, NULL, TORVIO_PRETTY, &result, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_draw(&good, UINT32_C(1) << 31, &result, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_draw_page(&good, 1, NULL, 1, &result, &error), TORVIO_BAD_ARGUMENT, "flags");
  EXPECT_REFUSED(torvio_map(&good, "[", NULL, 0, &result, &error), TORVIO_BAD_ARGUMENT, "find");
  EXPECT_REFUSED(torvio_map(&good, NULL, "9..8", 0, &result, &error), TORVIO_BAD_ARGUMENT, "range");
  EXPECT_REFUSED(torvio_map(&good, "width", NULL, TORVIO_PAGE, &result, &error), TORVIO_BAD_ARGUMENT, "page");

  input.kind = "machines";
  EXPECT_REFUSED(torvio_check(&input, 0, &result, &error), TORVIO_BAD_ARGUMENT, "kind");
  input = good;
  input.encoding = "UTF-8";
  EXPECT_REFUSED(torvio_info(&input, 0, &result, &error), TORVIO_BAD_ARGUMENT, "encoding");
  input = good;
  input.path = "both";
  EXPECT_REFUSED(torvio_check(&input, 0, &result, &error), TORVIO_BAD_ARGUMENT, "both");
  input.path = NULL;
  input.data = NULL;
  EXPECT_REFUSED(torvio_check(&input, 0, &result, &error), TORVIO_BAD_ARGUMENT, "neither");

  /* Errors need not be taken, and a file may have no bytes. */
  EXPECT(torvio_draw(NULL, 0, &result, NULL) == TORVIO_BAD_ARGUMENT && result == NULL);
  input = in_memory("", 0, NULL);
  EXPECT(torvio_check(&input, 0, &result, NULL) == TORVIO_DAMAGED && contains("\"size\":0"));
  release();
  torvio_free(NULL);
}

int main(int argc, char** argv) {
  const char* folder = argc > 1 ? argv[1] : ".";
  char path[1024];
  (void)snprintf(path, sizeof path, "%s/client_c.machine", folder);
  make_machine();
  EXPECT(written(path, machine, kMachineSize));
  sound_file(path);
  damaged_file(folder);
  unreadable_file(folder);
  differences();
  new_files();
  names_and_forms();
  wrong_arguments();
  EXPECT(sizeof(torvio_input) == 6 * sizeof(void*));
  printf("%d failures\n", failures);
  return failures != 0;
}
