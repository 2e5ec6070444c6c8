// A material: rules, tool sets and settings for machining sheets of this material.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "OldTorvIO/material_parts.h"
#include "OldTorvIO/param_table.h"

namespace oldtorvio {

// About 62 KiB without its lists: allocate it on the heap. A material file of version 52, 60, 500, 501 or 502 stores
// only params; a machine stores everything but path, version and params.
struct OldMaterial {
  char path[264] = {};  // path of the file that LoadOldMaterial loaded, its first 263 characters
  std::string name;     // at most 10000 bytes
  std::vector<MaterialEntry> entryList;
  MaterialToolSetTable toolSets;
  MaterialPalette palette;
  MaterialStageTable stages;
  MaterialRuleLists rules;
  std::uint32_t modeA = 0;
  std::uint32_t modeB = 0;  // a load changes 6 to 10
  std::uint32_t modeC = 0;
  SettingList settingLists[6];

  // The scalar settings, numbered in stored order.
  std::uint32_t setting1 = 0;
  std::uint32_t setting2 = 0, setting3 = 0, setting4 = 0, setting5 = 0, setting6 = 0, setting7 = 0;
  std::uint32_t setting8 = 0, setting9 = 0;
  std::int32_t setting10 = 1, setting11 = 1;
  std::uint32_t setting12 = 0;
  std::uint8_t setting13 = 0;

  // since 90
  std::uint32_t setting14 = 0;
  float setting15 = 0.02F;
  float setting16 = 80.0F, setting17 = 80.0F;
  float setting18 = 12.0F, setting19 = 12.0F;
  std::uint32_t setting20 = 0, setting21 = 0, setting22 = 0, setting23 = 0, setting24 = 0;
  std::uint32_t setting25 = 0, setting26 = 0, setting27 = 0, setting28 = 0, setting29 = 0;
  std::uint32_t setting30 = 0, setting31 = 0, setting32 = 0, setting33 = 0, setting34 = 0;

  // since 130
  float setting35 = 0.02F;
  float setting36 = 80.0F;
  float setting37 = 12.0F;
  float setting38 = 80.0F;
  float setting39 = 12.0F;
  std::uint32_t setting40 = 0;

  // since 141
  std::uint32_t setting41 = 0;

  // since 154
  std::uint8_t setting42 = 0;
  float setting43 = 0.5F;
  std::uint32_t setting44 = 0;

  // since 159
  std::uint32_t setting45 = 0, setting46 = 0;
  float setting47 = 1.5F, setting48 = 1.5F;
  std::uint32_t setting49 = 0;
  std::int32_t setting50 = 1, setting51 = 1;
  float setting52 = -0.125F;
  float setting53 = 0.048F;
  std::uint8_t setting54 = 0;
  std::uint32_t setting55 = 0;

  // since 161
  std::uint8_t setting56 = 1, setting57 = 1;
  float setting58 = 1.5F, setting59 = 1.5F;
  float setting60 = 0.5F, setting61 = 0.5F;
  float setting62 = 20.0F, setting63 = 20.0F, setting64 = 20.0F;
  float setting65 = 20.0F, setting66 = 20.0F, setting67 = 20.0F;
  std::uint8_t setting68 = 0, setting69 = 0, setting70 = 0, setting71 = 0, setting72 = 0, setting73 = 0;
  std::uint32_t setting74 = 0, setting75 = 0, setting76 = 0, setting77 = 0, setting78 = 0, setting79 = 0;
  float setting80 = 0.85F;
  float setting81 = 0.5F;
  float setting82 = 0.25F;
  float setting83 = 0.5F;
  float setting84 = 0.02F;
  float setting85 = 0.125F;
  std::uint8_t setting86 = 1, setting87 = 1, setting88 = 1, setting89 = 1, setting90 = 1, setting91 = 1, setting92 = 1;
  std::uint8_t setting93 = 1, setting94 = 1, setting95 = 1, setting96 = 1, setting97 = 1, setting98 = 1;
  std::uint8_t setting99 = 0;
  std::uint8_t setting100 = 1;
  std::uint8_t setting101 = 0;
  float setting102 = 0.5F, setting103 = 0.5F, setting104 = 0.5F;
  float setting105 = 0.85F;

  // since 162
  std::uint8_t setting106 = 1, setting107 = 1;
  float setting108 = 1.5F, setting109 = 1.5F;

  // since 170; the numbers 129 to 162 do not exist
  std::uint32_t setting110 = 0;
  float setting111 = 0.75F;
  float setting112 = 3.0F;
  std::uint32_t setting113 = 0;
  std::int32_t setting114 = 1, setting115 = 1;
  float setting116 = 1.5F;
  float setting117 = 20.0F;
  std::uint32_t setting118 = 0;
  float setting119 = 20.0F;
  std::uint8_t setting120 = 0, setting121 = 0, setting122 = 0, setting123 = 0, setting124 = 0;
  std::uint8_t setting125 = 0, setting126 = 0, setting127 = 0, setting128 = 0;
  float setting163 = 0.01F;
  float setting164 = 1.5F;
  std::uint32_t setting165 = 0, setting166 = 0;

  // Selectors with a low bank that starts at 0 and a high bank that starts at 1000. Their highest numbers within a bank
  // are 4, 8, 4, 6, 8, 4, 6, 8, in this order. A load changes a value below 0 to 1, and one above 1000 plus its highest
  // number to 1001; values between the banks are kept. A save stores the values unchanged, and then changes a value
  // above 1000 plus its highest number to 1000 plus its last decimal digit.
  std::int32_t choice1 = 1, choice2 = 1, choice3 = 1, choice4 = 1;
  std::int32_t choice5 = 1, choice6 = 1, choice7 = 1, choice8 = 1;

  std::uint16_t version = 0;          // version word of the file, even if it is refused
  std::int16_t settingListCount = 6;  // how many of settingLists are stored, at most 6
  ParamTable params;                  // in material files only
  MaterialHeadRecord head;
};

}  // namespace oldtorvio
