#include <cstdio>

#include "vex2/framework/CString.h"

int main() {
  const CString text("Vex2");
  std::printf("%s\n", text.GetString());
  return text.GetLength() == 4 ? 0 : 1;
}
