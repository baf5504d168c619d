#include "lab/rdml/XmlReader.h"

#include <expat.h>

#include <algorithm>
#include <exception>
#include <new>

namespace vex2::lab {

namespace {

constexpr char kSeparator = '\n';

}  // namespace

struct XmlReader::Parser {
  XmlHandler& handler;
  std::string name;
  std::string ownNamespace;
  XML_Parser expat = nullptr;
  std::string path;
  std::vector<std::size_t> lengths;  ///< length of the path before each open element
  std::string text;  ///< text of the innermost element, after the last element in it
  bool isLeaf = false;
  std::vector<XmlAttribute> attributes;
  std::exception_ptr failure;
  std::uint64_t fed = 0;

  Parser(XmlHandler& to, std::string file, std::string_view space)
      : handler(to), name(std::move(file)), ownNamespace(space) {}
  ~Parser() {
    if (expat != nullptr) XML_ParserFree(expat);
  }

  // Keeps an exception until the parser has returned: the parser is a C library, and no exception
  // may pass through it.
  template <typename Work>
  void guarded(const Work& work) {
    if (failure) return;
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
      XML_StopParser(expat, XML_FALSE);
    }
  }

  Error failureOf(const std::string& what) const {
    std::string where = "line " + std::to_string(XML_GetCurrentLineNumber(expat));
    if (!path.empty()) where += ", element " + path.substr(path.rfind('/') + 1);
    return {ErrorCode::kDocument, name, where + ": " + what};
  }

  std::string localName(std::string_view full) const {
    const std::size_t bar = full.find(kSeparator);
    if (bar == std::string_view::npos) return std::string(full);
    const bool isOwn = full.substr(0, bar) == ownNamespace;
    return (isOwn ? "" : "~") + std::string(full.substr(bar + 1));
  }

  void begin(const char* element, const char** list) {
    if (lengths.size() == kMostDepth) {
      throw failureOf("elements nest more than " + std::to_string(kMostDepth) + " deep");
    }
    lengths.push_back(path.size());
    if (!path.empty()) path += '/';
    path += localName(element);
    text.clear();
    isLeaf = true;
    attributes.clear();
    for (; *list != nullptr; list += 2) {
      const std::string_view attribute = list[0];
      const std::size_t bar = attribute.find(kSeparator);
      attributes.push_back(
          {bar == std::string_view::npos ? attribute : attribute.substr(bar + 1), list[1]});
    }
    handler.Begin(path, attributes);
  }

  void end() {
    handler.End(path, text, isLeaf);
    path.resize(lengths.back());
    lengths.pop_back();
    text.clear();
    isLeaf = false;
  }

  void addText(std::string_view part) {
    if (text.size() + part.size() > kMostToken) throw failureOf("a text is too long");
    text += part;
  }

  static Parser& of(void* state) { return *static_cast<Parser*>(state); }
};

XmlReader::XmlReader(XmlHandler& handler, std::string name, std::string_view ownNamespace)
    : parser_(std::make_unique<Parser>(handler, std::move(name), ownNamespace)) {
  XML_Parser expat = XML_ParserCreateNS(nullptr, kSeparator);
  if (expat == nullptr) throw std::bad_alloc();
  parser_->expat = expat;
  XML_SetUserData(expat, parser_.get());
  XML_SetElementHandler(
      expat,
      [](void* state, const XML_Char* element, const XML_Char** list) {
        Parser& parser = Parser::of(state);
        parser.guarded([&] { parser.begin(element, list); });
      },
      [](void* state, const XML_Char*) {
        Parser& parser = Parser::of(state);
        parser.guarded([&] { parser.end(); });
      });
  XML_SetCharacterDataHandler(expat, [](void* state, const XML_Char* part, int length) {
    Parser& parser = Parser::of(state);
    parser.guarded([&] { parser.addText({part, static_cast<std::size_t>(length)}); });
  });
  XML_SetEntityDeclHandler(
      expat, [](void* state, const XML_Char* entity, int, const XML_Char*, int, const XML_Char*,
                const XML_Char*, const XML_Char*, const XML_Char*) {
        Parser& parser = Parser::of(state);
        parser.guarded([&] {
          throw parser.failureOf("declares the entity '" + std::string(entity) +
                                 "'; files with entities of their own are not read");
        });
      });
}

XmlReader::~XmlReader() = default;

void XmlReader::Feed(std::string_view bytes) {
  Parser& parser = *parser_;
  const auto status =
      XML_Parse(parser.expat, bytes.data(), static_cast<int>(bytes.size()), XML_FALSE);
  if (parser.failure) std::rethrow_exception(parser.failure);
  if (status == XML_STATUS_ERROR) {
    throw Failure(std::string("is no well-formed XML: ") +
                  XML_ErrorString(XML_GetErrorCode(parser.expat)));
  }
  parser.fed += bytes.size();
  // The parser holds a tag in memory until the tag is complete.
  const auto done = std::max<XML_Index>(XML_GetCurrentByteIndex(parser.expat), 0);
  if (parser.fed - static_cast<std::uint64_t>(done) > kMostToken) {
    throw Failure("a tag or an attribute is too long");
  }
}

void XmlReader::Finish() {
  const auto status = XML_Parse(parser_->expat, "", 0, XML_TRUE);
  if (parser_->failure) std::rethrow_exception(parser_->failure);
  if (status == XML_STATUS_ERROR) {
    throw Failure(std::string("is no well-formed XML: ") +
                  XML_ErrorString(XML_GetErrorCode(parser_->expat)));
  }
}

std::uint64_t XmlReader::Line() const {
  return XML_GetCurrentLineNumber(parser_->expat);
}

Error XmlReader::Failure(const std::string& what) const {
  return parser_->failureOf(what);
}

}  // namespace vex2::lab
