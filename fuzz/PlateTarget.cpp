// Input: a plate of a study. Reads it within a study. Invariant: a plate that was read survives a
// save of the study.

#include "fuzz/Content.h"
#include "fuzz/Target.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::fuzz {
namespace {

// Readers ignore the lengths of a study, so they need not be true.
test::Bytes studyOf(const test::Bytes& plate) {
  static const test::Bytes kHead =
      test::ToBytes(std::string_view("RQStMPLC\0\0\0\xC\0\1RQPl\0\0\0\2\0\0", 24));
  test::Bytes records = kHead;
  records.insert(records.end(), plate.begin(), plate.end());
  return DocumentOf(records);
}

int countOf(const Vex2FileManager& document, std::string_view tag) {
  int count = 0;
  for (int i = 0; i < document.GetAllComponentCount(); ++i) {
    if (document.GetComponent(i)->GetTag() == tag) ++count;
  }
  return count;
}

void readAlone(Vex2FileManagerComponent& plate) {
  CFile file;
  Require(file.Open(kDocument, CFile::modeRead), "a file that is there opens");
  const int status = plate.ReadComponentFile(&file);
  Require(status == 0 || status == -100 || status == -300, "a read answers 0, -100 or -300");
}

}  // namespace
}  // namespace vex2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vex2::fuzz;
  auto& files = NewFiles();
  const vex2::test::Bytes plateBytes = DocumentOf({data, data + size});
  files.Put(kDocument, plateBytes);
  Vex2FileManagerComponent plate;
  readAlone(plate);
  if (IsTooLarge(plate)) return 0;

  files.Put(kDocument, studyOf(plateBytes));
  Vex2FileManager study;
  Read(study, kDocument);
  RequireKept(study);

  Vex2FileManager built;
  plate.SetFilePath("/plates/one.vex");
  const int oldNames = countOf(plate, "Path");
  Require(built.AddRQPlate(&plate, CString("today")), "a plate is added");
  Require(!built.AddRQPlate(&plate, CString("today")), "and only once");
  if (!RequireKept(built)) return 0;
  Vex2FileManager again;
  Read(again, kSaved);
  // If a plate was read with several names, the first of them is used, not the new one.
  Require(oldNames > 1 || again.GetSinglePlatePtrByName(CString("one")) != nullptr,
          "a plate keeps its name");
  return 0;
}
