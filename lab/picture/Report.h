#pragma once

#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "lab/Error.h"
#include "vex2/framework/Export.h"

/// An HTML page that shows documents in a browser.
namespace vex2::lab {

/// What a report contains besides the content of the documents.
struct ReportSettings {
  /// The program that makes the report, and its version, such as "vex 1.2.0"; UTF-8.
  std::string program;
  std::string made;  ///< when the report was made, such as "2026-11-22T08:00:00Z"; may be empty
  std::string note;  ///< a sentence that the page shows at the top; UTF-8, may be empty
  /// Whether the report has the records of the file, the findings of its check and its SHA-256. For
  /// these the whole file is read.
  bool withFile = true;
  /// Called with each document before it is read; may be empty.
  std::function<void(const std::filesystem::path&)> onDocument;
  /// Called for each document that could not be read completely; may be empty.
  std::function<void(const Error&)> onError;
};

/// The content of the documents at `paths`, in their order, as one JSON object: the plates with
/// their wells, readings and results, settings, detectors, calibration, records, findings of the
/// check and the SHA-256 of the file. docs/report.md describes its keys; "version" increases with
/// changes that older pages cannot read. A document that cannot be read is an entry with its
/// "error". Throws `Error` only if memory runs out.
VEX2_API std::string ReportData(std::span<const std::filesystem::path> paths,
                                const ReportSettings& settings);

/// The entry of `ReportData` for the document at `path`, for callers that read several documents at
/// the same time. Throws `Error` only if memory runs out.
VEX2_API std::string ReportEntry(const std::filesystem::path& path, const ReportSettings& settings);

/// Joins entries to the data of a report on these documents, in their order. The result has the
/// form of `ReportData`.
VEX2_API std::string ReportDataOf(std::span<const std::string> entries,
                                  const ReportSettings& settings);

/// Makes the HTML page for the result of `ReportData`: one file that needs no other file and no
/// network. A script in the page can show newer data of the same documents with
/// `vexReport.update(data)`. If `events` is given, the page listens to server-sent events at this
/// path on its server, and shows the data in each message.
VEX2_API std::string ReportPage(std::string_view data, std::string_view events = {});

}  // namespace vex2::lab
