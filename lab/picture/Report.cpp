#include "lab/picture/Report.h"

#include <sys/stat.h>

#include "lab/Guarded.h"
#include "lab/Sha256.h"
#include "lab/check/Check.h"
#include "lab/json/FindingsJson.h"
#include "lab/json/Json.h"
#include "lab/model/RunReader.h"
#include "lab/picture/Base64.h"
#include "lab/picture/PageParts.h"
#include "lab/picture/Palette.h"
#include "lab/picture/ReportParts.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

constexpr int kDataVersion = 1;

// The JSON as text. Bytes that are not UTF-8, as in a path, are replaced, so that they do not end
// the report with an error.
std::string textOf(const ordered_json& json) {
  return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

ordered_json findingsJson(const std::filesystem::path& path) {
  const Findings findings = Check(path);
  ordered_json object = {{"errors", findings.Count(Severity::kError)},
                         {"warnings", findings.Count(Severity::kWarning)},
                         {"notes", findings.Count(Severity::kNote)}};
  object.update(FindingsJson(path.string(), findings));
  object.erase("file");
  return object;
}

ordered_json plateJson(const RunReader& plate, const std::string& name) {
  ordered_json object = {{"name", name}};
  object.update(PlateJson(plate));
  object["readings"] = PackedReadingsJson(plate);
  object["miqe"] = MiqeJson(plate);
  return object;
}

/// Builds the entry of one document.
class DocumentEntry {
 public:
  DocumentEntry(const std::filesystem::path& path, const ReportSettings& settings)
      : path_(path), settings_(settings) {}

  ordered_json Take() {
    entry_ = {{"path", Escaped(path_.string())}, {"name", Escaped(path_.filename().string())}};
    attempt([this] { describeRun(); });
    if (settings_.withFile) attempt([this] { describeFile(); });
    return std::move(entry_);
  }

 private:
  // Calls `work`. If it fails, adds the error to the entry, so that the rest of the entry can still
  // be made.
  template <typename Work>
  void attempt(const Work& work) {
    try {
      Guarded(path_.string(), work);
    } catch (const Error& error) {
      if (entry_.contains("error")) return;
      entry_["error"] = error.what();
      tell(error);
    }
  }

  void tell(const Error& error) const {
    if (settings_.onError) settings_.onError(error);
  }

  void describeRun() {
    const RunReader run(path_);
    entry_["study"] = run.IsStudy();
    ordered_json faults = ordered_json::array();
    for (const FileFault& fault : run.Faults()) {
      faults.push_back({{"offset", fault.offset}, {"what", fault.what}});
    }
    entry_["faults"] = std::move(faults);
    entry_["plates"] = ordered_json::array();
    if (run.IsStudy()) {
      for (const std::string& name : run.PlateNames()) {
        entry_["plates"].push_back(plateJson(run.Plate(name), name));
      }
    }
    if (entry_["plates"].empty()) {
      entry_["plates"].push_back(plateJson(run, path_.stem().string()));
    }
    entry_.update(AnalysisJson(run));
    if (!run.IsWhole()) {
      const FileFault& fault = run.Faults().front();
      tell(Error(ErrorCode::kDocument, path_.string(), "is shown in part: " + fault.what,
                 fault.offset));
    }
  }

  void describeFile() {
    struct stat info {};
    if (::stat(path_.c_str(), &info) != 0) throw SystemError(path_.string(), errno);
    entry_["bytes"] = info.st_size;
    entry_["sha256"] = Sha256OfFile(path_.string());
    entry_["findings"] = findingsJson(path_);
    entry_["records"] = OutlineJson(path_.string());
  }

  const std::filesystem::path& path_;
  const ReportSettings& settings_;
  ordered_json entry_;
};

// Replaces {{names}} in `text` by the content of the parts with these names. Does not search the
// content of the parts.
std::string filled(std::string_view text,
                   const std::vector<std::pair<std::string_view, std::string_view>>& parts) {
  std::string page;
  while (true) {
    const std::size_t begin = text.find("{{");
    page.append(text.substr(0, begin));
    if (begin == std::string_view::npos) return page;
    const std::size_t end = text.find("}}", begin);
    const std::string_view name = text.substr(begin + 2, end - begin - 2);
    for (const auto& [part, content] : parts) {
      if (part == name) page.append(content);
    }
    text.remove_prefix(end + 2);
  }
}

// The hash by which the page's security policy allows this script. The browser runs no other
// script.
std::string hashOf(std::string_view script) {
  Sha256 sum;
  sum.Add(script);
  return "'sha256-" + Base64(sum.Finish()) + "'";
}

// Escapes JSON for a script in HTML: "<" could begin the end tag of the script.
std::string scriptText(std::string_view json) {
  std::string text;
  text.reserve(json.size());
  for (const char character : json) {
    character == '<' ? text.append("\\u003c") : text.append(1, character);
  }
  return text;
}

}  // namespace

std::string ReportData(std::span<const std::filesystem::path> paths,
                       const ReportSettings& settings) {
  std::vector<std::string> entries;
  for (const std::filesystem::path& path : paths) entries.push_back(ReportEntry(path, settings));
  return ReportDataOf(entries, settings);
}

std::string ReportEntry(const std::filesystem::path& path, const ReportSettings& settings) {
  if (settings.onDocument) settings.onDocument(path);
  return textOf(DocumentEntry(path, settings).Take());
}

std::string ReportDataOf(std::span<const std::string> entries, const ReportSettings& settings) {
  ordered_json head = {{"version", kDataVersion},
                       {"program", settings.program},
                       {"made", settings.made},
                       {"palette",
                        {{"light", Palette::kLight},
                         {"dark", Palette::kDark},
                         {"scaleLight", Palette::kScaleLight},
                         {"scaleDark", Palette::kScaleDark}}}};
  if (!settings.note.empty()) head["note"] = settings.note;
  std::string data = textOf(head);
  data.pop_back();  // removes the bracket that ends the object
  data += ",\"documents\":[";
  for (std::size_t i = 0; i < entries.size(); ++i) data.append(i > 0 ? "," : "").append(entries[i]);
  return data + "]}";
}

std::string ReportPage(std::string_view data, std::string_view events) {
  const std::string json = scriptText(data);
  const std::string live = scriptText(textOf(ordered_json(std::string(events))));
  const std::string icon(page::kIcon);
  const auto iconBytes = std::span(reinterpret_cast<const std::uint8_t*>(icon.data()), icon.size());
  return filled(page::kHtml, {{"data", json},
                              {"events", live},
                              {"connect", events.empty() ? "'none'" : "'self'"},
                              {"hash", hashOf(page::kScripts)},
                              {"icon", Base64(iconBytes)},
                              {"style", page::kStyle},
                              {"scripts", page::kScripts}});
}

}  // namespace vex2::lab
