// The keys that GetOldSheetInfoByName knows, for what asks all of them.
#pragma once

namespace testing_support {

inline constexpr const char* kSheetKeys[] = {"Material_Group",
                                             "width",
                                             "height",
                                             "part_count",
                                             "partfulldosname_and_count",
                                             "partfulldosname_and_count_and_wonumber",
                                             "partname_and_count_and_wonumber",
                                             "part_details_01",
                                             "sheet_mat_type",
                                             "sheet_thickness",
                                             "preSkeletonDosName",
                                             "totalSknPartCutArea",
                                             "sheet_utilization",
                                             "sheet_sequence_size"};

}  // namespace testing_support
