/* The main header compiled as C, and every export called from C through the shared library. */
#include <stdio.h>
#include <string.h>

#include "OldTorvIO.h"

static int failures = 0;
#define EXPECT(condition) ((condition) ? (void)0 : (void)(printf("line %d: %s\n", __LINE__, #condition), ++failures))

static int written(const char* path, const uint8_t* bytes, size_t size) {
  FILE* file = fopen(path, "wb");
  if (file == NULL) return 0;
  const int complete = fwrite(bytes, 1, size, file) == size;
  return fclose(file) == 0 && complete;
}

static int32_t integer_in(float bytes) {
  int32_t integer;
  memcpy(&integer, &bytes, sizeof integer);
  return integer;
}

/* An inventory of version 54 with one square tool; everything else is zero. */
static void query_inventory(const char* path) {
  enum { kToolCount = 2, kShapeCode = 170, kDimension1 = 182, kSize = 250 };
  uint8_t bytes[kSize] = {54};
  char name[257] = "unchanged";
  uint32_t count = 9;
  float f[16];
  int32_t n[2] = {9, 9};
  size_t i;
  for (i = 0; i < sizeof f / sizeof *f; ++i) f[i] = 9;
  bytes[kToolCount] = 1;
  bytes[kShapeCode] = 103;
  bytes[kDimension1 + 2] = 0x80; /* 1.0 */
  bytes[kDimension1 + 3] = 0x3F;

  EXPECT(LoadOldToolInventory(path, NULL) == -2);
  EXPECT(LoadOldToolInventoryForCount("/no/such/file", &count) == -2 && count == 0);
  EXPECT(written(path, bytes, kSize - 1));
  EXPECT(LoadOldToolInventoryForCount(path, &count) == 0 && count == 0);
  EXPECT(written(path, bytes, kSize));
  EXPECT(LoadOldToolInventoryForCount(path, &count) == 0 && count == 1);
  GetOldToolInventoryInformation(0, name, &f[0], &f[1], &f[2], &f[3], &n[0], &f[4], &f[5], &f[6], &f[7], &f[8], &f[9],
                                 &n[1], &f[10], &f[11], &f[12], &f[13], &f[14], &f[15]);
  EXPECT(strcmp(name, "SQUARE") == 0 && f[0] == 1 && f[1] == 0 && f[2] == 0 && f[3] == 0);
  EXPECT(n[0] == 0 && n[1] == 0);
  for (i = 4; i < sizeof f / sizeof *f; ++i) EXPECT(f[i] == 9); /* no values are set */
}

/* A machine of version 54 with one station and its rectangular tool; everything else is zero. */
static void query_machine(const char* path) {
  enum { kTextWidth = 2, kMachineText1 = 6, kKind = 7, kStationCount = 601, kStation = 605, kStationType = 613 };
  enum { kToolCount = 617, kShapeCode = 692, kBlockMode = 764, kClampCount = 806, kSize = 902 };
  uint8_t bytes[kSize] = {54};
  MachineInformation machine;
  char text[4][257];
  uint32_t kind = 9;
  float f[21], q[12];
  int32_t n[5] = {9, 9, 9, 9, 9};
  size_t i;
  for (i = 0; i < 4; ++i) strcpy(text[i], "unchanged");
  for (i = 0; i < sizeof f / sizeof *f; ++i) f[i] = 9;
  for (i = 0; i < sizeof q / sizeof *q; ++i) q[i] = 9;
  memset(&machine, 0, sizeof machine);
  bytes[kTextWidth] = 1;
  bytes[kMachineText1] = 'M';
  bytes[kKind] = 3;
  bytes[kStationCount] = 1;
  bytes[kStation] = 7;
  bytes[kStationType] = 2;
  bytes[kToolCount] = 1;
  bytes[kShapeCode] = 3;
  bytes[kBlockMode] = 3; /* a mode without blocks */
  bytes[kClampCount] = 2;

  EXPECT(LoadOldMachine(path, NULL) == -2);
  EXPECT(LoadOldMachineInformation("/no/such/file", &machine) == -2 && machine.infoVersion == 0);
  EXPECT(written(path, bytes, kSize - 1));
  EXPECT(LoadOldMachineInformation(path, &machine) == 0 && machine.infoVersion == 0);
  EXPECT(written(path, bytes, kSize));
  EXPECT(LoadOldMachineInformation(path, &machine) == 0);
  EXPECT(machine.infoVersion == 54 && machine.infoKind == 3 && machine.infoStationCount == 1);
  LoadOldStationToolFromMachine(0, &n[0], &n[1], &f[0], &f[1], &f[2], &n[2], &f[3], &f[9], &f[10], &f[11], &f[12],
                                &n[3], &f[13], &f[16], text[0], &f[19], &f[20], &n[4]);
  EXPECT(n[0] == 7 && n[1] == 2 && n[2] == 0 && n[3] == 3 && n[4] == 0 && strcmp(text[0], "unchanged") == 0);
  for (i = 0; i < sizeof f / sizeof *f; ++i) EXPECT(f[i] == 0);
  EXPECT(GetOldVLMQMachineName("/no/such/file", text[0], &kind, text[1], text[2], text[3]) == -2 && kind == 9);
  EXPECT(GetOldVLMQMachineName(path, text[0], &kind, text[1], text[2], text[3]) == 0 && kind == 3);
  for (i = 0; i < 4; ++i) EXPECT(text[i][0] == '\0');
  EXPECT(GetMachineDatasForQD(path, &q[0], &q[1], &q[2], &q[3], &q[4], &q[5], &q[6], &q[7], &q[8], &q[9], &q[10],
                              &q[11]) == 0);
  EXPECT(integer_in(q[2]) == 2 && integer_in(q[3]) == 3);
  for (i = 0; i < sizeof q / sizeof *q; ++i) EXPECT(i == 2 || i == 3 || q[i] == 0);
  EXPECT(GetMachineDatasForQD(NULL, &q[0], &q[1], &q[2], &q[3], &q[4], &q[5], &q[6], &q[7], &q[8], &q[9], &q[10],
                              &q[11]) == -2);
}

