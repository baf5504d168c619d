// A host that uses only installed files: it makes a document, saves it and reads it back.
#include <cstdio>

#include "vex2/framework/ExtensionModule.h"
#include "vex2/manager/Vex2FileManager.h"

int main(int count, char** arguments) {
  if (count < 2) return 2;
  if (vex2::FindRuntimeClass("Vex2FileManager") != Vex2FileManager::ClassRecord()) return 1;
  Vex2FileManager document;
  document.SetSampleVolume(25);
  if (document.SaveToFile(arguments[1]) != vex2::kSuccess) return 1;
  Vex2FileManager back;
  if (back.ReadFromFile(arguments[1]) != vex2::kSuccess) return 1;
  std::printf("%d rows, %d µl\n", back.GetHeaderRows(), back.GetSampleVolume());
  return back.GetHeaderRows() == 8 && back.GetSampleVolume() == 25 ? 0 : 1;
}
