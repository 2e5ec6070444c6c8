#include "torvio/values/json_schema.h"

#include <limits>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "torvio/values/json.h"
#include "torvio/values/text_encoding.h"
#include "torvio/values/types.h"

namespace oldtorvio::values {
namespace {

std::string inQuotes(std::string_view text) {
  std::string json;
  appendJsonString(json, text);
  return json;
}

// {"a": 1, "b": 2}, on one line.
std::string object(const std::vector<std::pair<std::string_view, std::string>>& members) {
  std::string text;
  for (const auto& [name, value] : members) text += (text.empty() ? "" : ", ") + inQuotes(name) + ": " + value;
  return "{" + text + "}";
}
std::string array(const std::vector<std::string>& elements) {
  std::string text;
  for (const std::string& element : elements) text += (text.empty() ? "" : ", ") + element;
  return "[" + text + "]";
}
std::string typeNamed(std::string_view type) { return inQuotes(type); }
std::string reference(std::string_view definition) {
  return object({{"$ref", inQuotes("#/$defs/" + std::string(definition))}});
}
template <class T>
std::string integer() {
  return object({{"type", typeNamed("integer")},
                 {"minimum", std::to_string(std::numeric_limits<T>::lowest())},
                 {"maximum", std::to_string(std::numeric_limits<T>::max())}});
}
std::string hexDigits(std::size_t most) {
  return object({{"type", typeNamed("string")},
                 {"pattern", inQuotes("^([0-9a-fA-F]{2})*$")},
                 {"maxLength", std::to_string(2 * most)}});
}
std::string real(std::size_t size) {
  const std::string digits = std::to_string(2 * size);
  const std::string bits =
      object({{"type", typeNamed("string")}, {"pattern", inQuotes("^[0-9a-fA-F]{" + digits + "}$")}});
  return object({{"anyOf", array({object({{"type", typeNamed("number")}}),
                                  object({{"type", typeNamed("object")},
                                          {"properties", object({{json_names::kBits, bits}})},
                                          {"required", array({inQuotes(json_names::kBits)})},
                                          {"additionalProperties", "false"}})})}});
}
std::string fixedText(std::size_t size) {
  const std::string text = object(
      {{"type", typeNamed("string")}, {"pattern", inQuotes("^[^\\u0000]*$")}, {"maxLength", std::to_string(size)}});
  return object(
      {{"anyOf", array({text, object({{"type", typeNamed("object")},
                                      {"properties",
                                       object({{json_names::kText, text}, {json_names::kAfter, hexDigits(size - 1)}})},
                                      {"required", array({inQuotes(json_names::kText), inQuotes(json_names::kAfter)})},
                                      {"additionalProperties", "false"}})})}});
}

// The definitions of a schema, each once, in the order of their first use.
class Definitions {
 public:
  // The schema of a value, which refers to definitions.
  std::string of(const Type& type) {
    switch (type.form) {
      case Form::int8:
        return defined("int8", integer<std::int8_t>());
      case Form::uint8:
        return defined("uint8", integer<std::uint8_t>());
      case Form::int16:
        return defined("int16", integer<std::int16_t>());
      case Form::uint16:
        return defined("uint16", integer<std::uint16_t>());
      case Form::int32:
        return defined("int32", integer<std::int32_t>());
      case Form::uint32:
        return defined("uint32", integer<std::uint32_t>());
      case Form::float32:
        return defined("float32", real(4));
      case Form::float64:
        return defined("float64", real(8));
      case Form::text:
        return object({{"type", typeNamed("string")}});
      case Form::fixedText:
        return defined("text" + std::to_string(type.count), fixedText(type.count));
      case Form::bytes:
        return defined("bytes" + std::to_string(type.count), hexDigits(type.count));
      case Form::array:
        return elements(*type.element, type.count, type.count);
      case Form::list:
        return object({{"type", typeNamed("array")}, {"items", of(*type.element)}});
      case Form::lazyArray:
        return elements(*type.element, 0, type.count);
      case Form::pair: {
        std::vector<std::string> both;
        for (const TypeMember& member : type.members) both.push_back(of(*member.type));
        return object({{"type", typeNamed("array")},
                       {"prefixItems", array(both)},
                       {"items", "false"},
                       {"minItems", std::to_string(both.size())}});
      }
      default:
        return record(type);
    }
  }

