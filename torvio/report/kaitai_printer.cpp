#include "torvio/report/kaitai_printer.h"

#include <algorithm>
#include <cctype>

namespace oldtorvio::report {
namespace {

// "workWord1" is "work_word1", "firstValues[0]" is "first_values_0", "[i]" is left out.
std::string snake(std::string_view name) {
  std::string id;
  for (const char c : name) {
    const auto code = static_cast<unsigned char>(c);
    if (std::isupper(code) != 0) {
      if (!id.empty() && id.back() != '_') id += '_';
      id += static_cast<char>(std::tolower(code));
    } else if (std::isalnum(code) != 0) {
      id += c;
    } else if (!id.empty() && id.back() != '_') {
      id += '_';
    }
  }
  while (id.ends_with('_')) id.pop_back();
  return id;
}
std::string withoutIndex(std::string name) {
  if (const auto at = name.find("[i]"); at != std::string::npos) name.erase(at, 3);
  return name;
}
// The name without underscores, as some languages write it; it must be unique in that form, too.
std::string plain(std::string_view id) {
  std::string all;
  std::copy_if(id.begin(), id.end(), std::back_inserter(all), [](char c) { return c != '_'; });
  return all;
}

// In double quotation marks for YAML.
std::string yamlString(std::string_view text) {
  std::string all = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') all += '\\';
    all += c;
  }
  return all + '"';
}
// A text of many lines under a key, wrapped.
std::string folded(std::string_view text, const std::string& indent) {
  constexpr std::size_t kWidth = 100;
  std::string all, line = indent;
  for (std::size_t i = 0; i <= text.size();) {
    const std::size_t end = std::min(text.find_first_of(" \n", i), text.size());
    const std::string_view word = text.substr(i, end - i);
    if (line.size() > indent.size() && line.size() + 1 + word.size() > kWidth) {
      all += line + "\n";
      line = indent;
    }
    if (line.size() > indent.size()) line += ' ';
    line += word;
    if (end == text.size() || text[end] == '\n') {
      all += (line == indent ? std::string() : line) + "\n";
      line = indent;
    }
    i = end + 1;
  }
  return all;
}

std::string joined(const std::vector<std::string>& all, const char* between) {
  std::string text;
  for (const std::string& one : all) text.append(text.empty() ? "" : between).append(one);
  return text;
}
// A part of a longer expression.
std::string inParentheses(const std::string& expression) {
  const bool isSimple = expression.find(" and ") == std::string::npos && expression.find(" or ") == std::string::npos &&
                        expression.find('?') == std::string::npos;
  return isSimple || (expression.starts_with('(') && expression.ends_with(')')) ? expression : "(" + expression + ")";
}

// Calls use(number) for each "{number}".
template <class Use>
void eachToken(const std::string& expression, const Use& use) {
  for (std::size_t at = 0; (at = expression.find('{', at)) != std::string::npos; ++at)
    if (expression[at + 1] != 'v') use(static_cast<std::size_t>(std::stoul(expression.substr(at + 1))));
}

}  // namespace

KaitaiPrinter::KaitaiPrinter() : nodes_(1) {}

void KaitaiPrinter::versionWord(const std::string& valid, const std::string& condition) {
  if (!condition.empty()) conditions_.push_back(condition);
  const std::size_t field = addNumber<std::int16_t>("version");
  attributes_[field].valid.push_back(valid);
  if (!condition.empty()) conditions_.pop_back();
}

bool KaitaiPrinter::reserved(std::size_t size) {
  addSized("reserved", expressionOf(static_cast<std::int64_t>(size)), false);
  return true;
}

// ---- fields ----

std::size_t KaitaiPrinter::add(const std::string& name, const std::string& origin) {
  Node& node = nodes_[node_];
  std::string id = snake(withoutIndex(name));
  if (id.empty() || std::isdigit(static_cast<unsigned char>(id[0])) != 0) id = "field_" + id;
  // A field that is described more than once, in different versions or under different conditions.
  const std::string first = id;
  for (int i = 2; !node.ids.insert(plain(id)).second; ++i) id = first + "_" + std::to_string(i);
  Attribute field;
  field.node = node_;
  field.id = id;
  field.origin = origin;
  field.conditions.assign(conditions_.begin() + static_cast<std::ptrdiff_t>(node.conditionsFrom), conditions_.end());
  field.reachedBy = conditions_;
  node.attributes.push_back(attributes_.size());
  attributes_.push_back(std::move(field));
  return attributes_.size() - 1;
}

