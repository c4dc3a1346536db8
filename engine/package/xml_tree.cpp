#include "engine/package/xml_tree.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>

#include "engine/package/block_reader.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_scanner.h"
#include "engine/package/xml_text.h"

namespace engine::package {
namespace {

// A tree takes many times the room of a text of small elements or attributes, and a packed part of
// them next to nothing. Styles with all the formats and named styles that there can be just fit.
constexpr std::size_t kMostMemory = 120'000'000;
constexpr std::size_t kNodeSize = 64;
constexpr std::size_t kAttributeSize = 40;

// Whoever asks for a namespace looks through the attributes of all ancestors. The formats' richest
// element has some eighty, and a root declares forty prefixes at most.
constexpr std::size_t kMostAttributes = 256;

constexpr unsigned kParse =
    pugi::parse_default | pugi::parse_ws_pcdata | pugi::parse_comments | pugi::parse_pi;
constexpr unsigned kFormat = pugi::format_raw | pugi::format_no_declaration;
constexpr std::string_view kDeclaration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

// Failed allocations of trees so far on this thread. Without the model the first use in a thread
// may have to allocate the variable, and failing there would end the process.
#ifdef __ELF__
[[gnu::tls_model("initial-exec")]]
#endif
constinit thread_local std::uint64_t g_failures = 0;

void* allocate(std::size_t size) {
  void* const block = std::malloc(size);
  if (block == nullptr) ++g_failures;
  return block;
}

[[maybe_unused]] const bool g_is_counting = [] {
  pugi::set_memory_management_functions(allocate, std::free);
  return true;
}();

// Elements, comments and processing instructions, each of which begins with its own "<".
std::size_t count_nodes(std::string_view text) {
  std::size_t nodes = 0;
  for (auto at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
    if (!text.substr(at + 1).starts_with('/')) ++nodes;
  }
  return nodes;
}

// The tree's parser lets much pass: unknown entities, document types, any depth and size. The
// scanner does not.
void check_text(std::string_view text, std::string_view part) {
  if (text.find('\0') != std::string_view::npos) throw_damaged(part, "holds a zero byte");
  MemoryReader reader(text);
  XmlScanner scanner(reader, part);
  std::string scratch;
  std::size_t memory = kNodeSize * count_nodes(text);
  for (;;) {
    if (memory > kMostMemory) throw_damaged(part, "holds too many elements or attributes");
    switch (scanner.next()) {
      case XmlScanner::Token::Start: {
        auto attributes = scanner.attributes();
        std::size_t count = 0;
        for (XmlAttribute attribute; attributes.next(attribute); ++count) {
          if (count == kMostAttributes) scanner.fail("an element has too many attributes");
          scanner.value(attribute.value, scratch);
        }
        memory += count * kAttributeSize;
        break;
      }
      case XmlScanner::Token::Text:
        scanner.text(scratch);
        memory += kNodeSize;
        break;
      case XmlScanner::Token::End:
        break;
      case XmlScanner::Token::Finish:
        return;
    }
  }
}

// Nothing may be thrown through the library, so what goes wrong is told at the end.
class StringWriter : public pugi::xml_writer {
 public:
  explicit StringWriter(std::string_view begin) : text_(begin) {}

  void write(const void* data, std::size_t size) override try {
    if (!failed_) text_.append(static_cast<const char*>(data), size);
  } catch (const std::bad_alloc&) {
    failed_ = true;
  }

  std::string take() {
    if (failed_) throw std::bad_alloc();
    return std::move(text_);
  }

