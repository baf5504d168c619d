#include <algorithm>

#include "tests/model/Manager.h"

namespace vex2::test::model {
namespace {

constexpr std::size_t kHeader = 1024;

bool begins(const Text& text, const char* with) {
  return text.rfind(with, 0) == 0;
}

}  // namespace

Text Manager::NewHeader() {
  Text bytes = "Vex2" + Big(2, 2) + Big(2, 2) + "AbsQRtRnp9C " + Big(8, 2) + Big(12, 2) + Big(0, 5);
  bytes += Text(31, ' ') + "KestZERO" + Big(0, 4);
  for (int row = 0; row < 8; ++row) bytes += Big(4095, 4);
  return bytes;
}

Text Manager::EmptyHeader() {
  return Text(4, ' ') + Big(0, 4) + Text(12, ' ') + Big(0, 9) + Text(39, ' ') + Big(0, 4);
}

int Manager::safeOpen(const char* at, int write, int append) {
  close();
  path = at;
  const bool exists = disk_->files.count(path) != 0;
  if (begins(path, "/nowhere") || (write != 0 ? begins(path, "/sealed") : begins(path, "/drop"))) {
    return 0;
  }
  if (write == 0 && !exists) return 0;
  if (write != 0 && append == 0 && lacksBackup(at)) return 0;
  if (disk_->writers[path] != 0 || (write != 0 && disk_->readers[path] != 0)) return 0;
  ++(write != 0 ? disk_->writers : disk_->readers)[path];
  mode_ = write != 0 ? Mode::writing : Mode::reading;
  openPath_ = path;
  Text& bytes = content();
  if (write != 0 && append == 0) bytes.clear();
  position_ = append != 0 ? bytes.size() : 0;
  return 1;
}

void Manager::close() {
  if (mode_ == Mode::closed) return;
  --(mode_ == Mode::writing ? disk_->writers : disk_->readers)[openPath_];
  mode_ = Mode::closed;
}

void Manager::write(const Text& bytes) {
  overwrite(position_, bytes);
  position_ += bytes.size();
}

void Manager::overwrite(std::size_t at, const Text& bytes) {
  Text& all = content();
  if (all.size() < at + bytes.size()) all.resize(at + bytes.size());
  all.replace(at, bytes.size(), bytes);
}

bool Manager::lacksBackup(const char* at) const {
  return at == unread_ && disk_->files.count(unread_) != 0;
}

int Manager::reset() {
  unread_.clear();
  header = EmptyHeader();
  parts.clear();
  analysed.clear();
  return 0;
}

void Manager::assign(const Manager& other) {
  reset();
  header = other.header;
  path = other.path;
  unread_ = other.unread_;
  for (const Part& part : other.parts) parts.push_back(Copied(part));
}

bool Manager::isVex2() {
  if (mode_ != Mode::reading) return false;
  position_ = 4;
  return content().compare(0, 4, "Vex2") == 0;
}

bool Manager::isSettled(const char* at) const {
  if (at == nullptr) return true;
  const auto found = disk_->files.find(at);
  return found == disk_->files.end() || found->second.size() >= kHeader ||
         !begins(found->second, "Vex2");
}

int Manager::readFromFile(const char* at) {
  if (at == nullptr) return -50;
  const bool isOpened = safeOpen(at, 0, 0) != 0;
  unread_ = !isOpened && begins(path, "/drop") ? path : Text();
  if (!isOpened) return -100;
  readComponentFile();
  close();
  return 0;
}

int Manager::readComponentFile() {
  reset();
  const bool isReadable = isVex2();
  if (!isReadable && begins(openPath_, "/drop")) unread_ = openPath_;
  if (!isReadable) return -100;
  const Document document = ReadDocument(content());
  header = document.header;
  parts = document.parts;
  return document.status;
}

int Manager::saveParts(const char* at, const std::function<int()>& writeThem) {
  if (safeOpen(at, 1, 0) == 0) return -200;
  ++disk_->replaced[path];
  const int status = writeThem();
  close();
  return status;
}

int Manager::saveToFile(const char* at) {
  if (at == nullptr) return -50;
  return saveParts(at, [this] { return writeComponentFile(); });
}

int Manager::saveHeader(const char* at, const Text& newHeader) {
  header = newHeader;
  if (at == nullptr) return -200;
  return saveParts(at, [this] { return writeHeader(); });
}

int Manager::writeHeader() {
  if (!isWriting()) return -200;
  overwrite(0, header);
  content().resize(kHeader);
  position_ = kHeader;
  return 0;
}

void Manager::writePart(const Part& part) {
  position_ = content().size();
  write(Written(part));
}

int Manager::writeComponentFile() {
  if (const int status = writeHeader(); status != 0) return status;
  static const std::set<Text> kStudy = {"DETL", "GLBL", "CALR", "ENDO",
                                        "RQAT", "Conf", "MPLC", "TPro"};
  for (const Part& part : parts) {
    if (isStudy() && kStudy.count(part.tag) == 0) continue;
    writePart(part);
    const std::size_t field = part.tag == "TPro" ? 24 : part.tag == "RAWa" ? 68 : 0;
    if (field == 0) continue;
    header.replace(field, 4, Big(position_, 4));
    updateOffset(field, static_cast<std::uint32_t>(position_));
  }
  if (isStudy()) writePart(ValuePart("EOF ", Big(0, 4)));
  return 0;
}

int Manager::updateOffset(std::size_t field, std::uint32_t offset) {
  if (!isWriting() || content().size() < kHeader) return -200;
  overwrite(field, Big(offset, 4));
  position_ = field + 4;
  return 0;
}

int Manager::setStatus(const char* status) {
  const Text text = status != nullptr ? status : "";
  if (text.size() != 4) {
    messages.push_back(
        "The Acquisition Status should be a string 4 characters long. The new value '" + text +
        "' is invalid and won't be used.");
    return -261;
  }
  header.replace(64, 4, text);
  return 0;
}

int Manager::setStatus(const char* at, const char* status) {
  if (setStatus(status) != 0 || at == nullptr) return -200;
  if (safeOpen(at, 0, 0) == 0) return -200;
  const bool isDocument = isVex2();
  close();
  if (!isDocument || safeOpen(at, 1, 1) == 0) return -200;
  const bool hasRoom = content().size() >= 65;
  if (hasRoom) overwrite(64, status);
  close();
  return hasRoom ? 0 : -200;
}

void Manager::setUsage(const std::vector<bool>& usage, int rows, int columns) {
  header.replace(20, 2, Big(static_cast<std::uint64_t>(rows), 2));
  header.resize(72);
  for (std::size_t row = 0; row < static_cast<std::size_t>(rows); ++row) {
    std::uint32_t mask = 4095;
    for (std::size_t column = 0; column < static_cast<std::size_t>(columns); ++column) {
      const std::uint32_t bit = std::uint32_t{1} << column;
      const bool isUsed = usage[row * static_cast<std::size_t>(columns) + column];
      mask = isUsed ? mask | bit : mask & ~bit;
    }
    header += Big(mask, 4);
  }
}

}  // namespace vex2::test::model
