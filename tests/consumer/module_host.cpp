// A host that links the library but uses no symbol of it. It must find the classes of the library.
#include "vex2/framework/CObject.h"
#include "vex2/framework/ExtensionModule.h"

int main() {
  const CRuntimeClass* const manager = vex2::FindRuntimeClass("Vex2FileManager");
  return manager != nullptr && manager->CreateObject() != nullptr ? 0 : 1;
}
