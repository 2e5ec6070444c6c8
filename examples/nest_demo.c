/* Calls every query on the sheets that nest.cpp makes, edits copies of them and queries these, using only the
 * functions of the shared library. Every result is compared with the known contents of the nest. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "OldTorvIO.h"

enum { kParts = 12, kPunches = 36, kFlags = 601, kRoom = 16384 };

static char found[kRoom], wanted[kRoom];

static void expect(int condition, const char* what) {
  if (condition) return;
  fprintf(stderr, "unexpected: %s\n", what);
  exit(1);
}

static void expect_text(const char* text, const char* wish, const char* what) {
  if (strcmp(text, wish) == 0) return;
  fprintf(stderr, "unexpected: %s: \"%s\" and not \"%s\"\n", what, text, wish);
  exit(1);
}

/* Appends to the wanted text. */
#define WANT(...) ((void)snprintf(wanted + strlen(wanted), kRoom - strlen(wanted), __VA_ARGS__))

static void print_start(const char* name, const char* text) {
  printf(strlen(text) < 80 ? "  %s = \"%s\"\n" : "  %s = \"%.72s...\"\n", name, text);
}

/* ---- What a version keeps ---- */

static int keeps_order(int version) { return version >= 162; }
static int keeps_skeleton(int version) { return version >= 100; }
/* Below version 152 a load misreads what follows the machine: see docs/quirks.md. */
static int keeps_end(int version) { return version >= 152; }

/* ---- The tools ---- */

static void want_punch(int number) {
  const double length = 0.03125 * number;
  if (number == 9) return; /* same text as the one before it */
  WANT("%d %6.3f %6.3f %6.3f %6.3f,", number <= 24 ? 1 : 3, length, number <= 24 ? 0 : 0.25, 0.0, 0.0);
}

/* In order of first use: those of the parts, of the sheet's items, of its slot, and the laser. */
static void want_tools(int version) {
  int i;
  strcpy(wanted, ",");
  for (i = 4; i <= kPunches; ++i) want_punch(i);
  for (i = 1; i <= 3; ++i) want_punch(i);
  WANT("108 Corner Punch  0.500,");
  if (version >= 90) WANT("103  1.188  0.250  0.000  0.000,");
  WANT("33  1.250  0.250  0.000  0.000,");
}

static void query_info(const char* path, int version) {
  char text[9][261], names[kRoom] = "unchanged";
  const char* const end[5] = {"MILD STEEL", "DC01", "OILED", "GRAIN ALONG X", "STOCK 17"};
  float width = 0, height = 0, thickness = 0;
  double late = -1;
  int32_t names_length = 0, tools_length = 0;
  int i;
#define ASK(names_size, tools_size)                                                                               \
  (GetOldSheetInfo(path, text[0], text[1], text[2], text[3], text[4], text[5], text[6], text[7], text[8], &width, \
                   &height, &thickness, &late, names, names_size, &names_length, found, tools_size,               \
                   &tools_length) == 0)
  /* Without room first: only the lengths are set. */
  expect(ASK(0, 0) && strcmp(names, "unchanged") == 0, "a text without room");
  expect(names_length < kRoom && tools_length < kRoom, "the lengths");
  expect(ASK(names_length, tools_length + 1) && strcmp(names, "unchanged") == 0, "a text without room for its NUL");
  want_tools(version);
  expect_text(found, wanted, "the tools");
  expect(tools_length == (int32_t)strlen(wanted), "the length of the tools");
  expect(ASK(names_length + 1, 0), "the names");
#undef ASK
  strcpy(wanted, ",");
  for (i = 1; i <= kParts; ++i) WANT("BRACKET %02d,", i);
  expect_text(names, wanted, "the names");

  expect_text(text[0], "STEEL 0.0625.mat", "the material's name");
  expect_text(text[8], text[0], "the material's file");
  for (i = 0; i < 5; ++i) expect_text(text[i + 1], keeps_end(version) ? end[i] : "", "a text of the material");
  expect_text(text[6], "C:\\KESTRADA\\MACHINES\\TP-40L.mch", "the machine");
  expect_text(text[7], "NEST 4711", "the label");
  expect(width == 96 && height == 48 && thickness == 0.0625f, "the plate");
  expect(late == (keeps_end(version) ? 7.875 : 0), "the late value");
  printf("  \"%s\", %g x %g x %g, \"%s\" of \"%s\" \"%s\" \"%s\" \"%s\" \"%s\", %g\n  machine \"%s\"\n", text[7], width,
         height, thickness, text[0], text[1], text[2], text[3], text[4], text[5], late, text[6]);
  print_start("names", names);
  print_start("tools", found);
}

