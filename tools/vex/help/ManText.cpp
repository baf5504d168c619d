#include "tools/vex/help/ManText.h"

#include <algorithm>

namespace vex2::tool {

namespace {

struct Prose {
  std::string_view call;
  std::string_view text;  // paragraphs, separated by an empty line
};

constexpr std::array kProse = {
    Prose{"vex",
          "vex works with plate documents (.vex). A plate document records one run of a plate on a "
          "real-time PCR instrument: the header, the plate setup, the calibration and the "
          "readings. vex records runs, shows and exports documents, changes them, joins plates "
          "into a study, and checks, repairs and recovers damaged documents.\n\nA recorded frame "
          "is on the disk before the next one is read, so a run that is interrupted can be "
          "resumed. No command overwrites an existing file unless --force is given, and none "
          "changes a document whose run is being recorded. A command that saves a document "
          "replaces the old one only when the new one is complete and on the disk. If only a part "
          "of a document can be read, a command makes a backup before it saves that part over the "
          "document.\n\nEach command has its own page; 'vex help COMMAND' opens it."},
    Prose{
        "vex record",
        "The readings come from a CSV file, or from standard input while an instrument sends them. "
        "Each frame, one reading of all wells, is on the disk as soon as its last reading has "
        "arrived. If the recording is interrupted, --resume continues it after the last frame in "
        "the document and skips the readings that the document already holds.\n\n'vex export' "
        "prints every stored reading to the last digit, including missing, negative and large "
        "readings. Readings that must be rounded are reported; with --exact they are refused."},
    Prose{"vex simulate",
          "The same seed always gives the same run, so examples and tests can be repeated. The run "
          "is recorded frame by frame, as by 'vex record', and can be interrupted and resumed."},
    Prose{"vex follow",
          "Shows a run while it is being recorded. The recorder never waits for a follower, and "
          "any number of them can follow the same run. Each committed frame is printed once, in "
          "order, even if the recorder is interrupted and the run is resumed, or a save replaces "
          "the document. With --ndjson, each frame is an object with the readings of all wells. On "
          "a terminal, growing curves are drawn instead. With --serve, browsers on this machine "
          "show the page of 'vex report', which follows the run until Ctrl-C."},
    Prose{"vex info",
          "For one document, prints a screen with its kind, plate, settings, data blocks and "
          "problems. For several documents, prints one line each."},
    Prose{"vex tree",
          "Prints the tag, the length and the offset of each record, and the value of a record "
          "that holds a single value. Use it to see the structure of a document."},
    Prose{"vex get",
          "Prints the value at a path, without its name and without quotes, so that a shell can "
          "use it."},
    Prose{"vex wells",
          "Draws the plate with the sample, the detector or the task of each well. With --from, "
          "replaces the content of all wells from a CSV file."},
    Prose{"vex detectors",
          "Without --add and --remove, lists the detectors with their dyes and settings. --add "
          "changes a detector that has the same name."},
    Prose{"vex dyes", "Without --add and --remove, lists the dyes that the run requires."},
    Prose{"vex calibration",
          "Without --import and --export, draws the spectra of the pure dyes and of the "
          "background. --export writes them as a table that --import can read."},
    Prose{"vex frame",
          "Reads only the header of the document, the head of the data block and the frame, so a "
          "frame of a large document is shown without delay."},
    Prose{"vex spectrum",
          "Prints the stored readings of a well in one frame, as a drawing or as a table."},
    Prose{"vex cq",
          "Subtracts a baseline from the amplification curve of each well and detector, and finds "
          "the quantification cycle (Cq): the cycle at which the curve passes the threshold of its "
          "detector or, with --method sdm, at which its second derivative is largest. A well "
          "without a Cq has a note with the reason: for example, the curve does not rise, rises "
          "too late, or is too noisy.\n\nThe baseline and the threshold that are set for the "
          "detector are used (see 'vex detectors'). If none are set, they are chosen "
          "automatically: the baseline is a line through the cycles from the third to eight before "
          "the curve takes off; the threshold is the median fluorescence at which the curves of "
          "the detector take off.\n\nWells of task STND with quantities make a standard curve. The "
          "quantities of other wells are computed from it, with their 95 % confidence intervals. "
          "If the document names an endogenous control and a calibrator (see 'vex set'), samples "
          "are compared by their delta Cq. Findings name what to look at before the results are "
          "used: replicates that differ, no-template controls that rise, saturated readings, "
          "drifting baselines, wells that were not measured. The document is not changed."},
    Prose{"vex melt",
          "Finds the peaks of -dF/dT in the melting stage of each well and detector: the "
          "temperature at which a product melts, the height of the peak, and its width at half of "
          "its prominence. A well without a peak has one row without a number. The derivative is "
          "the slope of a parabola through the readings within 1 degree."},
    Prose{"vex export",
          "RDML holds the whole run for other programs, RDES holds a table of one stage, and CSV "
          "holds the readings. Values that the format cannot hold are counted and listed with an "
          "example.\n\nThe columns of CSV are the well, the stage, the cycle, the time, the "
          "temperature and the fluorescence; with several dyes there is also a channel. Only the "
          "person or program that recorded a run knows the meaning of its stored values, so a run "
          "that vex did not record is exported only with --raw."},
    Prose{"vex plot",
          "Without -o, draws in the terminal with Braille dots. It draws with letters if the "
          "terminal shows only ASCII, or if there are more groups than colours. With -o, writes "
          "SVG, PNG or PDF, according to the name of the file. Amplification curves are corrected "
          "for the baseline; melting curves are the negative derivative. A threshold is drawn if "
          "it is the same for all shown wells."},
    Prose{"vex report",
          "The page is one file that needs no network. It shows the plate, the amplification and "
          "melting curves, the standard curve, the calibration spectra, a table of the wells, the "
          "settings, the items of the MIQE guidelines, the records and the findings of the check. "
          "Plate, curves and table show the same wells. The threshold can be dragged, and the Cq "
          "values are updated. Plates of a study, or several documents, are shown side by side."},
    Prose{"vex import",
          "Reads RDML of version 1.0 to 1.3, as an archive or as XML alone, RDES tables, and CSV "
          "files of readings as 'vex export' writes them. Several runs become several documents. "
          "Values that a document cannot hold are counted and listed with an example.\n\nNothing "
          "in the file is trusted: archives and XML that would take much more memory than their "
          "size suggests are refused. A document is written as a whole or not at all."},
    Prose{"vex diff",
          "Compares header, settings, program, wells, detectors, dyes, calibration and readings, "
          "and the plates of studies one by one. Equal differences are printed as one line, with "
          "their count and examples."},
    Prose{"vex copy",
          "Reads the document and writes it to a new file, so the copy has no uncommitted bytes "
          "and correct lengths. With --plate, saves one plate of a study as a separate document."},
    Prose{"vex status",
          "Without CODE, prints the four characters of the acquisition status. With CODE, changes "
          "them in the file without rewriting the document. For a plate of a study, the whole "
          "study is saved again."},
    Prose{"vex set",
          "Changes one or more settings together: either all of them or none. The document is "
          "replaced only when the new one is complete and on the disk."},
    Prose{"vex study",
          "A study holds copies of several plates of relative quantification, and the settings by "
          "which they are compared. The name of a plate is the name of its file without the "
          "extension."},
    Prose{"vex check",
          "Reads the whole document and lists every problem in it, with its offset, its effect and "
          "the fix. Does not change the document."},
    Prose{"vex repair",
          "Corrects what can be corrected without losing anything. Run 'vex check' before and "
          "after it."},
    Prose{"vex recover",
          "Writes everything that can be read of a damaged document to a new document, and reports "
          "what is lost."},
    Prose{"vex help",
          "On a terminal, opens the man page of the command if the program man is installed. "
          "Otherwise, and with the option --help of each command, prints the short help."},
    Prose{"vex version", "Include this output when you report a problem."},
};

}  // namespace

std::vector<std::string> ManTextOf(std::string_view call) {
  const auto found = std::find_if(kProse.begin(), kProse.end(),
                                  [call](const Prose& prose) { return prose.call == call; });
  std::vector<std::string> paragraphs;
  if (found == kProse.end()) return paragraphs;
  std::string_view text = found->text;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find("\n\n"), text.size());
    paragraphs.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 2, text.size()));
  }
  return paragraphs;
}

}  // namespace vex2::tool
