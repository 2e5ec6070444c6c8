/* Builds a part with the functions of the shared library, saves it at three versions and queries each file; then
 * queries the sample files of a machine and of a tool inventory. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "OldTorvIO.h"

static void expect(int condition, const char* what) {
  if (condition) return;
  fprintf(stderr, "unexpected: %s\n", what);
  exit(1);
}

static void build(void) {
  const uint32_t values[9] = {0x3F000000u, 0x3F800000u}; /* 0.5 and 1.0 as bits */
  InitTorvPart(24.0f, 12.5f, 0.06f, 1, "COVER PLATE", "CABINET", "STEEL", "first custom text", NULL, NULL);
  expect(AddPatternToTorvPart(1.0f, 1.0f, 1, 0, values, 0, 0, 0, 0, 0, 0, NULL, 0, 0, 0, 0) == 1, "a plain shape");
  expect(AddPatternToTorvPart(2.0f, 1.0f, 2, 0, values, 16, 0.25f, 1, 2, 3, 4, "corner punch", -1, 7, 0, 0) == 2,
         "a shape punched by a named special tool");
  expect(AddPatternToTorvPart(2.0f, 2.0f, 2, 0, values, 0, 0, 0, 0, 0, 0, "no such tool", 0, 0, 0, 0) == -1,
         "a tool that does not exist");
  expect(AddGroupPatIntoTorvPart(5.0f, 6.0f, 4.0f, "Corner Punch") == 7, "a group of four members");
  expect(AddPatIntoGroupPat(3, 5.5f, 6.5f, 1, 0, values) == 8, "a fifth member");
}

static void ask(const char* path) {
  static const char* const keys[] = {"angle", "Revision", "MatType", "Thickness"};
  char text[1024] = "";
  float width = 0, height = 0, thickness = 0;
  uint32_t length = 0;
  size_t i;

  expect(GetOldPartInfo(path, text, &width, &height, &thickness) == 0, "the part's size");
  printf("  size %g x %g x %g, material type \"%s\"\n", width, height, thickness, text);
  for (i = 0; i < sizeof keys / sizeof *keys; ++i) {
    expect(GetOldPartInfo_v1(path, keys[i], text) == 0, keys[i]);
    printf("  %s = \"%s\"\n", keys[i], text);
  }
  expect(GetOldPartTool(path, text, (int32_t)sizeof text, &length) == 0 && length == strlen(text), "the tools");
  printf("  tools \"%s\"\n", text);
  text[0] = '\0';
  expect(GetOldSptFromPart(path, text) == 0, "the special tools");
  printf("  special tools \"%s\"\n", text);
}

/* An integer that was returned in the bytes of a float. */
static int32_t integer_in(float bytes) {
  int32_t integer;
  memcpy(&integer, &bytes, sizeof integer);
  return integer;
}

static void query_station(int32_t index) {
  int32_t number, type, value_count, shape_code, word;
  float orientation, real, value, values[6], limits[4], dimensions[3], offsets[3], pair[2];
  char path[257] = ""; /* unchanged unless it is a special tool */
  LoadOldStationToolFromMachine(index, &number, &type, &orientation, &real, &value, &value_count, values, &limits[0],
                                &limits[1], &limits[2], &limits[3], &shape_code, dimensions, offsets, path, &pair[0],
                                &pair[1], &word);
  printf("  station %d: tool %d, %g x %g, reaches %g, %g to %g, %g, %d values from %g on", (int)number, (int)shape_code,
         dimensions[0], dimensions[1], limits[0], limits[1], limits[2], limits[3], (int)value_count, values[0]);
  printf(path[0] != '\0' ? ", \"%s\"\n" : "%s\n", path);
}

static void query_machine(const char* path) {
  MachineInformation machine = {0};
  char name[257] = "", text[257] = "", second[257] = "", late[257] = "";
  uint32_t kind = 0;
  float size[2], clamps, mode, stations[4], area[4];
  int32_t i;

  expect(LoadOldMachineInformation(path, &machine) == 0 && machine.infoStationCount == 3, "three stations");
  printf("  \"%.256s\" in \"%.256s\", version %d, station mode %d, extra words %u and %u\n", machine.infoText2,
         machine.infoText1, (int)machine.infoVersion, (int)machine.infoStationMode, (unsigned)machine.infoExtra1,
         (unsigned)machine.infoExtra2);
  for (i = 0; i < machine.infoStationCount; ++i) query_station(i);
  expect(GetOldVLMQMachineName(path, name, &kind, text, second, late) == 0, "the machine's name");
  printf("  name \"%s\", kind %u, texts \"%s\", \"%s\", \"%s\"\n", name, (unsigned)kind, text, second, late);
  expect(GetMachineDatasForQD(path, &size[0], &size[1], &clamps, &mode, &stations[0], &stations[1], &stations[2],
                              &stations[3], &area[0], &area[1], &area[2], &area[3]) == 0,
         "the machine's size");
  printf("  %g x %g, %d clamps, block mode %d, stations %g, %g to %g, %g, area %g, %g, %g, %g\n", size[0], size[1],
         (int)integer_in(clamps), (int)integer_in(mode), stations[0], stations[1], stations[2], stations[3], area[0],
         area[1], area[2], area[3]);
}

static void query_tool(int32_t index) {
  char name[257] = "";
  float dimensions[3], orientation, first[6], second[6];
  int32_t first_count, second_count, i;
  GetOldToolInventoryInformation(index, name, &dimensions[0], &dimensions[1], &dimensions[2], &orientation,
                                 &first_count, &first[0], &first[1], &first[2], &first[3], &first[4], &first[5],
                                 &second_count, &second[0], &second[1], &second[2], &second[3], &second[4], &second[5]);
  printf("  \"%s\" %g x %g, turned by %g", name, dimensions[0], dimensions[1], orientation);
  expect(first_count <= 6, "at most six values");
  for (i = 0; i < first_count; ++i) printf("%s %g", i == 0 ? ", values" : "", first[i]);
  printf("\n");
}

static void query_inventory(const char* path) {
  uint32_t count = 0, i;
  expect(LoadOldToolInventoryForCount(path, &count) == 0 && count == 3, "three tools");
  for (i = 0; i < count; ++i) query_tool((int32_t)i);
}

static void in_folder(char* path, size_t size, const char* folder, const char* name) {
  expect(snprintf(path, size, "%s/%s", folder, name) < 260, "a short folder name");
  printf("%s\n", name);
}

int main(int argc, char** argv) {
  static const int16_t versions[] = {62, 110, 180};
  char path[1024];
  size_t i;
  if (argc != 2) {
    fprintf(stderr,
            "usage: example_demo FOLDER\n"
            "FOLDER has the files of make_samples and is the configured folder of special tools: examples/demo.sh\n"
            "prepares it and runs this program.\n");
    return 2;
  }
  build();
  for (i = 0; i < sizeof versions / sizeof *versions; ++i) {
    expect(snprintf(path, sizeof path, "%s/cover_%d.part", argv[1], versions[i]) < 260, "a short folder name");
    expect(SaveTorvPart(path, versions[i]) == 0, "a save");
    printf("cover_%d.part\n", versions[i]);
    ask(path);
  }
  expect(SaveTorvPart(path, 63) == -1, "a version that part files do not have");
  expect(SaveTorvPart(path, 180) == 0, "the builder after a refused save");

  in_folder(path, sizeof path, argv[1], "punch.mch");
  query_machine(path);
  in_folder(path, sizeof path, argv[1], "shop.inv");
  query_inventory(path);
  return 0;
}
