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

// The writer knows two layouts, so that a table of version 500 to 502 is stored in one that its own
// version word does not tell.
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
    const bool isRefused = form == ParamForm::none;
    return io.when(isRefused, [&] { return io.range(FIELDS(t.version), 60, 59); })
        && io.when(form == ParamForm::main, [&] { return describeMain(io, t, t.version >= 80); })
        && io.when(form == ParamForm::version52, [&] {
             return io.slice(FIELDS(t.intParams), 55, 89)
                 && io.slice(FIELDS(t.intParams), 101, 125)
                 && io.slice(FIELDS(t.realParams), 55, 89)
                 && io.slice(FIELDS(t.realParams), 101, 125)
                 && describeLongName(io, t);
           })
        && io.onlyRead([&](auto& reader) { return describeOldForms(reader, t, form); });
  }

  static bool describeOldForms(auto& io, auto& t, ParamForm form) {
    return io.when(form == ParamForm::version502, [&] {
             return io.template sliceAs<std::int16_t>(FIELDS(t.intParams), 55, 89)
                 && io.template sliceAs<std::int16_t>(FIELDS(t.intParams), 101, 125)
                 && io.slice(FIELDS(t.realParams), 55, 89)
                 && io.slice(FIELDS(t.realParams), 101, 125)
                 && io.bytesOrOne(FIELDS(t.name), kShortName);
           })
        && io.when(form == ParamForm::version501, [&] {
             return io.template sliceAs<std::int16_t>(FIELDS(t.intParams), 55, 89)
                 && io.slice(FIELDS(t.realParams), 55, 89)
                 && io.bytesOrOne(FIELDS(t.name), kShortName);
           })
        && io.when(form == ParamForm::version500, [&] {
             return io.fields(FIELDS(as<float>(t.realParams[55]), as<std::int16_t>(t.intParams[55]),
                                     as<float>(t.realParams[56]), as<float>(t.realParams[57]),
                                     as<std::int16_t>(t.intParams[56]), as<std::int16_t>(t.intParams[57]),
                                     as<std::int16_t>(t.intParams[58]), as<std::int16_t>(t.intParams[59]),
                                     as<float>(t.realParams[58]), as<std::int16_t>(t.intParams[60]),
                                     as<std::int16_t>(t.intParams[61]), as<std::int16_t>(t.intParams[62]),
                                     as<std::int16_t>(t.intParams[63]), as<float>(t.realParams[59]),
                                     as<float>(t.realParams[60]), as<float>(t.realParams[61])))
                 && io.bytesOrOne(FIELDS(t.name), kShortName);
           });
  }

  static bool describeMain(auto& io, auto& t, bool hasLateNumbers) {
    return io.fields(FIELDS(t.title))
        && io.slice(FIELDS(t.intParams), 55, 89)
        && io.slice(FIELDS(t.intParams), 101, 125)
        // A zero in the file leaves these two integers as they are.
        && io.slice(FIELDS(t.intParams), 401, 489)
        && io.nonZero(FIELDS(t.intParams[490]))
        && io.fields(FIELDS(t.intParams[491]))
        && io.nonZero(FIELDS(t.intParams[492]))
        && io.slice(FIELDS(t.intParams), 493, 500)
        && io.when(hasLateNumbers, [&] { return io.slice(FIELDS(t.intParams), 551, 600); })
        && io.slice(FIELDS(t.realParams), 55, 89)
        && io.slice(FIELDS(t.realParams), 101, 125)
        && io.slice(FIELDS(t.realParams), 401, 500)
        && io.when(hasLateNumbers, [&] { return io.slice(FIELDS(t.realParams), 551, 600); })
        && io.slice(FIELDS(t.textParams), 55, 89)
        && io.slice(FIELDS(t.textParams), 101, 125)
        && io.slice(FIELDS(t.textParams), 401, 500)
        && io.when(hasLateNumbers, [&] { return io.slice(FIELDS(t.textParams), 551, 600); })
        && describeLongName(io, t);
  }
  static bool describeLongName(auto& io, auto& t) {
    return io.afterRead(t, [](auto& r) { r.nameLength = 0; })
        && io.fields(FIELDS(t.nameLength))
        && io.sized(FIELDS(t.name), t.nameLength);
  }
};

}  // namespace codec

// The status of a table's load, by whatever reads.
template <class Io>
int readParamTable(Io& io, ParamTable& table) {
  if (io.walk(table)) return 0;
  const bool hasNoLayout = io.stop() == codec::Stop::refused && paramFormToRead(table.version) == ParamForm::none;
  return hasNoLayout ? -1 : 1;
}

}  // namespace oldtorvio
