// All records that have members, for tests that go over them.
#pragma once
#include "torvio/values/all_members.h"

namespace testing_support {

template <class... Record>
struct RecordTypes {
  // fn.template operator()<Record>() for each.
  static void each(auto&& fn) { (fn.template operator()<Record>(), ...); }
  template <class T>
  static constexpr bool kHas = (std::is_same_v<T, Record> || ...);
};

using EveryRecord = RecordTypes<
    oldtorvio::AngleRule, oldtorvio::BindingEntry, oldtorvio::BindingSet, oldtorvio::ClampInfo,
    oldtorvio::ClampRowTable, oldtorvio::ContourGroup, oldtorvio::GridSegment, oldtorvio::GroupQuad,
    oldtorvio::InventoryEntry, oldtorvio::MachineExtension, oldtorvio::MachineExtensionEntry, oldtorvio::MachineFrame,
    oldtorvio::MachineGrid, oldtorvio::MachineSetup, oldtorvio::MachineUnit, oldtorvio::MachineUnitEntry,
    oldtorvio::MachineUnitTable, oldtorvio::MarkEntry, oldtorvio::MaterialEntry, oldtorvio::MaterialHeadRecord,
    oldtorvio::MaterialPalette, oldtorvio::MaterialRuleLists, oldtorvio::MaterialStageTable, oldtorvio::MaterialToolSet,
    oldtorvio::MaterialToolSetTable, oldtorvio::MotionBlock, oldtorvio::NamedWorkList, oldtorvio::OldMachine,
    oldtorvio::OldMacro, oldtorvio::OldMaterial, oldtorvio::OldSheet, oldtorvio::OldSpecialTool, oldtorvio::OldTool,
    oldtorvio::OldToolInventory, oldtorvio::ParamTable, oldtorvio::Pattern, oldtorvio::PatternItem,
    oldtorvio::PlacedShapeList, oldtorvio::ProcessSlot, oldtorvio::ProfileRecord, oldtorvio::RowTable,
    oldtorvio::SettingEntry, oldtorvio::SettingGroup, oldtorvio::SetupEntry, oldtorvio::SetupList, oldtorvio::Shape,
    oldtorvio::ShapeGroup, oldtorvio::ShapeList, oldtorvio::ShapeProgram, oldtorvio::ShapeProgramEx,
    oldtorvio::ShapeProgramGroup, oldtorvio::ShapeWorkBlock, oldtorvio::SheetPartList, oldtorvio::SheetSetupEntry,
    oldtorvio::SheetSetupList, oldtorvio::SheetTextEntry, oldtorvio::SizeRule, oldtorvio::StepTable,
    oldtorvio::ToolStation, oldtorvio::ToolStationList, oldtorvio::TorvPart, oldtorvio::WorkArea, oldtorvio::WorkEntry>;

}  // namespace testing_support
