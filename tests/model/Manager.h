#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "tests/model/Values.h"
#include "tests/support/RecordModel.h"

namespace vex2::test::model {

/// The files that all managers use. Paths that begin with "/sealed" cannot be written, those with
/// "/drop" cannot be read, and those with "/nowhere" cannot be opened.
struct Disk {
  std::map<Text, Text> files;
  std::map<Text, int> readers;
  std::map<Text, int> writers;
  std::map<Text, int> replaced;  ///< how often a new file has replaced the old one
};

/// A literal implementation of the rules for a plate document: a header, records in order, a file.
/// Operations have the names of the library, in lower case, and return a status or the queried
/// value.
class Manager {
 public:
  explicit Manager(Disk& disk) : disk_(&disk) {}

  Text header = NewHeader();  ///< 72 bytes, then four bytes for each row
  std::vector<Part> parts;
  Text path;
  std::set<Text> analysed;     ///< names of plates with storage for analysis results
  std::vector<Text> messages;  ///< shown to the user

  static Text NewHeader();
  static Text EmptyHeader();

  // --- ManagerFiles.cpp: files and header ---
  int safeOpen(const char* at, int write, int append);
  void close();
  bool isOpen() const { return mode_ != Mode::closed; }
  /// Whether the rules define what a write to the manager's file does. They do not if the file is
  /// open for reading, because such a write fails only later.
  bool canTryToWrite() const { return mode_ != Mode::reading; }
  bool isWriting() const { return mode_ == Mode::writing; }
  void write(const Text& bytes);
  int reset();
  void assign(const Manager& other);
  int readFromFile(const char* at);
  int readComponentFile();
  int saveToFile(const char* at);
  int writeComponentFile();
  int saveHeader(const char* at, const Text& newHeader);
  int setStatus(const char* status);
  int setStatus(const char* at, const char* status);
  bool isVex2();
  void setUsage(const std::vector<bool>& usage, int rows, int columns);
  int updateOffset(std::size_t field, std::uint32_t offset);
  /// Whether the rules define the result of reading this file. They do not if the header is cut
  /// off.
  bool isSettled(const char* at) const;

  // --- ManagerSettings.cpp: settings and the thermal cycling program ---
  Settings settings() const;
  int replaceSettings(const Settings* value);
  int appendSettings(const char* at, const Settings* value);
  int setValue(const Text& tag, const Text& value);
  int setText(const Text& tag, const Text& text);
  int setPlateText(const Text& tag, const Text& text);
  int replaceProgram(const Text& program);
  int writeProgram();

  // --- ManagerSetup.cpp: plate setup, detectors, dyes ---
  int replaceSetup(const std::vector<Well>& wells);
  int saveSetup(const char* at);
  int writeSetup();
  int updateDetectors(const std::vector<Detector>& list);
  int appendDetector(const Detector& detector);
  bool removeDetector(const Text& name);
  bool appendDye(const Text& name);
  int updateDyes(const std::vector<Text>& names);
  bool removeDye(const Text& name);
  int appendToFile(const char* at, const Text& tag);
  int countOf(const Text& tag, int& count) const;

  // --- ManagerCalibration.cpp ---
  int replaceCalibration(const Spectra* dyes, const Spectra* background);
  int replaceSpectra(const Text& tag, const Spectra* value);
  int replaceBackground(const char* at, const Spectra* value);
  int appendSpectra(const char* at, const Text& tag, const Spectra& value);
  int removeCalibration(bool dyes, bool background);
  int saveCalibration(const char* at);

  // --- ManagerRun.cpp: data blocks and frames ---
  int removeBlock(const Text& tag);
  int replaceBlock(const char* at, const std::vector<Frame>* frames, int count, const Text& tag);
  int appendBlock(const char* at, const std::vector<Frame>* frames, int count);
  void initWells(const std::vector<std::uint16_t>& wells, const Text& tag);
  int appendFrame(const char* at, const Frame& frame, const Text& tag);
  int commit(const char* at, std::int64_t index, const Text& tag);
  bool setRecord(const Text& record, int frame, int well, const Text& tag);
  bool setTime(const Text& time, bool isEnd, const Text& tag);
  Text readFrame(std::int64_t index, const Text& tag) const;
  Text readFrame(const char* at, std::int64_t index, const Text& tag);
  Text frameCount(const char* at, const Text& tag);
  std::uint32_t findInFile(const Text& bytes, const Text& tag) const;
  /// Whether the header's offset of RAWa is 0 or points to that tag; true for other blocks, and for
  /// a file that is missing or shorter than 72 bytes. The rules for reading single frames assume
  /// this.
  bool leadsToBlock(const char* at, const Text& tag) const;
  /// Whether the declared lengths lead from record to record exactly to the end of the file.
  bool hasPlainRecords(const char* at) const;

  // --- ManagerStudy.cpp ---
  bool isStudy() const { return header.compare(8, 4, "RQSt") == 0; }
  bool initPlates();
  bool addPlate(const Manager& plate, const Text& date);
  bool removePlate(const Text& name);
  Text plateList() const;
  const Part* find(const Text& tag) const;

 private:
  enum class Mode { closed, reading, writing };
  struct Left {
    Text path;
    int replaced = 0;
    std::size_t length = 0;
    friend bool operator==(const Left&, const Left&) = default;
  };

  Left left() { return {openPath_, disk_->replaced[openPath_], content().size()}; }
  Text& content() { return disk_->files[openPath_]; }
  void overwrite(std::size_t at, const Text& bytes);
  int appended(const char* at, const Text& bytes);
  Part* find(const Text& tag);
  Part* append(Part part);
  void remove(const Text& tag);
  int writeHeader();
  void writePart(const Part& part);
  int saveParts(const char* at, const std::function<int()>& writeThem);
  /// Whether the file needs a backup before it is replaced, but cannot be read to make one.
  bool lacksBackup(const char* at) const;
  int replaceRaw(const char* at, const Part& block);
  int replaceReporting(const char* at, const Part& block, const Text& tag);
  std::size_t placeForFrame(const Part& block, std::uint32_t offset);
  bool beginsAsBlock(const Part& block, std::size_t start);
  bool isLeftover(const Part& block, std::size_t start);
  std::size_t placeForBlock(const Part& block);
  int writeBlock(const Part& block, std::size_t place);

  Disk* disk_;
  Mode mode_ = Mode::closed;
  Text openPath_;
  std::size_t position_ = 0;
  Left left_;    ///< the state that the last commit left
  Text unread_;  ///< the path of a file that was read in part, if it can no longer be read
};

}  // namespace vex2::test::model
