#include "lab/import/Import.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <set>

#include "lab/Guarded.h"
#include "lab/Text.h"
#include "lab/csv/TextDecoder.h"
#include "lab/exchange/StorableTexts.h"
#include "lab/formats/ImportFormats.h"
#include "lab/import/CsvRun.h"
#include "lab/import/StoredRun.h"
#include "lab/json/WholeJson.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/OutputFiles.h"
#include "lab/model/RawFile.h"
#include "lab/model/Saving.h"
#include "lab/model/Study.h"
#include "lab/rdml/Rdes.h"
#include "lab/rdml/RdmlSource.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

constexpr std::uint64_t kMostPiped = 1ULL << 32U;  // bytes of standard input, kept on the disk
constexpr std::uint64_t kMostText = 256U << 20U;   // bytes of a table, kept in memory
constexpr std::size_t kReadSize = 1U << 16U;
constexpr const char* kPipedName = "a temporary file in " P_tmpdir " for standard input";

/// Standard input, copied to a file that is removed when it is closed.
class PipedFile {
 public:
  PipedFile() : file_(std::tmpfile(), std::fclose) {
    if (!file_) throw SystemError(kPipedName, errno);
    std::array<char, kReadSize> part{};
    std::uint64_t size = 0;
    while (true) {
      const auto count = ::read(STDIN_FILENO, part.data(), part.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) throw SystemError("standard input", errno);
      if (count == 0) break;
      size += static_cast<std::uint64_t>(count);
      if (size > kMostPiped) {
        throw Error(ErrorCode::kDocument, "standard input",
                    "holds more than " + std::to_string(kMostPiped) + " bytes");
      }
      write({part.data(), static_cast<std::size_t>(count)});
    }
    if (std::fflush(file_.get()) != 0) throw SystemError(kPipedName, errno);
  }

  std::string Path() const { return "/dev/fd/" + std::to_string(::fileno(file_.get())); }

 private:
  void write(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size()) return;
    throw SystemError(kPipedName, errno != 0 ? errno : EIO);
  }

  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

std::string textOf(const std::string& path, const std::string& name) {
  CFile file;
  OpenToRead(file, path);
  if (file.GetLength() > kMostText) {
    throw Error(ErrorCode::kDocument, name,
                "is a table of more than " + std::to_string(kMostText) + " bytes");
  }
  std::string bytes(file.GetLength(), '\0');
  bytes.resize(file.Read(bytes.data(), bytes.size()));
  TextDecoder decoder("");
  std::string text = decoder.Decode(bytes);
  text += decoder.Finish();
  if (const auto fault = decoder.FaultOffset()) {
    throw Error(ErrorCode::kDocument, name, "is no text in " + decoder.Encoding(), *fault);
  }
  return text;
}

/// The new documents of one import. If not all can be saved, because the disk is full, those that
/// were saved are removed again, so that a failed import leaves nothing. Documents that replaced
/// others stay.
class NewDocuments {
 public:
  NewDocuments() = default;
  ~NewDocuments() {
    std::error_code ignored;
    for (const std::string& path : paths_) std::filesystem::remove(path, ignored);
  }
  NewDocuments(const NewDocuments&) = delete;
  NewDocuments& operator=(const NewDocuments&) = delete;

  /// Call this before the document at `path` is saved.
  void Expect(const std::string& path) {
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::symlink_status(path, ignored))) {
      paths_.push_back(path);
    }
  }
  /// Call this when all documents are saved.
  void Keep() { paths_.clear(); }

 private:
  std::vector<std::string> paths_;
};

/// One import, from its options to its report.
class Importer {
 public:
  Importer(std::string source, std::string target, const ImportOptions& options)
      : source_(std::move(source)), target_(std::move(target)), options_(options) {}

  ImportReport Run() {
    if (source_ == "-") {
      piped_ = std::make_unique<PipedFile>();
      path_ = piped_->Path();
      name_ = "standard input";
    } else {
      RequireReadable(source_);
      path_ = source_;
      name_ = source_;
    }
    report_.format = options_.format ? *options_.format : findFormat();
    if (options_.embedded == ImportOptions::Embedded::kAlways &&
        report_.format != ImportFormat::kRdml) {
      refuseWithoutDocument();
    }
    switch (report_.format) {
      case ImportFormat::kRdml:
        importRdml();
        break;
      case ImportFormat::kRdes:
        saveRun(ReadRdes(textOf(path_, name_), name_, report_.losses));
        break;
      case ImportFormat::kJson:
        importJson();
        break;
      case ImportFormat::kCsv:
        saveRun(ReadCsvRun(path_, name_));
        break;
    }
    return std::move(report_);
  }

 private:
  ImportFormat findFormat() const {
    const std::string head = HeadOf(path_);
    if (head.empty()) throw Error(ErrorCode::kDocument, name_, "is empty");
    if (const auto format = FormatOfHead(head)) return *format;
    throw Error(ErrorCode::kDocument, name_,
                "is in none of the formats that can be imported: rdml, rdes, json, csv");
  }

  [[noreturn]] void refuseWithoutDocument() const {
    throw Error(ErrorCode::kDocument, name_,
                "holds no document; import its runs without --embedded");
  }