  // One line or block for each definition, as members of an object.
  std::string text() const {
    std::string all;
    for (const auto& [name, schema] : definitions_)
      all += (all.empty() ? "" : ",\n") + std::string("    ") + inQuotes(name) + ": " + schema;
    return all;
  }

 private:
  std::string elements(const Type& element, std::size_t least, std::size_t most) {
    return object({{"type", typeNamed("array")},
                   {"items", of(element)},
                   {"minItems", std::to_string(least)},
                   {"maxItems", std::to_string(most)}});
  }
  std::string defined(const std::string& name, const std::string& schema) {
    if (names_.insert(name).second) definitions_.emplace_back(name, schema);
    return reference(name);
  }
  std::string record(const Type& type) {
    const std::string name(type.name);
    if (!names_.insert(name).second) return reference(name);
    const std::size_t place = definitions_.size();
    definitions_.emplace_back(name, "");
    std::string properties;
    std::vector<std::string> required;
    for (const TypeMember& member : type.members) {
      properties +=
          (properties.empty() ? "" : ",\n") + std::string("        ") + inQuotes(member.name) + ": " + of(*member.type);
      if (member.isStored) required.push_back(inQuotes(member.name));
    }
    definitions_[place].second = "{\n      \"type\": \"object\",\n      \"properties\": {\n" + properties +
                                 "\n      },\n      \"required\": " + array(required) +
                                 ",\n      \"additionalProperties\": false\n    }";
    return reference(name);
  }

  std::set<std::string> names_;
  std::vector<std::pair<std::string, std::string>> definitions_;
};

std::string fault() {
  using namespace json_names;
  return object({{"type", typeNamed("object")},
                 {"properties", object({{kOffset, object({{"type", typeNamed("integer")}, {"minimum", "0"}})},
                                        {kField, object({{"type", typeNamed("string")}})},
                                        {kReason, object({{"type", typeNamed("string")}})}})},
                 {"required", array({inQuotes(kOffset), inQuotes(kField), inQuotes(kReason)})},
                 {"additionalProperties", "false"}});
}

}  // namespace

std::string jsonSchema(frame::FileKind kind) {
  using namespace json_names;
  const std::string name(frame::infoOf(kind).name);
  std::vector<std::string> encodings;
  for (const std::string& encoding : TextEncoding::names()) encodings.push_back(inQuotes(encoding));

  Definitions definitions;
  const std::string record = definitions.of(typeOfRecord(kind));
  const std::pair<std::string_view, std::string> members[] = {
      {kSchema, object({{"type", typeNamed("string")}})},
      {kFormat, object({{"const", std::to_string(kJsonFormat)}})},
      {kKind, object({{"const", inQuotes(name)}})},
      // Null if the file has fewer than two bytes.
      {kVersion, object({{"anyOf", array({integer<std::int16_t>(), object({{"type", typeNamed("null")}})})}})},
      {kEncoding, object({{"enum", array(encodings)}})},
      // Null if the version is refused.
      {kRecord, object({{"anyOf", array({record, object({{"type", typeNamed("null")}})})}})},
      {kTolerated, reference("fault")},
      {kUnread, object({{"type", typeNamed("integer")}, {"minimum", "1"}})},
      {kFault, reference("fault")},
  };
  std::string properties;
  for (const auto& [member, schema] : members)
    properties += (properties.empty() ? "" : ",\n") + std::string("    ") + inQuotes(member) + ": " + schema;
  return "{\n  \"$schema\": \"https://json-schema.org/draft/2020-12/schema\",\n  \"title\": " +
         inQuotes("A " + name + " file as JSON") +
         ",\n  \"description\": \"Written by torvio json and read by torvio from-json.\",\n"
         "  \"type\": \"object\",\n  \"properties\": {\n" +
         properties + "\n  },\n  \"required\": " +
         array({inQuotes(kFormat), inQuotes(kKind), inQuotes(kVersion), inQuotes(kEncoding), inQuotes(kRecord)}) +
         ",\n  \"additionalProperties\": false,\n  \"$defs\": {\n    \"fault\": " + fault() + ",\n" +
         definitions.text() + "\n  }\n}\n";
}

}  // namespace oldtorvio::values
