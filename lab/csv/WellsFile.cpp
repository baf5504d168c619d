#include "lab/csv/WellsFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <map>
#include <utility>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/csv/CsvReader.h"
#include "lab/csv/CsvWriter.h"

namespace vex2::lab {

namespace {

struct WellColumn {
  enum : std::size_t { kWell, kSample, kTarget, kTask, kQuantity, kReporter };
};
const std::vector<std::string_view> kWellColumns = {"well", "sample",   "target",
                                                    "task", "quantity", "reporter"};

// Refuses rows that contradict earlier rows about the same well or detector.
class Agreement {
 public:
  explicit Agreement(const PlateContents& before) {
    for (const WellRow& row : before.rows) {
      ++allowed_[{before.plate.NameOf(row.well), row.target}];
    }
  }

  void Check(const CsvRow& row, const WellRow& added) {
    const auto [sample, firstOfWell] = samples_.emplace(added.well, added.sample);
    if (!firstOfWell && sample->second != added.sample) {
      row.RefuseField(WellColumn::kSample, "is not the sample that the well has in an earlier row");
    }
    const Detector detector{kPlate384.NameOf(added.well), added.target};
    const auto allowed = allowed_.find(detector);
    if (++counts_[detector] > (allowed != allowed_.end() ? allowed->second : 1)) {
      row.RefuseField(WellColumn::kWell, "is given twice with the same target");
    }
    if (added.target.empty()) {
      if (!added.reporter.empty())
        row.RefuseField(WellColumn::kReporter, "is a reporter without a target");
      return;
    }
    const auto [reporter, firstOfTarget] = reporters_.emplace(added.target, added.reporter);
    if (!firstOfTarget && reporter->second != added.reporter) {
      row.RefuseField(WellColumn::kReporter,
                      "is not the reporter that the target has in an earlier row");
    }
  }

 private:
  using Detector = std::pair<std::string, std::string>;  ///< names of well and target

  std::map<unsigned short, std::string> samples_;
  std::map<Detector, std::size_t> counts_;
  std::map<Detector, std::size_t> allowed_;
  std::map<std::string, std::string> reporters_;
};

std::string latin1(const CsvRow& row, std::size_t column) {
  const auto text = ToLatin1(row.Text(column));
  if (!text) row.RefuseField(column, "has a character that documents cannot hold (Latin-1 only)");
  if (text->find('\0') != std::string::npos) row.RefuseField(column, "has a zero byte");
  return *text;
}

// Reads the well name as on a 384-well plate, because the rows that decide the plate's size may
// still follow.
WellRow rowOf(const CsvRow& row, FloatReader& quantities) {
  WellRow result;
  const auto well = kPlate384.FindAsWritten(row.Text(WellColumn::kWell));
  if (!well) row.RefuseField(WellColumn::kWell, "is not a well of a plate, A1 to P24");
  result.well = *well;
  result.sample = latin1(row, WellColumn::kSample);
  result.target = latin1(row, WellColumn::kTarget);
  result.task = latin1(row, WellColumn::kTask);
  result.reporter = latin1(row, WellColumn::kReporter);
  if (!row.Text(WellColumn::kQuantity).empty()) {
    const double number = row.Decimal(WellColumn::kQuantity, std::numeric_limits<float>::max());
    const std::string text = row.PointText(WellColumn::kQuantity, row.Text(WellColumn::kQuantity));
    result.quantity = quantities.Keep(row, "quantity", text, number);
  }
  return result;
}

}  // namespace

const std::vector<std::string_view>& WellsFileColumns() {
  return kWellColumns;
}

PlateContents LoadWells(const std::string& path, FloatReader& quantities, const CsvFormat& format,
                        const PlateContents& before) {
  PlateContents contents;
  Agreement agreement(before);
  ReadCsv(path, kWellColumns,
          [&](const CsvRow& row) {
            agreement.Check(row, contents.rows.emplace_back(rowOf(row, quantities)));
          },
          {.format = format});
  auto& rows = contents.rows;
  if (rows.empty()) throw Error(ErrorCode::kDocument, CsvName(path), "contains no well");
  const bool fits = std::all_of(rows.begin(), rows.end(), [](const WellRow& row) {
    return kPlate96.Find(kPlate384.NameOf(row.well)).has_value();
  });
  contents.plate = fits ? kPlate96 : kPlate384;
  for (WellRow& row : rows) row.well = *contents.plate.Find(kPlate384.NameOf(row.well));
  std::stable_sort(rows.begin(), rows.end(),
                   [](const WellRow& a, const WellRow& b) { return a.well < b.well; });
  return contents;
}

void WriteWells(const PlateContents& contents, std::ostream& out) {
  CsvWriter csv(out, false);
  WriteWellColumns(csv);
  WriteWells(contents, csv, "");
}

void WriteWellColumns(CsvWriter& csv) {
  csv.Row("plate", {kWellColumns.begin(), kWellColumns.end()});
}

void WriteWells(const PlateContents& contents, CsvWriter& csv, const std::string& plate) {
  for (const WellRow& row : contents.rows) {
    csv.Row(plate, {contents.plate.NameOf(row.well), ToUtf8(row.sample), ToUtf8(row.target),
                    ToUtf8(row.task), row.HasQuantity() ? DecimalText(row.quantity) : "",
                    ToUtf8(row.reporter)});
  }
}

std::string DecimalText(float number) {
  // The smallest numbers have the longest texts, with 45 decimals.
  std::array<char, 128> text{};
  const auto result =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  return {text.data(), result.ptr};
}

}  // namespace vex2::lab
