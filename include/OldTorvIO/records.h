// All records at once.
#pragma once
#include "OldTorvIO/machine.h"
#include "OldTorvIO/macro.h"
#include "OldTorvIO/material.h"
#include "OldTorvIO/part_list.h"
#include "OldTorvIO/sheet.h"
#include "OldTorvIO/special_tool.h"
#include "OldTorvIO/tool_inventory.h"
