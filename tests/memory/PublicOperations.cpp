#include "tests/memory/PublicOperations.h"

#include <algorithm>
#include <map>
#include <regex>

#include "tests/support/Files.h"
#include "tests/support/SampleData.h"

namespace vex2::test {
namespace {

struct Declaration {
  std::string name;
  std::string parameters;
};

std::string textOf(const std::string& header) {
  const Bytes bytes = ReadBytes(SourcePath(header));
  const std::string text(bytes.begin(), bytes.end());
  return std::regex_replace(text, std::regex("//[^\n]*|\\s+"), " ");
}

// Returns the body of the class, with the bodies of functions and nested classes removed.
std::string classBody(const std::string& text) {
  std::string body;
  int depth = 0;
  for (std::size_t at = text.find('{', text.find("class VEX2_API")); at < text.size(); ++at) {
    if (text[at] == '}' && --depth == 0) break;
    if (depth == 1) body += text[at] == '}' ? ';' : text[at];
    if (text[at] == '{') ++depth;
  }
  return body;
}

std::vector<Declaration> publicDeclarations(const std::string& body) {
  static const std::regex access("\\b(public|protected|private) ?:(?!:)");
  static const std::regex declaration("(~?\\w+|operator=) ?\\(([^)]*)\\)");
  static const std::regex defaults(" = [^,)]*");
  std::vector<Declaration> found;
  bool isPublic = false;
  for (std::size_t start = 0; start < body.size();) {
    const std::size_t end = std::min(body.find(';', start), body.size());
    const std::string statement = body.substr(start, end - start);
    start = end + 1;
    for (std::sregex_iterator label(statement.begin(), statement.end(), access), none;
         label != none; ++label) {
      isPublic = (*label)[1] == "public";
    }
    std::smatch match;
    if (!isPublic || !std::regex_search(statement, match, declaration)) continue;
    found.push_back({match[1], std::regex_replace(match[2].str(), defaults, "")});
  }
  return found;
}

}  // namespace

std::vector<std::string> PublicOperations(const std::string& header) {
  const auto declarations = publicDeclarations(classBody(textOf(header)));
  std::map<std::string, int> overloads;
  for (const auto& declaration : declarations) ++overloads[declaration.name];
  std::vector<std::string> operations;
  for (const auto& [name, parameters] : declarations) {
    operations.push_back(overloads[name] == 1 ? name : name + "(" + parameters + ")");
  }
  return operations;
}

}  // namespace vex2::test