  void importRdml() {
    const RdmlSource source(path_, name_);
    const auto embedded = source.HasDocument();
    using Wanted = ImportOptions::Embedded;
    if (options_.embedded == Wanted::kAlways && embedded == RdmlSource::Embedded::kNone) {
      refuseWithoutDocument();
    }
    const bool isCurrent = embedded == RdmlSource::Embedded::kCurrent;
    if (options_.embedded == Wanted::kAlways ||
        (options_.embedded == Wanted::kIfCurrent && isCurrent)) {
      return saveEmbedded(source);
    }
    if (embedded == RdmlSource::Embedded::kOutdated && options_.embedded == Wanted::kIfCurrent) {
      report_.notes.push_back(
          "the document in the archive is not used: another program has changed the RDML since; "
          "--embedded takes it nevertheless");
    }
    saveRuns(source.ReadRuns(report_.losses, !options_.separate,
                             [&](const std::string& one, const std::string& other) {
                               report_.notes.push_back("the runs '" + one + "' and '" + other +
                                                       "' are parts of one plate, and one run "
                                                       "of the document; --separate keeps them "
                                                       "apart");
                             }));
  }

  void importJson() {
    std::vector<std::unique_ptr<DocumentFile>> documents;
    documents.push_back(std::make_unique<DocumentFile>());
    ReadWholeJson(textOf(path_, name_), name_, *documents.back());
    report_.documents.push_back({.path = target_, .run = {}});
    describe({.name = {}, .date = {}, .content = documents.back().get(), .records = {}},
             report_.documents.back());
    save(documents, 1);
  }

  void saveEmbedded(const RdmlSource& source) {
    OutputFiles files(options_.replace, options_.existsHint);
    if (source_ != "-") files.Read(source_);
    files.Write(target_, OutputFiles::Kind::kDocument).Claim();
    NewFile file(target_);
    bool isFirst = true;
    source.ReadDocument([&](std::string_view piece) {
      if (isFirst && !piece.starts_with(kMagic)) {
        throw Error(ErrorCode::kDocument, name_,
                    "the document embedded in it is not a plate document");
      }
      isFirst = false;
      file.Write(piece.data(), piece.size());
    });
    file.PutInPlace();
    report_.isEmbedded = true;
    const Document document(target_, Document::Purpose::kReadHeads);
    report_.documents.push_back({.path = target_, .run = {}});
    describe(document.Itself(), report_.documents.back());
  }

  static void describe(const Document::Plate& plate, ImportedDocument& document) {
    const AcquisitionDataComp* block = FindBlock(plate, kRawReadings);
    if (block == nullptr) return;
    document.frames = static_cast<std::size_t>(block->GetFrameCount());
    document.wells = block->GetWellCount();
  }

  // The path of a document: "run.vex" becomes "run-2.vex".
  std::string pathOf(std::size_t index, std::size_t count) const {
    if (count == 1) return target_;
    const std::filesystem::path path(target_);
    std::filesystem::path name = path.stem();
    name += "-" + std::to_string(index + 1);
    name += path.extension();
    return (path.parent_path() / name).string();
  }

  void saveRun(ExchangedRun run) {
    std::vector<ExchangedRun> runs;
    runs.push_back(std::move(run));
    saveRuns(std::move(runs));
  }

  void saveRuns(std::vector<ExchangedRun> runs) {
    if (runs.empty()) throw Error(ErrorCode::kDocument, name_, "holds no run");
    std::vector<std::unique_ptr<DocumentFile>> documents;
    const std::size_t count = options_.study ? 1 : runs.size();
    for (std::size_t i = 0; i < runs.size(); ++i) {
      ImportedDocument& made = report_.documents.emplace_back();
      made.path = pathOf(options_.study ? 0 : i, count);
      made.run = runs[i].name;
      documents.push_back(std::make_unique<DocumentFile>());
      StoreRun(std::move(runs[i]), name_, report_.losses, *documents.back());
      describe({.name = {}, .date = {}, .content = documents.back().get(), .records = {}}, made);
    }
    if (options_.study) documents = makeStudy(documents);
    save(documents, count);
  }

  std::vector<std::unique_ptr<DocumentFile>> makeStudy(
      const std::vector<std::unique_ptr<DocumentFile>>& plates) {
    auto study = std::make_unique<DocumentFile>();
    std::set<std::string> names;
    for (std::size_t i = 0; i < plates.size(); ++i) {
      const std::string& run = report_.documents[i].run;
      const std::string wanted = run.empty() ? "run" : StorableText(run);
      std::string name = wanted;
      for (int turn = 2; !names.insert(name).second; ++turn) {
        name = wanted + "-" + std::to_string(turn);
      }
      report_.documents[i].run = name;
      AddMadePlate(*study, *plates[i], name);
    }
    std::vector<std::unique_ptr<DocumentFile>> result;
    result.push_back(std::move(study));
    return result;
  }

  void save(const std::vector<std::unique_ptr<DocumentFile>>& documents, std::size_t count) const {
    OutputFiles files(options_.replace, options_.existsHint);
    if (source_ != "-") files.Read(source_);
    for (std::size_t i = 0; i < count; ++i) {
      files.Write(pathOf(i, count), OutputFiles::Kind::kDocument);
    }
    files.Claim();
    NewDocuments made;
    for (std::size_t i = 0; i < count; ++i) {
      made.Expect(pathOf(i, count));
      SaveDocument(*documents[i], pathOf(i, count));
    }
    made.Keep();
  }

  std::string source_;
  std::string target_;
  ImportOptions options_;
  std::string name_;  ///< name of the source in errors
  std::unique_ptr<PipedFile> piped_;
  std::string path_;  ///< path of the file that is read
  ImportReport report_;
};

}  // namespace

ImportReport Import(const std::filesystem::path& source, const std::filesystem::path& target,
                    const ImportOptions& options) {
  return Guarded(source.string(),
                 [&] { return Importer(source.string(), target.string(), options).Run(); });
}

}  // namespace vex2::lab