/* A fresh sheet: saved, loaded, queried, edited and freed. `part` is a part with two shapes. */
static void query_sheet(const char* path, const char* part) {
  static int32_t flags[601];
  char text[9][261], names[16] = "unchanged", tools[16] = "unchanged";
  float f[5] = {9, 9, 9, 9, 9}, positions[8];
  const float thickness = 0.048f; /* a variable: some hosts compare constants in extended precision */
  double late = 9;
  uint32_t word = 9, count = 9;
  int32_t length[2] = {9, 9};
  size_t i;
  OldSheet* none = NULL;
  OldSheet* loaded = NULL;
  OldSheet* sheet = CreateSheetInfo();
  for (i = 0; i < 9; ++i) strcpy(text[i], "unchanged");
  for (i = 0; i < 601; ++i) flags[i] = 9;

  /* Refused calls change nothing. */
  EXPECT(sheet != NULL);
  EXPECT(SaveOldSheet(path, NULL, 180) == -2);
  EXPECT(SaveOldSheet(NULL, sheet, 180) == -2);
  EXPECT(SaveOldSheet(path, sheet, 181) == -1);
  EXPECT(SaveOldSheet(path, sheet, 51) == -1);
  EXPECT(LoadOldSheet(path, NULL) == -2);
  EXPECT(LoadOldSheet(NULL, sheet) == -2);
  EXPECT(LoadOldSheet("/no/such/file", sheet) == -2);
  EXPECT(LoadOldSheetInformation(NULL) == -2);
  EXPECT(LoadOldSheetInformation("/no/such/file") == -2);
  EXPECT(GetOldSheetHandle(path, NULL) == -2);
  EXPECT(GetOldSheetHandle(NULL, &none) == -2);
  EXPECT(GetOldSheetHandle(path, &none) == -1 && none == NULL); /* the file of version 51 */
  EXPECT(GetOldSheetInfoByName(NULL, "width", text[0]) == -2);
  EXPECT(GetOldSheetInfoByName(sheet, NULL, text[0]) == -2);
  EXPECT(GetOldSheetInfoByName(sheet, "width", NULL) == -2);
  EXPECT(GetOldSheetInfoPartGroupIDs(NULL, text[0]) == -2);
  EXPECT(GetOldSheetInfo("/no/such/file", text[0], text[1], text[2], text[3], text[4], text[5], text[6], text[7],
                         text[8], &f[0], &f[1], &f[2], &late, names, 16, &length[0], tools, 16, &length[1]) == -2);
  EXPECT(GetOldClampInfo("/no/such/file", &word, &f[0], &f[1], &f[2], positions, &count, &f[3]) == -2);
  EXPECT(GetOldVLMQMaterialName("/no/such/file", text[0], text[1]) == -2);
  EXPECT(GetOldSkeletonUtil("/no/such/file", &f[4]) == -2);
  EXPECT(GetSheetDriverFlags(path, flags) == -1);
  EXPECT(GetSheetSequenceListSize(path, &count) == -1);
  EXPECT(ReplaceSheetMachineNcPath("/no/such/file", "NC") == -2);
  EXPECT(ReplaceSheetSknPatListWithPartPatList("/no/such/file", part) == -2);
  EXPECT(UpdateSheetPartWONumber(NULL, "PART", NULL, "WO") == -2);
  EXPECT(UpdateSheetPartWONumber(path, NULL, NULL, "WO") == -2);
  EXPECT(UpdateSheetPartWONumber(path, "PART", NULL, NULL) == -2);
  EXPECT(UpdateSheetPartWONumber("/no/such/file", "PART", NULL, "WO") == -2);
  for (i = 0; i < 9; ++i) EXPECT(strcmp(text[i], "unchanged") == 0);
  for (i = 0; i < 5; ++i) EXPECT(f[i] == 9);
  for (i = 0; i < 601; ++i) EXPECT(flags[i] == 9);
  EXPECT(late == 9 && word == 9 && count == 9 && length[0] == 9 && length[1] == 9);
  EXPECT(strcmp(names, "unchanged") == 0 && strcmp(tools, "unchanged") == 0);

  EXPECT(SaveOldSheet(path, sheet, 180) == 0);
  EXPECT(LoadOldSheet(path, sheet) == 0);
  EXPECT(LoadOldSheetInformation(path) == 0);
  EXPECT(GetOldSheetHandle(path, &loaded) == 0 && loaded != NULL);
  EXPECT(GetOldSheetInfoByName(loaded, "Width", text[0]) == 0 && strcmp(text[0], "60.000000") == 0);
  EXPECT(GetOldSheetInfoByName(loaded, "no key", text[1]) == 0 && strcmp(text[1], "unchanged") == 0);
  EXPECT(GetOldSheetInfoPartGroupIDs(loaded, text[1]) == 0 && text[1][0] == '\0');
  EXPECT(GetOldSheetInfo(path, text[0], text[1], text[2], text[3], text[4], text[5], text[6], text[7], text[8], &f[0],
                         &f[1], &f[2], &late, names, 1, &length[0], tools, 16, &length[1]) == 0);
  EXPECT(strcmp(text[0], ".mat") == 0 && strcmp(text[8], ".mat") == 0);
  for (i = 1; i < 8; ++i) EXPECT(text[i][0] == '\0');
  EXPECT(f[0] == 60 && f[1] == 45 && f[2] == thickness && late == 0);
  EXPECT(length[0] == 1 && strcmp(names, "unchanged") == 0 && length[1] == 1 && strcmp(tools, ",") == 0);
  EXPECT(GetOldClampInfo(path, &word, &f[0], &f[1], &f[2], positions, &count, &f[3]) == 0);
  EXPECT(word == 0 && f[0] == 0 && f[1] == 0 && f[2] == 0 && count == 2 && f[3] == 5.5f);
  for (i = 0; i < 8; ++i) EXPECT(positions[i] == 5.5f * (float)(i + 1));
  EXPECT(GetOldVLMQMaterialName(path, text[7], text[8]) == 0 && text[7][0] == '\0' && text[8][0] == '\0');
  EXPECT(GetOldSkeletonUtil(path, &f[4]) == 0 && f[4] == 0);
  EXPECT(GetSheetDriverFlags(path, flags) == 0);
  for (i = 0; i < 601; ++i) EXPECT(flags[i] == 0);
  EXPECT(GetSheetSequenceListSize(path, &count) == 0 && count == 0);

  EXPECT(ReplaceSheetMachineNcPath(path, "NC") == 0);
  EXPECT(ReplaceSheetSknPatListWithPartPatList(path, "/no/such/file") == -2);
  EXPECT(ReplaceSheetSknPatListWithPartPatList(path, part) == 0);
  EXPECT(UpdateSheetPartWONumber(path, "PART", NULL, "WO") == 0);
  EXPECT(LoadOldSheet(path, sheet) == 0);

  FreeSheetHandle(loaded);
  FreeSheetHandle(NULL);
  DeleteSheetInfo(sheet);
  DeleteSheetInfo(NULL);
}