void KaitaiPrinter::addSized(const std::string& name, const std::string& size, bool isText) {
  Attribute& field = attributes_[add(name, name)];
  field.size = size;
  if (isText) field.type = "strz";
}

void KaitaiPrinter::addLengthText(const std::string& name, std::int64_t longest) {
  const std::size_t length = addNumber<std::int32_t>(name + "Length");
  attributes_[length].origin = name + ".length";
  if (longest >= 0) attributes_[length].valid.push_back(token(length) + " <= " + std::to_string(longest));
  (void)under(token(length) + " > 0", [&] {
    addSized(name, token(length), true);
    attributes_.back().origin += ".text";
    return true;
  });
}

void KaitaiPrinter::addFill() {
  Attribute& field = attributes_[add("fill", "reserved")];
  field.toEnd = true;
}

void KaitaiPrinter::addDoc(const std::string& text) {
  std::vector<std::string>& docs = nodes_[node_].docs;
  if (std::find(docs.begin(), docs.end(), text) == docs.end()) docs.push_back(text);
}

// Adds the rule to its field, if everything in the rule is read before or with that field.
void KaitaiPrinter::addRule(const std::string& name, std::int64_t value, const std::string& rule) {
  std::optional<std::size_t> found = find(node_, name);
  if (!found)
    if (const auto known = fieldOf_.find(value); known != fieldOf_.end()) found = known->second;
  if (!found) {
    problems_.push_back("the rule for " + name + " is of no field");
    return;
  }
  Attribute& field = attributes_[*found];
  std::string under;
  for (std::size_t i = field.reachedBy.size(); i < conditions_.size(); ++i)
    under.append(under.empty() ? "" : " and ").append(inParentheses(conditions_[i]));
  const std::string all = under.empty() ? rule : "not (" + under + ") or " + inParentheses(rule);
  bool isKnownThere = true;
  eachToken(all, [&](std::size_t one) { isKnownThere = isKnownThere && one <= *found; });
  if (isKnownThere)
    field.valid.push_back(all);
  else
    notes_.insert("A rule for " + name + " that depends on later fields is not checked.");
}

// ---- records and lists ----

std::size_t KaitaiPrinter::enter(const std::string& name, const std::string& type, Node::Kind kind) {
  const std::size_t field = add(name, "");
  Node node;
  node.kind = kind;
  node.name = snake(type.empty() ? name : type);
  node.outer = node_;
  node.attribute = field;
  node.conditionsFrom = conditions_.size();
  attributes_[field].child = nodes_.size();
  node_ = nodes_.size();
  nodes_.push_back(std::move(node));
  return field;
}
void KaitaiPrinter::leave() {
  for (const auto& [value, expression, field] : nodes_[node_].outside) {
    called_[value] = expression;
    fieldOf_[value] = field;
  }
  node_ = nodes_[node_].outer;
}

void KaitaiPrinter::setElement(std::size_t field, const std::string& name, const std::string& count) {
  // In a list whose elements alternate with those of another, the row has the index.
  attributes_[field].origin = name + (count.empty() ? "[i]" : "[]");
  attributes_[field].repeat = count;
}

// Call it after the first field of a row.
void KaitaiPrinter::nameRows(std::size_t rows) {
  const Node& row = nodes_[attributes_[rows].child];
  if (row.attributes.empty()) {
    problems_.emplace_back("a row is empty");
    return;
  }
  Node& outer = nodes_[row.outer];
  std::string stem = attributes_[row.attributes.front()].id;
  outer.ids.erase(plain(attributes_[rows].id));
  std::string id = stem + "_rows";
  for (int i = 2; !outer.ids.insert(plain(id)).second; ++i) id = stem + "_rows_" + std::to_string(i);
  attributes_[rows].id = id;
  nodes_[attributes_[rows].child].name = id.substr(0, id.rfind("_rows")) + "_row" + id.substr(id.rfind("_rows") + 5);
}

void KaitaiPrinter::addSizeParameter(std::int64_t value) {
  const auto known = called_.find(value);
  if (known == called_.end()) return;
  const std::string id = attributes_[fieldOf_.at(value)].id;
  const std::string argument = known->second;
  const std::size_t parameter = add(id, "");
  Attribute& field = attributes_[parameter];
  field.isParameter = true;
  field.type = "s4";
  field.argument = argument;
  field.conditions.clear();
  // Inside the record the value is that of the parameter.
  nodes_[node_].outside.emplace_back(value, argument, fieldOf_.at(value));
  known->second = token(parameter);
  fieldOf_[value] = parameter;
}

