#include "torvio/compare/diff.h"
