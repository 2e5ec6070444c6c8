#include "torvio/values/compiled_records.h"

namespace oldtorvio::values {

OLDTORVIO_RECORDS_OF_ALL_KINDS()

}  // namespace oldtorvio::values