// ---- sizes and expressions ----

bool KaitaiPrinter::isSize(std::string_view name) {
  for (const std::string_view end : {"Count", "count", "Length", "Width", "Size"})
    if (name.ends_with(end)) return true;
  return false;
}

std::int64_t KaitaiPrinter::valueFor(std::size_t field, std::int64_t before, std::size_t storedSize) {
  const std::int64_t value = storedSize == 1 ? next8_++ : storedSize == 2 ? next16_++ : next32_;
  if (storedSize > 2) next32_ += 2;
  if (next8_ > 100 || next16_ > 30'000) problems_.emplace_back("there are more small sizes than values for them");
  std::string expression = token(field);
  // A variable that is read again under a condition keeps its value if the condition does not hold.
  if (const auto earlier = called_.find(before); earlier != called_.end()) {
    const std::size_t shared = attributes_[fieldOf_.at(before)].reachedBy.size();
    std::string under;
    for (std::size_t i = shared; i < conditions_.size(); ++i)
      under.append(under.empty() ? "" : " and ").append(inParentheses(conditions_[i]));
    if (!under.empty()) expression = "(" + inParentheses(under) + " ? " + expression + " : " + earlier->second + ")";
  }
  called_[value] = expression;
  fieldOf_[value] = field;
  if (storedSize == 1) {
    // Doubled in one byte, the value wraps.
    const auto doubled = static_cast<std::int8_t>(static_cast<std::uint8_t>(2 * value));
    called_[doubled] = "(((" + expression + " * 2 + 128) & 255) - 128)";
    fieldOf_[doubled] = field;
  } else if (storedSize > 2) {
    // The count of a list that has one more element.
    called_[value + 1] = "(1 + (" + expression + " > 0 ? " + expression + " : 0))";
    fieldOf_[value + 1] = field;
  }
  return value;
}

std::string KaitaiPrinter::expressionOf(std::int64_t value) const {
  const auto known = called_.find(value);
  return known == called_.end() ? std::to_string(value) : known->second;
}

std::string KaitaiPrinter::comparison(const std::string& name, std::int64_t value, codec::Test test,
                                      const std::vector<std::string>& values) {
  std::string left;
  if (const auto field = find(node_, name))
    left = token(*field);
  else if (called_.contains(value))
    left = called_.at(value);
  else
    problems_.push_back("the condition on " + name + " is of no field that was read");
  switch (test) {
    case codec::Test::equals:
      return left + " == " + values[0];
    case codec::Test::notEquals:
      return left + " != " + values[0];
    case codec::Test::above:
      return left + " > " + values[0];
    case codec::Test::atLeast:
      return left + " >= " + values[0];
    case codec::Test::atMost:
      return left + " <= " + values[0];
    case codec::Test::within:
      return left + " >= " + values[0] + " and " + left + " <= " + values[1];
    case codec::Test::oneOf: {
      std::vector<std::string> all;
      all.reserve(values.size());
      for (const std::string& one : values) all.push_back(left + " == " + one);
      return joined(all, " or ");
    }
    case codec::Test::inRanges: {
      std::vector<std::string> all;
      for (std::size_t i = 0; i + 1 < values.size(); i += 2)
        all.push_back(values[i] == values[i + 1]
                          ? left + " == " + values[i]
                          : "(" + left + " >= " + values[i] + " and " + left + " <= " + values[i + 1] + ")");
      return joined(all, " or ");
    }
    case codec::Test::withinGrown:
      return left + " >= " + values[0] + " and " + left + " <= (" + kVersion + " < " + values[2] + " ? " + values[3] +
             " : " + values[1] + ")";
  }
  return {};  // not reached
}

std::optional<std::size_t> KaitaiPrinter::findInside(std::size_t node, const std::string& path) const {
  const Node& in = nodes_[node];
  for (auto one = in.attributes.rbegin(); one != in.attributes.rend(); ++one) {
    const Attribute& field = attributes_[*one];
    if (field.origin == path && !field.isParameter) return *one;
    if (field.child == 0 || !field.repeat.empty()) continue;
    std::optional<std::size_t> found;
    if (field.origin.empty())
      found = findInside(field.child, path);
    else if (path.starts_with(field.origin + "."))
      found = findInside(field.child, path.substr(field.origin.size() + 1));
    if (found) return found;
  }
  return std::nullopt;
}

std::optional<std::size_t> KaitaiPrinter::find(std::size_t node, const std::string& path) const {
  if (const auto found = findInside(node, path)) return found;
  const bool isInner = nodes_[node].kind == Node::inner && node != 0;
  return isInner ? find(nodes_[node].outer, path) : std::nullopt;
}

// ---- printing ----

// The path from a type to a field: in the type or its parts, in the types that contain it, or from the root.
std::string KaitaiPrinter::pathTo(std::size_t attribute, std::size_t node) const {
  std::vector<std::size_t> way{attribute};  // from the root
  for (std::size_t at = attributes_[attribute].node; at != 0; at = nodes_[at].outer)
    way.insert(way.begin(), nodes_[at].attribute);
  const auto isInside = [&](std::size_t type) {
    for (std::size_t at = attributes_[attribute].node;; at = nodes_[at].outer) {
      if (at == type) return true;
      if (at == 0) return false;
    }
  };
  std::string path;
  std::size_t from = node;
  while (!isInside(from)) {
    if (nodes_[from].kind == Node::record) {
      path = "_root.";
      from = 0;
      break;
    }
    path += "_parent.";
    from = nodes_[from].outer;
  }
  bool isBelow = from == 0;
  for (const std::size_t step : way) {
    if (isBelow) {
      const Attribute& field = attributes_[step];
      path += field.id;
      if (step == attribute) return path;
      if (!field.repeat.empty()) problems_.push_back("the field " + field.id + " is in a list and used outside of it");
      path += '.';
    }
    if (attributes_[step].child == from) isBelow = true;
  }
  problems_.push_back("there is no way to the field " + attributes_[attribute].id);
  return path;
}

std::string KaitaiPrinter::rendered(const std::string& expression, std::size_t node) const {
  std::string text;
  for (std::size_t i = 0; i < expression.size(); ++i) {
    if (expression[i] != '{') {
      text += expression[i];
      continue;
    }
    const std::size_t end = expression.find('}', i);
    if (expression[i + 1] == 'v')
      text += node == 0 ? "version" : "file_version";
    else
      text += pathTo(std::stoul(expression.substr(i + 1, end - i - 1)), node);
    i = end;
  }
  return text;
}

// Of several lower limits on the version, only the highest is used.
std::string KaitaiPrinter::conditionsOf(const Attribute& field) const {
  const std::string since = std::string(kVersion) + " >= ";
  const auto limitOf = [&](const std::string& one) {
    return one.starts_with(since) && one.find(' ', since.size()) == std::string::npos
               ? std::stoi(one.substr(since.size()))
               : 0;
  };
  int highest = 0;
  for (const std::string& one : field.conditions) highest = std::max(highest, limitOf(one));
  std::vector<std::string> all;
  for (const std::string& one : field.conditions) {
    const std::string text = field.conditions.size() > 1 ? inParentheses(one) : one;
    if (limitOf(one) != 0 && limitOf(one) != highest) continue;
    if (std::find(all.begin(), all.end(), text) == all.end()) all.push_back(text);
  }
  return joined(all, " and ");
}

bool KaitaiPrinter::usesVersion(std::size_t node) const {
  const auto has = [](const std::string& expression) { return expression.find(kVersion) != std::string::npos; };
  return std::any_of(nodes_[node].attributes.begin(), nodes_[node].attributes.end(), [&](std::size_t one) {
    const Attribute& field = attributes_[one];
    return std::any_of(field.conditions.begin(), field.conditions.end(), has) ||
           std::any_of(field.valid.begin(), field.valid.end(), has) || has(field.size) || has(field.repeat) ||
           has(field.argument) || (field.child != 0 && usesVersion(field.child));
  });
}

std::string KaitaiPrinter::typeCall(const Attribute& field, Printed& printed) const {
  std::vector<std::string> arguments;
  if (usesVersion(field.child)) arguments.push_back(rendered(kVersion, field.node));
  for (const std::size_t one : nodes_[field.child].attributes)
    if (attributes_[one].isParameter) arguments.push_back(rendered(attributes_[one].argument, field.node));
  const std::string name = printed.names.at(field.child);
  return arguments.empty() ? name : name + "(" + joined(arguments, ", ") + ")";
}

std::string KaitaiPrinter::attributeText(const Attribute& field, Printed& printed, const std::string& indent) const {
  std::string text = indent + "- id: " + field.id + "\n";
  const auto line = [&](const char* key, const std::string& value) {
    text.append(indent).append("  ").append(key).append(": ").append(value).append("\n");
  };
  const auto expression = [&](const char* key, const std::string& value) {
    if (value.empty()) return;
    const std::string shown = rendered(value, field.node);
    const bool isNumber = std::all_of(shown.begin(), shown.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
    line(key, isNumber ? shown : yamlString(shown));
  };
  if (!field.origin.empty()) line("-orig-id", yamlString(field.origin));
  if (field.firstIndex != 0) line("-first-index", std::to_string(field.firstIndex));
  if (field.child != 0)
    line("type", yamlString(typeCall(field, printed)));
  else if (!field.type.empty())
    line("type", field.type);
  expression("size", field.size);
  if (field.toEnd) line("size-eos", "true");
  if (!field.repeat.empty()) line("repeat", "expr");
  expression("repeat-expr", field.repeat);
  if (!field.conditions.empty()) line("if", yamlString(rendered(conditionsOf(field), field.node)));
  if (!field.valid.empty()) {
    std::vector<std::string> all;
    for (const std::string& one : field.valid) all.push_back(field.valid.size() > 1 ? inParentheses(one) : one);
    text.append(indent).append("  valid:\n").append(indent).append("    expr: ");
    text.append(yamlString(rendered(joined(all, " and "), field.node))).append("\n");
  }
  return text;
}

std::string KaitaiPrinter::bodyOf(std::size_t node, Printed& printed, const std::string& indent) const {
  const Node& type = nodes_[node];
  std::string text, parameters, inner, fields;
  for (const std::string& doc : type.docs) text.append(folded(doc, indent + "  "));
  if (!text.empty()) text = indent + "doc: |\n" + text;
  if (node != 0 && usesVersion(node)) parameters += indent + "  - id: file_version\n" + indent + "    type: s4\n";
  for (const std::size_t one : type.attributes) {
    const Attribute& field = attributes_[one];
    if (field.isParameter) {
      parameters += indent + "  - id: " + field.id + "\n" + indent + "    type: " + field.type + "\n";
      continue;
    }
    if (field.child != 0) {
      const Node& child = nodes_[field.child];
      if (child.kind == Node::inner) {
        printed.names[field.child] = child.name;
        inner += indent + "  " + child.name + ":\n" + bodyOf(field.child, printed, indent + "    ");
      } else {
        const std::string body = bodyOf(field.child, printed, "    ");
        std::string name = child.name;
        // Records of a type with another stored form here get a type of their own.
        const auto isInnerType = [&](const Node& other) { return other.kind == Node::inner && other.name == name; };
        for (int i = 2;; ++i) {
          if (std::any_of(nodes_.begin(), nodes_.end(), isInnerType)) {
            name += "_record";
            continue;
          }
          const auto known = std::find_if(printed.types.begin(), printed.types.end(),
                                          [&](const auto& other) { return other.first == name; });
          if (known == printed.types.end()) {
            printed.types.emplace_back(name, body);
            break;
          }
          if (known->second == body) break;
          name = child.name + "_" + std::to_string(i);
        }
        printed.names[field.child] = name;
      }
    }
    fields += attributeText(field, printed, indent + "  ");
  }
  if (!parameters.empty()) text += indent + "params:\n" + parameters;
  text += indent + "seq:\n" + fields;
  if (!inner.empty()) text += indent + "types:\n" + inner;
  return text;
}

std::string KaitaiPrinter::ksy(const std::string& id, const std::string& title, const std::string& doc) const {
  std::string text = "meta:\n  id: " + id + "\n  title: " + yamlString(title) +
                     "\n  ks-version: 0.11\n  endian: le\n  encoding: windows-1252\n";
  std::string notes = doc;
  for (const std::string& note : notes_) notes += "\n- " + note;
  for (const std::string& one : nodes_[0].docs) notes += "\n- " + one;
  text += "doc: |\n" + folded(notes, "  ");
  Printed printed;
  std::string body = bodyOf(0, printed, "");
  if (const auto at = body.find("seq:\n"); at != std::string::npos) body.erase(0, at);  // the doc is above
  // Inner types of the root come after its fields, with the records.
  std::string inner;
  if (const auto at = body.find("\ntypes:\n"); at != std::string::npos) {
    inner = body.substr(at + 8);
    body.erase(at + 1);
  }
  text += body;
  if (!instances_.empty()) text += "instances:\n" + joined(instances_, "");
  text += "types:\n" + inner;
  for (const auto& [name, type] : printed.types) text.append("  ").append(name).append(":\n").append(type);
  return text;
}

}  // namespace oldtorvio::report
