// All records at once.
#pragma once
#include "OldTorvIO/part_list.h"
#include "OldTorvIO/special_tool.h"
