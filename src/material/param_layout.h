// Stored form of a parameter table: five layouts, chosen by the version word that it begins with.
#pragma once
#include "OldTorvIO/param_table.h"
#include "src/frame/codec/describe.h"

namespace oldtorvio {

enum class ParamForm { none, version52, main, version500, version501, version502 };

inline ParamForm paramFormToRead(std::uint16_t version) {
  if (version >= 60 && version <= 499) return ParamForm::main;
  switch (version) {
    case 52: return ParamForm::version52;
    case 500: return ParamForm::version500;
    case 501: return ParamForm::version501;
    case 502: return ParamForm::version502;
    default: return ParamForm::none;
  }
}

// The writer knows two layouts, so that a table of version 500 to 502 is stored in one that does not match its
// version word.
inline ParamForm paramFormToWrite(std::uint16_t version) {
  const auto asSigned = static_cast<std::int16_t>(version);
  if (asSigned >= 60) return ParamForm::main;
  return asSigned == 52 ? ParamForm::version52 : ParamForm::none;
}

namespace codec {

template <>
struct Layout<ParamTable> {
  static constexpr std::size_t kMinStoredSize = 69;
  static bool describe(auto& io, auto& t) {
    return io.fields(FIELDS(t.version))
        && describeForm(io, t, io.either(paramFormToRead(t.version), paramFormToWrite(t.version)));
  }

 private:
  static constexpr std::size_t kShortName = 21;

  static bool describeForm(auto& io, auto& t, ParamForm form) {
    return io.require(decided(inRanges(FIELDS(t.version), Range{52, 52}, Range{60, 502}), form != ParamForm::none))
        && io.when(decided(within(FIELDS(t.version), 60, 499), form == ParamForm::main), [&] { return describeMain(io, t); })
        && io.when(equals(FIELDS(t.version), 52), [&] {
             return io.slice(FIELDS(t.intParams), 55, 89)
                 && io.slice(FIELDS(t.intParams), 101, 125)
                 && io.slice(FIELDS(t.realParams), 55, 89)
                 && io.slice(FIELDS(t.realParams), 101, 125)
                 && describeLongName(io, t);
           })
        && io.onlyRead([&](auto& reader) { return describeOldForms(reader, t); });
  }

  static bool describeOldForms(auto& io, auto& t) {
    return io.when(equals(FIELDS(t.version), 502), [&] {
             return io.template slice<std::int16_t>(FIELDS(t.intParams), 55, 89)
                 && io.template slice<std::int16_t>(FIELDS(t.intParams), 101, 125)
                 && io.slice(FIELDS(t.realParams), 55, 89)
                 && io.slice(FIELDS(t.realParams), 101, 125)
                 && describeShortName(io, t);
           })
        && io.when(equals(FIELDS(t.version), 501), [&] {
             return io.template slice<std::int16_t>(FIELDS(t.intParams), 55, 89)
                 && io.slice(FIELDS(t.realParams), 55, 89)
                 && describeShortName(io, t);
           })
        && io.when(equals(FIELDS(t.version), 500), [&] {
             return io.fields(FIELDS(as<float>(t.realParams[55]), as<std::int16_t>(t.intParams[55]),
                                     as<float>(t.realParams[56]), as<float>(t.realParams[57]),
                                     as<std::int16_t>(t.intParams[56]), as<std::int16_t>(t.intParams[57]),
                                     as<std::int16_t>(t.intParams[58]), as<std::int16_t>(t.intParams[59]),
                                     as<float>(t.realParams[58]), as<std::int16_t>(t.intParams[60]),
                                     as<std::int16_t>(t.intParams[61]), as<std::int16_t>(t.intParams[62]),
                                     as<std::int16_t>(t.intParams[63]), as<float>(t.realParams[59]),
                                     as<float>(t.realParams[60]), as<float>(t.realParams[61])))
                 && describeShortName(io, t);
           });
  }

  static bool describeMain(auto& io, auto& t) {
    return io.fields(FIELDS(t.title))
        && io.slice(FIELDS(t.intParams), 55, 89)
        && io.slice(FIELDS(t.intParams), 101, 125)
        && io.slice(FIELDS(t.intParams), 401, 489)
        && io.fields(FIELDS(nonZero(t.intParams[490])))
        && io.fields(FIELDS(t.intParams[491]))
        && io.fields(FIELDS(nonZero(t.intParams[492])))
        && io.slice(FIELDS(t.intParams), 493, 500)
        && io.when(hasLateNumbers(t), [&] { return io.slice(FIELDS(t.intParams), 551, 600); })
        && io.slice(FIELDS(t.realParams), 55, 89)
        && io.slice(FIELDS(t.realParams), 101, 125)
        && io.slice(FIELDS(t.realParams), 401, 500)
        && io.when(hasLateNumbers(t), [&] { return io.slice(FIELDS(t.realParams), 551, 600); })
        && io.slice(FIELDS(t.textParams), 55, 89)
        && io.slice(FIELDS(t.textParams), 101, 125)
        && io.slice(FIELDS(t.textParams), 401, 500)
        && io.when(hasLateNumbers(t), [&] { return io.slice(FIELDS(t.textParams), 551, 600); })
        && describeLongName(io, t);
  }
  static auto hasLateNumbers(auto& t) { return atLeast(FIELDS(t.version), 80); }

  // Read byte by byte: a file that ends after the first one has a name of one byte.
  static bool describeShortName(auto& io, auto& t) {
    const bool isComplete = io.has(kShortName);
    return io.when(custom("if the file has all of it", isComplete), [&] { return io.sized(FIELDS(t.name), kShortName); })
        && io.when(custom("if the file ends in it", !isComplete), [&] {
             return io.fields(FIELDS(t.name[0]))
                 && io.optionalTail(FIELDS(t.name[1]))
                 && io.slice(FIELDS(t.name), 2, kShortName - 1);
           });
  }

  static bool describeLongName(auto& io, auto& t) {
    return io.afterRead(t, "a file that ends here leaves nameLength 0", [](auto& r) { r.nameLength = 0; })
        && io.fields(FIELDS(t.nameLength))
        && io.sized(FIELDS(t.name), t.nameLength);
  }
};

}  // namespace codec

// The status of the load of a table, for any walker that reads.
template <class Io>
int paramTableStatus(const Io& io, const ParamTable& table, bool isRead) {
  if (isRead) return 0;
  const bool hasNoLayout = io.stop() == codec::Stop::refused && paramFormToRead(table.version) == ParamForm::none;
  return hasNoLayout ? -1 : 1;
}
template <class Io>
int readParamTable(Io& io, ParamTable& table) {
  const bool isRead = io.walk(table);
  return paramTableStatus(io, table, isRead);
}

}  // namespace oldtorvio
