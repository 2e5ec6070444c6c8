// The measured machines, materials and tool inventories, and how their floors are filled.
#pragma once
#include <memory>

#include "OldTorvIO/records.h"
#include "bench/floor.h"

namespace bench {

// Two grids, four shape programs of 200 shapes, five tables of units and a material with all lists filled.
std::unique_ptr<oldtorvio::OldMachine> fullMachine(int stations);
// 5,000 tools, every fifth a special tool.
oldtorvio::OldToolInventory inventoryOf5000();

// The floors of loads, like fillPart.
void fillMachine(Source& from, const oldtorvio::OldMachine& like, oldtorvio::OldMachine& to);
void fillMaterial(Source& from, const oldtorvio::OldMaterial& like, oldtorvio::OldMaterial& to);
void fillInventory(Source& from, const oldtorvio::OldToolInventory& like, oldtorvio::OldToolInventory& to);
// The numbers that a table of version 180 stores.
void fillParams(Source& from, oldtorvio::ParamTable& to);

}  // namespace bench
