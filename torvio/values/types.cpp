#include "torvio/values/types.h"

#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "src/file_records.h"
#include "torvio/values/all_members.h"

namespace oldtorvio::values {
namespace {

template <class T>
const Type& typeOf();

template <class T>
constexpr Form formOf() {
  if constexpr (std::is_same_v<T, float>)
    return Form::float32;
  else if constexpr (std::is_same_v<T, double>)
    return Form::float64;
  else if constexpr (Number<T>) {
    // Each fits a double, which is what most programs read JSON numbers into.
    static_assert(sizeof(T) <= 4 && !std::is_same_v<T, bool>, "a number that JSON has no form for yet");
    constexpr Form kSigned[] = {Form::int8, Form::int16, Form::int32};
    constexpr Form kUnsigned[] = {Form::uint8, Form::uint16, Form::uint32};
    return (std::is_signed_v<T> ? kSigned : kUnsigned)[sizeof(T) / 2];
  } else if constexpr (Text<T>)
    return Form::text;
  else if constexpr (FixedText<T>)
    return Form::fixedText;
  else if constexpr (List<T>)
    return Form::list;
  else if constexpr (Lazy<T>)
    return Form::lazyArray;
  else if constexpr (kIsPair<T>)
    return Form::pair;
  else if constexpr (HasMembers<T>)
    return Form::record;
  else
    return std::is_same_v<ElementOf<T>, std::uint8_t> ? Form::bytes : Form::array;
}

std::size_t offsetOf(const void* member, const void* record) {
  return static_cast<std::size_t>(static_cast<const std::byte*>(member) - static_cast<const std::byte*>(record));
}

template <class T>
void assignTo(void* to, const void* from) {
  T& target = *static_cast<T*>(to);
  const T& source = *static_cast<const T*>(from);
  if constexpr (std::is_array_v<T>) {
    for (std::size_t i = 0; i < std::extent_v<T>; ++i) assignTo<std::remove_extent_t<T>>(&target[i], &source[i]);
  } else {
    target = source;
  }
}

template <class T>
Type madeType() {
  Type type;
  type.form = formOf<T>();
  type.size = sizeof(T);
  if constexpr (!std::is_array_v<T>) type.make = []() -> std::shared_ptr<void> { return std::make_shared<T>(); };
  type.assign = assignTo<T>;
  type.swap = [](void* one, void* other) { std::swap(*static_cast<T*>(one), *static_cast<T*>(other)); };
  if constexpr (Array<T>) {
    type.count = sizeof(T) / sizeof(ElementOf<T>);
    type.element = &typeOf<ElementOf<T>>();
  } else if constexpr (List<T>) {
    using Element = typename T::value_type;
    type.element = &typeOf<Element>();
    type.length = [](const void* list) { return static_cast<const T*>(list)->size(); };
    type.data = [](const void* list) { return static_cast<const void*>(static_cast<const T*>(list)->data()); };
    type.append = [](void* list) { return static_cast<void*>(&static_cast<T*>(list)->emplace_back()); };
    type.clear = [](void* list) { static_cast<T*>(list)->clear(); };
    type.resize = [](void* list, std::size_t length) { static_cast<T*>(list)->resize(length); };
  } else if constexpr (Lazy<T>) {
    type.count = T::size();
    type.element = &typeOf<typename T::value_type>();
    type.lazyAt = [](const void* array, std::size_t i) {
      return static_cast<const void*>(&(*static_cast<const T*>(array))[i]);
    };
    type.lazySet = [](void* array, std::size_t i) { return static_cast<void*>(&(*static_cast<T*>(array))[i]); };
    const T empty;
    type.unwritten = &empty[0];
  } else if constexpr (kIsPair<T>) {
    const T pair{};
    type.members = {{"first", offsetOf(&pair.first, &pair), &typeOf<typename T::first_type>(), true},
                    {"second", offsetOf(&pair.second, &pair), &typeOf<typename T::second_type>(), true}};
  } else if constexpr (HasMembers<T>) {
    const auto fresh = std::make_shared<const T>();
    type.fresh = fresh;
    type.name = Members<T>::kRecordName;
    Members<T>::of(*fresh, [&](const MemberInfo& info, const auto& member) {
      using Member = std::remove_cvref_t<decltype(member)>;
      type.members.push_back({info.name, offsetOf(&member, fresh.get()), &typeOf<Member>(), info.isStored});
    });
  }
  return type;
}

template <class T>
const Type& typeOf() {
  static const Type type = madeType<T>();
  return type;
}

bool haveEqualElements(const Type& type, const void* one, const void* other, std::size_t count) {
  if (isNumber(type.form)) return count == 0 || std::memcmp(one, other, count * type.size) == 0;
  for (std::size_t i = 0; i < count; ++i)
    if (!equalContents(type, static_cast<const std::byte*>(one) + i * type.size,
                       static_cast<const std::byte*>(other) + i * type.size))
      return false;
  return true;
}

}  // namespace

const Type& typeOfRecord(frame::FileKind kind) {
  return withFileRecord(kind, [](auto file) -> const Type& { return typeOf<typename decltype(file)::Record>(); });
}

std::shared_ptr<void> newRecord(frame::FileKind kind) {
  return withFileRecord(
      kind, [](auto file) -> std::shared_ptr<void> { return std::make_shared<typename decltype(file)::Record>(); });
}

bool equalContents(const Type& type, const void* one, const void* other) {
  switch (type.form) {
    case Form::text:
      return *static_cast<const std::string*>(one) == *static_cast<const std::string*>(other);
    case Form::array:
      return haveEqualElements(*type.element, one, other, type.count);
    case Form::list:
      return type.length(one) == type.length(other) &&
             haveEqualElements(*type.element, type.data(one), type.data(other), type.length(one));
    case Form::lazyArray:
      for (std::size_t i = 0; i < type.count; ++i) {
        const void *const ofOne = type.lazyAt(one, i), *const ofOther = type.lazyAt(other, i);
        if (ofOne != ofOther && !equalContents(*type.element, ofOne, ofOther)) return false;
      }
      return true;
    case Form::pair:
    case Form::record:
      for (const TypeMember& member : type.members)
        if (!equalContents(*member.type, memberIn(one, member), memberIn(other, member))) return false;
      return true;
    default:
      return std::memcmp(one, other, type.size) == 0;
  }
}

}  // namespace oldtorvio::values
