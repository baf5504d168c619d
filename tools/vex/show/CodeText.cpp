#include "tools/vex/show/CodeText.h"

#include "tools/vex/Errors.h"

namespace vex2::tool {

std::string ExplainedCode(CodeField field, std::string_view code) {
  const std::string meaning = CodeMeaning(field, code);
  return Printable(code) + (meaning.empty() ? "" : ": " + meaning);
}

}  // namespace vex2::tool
