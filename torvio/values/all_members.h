// Members of all records.
#pragma once
#include "torvio/values/machine_members.h"
#include "torvio/values/material_members.h"
#include "torvio/values/part_members.h"
#include "torvio/values/shared_members.h"
#include "torvio/values/sheet_members.h"
#include "torvio/values/tooling_members.h"
