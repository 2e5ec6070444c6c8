// The stored forms of parts, of special tools, inventories and macros, and of the records that they embed. Those of
// machines, materials and sheets are in headers of their own beside these.
#pragma once
#include "tests/support/stored_forms/parts.h"
#include "tests/support/stored_forms/tooling.h"
