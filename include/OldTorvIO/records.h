// All records, and the functions that get and set their texts. OldTorvIO.h includes this header in C++.
#pragma once
#include "OldTorvIO/fixed_text.h"
#include "OldTorvIO/machine.h"
#include "OldTorvIO/macro.h"
#include "OldTorvIO/material.h"
#include "OldTorvIO/part_list.h"
#include "OldTorvIO/sheet.h"
#include "OldTorvIO/special_tool.h"
#include "OldTorvIO/tool_inventory.h"
