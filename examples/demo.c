/* Builds a part through the shared library alone, saves it at three versions and asks each file. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "OldTorvIO.h"

static void expect(int holds, const char* what) {
  if (holds) return;
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

int main(int argc, char** argv) {
  static const int16_t versions[] = {62, 110, 180};
  char path[1024];
  size_t i;
  if (argc != 2) return 2;
  build();
  for (i = 0; i < sizeof versions / sizeof *versions; ++i) {
    expect(snprintf(path, sizeof path, "%s/cover_%d.part", argv[1], versions[i]) < 260, "a short folder name");
    expect(SaveTorvPart(path, versions[i]) == 0, "a save");
    printf("cover_%d.part\n", versions[i]);
    ask(path);
  }
  expect(SaveTorvPart(path, 63) == -1, "a version that part files do not have");
  expect(SaveTorvPart(path, 180) == 0, "the builder after a refused save");
  return 0;
}
