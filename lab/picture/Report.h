#pragma once

#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "lab/Error.h"
#include "vex2/framework/Export.h"

/// A page that shows documents in a browser.
namespace vex2::lab {

/// What a report says besides what the documents hold.
struct ReportSettings {
  std::string program;  ///< that makes the report, with its version, as "vex 1.2.0"; UTF-8
  std::string made;     ///< when, as "2026-11-22T08:00:00Z"; empty says nothing
  std::string note;     ///< a sentence that the page shows above all; UTF-8, may be empty
  /// Whether the file's records, its check and its SHA-256 are in it, which read the whole file.
  bool withFile = true;
  /// Called with each document before it is read; may be empty.
  std::function<void(const std::filesystem::path&)> onDocument;
  /// Called for each document that could not be read, or not as a whole; may be empty.
  std::function<void(const Error&)> onError;
};

/// What the documents at `paths` hold, in their order, as one JSON object: the plates with their
/// wells, readings and results, settings, detectors, calibration, records, findings of the check
/// and the SHA-256 of the file. docs/report.md describes its keys; "version" counts the changes
/// that older pages cannot read. A document that cannot be read is an entry with its "error".
/// Throws `Error` only when memory runs out.
VEX2_API std::string ReportData(std::span<const std::filesystem::path> paths,
                                const ReportSettings& settings);

/// The entry of `ReportData` for the document at `path`, for programs that read documents side by
/// side. Throws `Error` only when memory runs out.
VEX2_API std::string ReportEntry(const std::filesystem::path& path, const ReportSettings& settings);

/// The data of a report on the documents of these entries, in their order, as `ReportData` returns
/// them.
VEX2_API std::string ReportDataOf(std::span<const std::string> entries,
                                  const ReportSettings& settings);

/// The page for what `ReportData` returned, as HTML: one file that needs no other and no network.
/// A script in the page can show newer data of the same documents with `vexReport.update(data)`.
/// With `events`, the path of server-sent events on the server of the page, it listens to them
/// and shows the data of each message.
VEX2_API std::string ReportPage(std::string_view data, std::string_view events = {});

}  // namespace vex2::lab
