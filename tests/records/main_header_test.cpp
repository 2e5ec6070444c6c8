// What a program gets that includes only the main header: complete records, and functions whose pointers are const
// where nothing is changed. All of it is checked while this file compiles.
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>

#include "OldTorvIO.h"

namespace {

// ---- complete records ----------------------------------------------------------------------------

template <class... Records>
constexpr bool areComplete = ((sizeof(Records) > 0) && ...);

static_assert(areComplete<TorvPart, SheetPartList, OldSpecialTool, OldToolInventory, OldMacro, OldMaterial, OldMachine,
                          OldSheet, MachineInformation>);

// The types of their members.
static_assert(areComplete<oldtorvio::BindingEntry, oldtorvio::BindingSet, oldtorvio::ContourGroup,
                          oldtorvio::PlacedShapeList, oldtorvio::ShapeGroup, oldtorvio::Pattern, oldtorvio::PatternItem,
                          oldtorvio::ProcessSlot, oldtorvio::ProcessSlots, oldtorvio::MarkEntry, oldtorvio::MotionBlock,
                          oldtorvio::ProfileRecord, oldtorvio::SetupEntry, oldtorvio::SetupList, oldtorvio::Shape,
                          oldtorvio::ShapeList, oldtorvio::StepTable, oldtorvio::WorkEntry, oldtorvio::OldTool,
                          oldtorvio::ToolStation, oldtorvio::ToolStationList>);
static_assert(areComplete<oldtorvio::InventoryEntry>);
static_assert(areComplete<oldtorvio::AngleRule, oldtorvio::MaterialEntry, oldtorvio::MaterialHeadRecord,
                          oldtorvio::MaterialPalette, oldtorvio::MaterialRuleLists, oldtorvio::MaterialStageTable,
                          oldtorvio::MaterialToolSet, oldtorvio::MaterialToolSetTable, oldtorvio::ParamTable,
                          oldtorvio::SettingEntry, oldtorvio::SettingGroup, oldtorvio::SizeRule>);
static_assert(areComplete<oldtorvio::ClampInfo, oldtorvio::GridSegment, oldtorvio::GroupQuad,
                          oldtorvio::MachineExtension, oldtorvio::MachineExtensionEntry, oldtorvio::MachineFrame,
                          oldtorvio::MachineGrid, oldtorvio::MachineSetup, oldtorvio::MachineUnit,
                          oldtorvio::MachineUnitEntry, oldtorvio::MachineUnitTable, oldtorvio::ShapeProgram,
                          oldtorvio::ShapeProgramEx, oldtorvio::ShapeProgramGroup, oldtorvio::WorkArea>);
static_assert(
    areComplete<oldtorvio::ClampRowTable, oldtorvio::NamedWorkList, oldtorvio::RowTable, oldtorvio::ShapeWorkBlock,
                oldtorvio::SheetSetupEntry, oldtorvio::SheetSetupList, oldtorvio::SheetTextEntry>);

// The two spellings of a record's name are one type, and each record is a value: a default, a deep copy, a destructor.
template <class Global, class Qualified>
constexpr bool isOneValueType = std::is_same_v<Global, Qualified>&& std::is_default_constructible_v<Global>&&
    std::is_copy_constructible_v<Global>&& std::is_copy_assignable_v<Global>&& std::is_destructible_v<Global>;
static_assert(isOneValueType<TorvPart, oldtorvio::TorvPart>);
static_assert(isOneValueType<SheetPartList, oldtorvio::SheetPartList>);
static_assert(isOneValueType<OldSpecialTool, oldtorvio::OldSpecialTool>);
static_assert(isOneValueType<OldToolInventory, oldtorvio::OldToolInventory>);
static_assert(isOneValueType<OldMacro, oldtorvio::OldMacro>);
static_assert(isOneValueType<OldMaterial, oldtorvio::OldMaterial>);
static_assert(isOneValueType<OldMachine, oldtorvio::OldMachine>);
static_assert(isOneValueType<OldSheet, oldtorvio::OldSheet>);

// The tool is the first member of a special tool, so that a pointer to either is one to both.
static_assert(offsetof(OldSpecialTool, tool) == 0);

// ---- functions -----------------------------------------------------------------------------------

template <class Function>
struct Signature;
template <class Result, class... Arguments>
struct Signature<Result(Arguments...) noexcept> {
  using Returned = Result;
  using Taken = std::tuple<Arguments...>;
};

template <class Function, class Result>
constexpr bool returns = std::is_same_v<typename Signature<Function>::Returned, Result>;
template <class Function, std::size_t position, class Type>
constexpr bool takes = std::is_same_v<std::tuple_element_t<position, typename Signature<Function>::Taken>, Type>;
// The first arguments are paths or other texts that the function only reads.
template <class Function, std::size_t... positions>
constexpr bool readsTexts = (takes<Function, positions, const char*> && ...);

static_assert(returns<decltype(AddPatIntoGroupPat), std::uint16_t>);
static_assert(takes<decltype(AddPatIntoGroupPat), 5, const std::uint32_t*>);
static_assert(takes<decltype(AddPatternToTorvPart), 4, const std::uint32_t*>);
static_assert(readsTexts<decltype(AddPatternToTorvPart), 11>);
static_assert(readsTexts<decltype(AddGroupPatIntoTorvPart), 3>);
static_assert(readsTexts<decltype(InitTorvPart), 4, 5, 6, 7, 8, 9>);
static_assert(readsTexts<decltype(SaveTorvPart), 0>);

static_assert(readsTexts<decltype(LoadOldPart), 0>);
static_assert(readsTexts<decltype(LoadGroupPart), 0>);
static_assert(readsTexts<decltype(LoadOldSpecialTool), 0>);
static_assert(readsTexts<decltype(LoadOldToolInventory), 0>);
static_assert(readsTexts<decltype(LoadOldMacro), 0>);
static_assert(readsTexts<decltype(LoadOldMaterial), 0>);
static_assert(readsTexts<decltype(LoadOldMachine), 0>);
static_assert(readsTexts<decltype(LoadOldSheet), 0>);
static_assert(readsTexts<decltype(SaveOldSheet), 0>);

static_assert(readsTexts<decltype(GetOldPartInfo), 0>);
static_assert(readsTexts<decltype(GetOldPartInfo_v1), 0, 1>);
static_assert(readsTexts<decltype(GetOldPartTool), 0>);
static_assert(readsTexts<decltype(GetOldSptFromPart), 0>);
static_assert(readsTexts<decltype(GetOldSptFromGroupPart), 0>);
static_assert(readsTexts<decltype(OpenSpecialToolFile), 0>);
static_assert(readsTexts<decltype(LoadOldToolInventoryForCount), 0>);
static_assert(readsTexts<decltype(LoadOldMachineInformation), 0>);
static_assert(readsTexts<decltype(GetOldVLMQMachineName), 0>);
static_assert(readsTexts<decltype(GetMachineDatasForQD), 0>);
static_assert(readsTexts<decltype(LoadOldSheetInformation), 0>);
static_assert(readsTexts<decltype(GetOldSheetHandle), 0>);
static_assert(readsTexts<decltype(GetOldSheetInfo), 0>);
static_assert(readsTexts<decltype(GetOldClampInfo), 0>);
static_assert(readsTexts<decltype(GetOldVLMQMaterialName), 0>);
static_assert(readsTexts<decltype(GetOldSkeletonUtil), 0>);
static_assert(readsTexts<decltype(GetSheetDriverFlags), 0>);
static_assert(readsTexts<decltype(GetSheetSequenceListSize), 0>);
static_assert(readsTexts<decltype(ReplaceSheetMachineNcPath), 0, 1>);
static_assert(readsTexts<decltype(ReplaceSheetSknPatListWithPartPatList), 0, 1>);
static_assert(readsTexts<decltype(UpdateSheetPartWONumber), 0, 1, 2, 3>);

// A query of a loaded sheet does not change it.
static_assert(takes<decltype(GetOldSheetInfoByName), 0, const OldSheet*>);
static_assert(readsTexts<decltype(GetOldSheetInfoByName), 1>);
static_assert(takes<decltype(GetOldSheetInfoPartGroupIDs), 0, const OldSheet*>);

// What a function fills or frees is not const.
static_assert(takes<decltype(LoadOldPart), 1, TorvPart*>);
static_assert(takes<decltype(LoadGroupPart), 1, SheetPartList*>);
static_assert(takes<decltype(LoadOldSheet), 1, OldSheet*>);
static_assert(takes<decltype(GetOldSheetHandle), 1, OldSheet**>);
static_assert(takes<decltype(DeleteSheetInfo), 0, OldSheet*>);
static_assert(takes<decltype(FreeSheetHandle), 0, OldSheet*>);
static_assert(takes<decltype(DeleteOldPartlistInfo), 0, SheetPartList*>);
static_assert(takes<decltype(GetOldPartInfo_v1), 2, char*>);
static_assert(takes<decltype(GetOldSheetInfoByName), 2, char*>);

// Four functions have a status of 32 bits, all others one of 64.
static_assert(returns<decltype(LoadOldSheetInformation), std::int32_t>);
static_assert(returns<decltype(LoadOldMachineInformation), std::int32_t>);
static_assert(returns<decltype(LoadOldToolInventoryForCount), std::int32_t>);
static_assert(returns<decltype(OpenSpecialToolFile), std::int32_t>);
template <class... Functions>
constexpr bool returnStatus = (returns<Functions, std::int64_t> && ...);
static_assert(
    returnStatus<decltype(LoadOldPart), decltype(LoadGroupPart), decltype(LoadOldSpecialTool),
                 decltype(LoadOldToolInventory), decltype(LoadOldMacro), decltype(LoadOldMaterial),
                 decltype(LoadOldMachine), decltype(LoadOldSheet), decltype(SaveTorvPart), decltype(SaveOldSheet)>);
static_assert(returnStatus<decltype(GetOldPartInfo), decltype(GetOldPartInfo_v1), decltype(GetOldPartTool),
                           decltype(GetOldSptFromPart), decltype(GetOldSptFromGroupPart), decltype(GetOldSheetHandle),
                           decltype(GetOldSheetInfo), decltype(GetOldSheetInfoByName),
                           decltype(GetOldSheetInfoPartGroupIDs), decltype(ReplaceSheetMachineNcPath),
                           decltype(ReplaceSheetSknPatListWithPartPatList), decltype(UpdateSheetPartWONumber)>);
static_assert(returnStatus<decltype(GetOldClampInfo), decltype(GetOldSkeletonUtil), decltype(GetSheetDriverFlags),
                           decltype(GetSheetSequenceListSize), decltype(GetOldVLMQMaterialName),
                           decltype(GetOldVLMQMachineName), decltype(GetMachineDatasForQD)>);
static_assert(returns<decltype(AddPatternToTorvPart), std::int32_t>);
static_assert(returns<decltype(AddGroupPatIntoTorvPart), std::int32_t>);
static_assert(takes<decltype(SaveTorvPart), 1, std::int16_t>);
static_assert(takes<decltype(SaveOldSheet), 2, std::uint16_t>);

}  // namespace