static void query_small(const char* path, int version) {
  static int32_t flags[kFlags];
  static const float positions[8] = {6, 18, 30, 42, 27.5f, 33, 38.5f, 44}; /* four of this machine, and the defaults */
  char text3[257] = "", text5[257] = "";
  float value[3], place[8], spacing = 0, utilization = -1;
  uint32_t word = 0, count = 0;
  int i;
  expect(GetOldClampInfo(path, &word, &value[0], &value[1], &value[2], place, &count, &spacing) == 0, "the clamps");
  expect(word == 5 && value[0] == 1.5f && value[1] == 2.5f && value[2] == 3.5f && count == 3 && spacing == 8,
         "the sheet's clamps");
  expect(memcmp(place, positions, sizeof place) == 0, "the positions of the machine's clamps");
  printf("  %u clamps, %g apart, the machine's at %g, %g, %g, %g\n", (unsigned)count, spacing, place[0], place[1],
         place[2], place[3]);
  expect(GetOldVLMQMaterialName(path, text3, text5) == 0, "two texts");
  expect_text(text3, keeps_end(version) ? "COLD ROLLED" : "", "the third text");
  expect_text(text5, keeps_end(version) ? "RACK 12" : "", "the fifth text");
  expect(GetOldSkeletonUtil(path, &utilization) == 0, "the utilization");
  expect(utilization == (keeps_end(version) ? 0.45703125f : 0), "the utilization of the plate");
  printf("  \"%s\", \"%s\", utilization %g\n", text3, text5, utilization);

  memset(flags, 0xFF, sizeof flags);
  expect(GetSheetDriverFlags(path, flags) == 0, "the driver flags");
  for (i = 0; i < kFlags; ++i) expect(flags[i] == (i == 55 ? 4 : i == 101 ? -1 : i == 600 ? 7 : 0), "each driver flag");
  expect(GetSheetSequenceListSize(path, &count) == 0 && count == 60, "the sequence");
  printf("  driver flags 55, 101, 600: %d, %d, %d; %u work entries\n", (int)flags[55], (int)flags[101], (int)flags[600],
         (unsigned)count);
}

/* ---- The keys ---- */

typedef struct Nest {
  int version;
  int parts;              /* their number */
  const char* order_of_5; /* the work order of the fifth part, NULL for that of its neighbours */
  const char* cut_area;
} Nest;

static const char* order(const Nest* nest, int part) {
  if (part == 5 && nest->order_of_5 != NULL) return nest->order_of_5;
  if (!keeps_order(nest->version)) return "";
  return part <= kParts / 2 ? "WO-7001" : "WO-7002";
}

/* The lists end without the "|" after their last element. */
static void lose_the_bar(void) {
  if (wanted[0] != '\0') wanted[strlen(wanted) - 1] = '\0';
}

static void want_paths(const Nest* nest) {
  int i;
  for (i = 1; i <= nest->parts; ++i) WANT("C:\\KESTRADA\\PARTS\\BRACKET %02d.part |5 |", i);
  lose_the_bar();
}
static void want_paths_and_orders(const Nest* nest) {
  int i;
  for (i = 1; i <= nest->parts; ++i) WANT("C:\\KESTRADA\\PARTS\\BRACKET %02d.part |5 |%s |", i, order(nest, i));
  lose_the_bar();
}
static void want_names_and_orders(const Nest* nest) {
  int i;
  for (i = 1; i <= nest->parts; ++i) WANT("BRACKET %02d |5 |%s |", i, order(nest, i));
  lose_the_bar();
}
static void want_details(const Nest* nest) {
  int i;
  for (i = 1; i <= nest->parts; ++i)
    WANT("C:\\KESTRADA\\PARTS\\BRACKET %02d.part|%f|%f|5|%s|;|", i, 4 + 0.5 * i, 3 + 0.25 * i, order(nest, i));
  lose_the_bar();
}
static void want_groups(const Nest* nest) {
  int i;
  for (i = 1; i <= nest->parts; ++i) {
    WANT("%d|", 100 + i);
    if (i % 2 == 1) WANT("%d|", 200 + i);
    WANT(",");
  }
}

