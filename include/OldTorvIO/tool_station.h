// The tool stations of a punch and the tool at each of them. "Carried" fields are only loaded and saved.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/tool.h"

namespace oldtorvio {

struct ToolStation {
  float placeValue = 0;            // since 60
  std::uint32_t placeWord = 0;     // since 60
  std::int32_t stationNumber = 0;  // 1-based
  float orientation = 0;
  std::int32_t stationType = 0;  // 0: has values, 2: has none
  std::int32_t toolCount = 0;    // below 1: no tool
  float stationValue = 0;
  float limits[4] = {};         // smallest x, smallest y, largest x, largest y
  std::int32_t valueCount = 0;  // how many of values are used; a load raises it to at least 1 for
                                // stationType 0
  float values[6] = {};
  float offsets[3] = {};
  std::uint8_t byteA = 0, byteB = 0;             // carried
  std::uint8_t byteC = 0;                        // since 90
  std::uint32_t wordA = 0;                       // since 90
  float realA = 0, realB = -1.0F;                // since 90
  std::uint8_t byteD = 0;                        // carried
  std::uint8_t byteE = 0;                        // since 90
  float realC = 0;                               // carried
  std::uint32_t wordB = 0;                       // since 90
  float realD = 0;                               // since 90
  std::uint32_t wordsC[5] = {};                  // since 61
  float realsE[4] = {};                          // since 61
  std::uint8_t byteF = 0, byteG = 0, byteH = 0;  // since 90
  char stationText[24] = {};                     // since 90, raw
  std::uint32_t wordD = 0;                       // since 100
  float pairValues[2] = {};                      // since 100
  std::uint32_t wordE = 0;                       // since 100
  std::int32_t wordF = 0;                        // since 100
  float realF = 0;                               // since 100
  std::uint32_t wordG = 0;                       // since 110
  std::uint32_t wordH = 0;                       // since 112
  std::uint32_t wordI = 0, wordJ = 0;            // since 130
};

// tools[i] is the tool of stations[i]. After a load that failed inside a tool, stations may be one longer.
struct ToolStationList {
  std::vector<ToolStation> stations;
  std::uint32_t headerWord = 0;
  std::uint32_t secondHeaderWord = 0;  // 0 below version 61
  std::uint32_t stationModeWord = 0;   // 2 below version 90
  std::uint32_t spareWord = 0;         // memory only
  std::vector<OldTool> tools;
  std::uint32_t extraWords[2] = {};   // since 100; 0 below
  std::uint32_t stationModeCode = 0;  // set by a load: bits 8 to 11 of stationModeWord
};

}  // namespace oldtorvio
