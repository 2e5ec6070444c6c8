#include "torvio/values/compiled_records.h"

namespace oldtorvio::values {

#define OLDTORVIO_DEFINE_RECORD(KIND) OLDTORVIO_RECORD_OF_KIND(, KIND)
OLDTORVIO_EACH_FILE_KIND(OLDTORVIO_DEFINE_RECORD)
#undef OLDTORVIO_DEFINE_RECORD

}  // namespace oldtorvio::values
