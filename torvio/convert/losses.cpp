#include "torvio/convert/losses.h"

#include <map>
#include <utility>

#include "torvio/compare/diff.h"
#include "torvio/convert/member_path.h"

namespace oldtorvio::convert {
using compare::Difference;

class LossGroups {
 public:
  void add(Loss::Effect effect, const std::string& path, const Difference& difference) {
    std::string member = withoutIndexes(path);
    const auto [known, isNew] = at_.try_emplace({effect, member}, losses_.size());
    if (isNew) losses_.push_back({effect, std::move(member), 0, path, difference.a, difference.b});
    ++losses_[known->second].count;
  }
  std::vector<Loss> finished() { return std::move(losses_); }

 private:
  std::vector<Loss> losses_;
  std::map<std::pair<Loss::Effect, std::string>, std::size_t> at_;
};

namespace {

bool isDefault(const values::Type& type, const void* record, std::string_view path) {
  const std::optional<Place> place = placeAt(type, record, path);
  return place && place->fresh != nullptr && values::equalContents(*place->type, place->value, place->fresh);
}

}  // namespace

template <frame::FileKind kKind>
std::vector<Loss> lossesOf(const typename FileRecord<kKind>::Record& before,
                           const typename FileRecord<kKind>::Record& after, const std::string& encoding,
                           const PathFilter& matters) {
  const values::Type& type = values::typeOfRecord(kKind);
  LossGroups groups;
  compare::DiffOptions options;
  options.encoding = encoding;
  options.byPosition = true;
  // Loads set members that no file stores, and may set them to something else for the new file.
  options.storedOnly = false;
  (void)compare::diffRecords(before, after, options, [&](const Difference& one) {
    const std::string& path = one.pathInA.empty() ? one.pathInB : one.pathInA;
    if (matters && !matters(path)) return true;
    switch (one.change) {
      case Difference::Change::onlyInA:
        groups.add(Loss::Effect::lost, path, one);
        break;
      case Difference::Change::onlyInB:
        groups.add(Loss::Effect::added, path, one);
        break;
      default:
        groups.add(isDefault(type, &after, one.pathInB) ? Loss::Effect::lost : Loss::Effect::changed, path, one);
    }
    return true;
  });
  return groups.finished();
}

#define OLDTORVIO_LOSSES_OF(KIND)                                                                              \
  template std::vector<Loss> lossesOf<frame::FileKind::KIND>(const FileRecord<frame::FileKind::KIND>::Record&, \
                                                             const FileRecord<frame::FileKind::KIND>::Record&, \
                                                             const std::string&, const PathFilter&);
OLDTORVIO_EACH_FILE_KIND(OLDTORVIO_LOSSES_OF)
#undef OLDTORVIO_LOSSES_OF

}  // namespace oldtorvio::convert
