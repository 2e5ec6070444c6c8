// The rules that a fresh material holds.
#include <algorithm>
#include <bit>
#include <initializer_list>

#include "OldTorvIO/material_parts.h"

namespace oldtorvio {
namespace {

AngleRule angleRule(std::uint8_t code, std::initializer_list<float> angles, float sizeLimit) {
  AngleRule rule;
  rule.ruleCode = code;
  std::copy(angles.begin(), angles.end(), rule.ruleAngles);
  rule.sizeLimitX = rule.sizeLimitY = sizeLimit;
  return rule;
}

SizeRule sizeRuleA(float size, float limit) { return {std::bit_cast<std::uint32_t>(size), size, limit, limit, 0.025F}; }

SizeRule sizeRuleB(std::uint32_t key, float value3, float value4, float limit) {
  return {key, 0.025F, value3, value4, limit, limit};
}

}  // namespace

// The counts are 0 although angles are there.
std::vector<AngleRule> MaterialRuleLists::defaultAngleRules() {
  return {
      angleRule(1, {0}, 20.5F),
      angleRule(5, {1.5707964F, 4.712389F}, 30.5F),
      angleRule(7, {0, 2.6179938F, 3.6651914F}, 50.5F),
      angleRule(16, {1.5707964F, 4.712389F}, 20.5F),
      angleRule(22, {0, 1.5707964F, 3.1415927F, 4.712389F}, 30.5F),
      angleRule(23, {1.5707964F, 2.3561945F, 3.1415927F, 4.712389F, 5.497787F, 0}, 60.5F),
  };
}

std::vector<SizeRule> MaterialRuleLists::defaultSizeRulesA() {
  return {sizeRuleA(10.0F, 20.5F), sizeRuleA(10.0F, 30.5F), sizeRuleA(10.0F, 60.5F)};
}

std::vector<SizeRule> MaterialRuleLists::defaultSizeRulesB() {
  return {sizeRuleB(1, 0, 0, 12.0F), sizeRuleB(5, 5.5F, 0, 35.0F), sizeRuleB(7, 5.5F, 0, 59.0F),
          sizeRuleB(9, 5.5F, 7.5F, 100.0F)};
}

}  // namespace oldtorvio
