#include <fmt/core.h>

#include <iostream>

#include "lab/Text.h"
#include "lab/csv/ReadingFields.h"
#include "lab/json/FrameJson.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/model/FrameView.h"
#include "lab/text/ReadingsText.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

namespace {

constexpr const char* kFrameMeaning =
    "Columns:\n"
    "  A frame that vex recorded has the columns of 'vex export'. Any other frame\n"
    "  is printed with its stored values: set (not 0 if the well was read), l1 to l3,\n"
    "  first (the first reading), l5 to l7, and the data values d0, d1 and so on, up\n"
    "  to the last value that is not 0.";

class FrameCommand final : public Command {
 public:
  FrameCommand()
      : Command({"frame", "Show one frame of a data block, read directly from the file.",
                 "vex frame run.vex 0\nvex frame run.vex 0 --grid\n"
                 "vex frame run.vex 39 --block REPr --json"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("N", index_, "The frame, from 0").Require().Show("");
    AddBlockOption(options, block_);
    plate_.AddTo(options);
    const Option grid =
        options.AddFlag("--grid", grid_, "Draw the fluorescence of each channel as a plate");
    const Option raw =
        options.AddFlag("--raw", raw_, "Show the stored values, whichever program wrote them")
            .Exclude(grid);
    options.AddFlag("--json", json_, "Print JSON: one object per plate, one per line")
        .Exclude(grid)
        .Exclude(raw);
    options.PutLast(kFrameMeaning);
  }

  ExitCode Run() override {
    const FrameQuery query(file_, block_, index_);
    DocumentFile file;
    file.OpenDocument(file_);
    static_cast<void>(file.ReadHeaderData(nullptr));
    if (file.IsRQS() || plate_.IsGiven()) {
      file.Close();
      const Document document(file_);
      for (const auto& plate : query.PlatesWithFrame(document, plate_.Choose(document))) {
        show(query.ViewOf(plate));
      }
      document.RequireWhole("");
    } else {
      show(query.Read(file));
    }
    return ExitCode::kDone;
  }

 private:
  void show(const FrameView& view) {
    if (json_) return PrintJson(std::cout, DescribeFrame(view, file_, block_));
    const TextForm& form = Terminal::Out();
    if (!grid_)
      return print(view, "",
                   view.IsKnown() && !raw_ ? ReadingsTable(view, form) : StoredTable(view, form));
    requireKnown(view);
    const auto names = ReadingNames(view.recorded.Log().value_or(RunLog()));
    for (std::size_t field = kFirstFluorescence; field < names.size(); ++field) {
      print(view, ", " + Printable(names[field]), ReadingsGrid(view, field, form));
    }
  }

  void print(const FrameView& view, const std::string& what, const std::string& table) {
    if (shown_++ > 0) std::cout << '\n';
    std::cout << Printable(file_) << (view.isEmbedded ? ", plate " + Printable(view.plate) : "")
              << ": " << block_ << ", frame " << index_ << " of " << view.frameCount << ", "
              << Counted(view.wells.size(), "well") << what << '\n'
              << table;
  }

  void requireKnown(const FrameView& view) const {
    constexpr std::uint64_t kMostWells = 65535;  // well numbers have 16 bits
    if (std::uint64_t{view.rows} * view.columns > kMostWells) {
      throw Error(ErrorCode::kDocument, file_,
                  fmt::format("its plate of {} rows and {} columns has more wells than can be "
                              "numbered",
                              view.rows, view.columns));
    }
    if (view.IsKnown()) return;
    throw Error(ErrorCode::kDocument, file_,
                fmt::format("frame {} of the data block \"{}\" cannot be shown as a plate: vex did "
                            "not record it and does not know the meaning of its values; leave out "
                            "--grid for the stored values",
                            index_, block_));
  }

  std::string file_;
  std::string block_;
  std::int64_t index_ = 0;
  PlateOption plate_;
  bool grid_ = false;
  bool raw_ = false;
  bool json_ = false;
  int shown_ = 0;
};

}  // namespace

std::unique_ptr<Command> MakeFrameCommand() {
  return std::make_unique<FrameCommand>();
}

}  // namespace vex2::tool