/* The named types are the ones that the functions use: a pointer to each function takes its address without a cast. */
static void name_the_types(void) {
  Status (*load)(const char*, OldSheet*) = LoadOldSheet;
  Status (*save)(const char*, VersionWord) = SaveTorvPart;
  Status32 (*information)(const char*) = LoadOldSheetInformation;
  const Status status = load("", NULL);
  const Status32 status32 = information("");
  EXPECT(status == -2 && status32 == -2 && save("", 180) == -2);
  EXPECT(sizeof(Status) == 8 && sizeof(Status32) == 4 && sizeof(VersionWord) == 2);
  EXPECT((Status)-1 < 0 && (Status32)-1 < 0 && (VersionWord)-1 < 0);
}

int main(int argc, char** argv) {
  const uint32_t values[9] = {0};
  char path[1024], sheet_path[1024], text[1024] = "unchanged";
  float a = 1, b = 2, c = 3, f = 4;
  uint32_t length = 5;
  int32_t number = 6;
  uint8_t late = 7;
  SheetPartList* list = CreateOldPartlistInfo();
  (void)snprintf(path, sizeof path, "%s/client_c.part", argc > 1 ? argv[1] : ".");
  (void)snprintf(sheet_path, sizeof sheet_path, "%s/client_c.sheet", argc > 1 ? argv[1] : ".");

  name_the_types();
  EXPECT(list != NULL);
  InitTorvPart(1.5f, 2.5f, 0.25f, -1, NULL, NULL, NULL, NULL, NULL, NULL);
  EXPECT(SaveTorvPart(path, 180) == -2); /* no shape yet */
  EXPECT(AddPatternToTorvPart(1, 2, 3, 4, values, 5, 6, 7, 8, 9, 10, NULL, 11, 12, 13, 14) == 1);
  EXPECT(AddPatIntoGroupPat(1, 1, 2, 3, 0, values) == 2);
  EXPECT(AddPatIntoGroupPat(0, 1, 2, 3, 0, values) == 0);
  EXPECT(AddGroupPatIntoTorvPart(1, 2, 3, NULL) == -1);
  EXPECT(SaveTorvPart(path, 63) == -1);
  EXPECT(SaveTorvPart(path, 180) == 0);

  EXPECT(LoadOldPart(path, NULL) == -2);
  EXPECT(GetOldPartInfo(NULL, text, &a, &b, &c) == -2 && strcmp(text, "unchanged") == 0 && a == 1);
  EXPECT(GetOldPartInfo(path, text, &a, &b, &c) == 0 && text[0] == '\0' && a == 1.5f && b == 2.5f && c == 0.25f);
  EXPECT(GetOldPartInfo_v1(path, "thickness", text) == 0 && strcmp(text, "0.25") == 0);
  EXPECT(GetOldPartInfo_v1(path, NULL, text) == 1);
  EXPECT(GetOldPartTool(path, text, (int32_t)sizeof text, &length) == 0 && length == 0 && text[0] == '\0');
  EXPECT(GetOldSptFromPart(path, text) == 0 && text[0] == '\0');
  EXPECT(GetOldSptFromGroupPart(path, text, 1, &length) == 1);
  EXPECT(LoadGroupPart("/no/such/file", list) == -2);
  EXPECT(LoadOldSpecialTool(path, NULL) == -2);
  EXPECT(OpenSpecialToolFile("/no/such/file", &length, &f, &f, &f, &f, &f, &number, &f, &f, &f, &f, &f, &f, &number, &f,
                             &f, &f, &f, &f, &f, &f, &f, &late) == -2);
  EXPECT(length == 0 && f == 4 && number == 6 && late == 7);
  GetShapeAt(0, &number, &f, &f, &f, &f, &f, &f);
  EXPECT(number == 6 && f == 4);
  DeleteOldPartlistInfo(list);
  DeleteOldPartlistInfo(NULL);
  EXPECT(LoadOldMaterial(path, NULL) == -2);
  EXPECT(LoadOldMacro(path, NULL) == -2);
  query_sheet(sheet_path, path);
  query_inventory(path);
  query_machine(path);
  (void)remove(path);
  (void)remove(sheet_path);
  printf("%d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
