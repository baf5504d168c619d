#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/exchange/PlateFit.h"
#include "lab/exchange/StorableTexts.h"
#include "lab/rdml/Rdes.h"
#include "lab/rdml/RdmlTerms.h"

namespace vex2::lab {

namespace {

struct RdesColumn {
  enum : std::size_t { kWell, kSample, kType, kTarget, kTargetType, kDye, kResult, kFirst };
};
constexpr std::array<std::string_view, RdesColumn::kResult> kRdesColumns = {
    "Well", "Sample", "Sample Type", "Target", "Target Type", "Dye"};
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

std::string_view takeLine(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

std::vector<std::string_view> cellsOf(std::string_view line) {
  std::vector<std::string_view> cells;
  while (true) {
    const std::size_t tab = line.find('\t');
    cells.push_back(line.substr(0, tab));
    if (tab == std::string_view::npos) return cells;
    line.remove_prefix(tab + 1);
  }
}

/// Reads a table row by row.
class RdesReader {
 public:
  RdesReader(std::string_view text, std::string file, Losses& losses)
      : text_(text),
        file_(std::move(file)),
        losses_(losses),
        samples_("names of samples", losses),
        targets_("names of targets", losses),
        dyes_("names of dyes", losses) {}

  ExchangedRun Read() {
    readHead();
    while (!text_.empty()) {
      ++row_;
      const std::string_view line = takeLine(text_);
      if (!line.empty()) rows_.push_back({row_, cellsOf(line)});
    }
    fitPlate();
    chooseChannels();
    for (const Row& row : rows_) take(row);
    if (references_.size() == 1) {
      run_.plan.settings.push_back({"endogenous-control", references_.begin()->first});
    } else if (!references_.empty()) {
      losses_.Add("reference targets, of which a document holds one", references_.begin()->first,
                  references_.size());
    }
    return std::move(run_);
  }

 private:
  struct Row {
    std::size_t number = 0;
    std::vector<std::string_view> cells;

    std::string Cell(std::size_t column) const {
      return column < cells.size() ? std::string(cells[column]) : std::string();
    }
  };

  [[noreturn]] void refuse(std::size_t row, std::string_view column, const std::string& why) const {
    throw Error(ErrorCode::kDocument, file_,
                "row " + std::to_string(row) + ", column " + std::string(column) + ": " + why);
  }

  void readHead() {
    row_ = 1;
    const auto cells = cellsOf(takeLine(text_));
    for (std::size_t i = 0; i < kRdesColumns.size(); ++i) {
      if (i >= cells.size() || cells[i] != kRdesColumns[i])
        refuse(1, kRdesColumns[i], "it is not there");
    }
    const std::string_view result =
        cells.size() > RdesColumn::kResult ? cells[RdesColumn::kResult] : std::string_view();
    if (result != "Cq" && result != "Tm") refuse(1, "Cq", "there is neither Cq nor Tm");
    melting_ = result == "Tm";
    for (std::size_t i = RdesColumn::kFirst; i < cells.size(); ++i) takeColumn(cells[i], i);
  }

  void takeColumn(std::string_view cell, std::size_t index) {
    const auto value = NumberIn<double>(cell);
    const std::string name = std::to_string(index + 1);
    if (!value || !std::isfinite(*value)) {
      refuse(1, name, "'" + std::string(cell) + "' is no " + (melting_ ? "temperature" : "cycle"));
    }
    const bool isCycle = *value >= 1 && *value <= 65535 && *value == std::floor(*value);
    if (!melting_ && !isCycle) {
      refuse(1, name, "'" + std::string(cell) + "' is no cycle from 1 to 65535");
    }
    columns_.push_back(*value);
  }

  // Row and column of a well name such as "A1", or of a tube number with or without an "A" in
  // front; 0 and 0 for any other text.
  static std::pair<std::uint32_t, std::uint32_t> placeOf(std::string_view name) {
    const std::string plain = PlainWellName(name);
    const std::size_t digits = std::min(plain.find_first_of("0123456789"), plain.size());
    const auto column = NumberIn<std::uint32_t>(std::string_view(plain).substr(digits));
    if (!column || *column < 1 || *column > 10'000 || digits > 2) return {0, 0};
    std::uint32_t row = 0;
    for (std::size_t i = 0; i < digits; ++i) {
      if (plain[i] < 'A' || plain[i] > 'Z') return {0, 0};
      row = row * 26 + static_cast<std::uint32_t>(plain[i] - 'A') + 1;
    }
    return {std::max(row, 1U), *column};
  }

  void fitPlate() {
    std::uint32_t rows = 1;
    std::uint32_t columns = 1;
    for (const Row& row : rows_) {
      const auto [line, column] = placeOf(row.Cell(RdesColumn::kWell));
      if (line == 0) refuse(row.number, "Well", "'" + row.Cell(RdesColumn::kWell) + "' is no well");
      rows = std::max(rows, line);
      columns = std::max(columns, column);
    }
    columnsOfFile_ = columns;
    plate_ = PlateFit::Find(rows, columns, 0);
    if (!plate_) {
      throw Error(ErrorCode::kDocument, file_,
                  "a plate of " + std::to_string(rows) + " rows and " + std::to_string(columns) +
                      " columns does not fit into a document, which has up to 384 wells");
    }
    run_.plan.plate.rows = plate_->Plate().rows;
    run_.plan.plate.columns = plate_->Plate().columns;
  }

  std::uint16_t wellOf(const Row& row) const {
    const auto [line, column] = placeOf(row.Cell(RdesColumn::kWell));
    return plate_->WellOf((line - 1) * columnsOfFile_ + column).value_or(1);
  }

  // If a well has several rows, each is a channel with the name of its dye.
  void chooseChannels() {
    std::map<std::uint16_t, std::map<std::string, int>> turns;
    bool isSeveral = false;
    for (const Row& row : rows_) {
      auto& dyes = turns[wellOf(row)];
      std::string name =
          row.Cell(RdesColumn::kDye).empty() ? "unnamed" : dyes_.Take(row.Cell(RdesColumn::kDye));
      std::replace(name.begin(), name.end(), ',', ' ');
      isSeveral = isSeveral || !dyes.empty();
      const int turn = ++dyes[name];
      if (turn > 1) name += " (" + std::to_string(turn) + ")";
      channels_.push_back(name);
    }
    if (!isSeveral) return;
    for (const std::string& name : channels_) {
      auto& known = run_.plan.channels;
      if (std::find(known.begin(), known.end(), name) != known.end()) continue;
      if (known.size() == kMostChannels) {
        throw Error(ErrorCode::kDocument, file_,
                    "it has more dyes in a well than the 16 that a document holds");
      }
      known.push_back(name);
    }
  }

  void take(const Row& row) {
    Well& well = wellWith(row);
    Target& target = well.targets.emplace_back();
    const std::string type = row.Cell(RdesColumn::kType);
    const auto task = rdml::TaskOf(type.empty() ? "unkn" : type);
    if (!task) refuse(row.number, "Sample Type", "'" + type + "' is no type of a sample");
    target.task = *task;
    const std::string name = row.Cell(RdesColumn::kTarget);
    if (!name.empty()) target.detector = targets_.Take(name);
    if (!row.Cell(RdesColumn::kDye).empty())
      target.reporter = dyes_.Take(row.Cell(RdesColumn::kDye));
    const std::string kind = row.Cell(RdesColumn::kTargetType);
    if (kind == "ref") references_[target.detector] = true;
    if (!kind.empty() && kind != "ref" && kind != "toi") {
      refuse(row.number, "Target Type", "'" + kind + "' is neither toi nor ref");
    }
    if (const std::string result = row.Cell(RdesColumn::kResult); !result.empty()) {
      losses_.Add(melting_ ? "melting temperatures (Tm)" : "quantification cycles (Cq)",
                  row.Cell(RdesColumn::kWell) + ": " + result);
    }
    if (name.empty()) well.targets.pop_back();
    takeReadings(row, well.number);
  }

  Well& wellWith(const Row& row) {
    const std::uint16_t number = wellOf(row);
    auto& wells = run_.plan.plate.wells;
    const auto found = std::find_if(wells.begin(), wells.end(),
                                    [&](const Well& well) { return well.number == number; });
    const std::string given = row.Cell(RdesColumn::kSample);
    const std::string sample = given.empty() ? given : samples_.Take(given);
    if (found != wells.end()) {
      if (found->sample != sample) {
        refuse(row.number, "Sample", "the well has the sample '" + found->sample + "' already");
      }
      return *found;
    }
    Well& added = wells.emplace_back();
    added.number = number;
    added.name = plate_->Plate().NameOf(number);
    added.sample = sample;
    return added;
  }

  void takeReadings(const Row& row, std::uint16_t well) {
    Curve curve;
    curve.well = well;
    curve.melting = melting_;
    const auto place = static_cast<std::size_t>(&row - rows_.data());
    const auto& channels = run_.plan.channels;
    const auto channel = std::find(channels.begin(), channels.end(), channels_[place]);
    curve.channel = channels.empty() ? 0 : static_cast<std::size_t>(channel - channels.begin());
    if (row.cells.size() > RdesColumn::kFirst + columns_.size()) {
      refuse(row.number, std::to_string(RdesColumn::kFirst + columns_.size() + 1),
             "row 1 has no such column");
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const std::string cell = row.Cell(RdesColumn::kFirst + i);
      curve.readings.push_back(cell.empty() || cell == "NA" ? kNone : readingIn(cell, row, i));
      if (melting_) {
        curve.temperatures.push_back(static_cast<float>(columns_[i]));
        curve.cycles.push_back(static_cast<std::uint16_t>(i + 1));
      } else {
        curve.cycles.push_back(static_cast<std::uint16_t>(columns_[i]));
      }
    }
    if (!columns_.empty()) run_.curves.push_back(std::move(curve));
  }

  double readingIn(const std::string& cell, const Row& row, std::size_t index) const {
    const auto value = NumberIn<double>(cell);
    if (value && std::abs(*value) <= ReadingScale::kLargestReading) return *value;
    refuse(row.number, std::to_string(RdesColumn::kFirst + index + 1),
           "'" + cell + "' is no reading from -1e12 to 1e12");
  }

  std::string_view text_;
  std::string file_;
  Losses& losses_;
  StorableNames samples_;
  StorableNames targets_;
  StorableNames dyes_;
  std::size_t row_ = 0;
  bool melting_ = false;
  std::vector<double> columns_;
  std::vector<Row> rows_;
  std::vector<std::string> channels_;  ///< channel name of each row
  std::uint32_t columnsOfFile_ = 0;
  std::optional<PlateFit> plate_;
  std::map<std::string, bool> references_;
  ExchangedRun run_;
};

}  // namespace

bool IsRdes(std::string_view text) {
  return text.starts_with("Well\tSample\tSample Type");
}

ExchangedRun ReadRdes(std::string_view text, const std::string& file, Losses& losses) {
  return RdesReader(text, file, losses).Read();
}

}  // namespace vex2::lab