 private:
  std::string text_;
  bool failed_ = false;
};

struct Verbatim {
  std::string_view begin;
  std::string_view end;
};

// Where references would not be read as such.
constexpr Verbatim kVerbatim[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

// The end of what begins at `at` and is taken as it stands; `at` where there is nothing such.
std::size_t verbatim_end(std::string_view text, std::size_t at) {
  for (const auto& [begin, end] : kVerbatim) {
    if (text.substr(at).starts_with(begin)) {
      const auto found = text.find(end, at + begin.size());
      return found == std::string_view::npos ? text.size() : found + end.size();
    }
  }
  return at;
}

std::string refer_to_returns(std::string text) {
  if (text.find('\r') == std::string::npos) return text;
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    const auto end = text[at] == '<' ? verbatim_end(text, at) : at;
    if (end != at) {
      out.append(text, at, end - at);
      at = end;
    } else if (text[at] == '\r') {
      out += "&#13;";
      ++at;
    } else {
      out += text[at++];
    }
  }
  return out;
}

bool holds(pugi::xml_node node, pugi::xml_node element) {
  while (element && element != node) element = element.parent();
  return static_cast<bool>(element);
}

// The nodes around the cut are written here, as the library writes whole ones only.
void append_cut(XmlTree::Halves& halves, pugi::xml_node node, pugi::xml_node element,
                bool& behind) {
  const auto out = [&]() -> std::string& { return behind ? halves.tail : halves.head; };
  if (!holds(node, element)) {
    out().append(serialize_xml(node));
    return;
  }
  out().append("<").append(node.name());
  for (const auto attribute : node.attributes()) {
    out().append(" ").append(attribute.name()).append("=\"");
    append_xml_attribute(out(), attribute.value());
    out().append("\"");
  }
  out().append(">");
  for (const auto child : node.children()) append_cut(halves, child, element, behind);
  behind |= node == element;
  out().append("</").append(node.name()).append(">");
}

// The namespace that a prefix stands for at an element; null when it is declared nowhere.
const char* find_uri(pugi::xml_node node, std::string_view prefix) {
  const std::string name =
      prefix.empty() ? std::string("xmlns") : std::string("xmlns:").append(prefix);
  for (; node; node = node.parent()) {
    if (const auto declared = node.attribute(name.c_str())) return declared.value();
  }
  return nullptr;
}

constexpr std::string_view usual_prefix(Family family) {
  switch (family) {
    case Family::Xml:
      return "xml";
    case Family::Relationships:
      return "r";
    case Family::MarkupCompatibility:
      return "mc";
    case Family::SchemaInstance:
      return "xsi";
    default:
      return "ns";
  }
}

// A prefix for attributes of a family, declared at the root when there is none.
std::string attribute_prefix(pugi::xml_node node, Family family) {
  if (family == Family::Xml) return "xml";
  for (auto at = node; at; at = at.parent()) {
    for (const auto declared : at.attributes()) {
      const std::string_view name = declared.name();
      if (!name.starts_with("xmlns:") || family_of(declared.value()) != family) continue;
      // A nearer declaration may have given the prefix another meaning.
      if (family_of_prefix(node, local_name(name)) == family) return std::string(local_name(name));
    }
  }
  std::string prefix(usual_prefix(family));
  while (find_uri(node, prefix) != nullptr) prefix += '1';
  auto root = node.root().first_child();
  while (root && root.type() != pugi::node_element) root = root.next_sibling();
  root.append_attribute(("xmlns:" + prefix).c_str()).set_value(std::string(uri_of(family)).c_str());
  return prefix;
}

}  // namespace

static_assert(std::is_nothrow_move_assignable_v<XmlTree>,
              "prepared trees are exchanged at the end");

XmlTree XmlTree::parse(std::string_view bytes, std::string_view part) {
  std::string decoded;
  if (looks_like_utf16(bytes)) {
    decoded = bytes;
    if (!xml_to_utf8(decoded)) throw_damaged(part, "UTF-16 text is not well-formed");
    bytes = decoded;
  }
  check_text(bytes, part);
  XmlTree made;
  made.failures_before_ = g_failures;
  const auto result =
      made.document_.load_buffer(bytes.data(), bytes.size(), kParse, pugi::encoding_utf8);
  made.check();
  if (!result) {
    throw_damaged(std::string(part) + ", byte " + std::to_string(result.offset),
                  "is not well-formed XML");
  }
  return made;
}

XmlTree XmlTree::copy() const {
  check();
  XmlTree made;
  made.failures_before_ = g_failures;
  made.document_.reset(document_);
  made.check();
  return made;
}

void XmlTree::check() const {
  if (failures_before_ && *failures_before_ != g_failures) throw std::bad_alloc();
}

void XmlTree::settle() {
  check();
  failures_before_.reset();
}

std::string XmlTree::serialize() const {
  check();
  StringWriter writer(kDeclaration);
  document_.save(writer, "", kFormat, pugi::encoding_utf8);
  return refer_to_returns(writer.take());
}

XmlTree::Halves XmlTree::cut_in(pugi::xml_node element) const {
  check();
  Halves halves{std::string(kDeclaration), {}};
  bool behind = false;
  for (const auto node : document_.children()) append_cut(halves, node, element, behind);
  return halves;
}

std::string serialize_xml(pugi::xml_node node) {
  StringWriter writer({});
  node.print(writer, "", kFormat, pugi::encoding_utf8);
  return refer_to_returns(writer.take());
}

Family family_of_prefix(pugi::xml_node node, std::string_view prefix) {
  if (prefix == "xml") return Family::Xml;
  const char* const uri = find_uri(node, prefix);
  if (uri == nullptr) return prefix.empty() ? Family::None : Family::Unknown;
  return family_of(uri);
}

std::string_view local_name(pugi::xml_node node) {
  return local_name(std::string_view(node.name()));
}

std::string_view namespace_of(pugi::xml_node node) {
  const char* const uri = find_uri(node, prefix_of(node.name()));
  return uri == nullptr ? std::string_view() : uri;
}

Family family(pugi::xml_node node) { return family_of_prefix(node, prefix_of(node.name())); }

bool is(pugi::xml_node node, Family family_wanted, std::string_view local) {
  return node.type() == pugi::node_element && local_name(node) == local &&
         family(node) == family_wanted;
}

pugi::xml_node child(pugi::xml_node parent, Family family, std::string_view local) {
  const auto first = parent.first_child();
  return !first || is(first, family, local) ? first : next_sibling(first, family, local);
}

pugi::xml_node next_sibling(pugi::xml_node node, Family family, std::string_view local) {
  do {
    node = node.next_sibling();
  } while (node && !is(node, family, local));
  return node;
}

std::vector<pugi::xml_node> children(pugi::xml_node parent, Family family, std::string_view local) {
  std::vector<pugi::xml_node> found;
  for (auto node = child(parent, family, local); node; node = next_sibling(node, family, local)) {
    found.push_back(node);
  }
  return found;
}

pugi::xml_attribute attribute(pugi::xml_node node, Family family, std::string_view local) {
  for (const auto candidate : node.attributes()) {
    const std::string_view name = candidate.name();
    const auto prefix = prefix_of(name);
    if (!prefix.empty() && local_name(name) == local && family_of_prefix(node, prefix) == family) {
      return candidate;
    }
  }
  return {};
}

std::string attribute_name(pugi::xml_node node, Family family, std::string_view local) {
  return attribute_prefix(node, family).append(":").append(local);
}

void set_attribute(pugi::xml_node node, Family family, std::string_view local,
                   std::string_view value) {
  auto target = attribute(node, family, local);
  if (!target) {
    target = node.append_attribute(attribute_name(node, family, local).c_str());
  }
  target.set_value(std::string(value).c_str());
}

std::string name_in(pugi::xml_node parent, std::string_view local) {
  const auto prefix = prefix_of(parent.name());
  return prefix.empty() ? std::string(local) : std::string(prefix).append(":").append(local);
}

pugi::xml_node append_child(pugi::xml_node parent, std::string_view local) {
  return parent.append_child(name_in(parent, local).c_str());
}

pugi::xml_node insert_child(pugi::xml_node parent, std::string_view local, pugi::xml_node next) {
  if (!next) return append_child(parent, local);
  return parent.insert_child_before(name_in(parent, local).c_str(), next);
}

}  // namespace engine::package
