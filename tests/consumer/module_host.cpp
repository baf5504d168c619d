// A host that is linked with the library, names nothing of it, and finds its classes.
#include "vex2/framework/CObject.h"
#include "vex2/framework/ExtensionModule.h"

int main() {
  const CRuntimeClass* const manager = vex2::FindRuntimeClass("Vex2FileManager");
  return manager != nullptr && manager->CreateObject() != nullptr ? 0 : 1;
}