static void want_group(const Nest* nest) { WANT("%s", keeps_end(nest->version) ? "MILD STEEL" : ""); }
static void want_type(const Nest* nest) { WANT("%s", keeps_end(nest->version) ? "DC01" : ""); }
static void want_width(const Nest* nest) { WANT("96.000000"), (void)nest; }
static void want_height(const Nest* nest) { WANT("48.000000"), (void)nest; }
static void want_thickness(const Nest* nest) { WANT("0.062500"), (void)nest; }
static void want_count(const Nest* nest) { WANT("%d", nest->parts); }
static void want_skeleton(const Nest* nest) {
  WANT("%s", keeps_skeleton(nest->version) ? "C:\\KESTRADA\\SKELETON\\REST 18%.part" : "");
}
static void want_area(const Nest* nest) { WANT("%s", nest->cut_area); }
static void want_utilization(const Nest* nest) { WANT("%s", keeps_end(nest->version) ? "0.457031" : "0.000000"); }
static void want_sequence(const Nest* nest) { WANT("60"), (void)nest; }

static void query_keys(const char* path, const Nest* nest) {
  static const struct {
    const char* key;
    void (*want)(const Nest*);
  } keys[] = {{"Material_Group", want_group},
              {"width", want_width},
              {"height", want_height},
              {"part_count", want_count},
              {"partfulldosname_and_count", want_paths},
              {"partfulldosname_and_count_and_wonumber", want_paths_and_orders},
              {"partname_and_count_and_wonumber", want_names_and_orders},
              {"part_details_01", want_details},
              {"sheet_mat_type", want_type},
              {"sheet_thickness", want_thickness},
              {"preSkeletonDosName", want_skeleton},
              {"totalSknPartCutArea", want_area},
              {"sheet_utilization", want_utilization},
              {"SHEET_SEQUENCE_SIZE", want_sequence}}; /* case does not matter */
  OldSheet* sheet = NULL;
  OldSheet* mine = CreateSheetInfo();
  size_t i;
  expect(GetOldSheetHandle(path, &sheet) == 0 && sheet != NULL, "a handle");
  for (i = 0; i < sizeof keys / sizeof *keys; ++i) {
    expect(GetOldSheetInfoByName(sheet, keys[i].key, found) == 0, keys[i].key);
    wanted[0] = '\0';
    keys[i].want(nest);
    expect_text(found, wanted, keys[i].key);
    print_start(keys[i].key, found);
  }
  expect(GetOldSheetInfoByName(sheet, "colour", strcpy(found, "unchanged")) == 0, "an unknown key");
  expect_text(found, "unchanged", "an unknown key");
  expect(GetOldSheetInfoPartGroupIDs(sheet, found) == 0, "the groups");
  wanted[0] = '\0';
  want_groups(nest);
  expect_text(found, wanted, "the groups");
  print_start("groups", found);
  FreeSheetHandle(sheet);

  /* The same file, loaded into an existing sheet. */
  expect(mine != NULL && LoadOldSheet(path, mine) == 0, "a load");
  expect(GetOldSheetInfoByName(mine, "part_count", found) == 0 && atoi(found) == nest->parts, "the parts of a load");
  DeleteSheetInfo(mine);
}

/* ---- Files ---- */

typedef struct Bytes {
  char* data;
  size_t size;
} Bytes;

static Bytes bytes_of(const char* path) {
  Bytes bytes = {NULL, 0};
  FILE* file = fopen(path, "rb");
  long size = 0;
  expect(file != NULL && fseek(file, 0, SEEK_END) == 0 && (size = ftell(file)) > 0, "a file");
  rewind(file);
  bytes.size = (size_t)size;
  bytes.data = malloc(bytes.size);
  expect(bytes.data != NULL && fread(bytes.data, 1, bytes.size, file) == bytes.size, "its bytes");
  (void)fclose(file);
  return bytes;
}

static void copy_file(const char* from, const char* to) {
  Bytes bytes = bytes_of(from);
  FILE* file = fopen(to, "wb");
  expect(file != NULL && fwrite(bytes.data, 1, bytes.size, file) == bytes.size && fclose(file) == 0, "a copy");
  free(bytes.data);
}

static int same_bytes(const char* path, const Bytes* before) {
  Bytes now = bytes_of(path);
  const int same = now.size == before->size && memcmp(now.data, before->data, now.size) == 0;
  free(now.data);
  return same;
}

