#include "vex2/setup/Vex2WellDetector.h"

#include "vex2/setup/OwnedText.h"

Vex2WellDetector::~Vex2WellDetector() {
  delete[] detectorName;
  delete[] task;
}

void Vex2WellDetector::SetDetectorName(const char* text, std::int32_t length) {
  vex2::SetText(detectorName, detectorNameLength, text, length);
}

void Vex2WellDetector::SetTask(const char* text, std::int32_t length) {
  vex2::SetText(task, taskLength, text, length);
}
