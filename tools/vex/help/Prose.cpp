#include "tools/vex/help/Prose.h"

#include <algorithm>

namespace vex2::tool {

namespace {

struct Prose {
  std::string_view call;
  std::string_view text;  // paragraphs, separated by an empty line
};

constexpr std::array kProse = {
    Prose{"vex",
          "vex works with plate documents (.vex), which record one run of a plate on a real-time "
          "PCR instrument: the header, the plate setup, the calibration and the readings. It "
          "records runs, shows and exports what documents hold, changes them, joins plates into a "
          "study, and checks, repairs and recovers damaged documents.\n\n"
          "A frame that was recorded is on the disk before the next one is read, so a run that is "
          "interrupted can be resumed. No command overwrites an existing file unless --force is "
          "given, and none changes a document whose run is being recorded. A command that saves a "
          "document replaces the old one only when the new one is complete and on the disk. A "
          "document of which only a part can be read is never overwritten by that part without a "
          "backup.\n\n"
          "Each command has a page of its own; 'vex help COMMAND' opens it."},
    Prose{"vex record",
          "The readings come from a CSV file, or from standard input as an instrument sends them. "
          "Each frame, one reading of all wells, is on the disk as soon as its last reading has "
          "arrived. If the recording is interrupted, --resume continues it after the last frame "
          "in the document and ignores the readings that the document holds already.\n\n"
          "'vex export' returns every stored reading to the last digit, including missing, "
          "negative and large ones. Readings that the document can only hold rounded are "
          "reported; with --exact they are refused."},
    Prose{"vex simulate",
          "The same seed always gives the same run, so that examples and tests can be repeated. "
          "The run is recorded frame by frame as 'vex record' does, and can be interrupted and "
          "resumed."},
    Prose{
        "vex follow",
        "Shows a run live, without a part in it: the recorder never waits for a follower, and any "
        "number of them can follow the same run. Each frame that is on the disk is printed once, "
        "in order, also when the recorder is interrupted and resumes, and when a save replaces "
        "the document. With --ndjson, each frame is an object with the readings of all wells. On "
        "a terminal the curves grow instead. With --serve, the page of 'vex report' is shown to "
        "browsers on this machine and follows the run until Ctrl-C."},
    Prose{"vex info",
          "Of one document, prints a screen with its kind, plate, settings, data blocks and "
          "problems. Of several documents, prints one line each."},
    Prose{"vex tree",
          "Prints the tag, the length and the offset of each record, and the value of records "
          "that hold one. Use it to see how a document is built."},
    Prose{"vex get",
          "Prints one value by its path, without a name and without quotes, so that a shell can "
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
          "background. --export writes them as a table, which --import reads."},
    Prose{"vex frame",
          "Reads the header of the document, the head of the data block and the frame, and "
          "nothing else, so a frame of a large document is shown at once."},
    Prose{"vex spectrum",
          "Prints the stored readings of a well in one frame, as a drawing or as a table."},
    Prose{"vex cq",
          "Subtracts a baseline from the amplification curve of each well and detector, and finds "
          "the quantification cycle (Cq): where the curve passes the threshold of its detector, or "
          "with --method sdm where its second derivative is largest. A well without a Cq has a "
          "note that says why: it does not rise, rises too late, or is too noisy.\n\n"
          "Baseline and threshold are those that somebody has set for the detector (see 'vex "
          "detectors'), and are chosen automatically where nobody has. The baseline is then a "
          "line through the cycles from the third to eight before the curve takes off; the "
          "threshold is the median fluorescence at which the detector's curves take off.\n\n"
          "Wells of task STND with quantities make a standard curve; quantities of other wells "
          "are read off it, with their 95 % confidence intervals. Where the document names an "
          "endogenous control and a calibrator (see 'vex set'), samples are compared by their "
          "delta Cq. Findings name what to look at before the results are used: replicates that "
          "differ, no-template controls that rise, saturated readings, drifting baselines, wells "
          "that were not measured. The document is not changed."},
    Prose{"vex melt",
          "Finds the peaks of -dF/dT in the melting stage of each well and detector: the "
          "temperature at which a product comes apart, the height of the peak, and its width at "
          "half of its prominence. A well without a peak has one row without a number. The "
          "derivative is the slope of a parabola through the readings within 1 degree."},
    Prose{
        "vex export",
        "RDML holds the whole run for other programs, RDES a table of one stage, CSV the "
        "readings. What the format cannot hold is listed, with its count and an example.\n\n"
        "The columns of CSV are the well, the stage, the cycle, the time, the temperature and the "
        "fluorescence; with several dyes a channel is added. Only the person or program that "
        "recorded a run knows what its stored values mean, so a run that vex did not record is "
        "exported only with --raw."},
    Prose{"vex plot",
          "Without -o, draws in the terminal, with dots of Braille or, where only ASCII can be "
          "shown, or colours cannot tell the groups apart, with letters. With -o, writes SVG, PNG "
          "or PDF by the name of the file. Curves "
          "of amplification are corrected for the baseline; those of melting are the negative "
          "derivative. A threshold is drawn where all wells that are shown have the same one."},
    Prose{"vex report",
          "The page is one file that needs no network: the plate, the amplification and melting "
          "curves, the standard curve, the calibration spectra, a table of the wells, the "
          "settings, what the MIQE guidelines ask for, the records and the findings of the check. "
          "Plate, curves and table show the same wells; the threshold can be dragged, and Cq "
          "follows. Of a study the page has the plates side by side, as it has those of several "
          "documents."},
    Prose{"vex import",
          "Reads RDML of version 1.0 to 1.3, as an archive or as XML alone, RDES tables, and CSV "
          "files of readings as 'vex export' writes them. Several runs become several documents. "
          "What a document cannot hold is listed, with its count and an example.\n\n"
          "Nothing in the file is believed: archives and XML that would take more than their size "
          "suggests are refused. A document is written as a whole or not at all."},
    Prose{"vex diff",
          "Compares header, settings, program, wells, detectors, dyes, calibration and readings, "
          "and studies plate by plate. Equal differences are one line, with their count and "
          "examples."},
    Prose{"vex copy",
          "Reads the document and writes it anew, so the copy has no uncommitted bytes and "
          "correct lengths. With --plate, saves one plate of a study as a document of its own."},
    Prose{"vex status",
          "Without CODE, prints the four characters of the acquisition status. With CODE, changes "
          "them in the file without rewriting the document; for a plate of a study, the study is "
          "saved anew."},
    Prose{"vex set",
          "Changes one or more settings together: either all of them or none. The document is "
          "replaced when the new one is complete and on the disk."},
    Prose{"vex study",
          "A study holds copies of several plates of relative quantification, with the settings "
          "by which they are compared. Plates are known by the names of their files, without "
          "the extension."},
    Prose{"vex check",
          "Reads the whole document and lists every problem in it, with its offset, its effect "
          "and the fix. Changes nothing."},
    Prose{"vex repair",
          "Corrects what can be corrected without losing anything. Run 'vex check' before and "
          "after it."},
    Prose{"vex recover",
          "Writes all that can be read of a damaged document to a new document, and reports what "
          "is lost."},
    Prose{"vex help",
          "On a terminal, opens the man page of the command if the program man is installed. "
          "Otherwise, and with the option --help of each command, prints the short help."},
    Prose{"vex version", "Include its output in a report of a problem."},
};

}  // namespace

std::vector<std::string> ProseOf(std::string_view call) {
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