static int holds_text(const char* path, const char* text) {
  Bytes bytes = bytes_of(path);
  const size_t length = strlen(text) + 1; /* with its NUL */
  size_t i;
  int found = 0;
  for (i = 0; !found && i + length <= bytes.size; ++i) found = memcmp(bytes.data + i, text, length) == 0;
  free(bytes.data);
  return found;
}

/* ---- The edits ---- */

static void edit(const char* path, const char* part) {
  Nest nest = {180, kParts, "WO-8000", "19.750000"};
  Bytes before = bytes_of(path);

  expect(ReplaceSheetMachineNcPath(path, "c:\\kestrada\\nc\\") == 0 && same_bytes(path, &before),
         "the NC path in another case");
  expect(ReplaceSheetMachineNcPath(path, "D:\\NC\\HALL2\\") == 0 && !same_bytes(path, &before), "another NC path");
  expect(holds_text(path, "D:\\NC\\HALL2\\") && !holds_text(path, "C:\\KESTRADA\\NC\\"), "the NC path in the file");
  expect(ReplaceSheetMachineNcPath(path, "C:\\KESTRADA\\NC\\") == 0, "the NC path from before");
  expect(same_bytes(path, &before), "the file as it was before both edits");
  printf("  the NC path replaced and put back\n");

  expect(UpdateSheetPartWONumber(path, "BRACKET 05", "WO-7002", "WO-8000") == 0 && same_bytes(path, &before),
         "a work order that the part does not have");
  expect(UpdateSheetPartWONumber(path, "BRACKET 05", "WO-7001", "WO-8000") == 0, "another work order");
  printf("  another work order for one part\n");
  query_info(path, nest.version);
  query_keys(path, &nest);

  expect(ReplaceSheetSknPatListWithPartPatList(path, "no such part") == -2, "a part that does not exist");
  expect(ReplaceSheetSknPatListWithPartPatList(path, part) == 0, "a part as skeleton");
  printf("  a part as skeleton\n");
  nest.parts = 0;
  nest.cut_area = "0.000000";
  query_keys(path, &nest);
  free(before.data);
}

/* A save below version 152 stores more of the machine than a load of that version expects. In a sheet that is
 * loaded and saved again, the surplus is read as the lists that follow the machine. */
static void edit_old(const char* path) {
  OldSheet* sheet = NULL;
  expect(ReplaceSheetMachineNcPath(path, "D:\\NC\\HALL2\\") == 0, "an edit returns 0 whatever happens");
  expect(GetOldSheetHandle(path, &sheet) == 1 && sheet == NULL, "a sheet of version 112 after an edit");
  printf("  cannot be loaded any more, as docs/quirks.md warns\n");
}

static const char* in_folder(char* path, const char* folder, const char* name) {
  expect(snprintf(path, 260, "%s/%s", folder, name) < 260, "a short folder name");
  return path;
}

int main(int argc, char** argv) {
  static const int versions[] = {180, 112, 80};
  char path[260], copy[260], part[260], name[40];
  size_t i;
  if (argc != 2) {
    fprintf(stderr,
            "usage: example_nest_demo FOLDER\n"
            "FOLDER has the files of example_nest and example_demo: examples/demo.sh prepares it and runs this\n"
            "program.\n");
    return 2;
  }
  for (i = 0; i < sizeof versions / sizeof *versions; ++i) {
    const Nest nest = {versions[i], kParts, NULL, keeps_skeleton(versions[i]) ? "19.750000" : "0.000000"};
    (void)snprintf(name, sizeof name, "nest_%d.sheet", versions[i]);
    printf("%s\n", name);
    in_folder(path, argv[1], name);
    expect(LoadOldSheetInformation(path) == 0, "the current sheet");
    query_info(path, nest.version);
    query_small(path, nest.version);
    query_keys(path, &nest);
  }
  expect(LoadOldSheetInformation("no such file") == -2, "a sheet that does not exist");

  printf("edited.sheet, a copy of nest_180.sheet\n");
  copy_file(in_folder(path, argv[1], "nest_180.sheet"), in_folder(copy, argv[1], "edited.sheet"));
  edit(copy, in_folder(part, argv[1], "cover_180.part"));
  printf("edited_112.sheet, a copy of nest_112.sheet\n");
  copy_file(in_folder(path, argv[1], "nest_112.sheet"), in_folder(copy, argv[1], "edited_112.sheet"));
  edit_old(copy);
  return 0;
}
