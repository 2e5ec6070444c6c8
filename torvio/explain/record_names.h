// Names of the records that tables and types of their own describe.
#pragma once
#include <string_view>

#include "src/file_records.h"

namespace oldtorvio::explain {

// The name of a record that has a table of its own: others refer to it by that name. A record without one is
// described field by field where it is embedded.
template <class Record>
inline constexpr std::string_view kTableOf{};
// The same, where it depends on the further arguments of its description: a specialisation decides.
template <class Record, class... A>
std::string_view tableFor(const A&... /*more*/) {
  return kTableOf<Record>;
}

// Records that several kinds of file embed, and those that one kind embeds more than once.
template <>
inline constexpr std::string_view kTableOf<Shape> = "shape";
template <>
inline constexpr std::string_view kTableOf<ShapeList> = "shape list";
template <>
inline constexpr std::string_view kTableOf<OldTool> = "tool";
template <>
inline constexpr std::string_view kTableOf<ToolStation> = "tool station";
template <>
inline constexpr std::string_view kTableOf<ToolStationList> = "tool station list";
template <>
inline constexpr std::string_view kTableOf<ProcessSlot> = "process slot";
template <>
inline constexpr std::string_view kTableOf<StepTable> = "step table";
template <>
inline constexpr std::string_view kTableOf<SetupEntry> = "setup entry";
template <>
inline constexpr std::string_view kTableOf<SetupList> = "setup list";
template <>
inline constexpr std::string_view kTableOf<MotionBlock> = "motion block";
template <>
inline constexpr std::string_view kTableOf<ProfileRecord> = "profile";
template <>
inline constexpr std::string_view kTableOf<PatternItem> = "pattern item";
template <>
inline constexpr std::string_view kTableOf<WorkEntry> = "work entry";
template <>
inline constexpr std::string_view kTableOf<MarkEntry> = "mark";
template <>
inline constexpr std::string_view kTableOf<Pattern> = "pattern";
template <>
inline constexpr std::string_view kTableOf<TorvPart> = "part";
template <>
inline std::string_view tableFor<TorvPart>(const PartForm& form) {
  return form.place == PartForm::sheet ? "placed part" : "grouped part";
}
template <>
inline constexpr std::string_view kTableOf<ParamTable> = "parameter table";
template <>
inline constexpr std::string_view kTableOf<OldMaterial> = "material body";
template <>
inline constexpr std::string_view kTableOf<OldMachine> = "machine";
template <>
inline constexpr std::string_view kTableOf<ShapeProgram> = "shape program";
template <>
inline constexpr std::string_view kTableOf<ShapeProgramEx> = "extended shape program";
template <>
inline constexpr std::string_view kTableOf<SettingEntry> = "setting entry";
template <>
inline constexpr std::string_view kTableOf<SettingGroup> = "setting group";
template <>
inline constexpr std::string_view kTableOf<MaterialToolSet> = "tool set";
template <>
inline constexpr std::string_view kTableOf<AngleRule> = "angle rule";
template <>
inline constexpr std::string_view kTableOf<SizeRule> = "size rule";
template <>
inline std::string_view tableFor<SizeRule>(const SizeRuleForm& form) {
  return form == SizeRuleForm::a ? "size rule a" : "size rule b";
}
template <>
inline constexpr std::string_view kTableOf<ClampInfo> = "clamp info";
template <>
inline constexpr std::string_view kTableOf<MachineGrid> = "machine grid";
template <>
inline constexpr std::string_view kTableOf<MachineExtension> = "machine extension";
template <>
inline constexpr std::string_view kTableOf<MachineUnitTable> = "unit table";

}  // namespace oldtorvio::explain
