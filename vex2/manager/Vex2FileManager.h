#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "vex2/container/CComponent.h"
#include "vex2/container/Status.h"
#include "vex2/framework/CFile.h"
#include "vex2/framework/CObList.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/CStringList.h"
#include "vex2/framework/CWnd.h"
#include "vex2/framework/FileError.h"
#include "vex2/framework/FunctionRef.h"
#include "vex2/manager/ReadFault.h"
#include "vex2/manager/Vex2HeaderData.h"
#include "vex2/run/ThermocycleProgram.h"
#include "vex2/run/TimeStamp.h"
#include "vex2/run/Vex2AcquisitionData.h"
#include "vex2/run/Vex2DataType.h"
#include "vex2/run/Vex2FrameData.h"
#include "vex2/run/Vex2GlobalComplex.h"
#include "vex2/run/Vex2WellRecord.h"
#include "vex2/setup/Vex2BGC.h"
#include "vex2/setup/Vex2Detector.h"
#include "vex2/setup/Vex2DyeInfo.h"
#include "vex2/setup/Vex2PlateSetup.h"
#include "vex2/setup/Vex2PureDye.h"
#include "vex2/study/CAnalysisSettingsDetectorMap.h"
#include "vex2/study/KestorSpectrum.h"
#include "vex2/study/TAGPROBE.h"
#include "vex2/study/VexAnalysis.h"

class AcquisitionDataComp;
class CPlateSetupComp;
class ThermocycleProgramComp;
class Vex2FileManagerComponent;

/// One plate document in memory, a header and components, with operations that read it from a file,
/// change it and write it to a file.
///
/// **Statuses.** An operation that returns `int` returns 0 or a negative `vex2::Status`, unless its
/// comment says otherwise. Nothing throws except the constructors, which throw `std::bad_alloc` if
/// memory runs out. If memory runs out in another operation, a getter with a status returns -100,
/// any other operation with a status -200. An operation without a status then changes nothing and
/// returns the same as for a missing component. `GetLastFileError` returns why an operation on a
/// file failed.
///
/// **Where changes go.** An operation without a path works on the document in memory only.
/// Operations named "Replace", "Set" or "Update" move the component that they change to the end of
/// the document.
///
/// **Ownership.** The document owns the components and plates to which it returns pointers; a
/// pointer is valid until the document changes. The caller owns the arrays that an operation makes
/// for it, and releases them with `delete[]`.
///
/// **Counting.** Well numbers count from 1; frame indexes and all other indexes count from 0.
///
/// **Threads.** One thread uses a manager at a time. Managers on different threads are independent.
class VEX2_API Vex2FileManager : public CFile {
 public:
  /// @name Life of a document
  /// @{

  /// Makes an empty document for a 96-well plate. No file is open.
  Vex2FileManager();
  /// Copies the header, the path and the components of `other`. No file is open. Leaves out
  /// components of unknown kinds, analysis results and analysis settings.
  Vex2FileManager(const Vex2FileManager& other);
  /// Resets the document, then copies as the copy constructor does. The document is empty
  /// afterwards if memory runs out, or if `other` is this document; hosts rely on the latter.
  Vex2FileManager& operator=(const Vex2FileManager& other);
  /// Closes the file and destroys everything that the document owns.
  ~Vex2FileManager() override;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();

  /// The file name in `GetFilePath`, with its extension.
  CString GetFileName() const override;
  /// The file name in `GetFilePath`, without its extension.
  CString GetFileTitle() const override;
  /// The path that was last opened or set, even while the file is closed.
  CString GetFilePath() const override;

  // The binary interface fixes the order of the next six operations.

  /// Writes the header to the manager's own open file, and all components to the end of `file`;
  /// null means the manager's own file. For a study, writes only eight kinds of components, and an
  /// "EOF " record after them. To save a document, hosts call `SaveToFile`, which keeps the old
  /// file on failure.
  /// @return 0, or -200 if the manager's file is not open or a write failed; the file is then
  /// partly written.
  [[nodiscard]] virtual int WriteComponentFile(CFile* file);
  /// Resets the document and reads all records of `file`; null means the manager's own open file.
  /// @return 0; -100 if the manager's file is not open or is not a "Vex2" document; otherwise the
  /// status of the record at which the reading stopped. The components before that record stay.
  [[nodiscard]] virtual int ReadComponentFile(CFile* file);

 protected:
  /// Called right after `component` was written: updates the header's offset of the program or the
  /// raw readings, in memory and in the file, and leaves the file position at the end of the file.
  virtual void UpdateHeaderOffsets(const CComponent& component);

 public:
  /// Reads the header at offset 0 of `file` into this document, and leaves the file position after
  /// it. Null means the manager's own open file.
  /// @return 0, or -100 if the manager's file is not open or is not a "Vex2" document.
  [[nodiscard]] virtual int ReadHeaderData(CFile* file);
  /// Reads the header at offset 0 of `file` into `header`, and leaves the file position after it.
  /// Null means the manager's own open file. The document in memory stays unchanged.
  /// @return 0, or -100 if the manager's file is not open or is not a "Vex2" document.
  [[nodiscard]] virtual int ReadHeaderData(Vex2HeaderData& header, CFile* file);
  /// Writes the header to offset 0 of the manager's own open file, whatever `file` is, and
  /// truncates the file to the header's 1024 bytes.
  /// @return 0, or -200 if the file is not open or cannot be written.
  [[nodiscard]] virtual int WriteHeaderData(CFile* file);

  /// Empties the header and removes all components, the analysis results of a study's plates and
  /// all analysis settings. The file stays open; the path and the document's own analysis results
  /// stay unchanged.
  /// @return Always 0.
  int Reset();

  /// Opens the file at `path`, which becomes the document's path. If `write` is 0, opens it for
  /// reading. Otherwise opens it for writing and creates it if it is missing; if `append` is 0,
  /// truncates it to no bytes, otherwise moves the file position to its end.
  /// @return 1 if the file is open, 0 if not.
  [[nodiscard]] int SafeOpen(const char* path, int write, int append);

  /// Reads the document at `path`, or one that the user chooses if `path` is null or `dialog` is
  /// true. The file is closed afterwards.
  /// @return 0, even if only a part of the document could be read, see `IsWhole`; -50 if the user
  /// cancelled; -100 if the file cannot be opened. On -50 and -100 header and components stay
  /// unchanged.
  [[nodiscard]] int ReadFromFile(const char* path, bool dialog = false);
  /// Saves the whole document to `path`, or to a path that the user chooses if `path` is null or
  /// `dialog` is true. Replaces the file at the path when the new document is complete and on the
  /// disk. The file is closed afterwards.
  /// @return 0; -50 if the user cancelled; -200 on failure. On -50 and -200 the old file stays
  /// unchanged.
  [[nodiscard]] int SaveToFile(const char* path, bool dialog = false);
  /// Makes `header` the document's header, and saves it to `path` without any component. Replaces
  /// the file at the path when the new one is complete and on the disk.
  /// @return 0, or -200 on failure; the old file then stays unchanged.
  [[nodiscard]] int SaveHeader(const char* path, const Vex2HeaderData& header);

  /// Returns whether the last operation that read a whole document read everything in its file.
  /// False also if the file could not be opened, if records of unknown kinds were left out, or if a
  /// plate of a study was not read whole. A copy of the manager returns the same. `Reset` makes it
  /// true.
  ///
  /// Before an operation replaces a file of which only a part was read, it copies the file to
  /// "PATH.backup" (see `vex2::BackUpFile`), once for each reading. It recognises the file under
  /// other names, too; if the path is a symbolic link, the copy is made next to the file to which
  /// the link leads. If the copy cannot be made, the operation fails with -200 (`SafeOpen` with 0),
  /// and the file stays unchanged.
  bool IsWhole() const;
  /// The first place at which the last reading ended early or left something out, and the reason.
  /// Valid until the document changes.
  const vex2::ReadFault& GetReadFault() const;

  /// Why the last operation that touched a file failed: the first failure in it. Every operation
  /// with a path, and every operation on the open file, first clears it to
  /// `vex2::FileErrorReason::kNone`; operations in memory leave it unchanged. A copy of the manager
  /// starts without an error. An operation that succeeds in spite of a failure sets it too, for
  /// example `ReadFromFile` for a document that is only partly readable. The statuses -250, -260
  /// and -300 describe the content of a document and set no error. Valid until the next operation.
  const vex2::FileError& GetLastFileError() const;

  /// The number of components of the document.
  int GetAllComponentCount() const;
  /// Replaces the content of `tags` by the components' tags, in the same order.
  /// @return True; false if memory runs out, and `tags` is then empty.
  bool GetComponentTagList(CStringList& tags) const;
  /// The component at `index`, from 0; null for an index out of range. The document keeps
  /// ownership.
  CComponent* GetComponent(int index) const;
  /// For tests of the operations on lists: makes a new header and appends a placeholder for each of
  /// the 77 known tags, with the lengths 100, 99, and so on. The result is not a valid document.
  void initTestData();
  /// Whether the header says that readings exist: the acquisition status is not "ZERO" and the
  /// offset of the raw readings is not 0.
  bool IsAcquisitionDataAvailable() const;

  /// @}
  /// @name Header
  /// @{

  /// The document's header; valid until the document changes.
  const Vex2HeaderData& GetHeaderData() const { return header_; }
  /// Replaces the header in memory by a copy of `header`. Changes nothing if memory runs out.
  void SetHeaderData(const Vex2HeaderData& header);
  /// The number of rows of the plate.
  int GetHeaderRows() const { return header_.rows; }
  /// The number of columns of the plate.
  int GetHeaderCols() const { return header_.columns; }
  /// The size of the header in a file: always 1024 bytes.
  int GetHeaderBytes() const;
  /// Sets the path that `GetFilePath` returns. Opens nothing; null sets the empty path.
  void SetFilePath(const char* path);

  /// Whether the open file starts with the tag "Vex2". False if no file is open or it cannot be
  /// read. Moves the file position.
  bool IsVex2Format();
  /// Whether the open file is a "Vex2" document with the kind marker "Blue". False if no file is
  /// open or it cannot be read. Moves the file position.
  bool IsBlueLightSpecialFile();
  /// Whether the open file is a "Vex2" document with the kind marker "Kest". False if no file is
  /// open or it cannot be read. Moves the file position.
  bool IsKestorFile();

  /// @}
  /// @name Kind of run
  /// Each query compares the assay code in the header.
  /// @{

  /// Whether the assay code is the one with the number `type`: 950 background, 951 pure spectra,
  /// 1000 absolute quantification, 1001 plate for relative quantification, 1002 study, 1003 allelic
  /// discrimination, 1004 plus/minus. The number 0 means any other code.
  bool IsAssayType(int type) const;
  /// Whether the document is a background run ("BGND").
  bool IsBackground() const;
  /// Whether the document is a run of pure dye spectra ("PDye").
  bool IsPureSpectra() const;
  /// Whether the document is an absolute quantification ("AbsQ").
  bool IsAQ() const;
  /// Whether the document is a plate for relative quantification ("RelQ").
  bool IsRQP() const;
  /// Whether the document is a study of relative quantification ("RQSt").
  bool IsRQS() const;
  /// Whether the document is an allelic discrimination ("AllD").
  bool IsAD() const;
  /// Whether the document is a plus/minus assay ("+/- ").
  bool IsPM() const;
  /// Whether the document is a quantification: `IsAQ`, `IsRQP` or `IsRQS`.
  bool IsRealTime() const;
  /// Whether the document is a plate read: `IsPM` or `IsAD`.
  bool IsPlateRead() const;

  /// Appends a `Vex2DyeInfo` to `list` for each pure dye of the calibration. Leaves out dyes
  /// without a name and those named "<NONE>" or "(NONE)". The owner of the list deletes the
  /// elements.
  /// @return True, even for a calibration without pure dyes; false if `list` is null or the
  /// document has no calibration, and `list` is then unchanged.
  bool LoadDyeList(CObList* list) const;
  /// Appends a `Vex2DyeInfo` to `list` for each pure dye in the calibration of the study's plate
  /// `plateName`, or of the document itself if `plateName` is null. Leaves out dyes without a name
  /// and those named "<NONE>" or "(NONE)". The owner of the list deletes the elements.
  /// @return True, even for a calibration without pure dyes; false if `list` is null, there is no
  /// calibration or the study has no such plate, and `list` is then unchanged.
  bool LoadDyeListByName(CObList* list, const char* plateName) const;

  /// @}
  /// @name Run-wide settings
  /// @{

  /// Copies the settings of the document into `info`, which may be null. Fields whose settings the
  /// document lacks stay unchanged.
  /// @return 0; -300 if the document has no settings; -100 if memory runs out.
  [[nodiscard]] int GetGlobalComplexInfo(Vex2GlobalComplex* info) const;
  /// Replaces all settings by those of `info`; null leaves an empty list of settings.
  /// @return 0; -200 if memory runs out, and nothing is changed.
  [[nodiscard]] int ReplaceGlobalComplexComp(const Vex2GlobalComplex* info);
  /// Replaces all settings in memory and appends them to the file at `path`, which need not be a
  /// document.
  /// @return 0; -200 if the file cannot be written, and it then keeps its length.
  [[nodiscard]] int AppendGlobalComplexComp(const char* path, const Vex2GlobalComplex* info);
  /// Sets `count` to the largest number of dyes in a well. @return 0, or -300 with `count` 4 if the
  /// document has no such record. Documents that were read from a file never have it.
  [[nodiscard]] int GetMaxDyesPerWell(int& count) const;
  /// Sets `percent` to the confidence level of a study, in percent.
  /// @return 0, or -300 if the document has none, and `percent` is unchanged.
  [[nodiscard]] int GetConfidencePercent(float& percent) const;
  /// Sets the confidence level of a study, in percent; any value is stored.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int UpdateConfidencePercent(float percent);
  /// Sets `name` to the calibrator sample of a study.
  /// @return 0, or -300 if the document has none, and `name` is then empty.
  [[nodiscard]] int GetCalibrator(CString& name) const;
  /// Sets the calibrator sample of a study; the empty name removes it.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int SetCalibrator(const CString& name);
  /// Sets `name` to the detector that is the endogenous control of a study.
  /// @return 0, or -300 if the document has none, and `name` is then empty.
  [[nodiscard]] int GetEndoControl(CString& name) const;
  /// Sets the detector that is the endogenous control of a study; the empty name removes it.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int SetEndoControl(const CString& name);
  /// Sets `type` to the analysis number of a study. Applications define its meaning.
  /// @return 0, or -300 if the document has none, and `type` is unchanged.
  [[nodiscard]] int GetRQAnalysisType(unsigned short& type) const;
  /// Sets the analysis number of a study. Applications define its meaning.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int SetRQAnalysisType(unsigned short type);
  /// Sets `name` to the passive reference dye, up to its first zero byte; empty if there is none.
  void GetPassiveReference(CString& name) const;
  /// Sets the passive reference dye. Changes nothing if memory runs out.
  void SetPassiveReference(const CString& name);
  /// The sample volume as stored, 0 if the document has none. Applications define the unit.
  int GetSampleVolume() const;
  /// Sets the sample volume. Changes nothing if memory runs out.
  void SetSampleVolume(unsigned short volume);
  /// Sets `pre` and `post` to the pre-run and the post-run flag, or to 0 if the document has none.
  /// In a document that was read from a file, each is a signed byte.
  void GetPrePostFlags(int& pre, int& post) const;
  /// Sets the pre-run and the post-run flag. Documents store the low byte of each.
  /// Changes nothing if memory runs out.
  void SetPrePostFlags(int pre, int post);

  /// @}
  /// @name Thermal cycling program
  /// @{

  /// Replaces the content of `program`, which may be null, by a copy of the document's program.
  /// @return 0; -300 if the document has no program, and `program` is unchanged; -100 if memory
  /// runs out.
  [[nodiscard]] int GetThermocycleProgramInfo(ThermocycleProgram* program) const;
  /// Replaces the program by a copy of `program`; null makes an empty one.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int ReplaceThermocycleProgram(const ThermocycleProgram* program);
  /// The component of the program, owned by the document; null if there is none.
  ThermocycleProgramComp* GetThermocycleProgComp() const;

  /// @}
  /// @name Plate setup
  /// @{

  /// Replaces the setup of all wells by a copy of `setup`; null leaves a setup without wells.
  /// @return 0; -200 if the setup is too large for a document or memory runs out, and nothing is
  /// changed.
  [[nodiscard]] int ReplacePlateSetup(const Vex2PlateSetup* setup);
  /// Replaces the content of `setup`, which may be null, by a copy of the document's plate setup.
  /// @return 0; -300 if the document has no plate setup; -100 if memory runs out.
  [[nodiscard]] int GetPlateSetupInfo(Vex2PlateSetup* setup) const;
  /// The component of the plate setup, owned by the document; null if there is none.
  CPlateSetupComp* GetPlateSetupComp() const;
  /// Saves the header, the program and the plate setup, without other components, to `path`. The
  /// file at the path is replaced when the new one is complete and on the disk.
  /// @return 0; -300 if the document lacks program or plate setup; -200 on failure. On -300 and
  /// -200 the old file stays unchanged.
  [[nodiscard]] int SaveSetupInfo(const char* path);
  /// The number of wells of the plate type that the header names: 96 or 384; 0 for another type.
  int GetPlateSize() const;
  /// Stores in the header which wells are in use. `usage` holds `rows` times `columns` values, row
  /// by row. Sets the header's number of rows; its number of columns stays unchanged.
  /// @return False, and nothing is changed, if `usage` is null, `rows` is not 1 to 65535, `columns`
  /// is not 1 to 32, or memory runs out.
  bool SetUsageArray(const bool* usage, int rows, int columns);
  /// Stores in `header` which wells are in use. `usage` holds `rows` times `columns` values, row by
  /// row. Sets the header's number of rows; its number of columns stays unchanged.
  /// @return False, and nothing is changed, if `usage` is null, `rows` is not 1 to 65535, `columns`
  /// is not 1 to 32, or memory runs out.
  static bool SetUsageArray(const bool* usage, int rows, int columns, Vex2HeaderData& header);
  /// Releases `usage` with `delete[]` and sets it to a new array, which the caller releases with
  /// `delete[]`. The array has the header's rows times columns values, row by row, each of which
  /// states whether the well is in use.
  /// @return False, and `usage` is unchanged, if the header has no usage table, no row, or not 1 to
  /// 32 columns, or memory runs out.
  bool GetUsageArray(bool*& usage) const;

  /// @}
  /// @name Detectors
  /// A detector without a name is left out, and the host shows a message; this is not a failure.
  /// @{

  /// Replaces all detectors by the `count` detectors in `list`. If `count` is 0, the document keeps
  /// an empty list.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int UpdateDetectorList(const Vex2Detector* list, int count);
  /// Adds a detector at the end, after removing the one with the same name. Null adds nothing.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int AppendDetectorInfo(const Vex2Detector* detector);
  /// Removes the first detector with this name. If it was the last detector, removes the list too.
  /// @return False if there is no such detector.
  bool RemoveDetectorInfo(const CString& name);
  /// Appends the list of detectors to the file at `path`, which need not be a document.
  /// @return 0; -300 if the document has no list of detectors; -200 if the file cannot be written,
  /// and it then keeps its length.
  [[nodiscard]] int AppendDetectorListToFile(const char* path);
  /// Sets `count` to the number of detectors.
  /// @return 0, or -300 with `count` 0 if the document has no list of detectors.
  [[nodiscard]] int GetNumberOfDetectors(int& count) const;
  /// Releases `list` with `delete[]` and sets it to a new array of all detectors, which the caller
  /// releases with `delete[]`. If the document's list is empty, `list` stays unchanged.
  /// @return 0; -300 if the document has no list of detectors; -100 if memory runs out. `list` is
  /// unchanged in both cases of failure.
  [[nodiscard]] int GetDetectorListInfo(Vex2Detector*& list) const;

  /// @}
  /// @name Calibration
  /// A calibration has two parts: the spectra of the pure dyes and the background.
  /// @{

  /// Replaces the whole calibration by copies of the two records. If a record is null, the
  /// calibration lacks that part.
  /// @return 0, or -200 if the calibration is too large for a document or memory runs out.
  [[nodiscard]] int ReplaceCalibComponent(const Vex2PureDye* pureDye, const Vex2BGC* background);
  /// Replaces the pure dyes of the calibration by a copy of `record`; null removes them. Makes a
  /// calibration if there is none.
  /// @return 0, or -200 if the calibration is too large for a document or memory runs out.
  [[nodiscard]] int ReplacePureDye(const Vex2PureDye* record);
  /// Replaces the background of the calibration by a copy of `record`; null removes it. Makes a
  /// calibration if there is none.
  /// @return 0, or -200 if the calibration is too large for a document or memory runs out.
  [[nodiscard]] int ReplaceBackground(const Vex2BGC* record);
  /// Replaces the background of the calibration in memory and in the file at `path`. In the file,
  /// overwrites the first background that is outside a calibration. If there is none, appends the
  /// whole calibration, even to a file without a header.
  /// @return 0; -100 if the file cannot be opened for reading; -250 if its background has another
  /// size; -300 if a document ends within a record; -200 if the file cannot be written. The file is
  /// unchanged on failure.
  [[nodiscard]] int ReplaceBackground(const char* path, const Vex2BGC* record);
  /// Replaces the first pure-dye component outside the document's calibration by a copy of
  /// `record`, or by empty pure dyes if `record` is null, and appends the new component to the file
  /// at `path`.
  /// @return 0, or -200 if the file cannot be written: it then keeps its length, but the document
  /// in memory keeps the new component.
  [[nodiscard]] int AppendPureDye(const char* path, const Vex2PureDye* record);
  /// Replaces the first background component outside the document's calibration by a copy of
  /// `record`, or by an empty background if `record` is null, and appends the new component to the
  /// file at `path`.
  /// @return 0, or -200 if the file cannot be written: it then keeps its length, but the document
  /// in memory keeps the new component.
  [[nodiscard]] int AppendBackground(const char* path, const Vex2BGC* record);
  /// Removes the chosen parts. If both flags are true, removes the calibration itself.
  /// @return 0, even if no part is chosen; -300 if there is no calibration, or if it lacks the
  /// chosen part.
  [[nodiscard]] int RemoveCalibComponents(bool pureDye, bool background);
  /// Copies each part into its record. If the record is null, makes one with `new`, which the
  /// caller then owns. Sets the flag of the part, unless it is null, to 1 if the part exists,
  /// otherwise to 0.
  /// @return 0, even if a part is missing; -300 if there is no calibration; -100 if memory runs
  /// out.
  [[nodiscard]] int GetCalibrationInfo(Vex2PureDye*& pureDye, int* hasPureDye, Vex2BGC*& background,
                                       int* hasBackground) const;
  /// The number of pure dyes in the calibration; 0 if there are none.
  int GetPureDyeCount() const;
  /// Saves the header and the calibration, without other components, to `path`. The file at the
  /// path is replaced when the new one is complete and on the disk.
  /// @return 0; -300 if there is no calibration; -200 on failure. On -300 and -200 the old file
  /// stays unchanged.
  [[nodiscard]] int SaveCalibrationInfo(const char* path);

  /// @}
  /// @name Required dyes
  /// @{

  /// Adds a required dye at the end of the list. An empty name adds no dye, but makes a list if
  /// there is none. Sic: the misspelled name is part of the interface.
  /// @return False, and nothing is changed, if the list already has the dye or memory runs out.
  bool AppendRequiredDyenfo(const CString& dye);
  /// Replaces all required dyes by the `count` names in `dyes`. If `count` is 0, the document keeps
  /// an empty list.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int UpdateRequiredDyeList(const CString* dyes, int count);
  /// Removes the first required dye with this name. If it was the last dye, removes the list too.
  /// @return False if there is no such dye.
  bool RemoveRequiredDyeInfo(const CString& dye);
  /// Appends the list of required dyes to the file at `path`, which need not be a document.
  /// @return 0; -300 if the document has no such list; -200 if the file cannot be written, and it
  /// then keeps its length.
  [[nodiscard]] int AppendRequiredDyeListToFile(const char* path);
  /// Sets `count` to the number of required dyes.
  /// @return 0, or -300 with `count` 0 if the document has no such list.
  [[nodiscard]] int GetNumberOfRequiredDyes(int& count) const;
  /// Releases `dyes` with `delete[]` and sets it to a new array of all names, which the caller
  /// releases with `delete[]`. If the document's list is empty, `dyes` stays unchanged.
  /// @return 0; -300 if the document has no such list; -100 if memory runs out. `dyes` is unchanged
  /// in both cases of failure.
  [[nodiscard]] int GetRequiredDyeListInfo(CString*& dyes) const;

  /// @}
  /// @name Data blocks
  /// @{

  /// Removes the data block from the document in memory. The header keeps the offset of the block,
  /// even in a file that is saved later. Before a commit or `ReplaceAcquisitionDataBlock` on such a
  /// file, set `acquisitionDataOffset` to 0 with `SetHeaderData` and save.
  /// @return Always 0.
  int RemoveAcquisitionDataBlock(Vex2DataType type);
  /// Replaces the data block in memory and in the file at `path` by a copy of `data`; null makes an
  /// empty block. Raw readings must be the last record of the file: everything after them is cut
  /// off. Reporting blocks are written again, all of them together at the offset of the first one;
  /// other records after that offset are cut off. The file is replaced when the new one is complete
  /// and on the disk.
  ///
  /// Do not use this for the raw readings of a file that was saved as a whole. Its header holds the
  /// offset just after the block, so this would write there and keep the old block. Use
  /// `SaveToFile` instead.
  /// @return 0; -100 if the file is not a readable document; -200 if it cannot be written; -300,
  /// and nothing is changed, if there is no such type.
  [[nodiscard]] int ReplaceAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data,
                                                Vex2DataType type);

  /// @}
  /// @name Frames
  /// @{

  /// Sets the well numbers of the data block, or makes a block without frames for them. See
  /// `AcquisitionDataComp::SetWellNumbers`. Changes nothing for an unknown type.
  void InitAcqDataWellNumberArray(const unsigned short* wellNumbers, unsigned short count,
                                  Vex2DataType type);
  /// Appends a copy of `frame` to the data block in memory and commits it, see
  /// `CommitAcqDataFrame`. Makes a block with the wells 1, 2, 3, ... if there is none. A null
  /// `frame` appends nothing.
  ///
  /// Do not use this after the document was saved as a whole: the header then holds the offset just
  /// after the data block, so that a commit damages the file although it returns 0. Instead, save
  /// everything else before the first frame, and then change the file only by commits.
  /// @return The statuses of `CommitAcqDataFrame`; -200 also if the block cannot hold the frame.
  [[nodiscard]] int AppendAcquisitionDataFrame(const char* path, const Vex2FrameData* frame,
                                               Vex2DataType type);
  /// Commits frame `frameIndex`, from 0, which is complete in memory, to the file at `path`. When
  /// this returns 0, the frame is on the disk. For reporting blocks, writes nothing and returns 0.
  ///
  /// The caller must follow three rules, which this does not check:
  /// - Commit each frame once, in order.
  /// - Commit a frame only when all its wells are set. Other wells are written empty, and setting
  ///   them later does not change the file.
  /// - Do not commit a frame of a document that was saved as a whole after its data block was made,
  ///   nor after `RemoveAcquisitionDataBlock` and a save. The header then holds the offset just
  ///   after the block, so the commit damages the file although it returns 0.
  /// @return 0; -300 if the document has no such block; -100 if the file is not a readable
  /// document; -200 if it cannot be written; -260 if the block has no such frame. On failure the
  /// file keeps its length, and the caller can commit the frame again. An exception: if the disk
  /// failed to store the frame, this manager refuses all changes of the file with -200, and the
  /// host shows a message, until a whole document is saved in its place.
  [[nodiscard]] int CommitAcqDataFrame(const char* path, int frameIndex, Vex2DataType type);
  /// Copies `record` into frame `frameIndex`, from 0, of the document in memory, as the record of
  /// the well number `wellNumber`, from 1. Fill frames in order: `frameIndex` should be at most the
  /// frame count; a value equal to the count begins the next frame. The first value of `record`
  /// should not be 0. If exactly one record of the frame then has a first value other than 0, the
  /// frame count increases by one, whichever frame it is. So set each well of a frame once. If a
  /// block has 2 frames and a record is set in frame 3, then frame 2 counts, although it is empty,
  /// and frame 3 is not saved.
  /// @return False, and nothing is changed, if `record` is null, the block does not have the well,
  /// the block cannot hold the frame, or memory runs out. False also if there is no block; the host
  /// then shows a message. Call `InitAcqDataWellNumberArray` first.
  bool SetAcqDataWellRecord(const Vex2WellRecord* record, int frameIndex, int wellNumber,
                            Vex2DataType type);
  /// Sets the start time of the data block, in memory.
  /// @return False if the document has no such block.
  bool SetAcqDataStartTime(const TimeStamp& time, Vex2DataType type);
  /// Sets the end time of the data block, in memory.
  /// @return False if the document has no such block.
  bool SetAcqDataEndTime(const TimeStamp& time, Vex2DataType type);
  /// Sets `time` to the start time of the data block.
  /// @return False, and `time` is unchanged, if the document has no such block.
  bool GetAcqDataStartTime(TimeStamp& time, Vex2DataType type) const;
  /// Sets `time` to the end time of the data block.
  /// @return False, and `time` is unchanged, if the document has no such block.
  bool GetAcqDataEndTime(TimeStamp& time, Vex2DataType type) const;

  /// Copies frame `frameIndex`, from 0, of the document in memory into `frame`, which may be null.
  /// @return 0; -300 if the document has no such block; -260 if the block has no such frame; -100
  /// if memory runs out.
  [[nodiscard]] int ReadDataFrame(int frameIndex, Vex2FrameData* frame, Vex2DataType type) const;
  /// Copies the record of the well number `wellNumber`, from 1, in frame `frameIndex`, from 0, into
  /// `record`, which may be null.
  /// @return False, and `record` is unchanged, if there is no such block, frame or well.
  bool GetAcqDataWellRecord(Vex2WellRecord* record, int frameIndex, int wellNumber,
                            Vex2DataType type) const;
  /// Copies the record at the index `wellIndex`, from 0 in the order of the block's wells, in frame
  /// `frameIndex`, from 0, into `record`, which may be null.
  /// @return False, and `record` is unchanged, if there is no such block, frame or well.
  bool GetAcqDataWellRecordForWellIndex(Vex2WellRecord* record, int frameIndex, int wellIndex,
                                        Vex2DataType type) const;
  /// The number of frames with a record of the well number `wellNumber`, from 1: all frames of the
  /// block, or 0 if the block does not have the well.
  int GetDataCntInWell(int wellNumber, Vex2DataType type) const;
  /// The number of frames of the data block in memory; 0 if the document has no such block.
  int GetDataFrameCount(Vex2DataType type) const;
  /// The number of frames in the data block of the study's plate `plateName`, or of the document
  /// itself if `plateName` is null; 0 if the study has no such plate.
  int GetDataFrameCountByName(const char* plateName, Vex2DataType type) const;
  /// The number of wells of the data block in memory; 0 if the document has no such block.
  int GetWellCount(Vex2DataType type) const;

  /// Sets `count` to the number of frames of the data block in the file at `path`, or to 0 if it
  /// has no readable block. Reads only the header and the head of the block. The document in memory
  /// stays unchanged, except for its path.
  /// @return 0, or -100 if the file cannot be opened or, for raw readings, is not a document.
  [[nodiscard]] int GetDataFrameCount(const char* path, int& count, Vex2DataType type);
  /// Reads frame `frameIndex`, from 0, of the data block in the file at `path` into `frame`, which
  /// may be null. Reads only the header, the head of the block and the frame. The document in
  /// memory stays unchanged, except for its path.
  /// @return 0, even if there is no such block or frame; `frame` is then unchanged. -100 if the
  /// file cannot be opened, is not a document, or ends within the frame.
  [[nodiscard]] int ReadDataFrame(const char* path, int frameIndex, Vex2FrameData* frame,
                                  Vex2DataType type);

  /// @}
  /// @name Acquisition status
  /// How far the run is: "ZERO" before it, "PROG" in progress, "DONE" after it.
  /// @{

  /// The four characters of the status in the header.
  CString GetAcquisitionStatus() const;
  /// Sets the status in memory. Any four characters are accepted.
  /// @return 0; -261 for a text that is null or not four characters long: nothing is changed, and
  /// the host shows a message.
  [[nodiscard]] int SetAcquisitionStatus(const char* status);
  /// Sets the status in memory and in the header of the file at `path`. When this returns 0, the
  /// status is on the disk.
  /// @return 0, or -200 if the text is invalid, or the file is not a document or cannot be written.
  /// For an invalid text the host shows a message.
  [[nodiscard]] int SetAcquisitionStatus(const char* path, const char* status);
  /// Whether the status is "ZERO": the run has not started.
  bool IsAcquisitionZero() const;
  /// Whether the status is "PROG": the run is in progress.
  bool IsAcquisitionProg() const;
  /// Whether the status is "DONE": the run is complete.
  bool IsAcquisitionDone() const;

  /// @}
  /// @name Plates of a study
  /// The name of a plate is the title of the file from which it was added. A pointer to a plate is
  /// valid until the plate is removed or the study is reset, read or assigned.
  /// @{

  /// Removes all plates, and makes an empty list of plates at the end of the document. The names of
  /// the removed plates cannot be used again until `SyncPlatesWithAnalysisStorageMap`.
  /// @return True; false if memory runs out.
  bool InitMultiplate();
  /// Adds a copy of `plate`, and storage for its analysis results. The name is the title of the
  /// plate's path, see `SplitPath`. `lastModified` is the date of the plate's file as a text,
  /// stored unchanged.
  /// @return False, and nothing is changed, if `plate` is null, there is analysis storage under the
  /// name, the study has 65535 plates, or memory runs out.
  bool AddRQPlate(const Vex2FileManager* plate, const CString& lastModified);
  /// Removes the first plate with this name, and its analysis results.
  /// @return True for every name if the document has a list of plates; otherwise whether there was
  /// analysis storage under the name.
  bool RemoveRQPlate(const CString& name);
  /// Replaces the content of the two lists by the names and dates of the plates, in the same order.
  /// @return False, and both lists are unchanged, if the document has no list of plates.
  bool GetMultiPlateList(CStringList& names, CStringList& dates) const;
  /// The number of plates in the study.
  int GetRQPlateCount() const;
  /// The number of entries in the lists that `GetMultiPlateList` fills.
  int GetNumPlates() const;
  /// The first plate with this name, owned by the study; null if there is none.
  Vex2FileManagerComponent* GetSinglePlatePtrByName(const CString& name) const;
  /// Stores in a plate the name that it has in a study. Keeps the first 1023 characters.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int AppendPlateName(const CString& name);
  /// Sets `name` to the name that this plate has in a study; unchanged if it has none.
  /// @return 0, or -100 if memory runs out.
  [[nodiscard]] int GetPlateName(CString& name) const;
  /// Stores in a plate the date of its file, as a text. Keeps the first 1023 characters.
  /// @return 0, or -200 if memory runs out.
  [[nodiscard]] int AppendLastModifiedDate(const CString& date);
  /// Sets `date` to the date of this plate's file, as a text; unchanged if it has none.
  /// @return 0, or -100 if memory runs out.
  [[nodiscard]] int GetLastModifiedDate(CString& date) const;
  /// Sets the assay code in memory to that of a plate for relative quantification ("RelQ"),
  /// whatever it was before.
  void ConvertAQ2RQ();

  /// @}
  /// @name Storage of analysis results
  /// Results exist only in memory: for the document itself, and for each plate of a study under its
  /// name. A stored result belongs to the document. It is destroyed when it is removed, or with its
  /// storage. The document's own storage is destroyed with the document; the storage of a plate is
  /// also destroyed by `Reset`.
  /// @{

  /// With `mode` 1, makes new storage for the document itself. With any other mode, removes that
  /// storage and the storage of all plates. Destroys the results in what it removes or replaces.
  /// @return The number of wells of the plate, see `GetPlateSize`. If it is 0, nothing is changed.
  int CreateAnalysisStorage(int mode);
  /// Makes storage for each plate of the study that has none, and destroys all storage whose name
  /// is not that of a plate.
  void SyncPlatesWithAnalysisStorageMap();

  /// @}
  /// @name Multicomponent results
  /// One result for each well. Wells are well numbers, from 1.
  /// @{

  /// Sets `matrix` to the document's own result for the well; null if there is none. The document
  /// keeps ownership.
  /// @return Whether there is a result.
  bool GetMCDataAt(IDAMCMatrix*& matrix, int well) const;
  /// Sets `matrix` to the result of the plate `plateName` for the well, or to the document's own if
  /// `plateName` is null; to null if there is no result. If there is no storage under `plateName`,
  /// `matrix` is unchanged. The document keeps ownership.
  /// @return Sic: always false. Look at `matrix`, or pass the name as a `CString`.
  bool GetMCDataAt(const char* plateName, IDAMCMatrix*& matrix, int well) const;
  /// Sets `matrix` to the result of the plate `plateName` for the well; null if there is none. If
  /// there is no storage under `plateName`, `matrix` is unchanged. The document keeps ownership.
  /// @return Whether there is a result.
  bool GetMCDataAt(const CString& plateName, IDAMCMatrix*& matrix, int well) const;
  /// Stores `matrix`, which may be null, as the document's own result for the well, and takes
  /// ownership. Does not destroy the result stored before: the caller owns it again.
  /// @return False if there is no storage, or if the document's plate does not have the well; the
  /// caller then keeps ownership.
  bool SetMCDataAt(IDAMCMatrix* matrix, int well);
  /// Stores `matrix`, which may be null, as the result of the plate `plateName` for the well, or as
  /// the document's own if `plateName` is null, and takes ownership. Does not destroy the result
  /// stored before: the caller owns it again. Stores nothing if there is no storage under
  /// `plateName`, or if the document's plate does not have the well.
  /// @return Sic: always false. Pass the name as a `CString` to learn whether `matrix` was stored.
  bool SetMCDataAt(const char* plateName, IDAMCMatrix* matrix, int well);
  /// Stores `matrix`, which may be null, as the result of the plate `plateName` for the well, and
  /// takes ownership. Does not destroy the result stored before: the caller owns it again.
  /// @return False if there is no storage under `plateName`, or if the document's plate does not
  /// have the well; the caller then keeps ownership.
  bool SetMCDataAt(const CString& plateName, IDAMCMatrix* matrix, int well);

  /// @}
  /// @name Reporter results
  /// Two results for each well: `second` chooses the second one. Wells are well numbers, from 1.
  /// @{

  /// Sets `matrix` to the document's own result for the well; null if there is none. The document
  /// keeps ownership.
  /// @return Whether there is a result.
  bool GetReporterAt(IDAClippedMatrix*& matrix, int well, bool second) const;
  /// Sets `matrix` to the result of the plate `plateName` for the well, or to the document's own if
  /// `plateName` is null; to null if there is no result. If there is no storage under `plateName`,
  /// `matrix` is unchanged. The document keeps ownership.
  /// @return Sic: always false. Look at `matrix`, or pass the name as a `CString`.
  bool GetReporterAt(const char* plateName, IDAClippedMatrix*& matrix, int well, bool second) const;
  /// Sets `matrix` to the result of the plate `plateName` for the well; null if there is none. If
  /// there is no storage under `plateName`, `matrix` is unchanged. The document keeps ownership.
  /// @return Whether there is a result.
  bool GetReporterAt(const CString& plateName, IDAClippedMatrix*& matrix, int well,
                     bool second) const;
  /// Stores `matrix`, which may be null, as the document's own result for the well, and takes
  /// ownership. Does not destroy the result stored before: the caller owns it again.
  /// @return False if there is no storage, or if the document's plate does not have the well; the
  /// caller then keeps ownership.
  bool SetReporterAt(IDAClippedMatrix* matrix, int well, bool second);
  /// Stores `matrix`, which may be null, as the result of the plate `plateName` for the well, or as
  /// the document's own if `plateName` is null, and takes ownership. Does not destroy the result
  /// stored before: the caller owns it again.
  /// @return False if there is no storage under `plateName`, or if the document's plate does not
  /// have the well; the caller then keeps ownership.
  bool SetReporterAt(const char* plateName, IDAClippedMatrix* matrix, int well, bool second);
  /// Stores `matrix`, which may be null, as the result of the plate `plateName` for the well, and
  /// takes ownership. Does not destroy the result stored before: the caller owns it again.
  /// @return False if there is no storage under `plateName`, or if the document's plate does not
  /// have the well; the caller then keeps ownership.
  bool SetReporterAt(const CString& plateName, IDAClippedMatrix* matrix, int well, bool second);
  /// Destroys the document's own result for the well.
  /// @return False if there was none.
  bool RemoveReporterAt(int well, bool second);
  /// Destroys the result of the plate `plateName` for the well, or the document's own if
  /// `plateName` is null.
  /// @return Sic: always false. Pass the name as a `CString` to learn whether there was a result.
  bool RemoveReporterAt(const char* plateName, int well, bool second);
  /// Destroys the result of the plate `plateName` for the well.
  /// @return False if there was none.
  bool RemoveReporterAt(const CString& plateName, int well, bool second);

  /// @}
  /// @name Melting results
  /// One result for each well, only for the document itself. Wells are well numbers, from 1.
  /// @{

  /// Sets `points` to the result for the well; null if there is none. The document keeps ownership.
  /// @return Whether there is a result.
  bool GetMeltingDataAt(IDAMeltingPoints*& points, int well) const;
  /// Stores `points`, which may be null, as the result for the well, and takes ownership. Does not
  /// destroy the result stored before: the caller owns it again.
  /// @return False if there is no storage, or if the document's plate does not have the well; the
  /// caller then keeps ownership.
  bool SetMeltingDataAt(IDAMeltingPoints* points, int well);
  /// Destroys the result for the well.
  /// @return False if there was none.
  bool RemoveMeltingDataAt(int well);

  /// @}
  /// @name Analysis settings
  /// The parameters with which each detector is analysed, and the resulting threshold cycles. The
  /// document itself and each plate of a study have such settings; a null plate name means the
  /// document. They exist only in memory. `Reset` destroys all of them, including those in maps
  /// that a host added.
  /// @{

  /// The object that holds the plate's settings, owned by the document; null for a plate without
  /// settings.
  CAnalysisSettingsDetectorMap* GetAnalysisSettingsDetectorMap(const char* plateName) const;
  /// The plate's settings by detector name; null for a plate without settings. The document owns
  /// the settings, and the map unless a host added it.
  CAnalysisSettingsMap* GetAnalysisSettingsMap(const char* plateName) const;
  /// Uses `map`, which may be null, as the plate's settings, and takes ownership of the settings in
  /// it. `Reset` and the destructor destroy these settings. They also destroy a plate's map, but
  /// not the document's own map: the caller keeps that one. If this replaces a map that a host
  /// added before, the host owns that map and its settings again. Finally copies the settings of
  /// detectors that only plates have to the document's own settings.
  void AddAnalysisSettingsMap(const char* plateName, CAnalysisSettingsMap* map);
  /// Adds settings with the parameters of `probe` under its name.
  /// @return False, and nothing is changed, if `probe` has no name, the plate has no settings, the
  /// detector already has settings, or memory runs out.
  bool AddDetectorToAnalysisSettingsMap(const TAGPROBE& probe, const char* plateName);
  /// Destroys the settings of `detector` on the plate.
  /// @return False if there were none.
  bool RemoveDetectorFromAnalysisSettingsMap(const char* detector, const char* plateName);
  /// The settings of `detector` in `map`, owned by the document; null if `map` is null or lacks the
  /// detector.
  CAnalysisSettings* GetAnalysisSettingsByDetector(const CAnalysisSettingsMap* map,
                                                   const CString& detector) const;
  /// Whether `detector` has settings on the plate.
  bool IsAnalysisAvailableFor(const char* plateName, const char* detector) const;
  /// Stores the threshold cycle, in cycles, of the well number `well`, from 1. Does nothing if the
  /// detector has no settings on the plate.
  void SetCtAt(const char* plateName, const char* detector, const float& ct, int well);
  /// The threshold cycle, in cycles, of the well number `well`, from 1; `CCtEntry::kNoCt`, which is
  /// -999.1, if there is none.
  float GetCtAt(const char* plateName, const char* detector, int well) const;
  /// Destroys the document's own settings, and leaves their map empty.
  void ResetGlobalAnalysisSettingsMap();
  /// Destroys the settings of all plates and their maps, including maps that a host added.
  void ResetAnalysisSettingsPlateMap();
  /// Selects detectors for a query: sets `CAnalysisSettings::queryFlag` in the document's own
  /// settings to 1 for the detectors in `list`, which holds `CNamedObject`s, and to 0 for all
  /// others.
  /// @return False for an empty list.
  bool PrepareQueryList(const CObList& list);

  /// @}
  /// @name Plates from files
  /// @{

  /// Reads the plate at `path`, to be added to a study with `AddRQPlate`. Sets `lastModified` to
  /// the time at which its file was last changed, in local time, such as "Mar 05, 2003 02:07 PM".
  /// @return 0; -50 if `path` is null or `choose` is true, because `RQSOpenFile` returns false;
  /// -100 if the file cannot be opened; -1 if it is not a document; -2 if its kind marker is not
  /// "Kest". In all of these cases of failure, header and components stay unchanged. Otherwise the
  /// status of reading the file.
  [[nodiscard]] int ReadRQPFromFile(CWnd* parent, const char* path, bool choose,
                                    CString& lastModified);
  /// The file chooser for plates. Shows nothing and changes nothing; hosts rely on that. The
  /// parameters are those of `ChooseDocumentFile`.
  /// @return Always false, as if the user had cancelled.
  static bool RQSOpenFile(CWnd* owner, CString& path, CString& folder, const char* filter,
                          const char* initialName, const char* defaultExtension,
                          const char* initialFolder, const char* title, int flag);

  /// @}
  /// @name Queries of readings
  /// These operations use the raw readings of the document or, in a study, of its plates in order.
  /// @{

  /// Sets `wellsWithData` to the number of wells with readings, and `largestCount` to the largest
  /// number of readings in a well. In a study, these are the numbers of the first plate that has
  /// readings. Both are 0 if there are no readings.
  void GetPlateDataInfo(int& wellsWithData, int& largestCount) const;
  /// Sets `plateSize` to the number of wells of the plate; in a study, of the first plate with
  /// frames, or of the last plate if none has frames.
  /// @return The number of frames; in a study, of the first plate that has any.
  long GetPlateInfo(long& plateSize) const;
  /// Sets `pcrFrameCount` to the number of frames of the thermal cycling, and `meltingStart` to the
  /// index, from 0, of the first frame of a melting stage, or -1 if there is none. Uses the plate
  /// `plateName` or, if that is null, the document or the first plate of a study. If there is no
  /// such plate, sets 0 and -1.
  void FindPCRMeltingParams(const char* plateName, int& pcrFrameCount, int& meltingStart) const;

  /// @}
  /// @name Spectra
  /// @{

  /// Sets the values of `spectrum` to the readings of its well number in its frame. Takes them from
  /// the plate `plateName`, or from the document if there is no such plate. Extra values become 0.
  /// In a background document, the values at the indexes 24 to 27 become the rates of the four
  /// groups of readings.
  /// @return False if `spectrum` is null, or if the well record does not exist: `spectrum->failed`
  /// is then 1 and the values are unchanged.
  bool LoadSpectrum(KestorSpectrum* spectrum, const char* plateName) const;

  /// @}

 protected:
  /// @name For derived classes
  /// @{

  /// Copies header, path and components. The document must be empty. Throws `std::bad_alloc`.
  void deepCopy(const Vex2FileManager& source);
  /// Copies header, path and components. The document must be empty, and stays so if memory runs
  /// out.
  void copyOrStayEmpty(const Vex2FileManager& source);
  /// The first component with this tag, or null. The result can be passed to `RemoveComponent`.
  CComponent* includesComponent(std::string_view tag) const;
  /// Deletes the component; does nothing for null.
  void RemoveComponent(CComponent* position);
  /// The first component with this tag as `Component`; null if there is none, or if it is of
  /// another class.
  template <typename Component>
  Component* find(std::string_view tag) const {
    return dynamic_cast<Component*>(includesComponent(tag));
  }
  /// Adds the component at the end of the document.
  void appendComponent(std::unique_ptr<CComponent> component);
  /// Removes the first component with the same tag and appends the component.
  void replaceComponent(std::unique_ptr<CComponent> component);
  /// Removes the first component with the same tag, appends the component and returns it; the
  /// document keeps ownership. A search by tag could find another component of the same kind.
  template <typename Component>
  Component* replaceComponent(std::unique_ptr<Component> component) {
    Component* added = component.get();
    replaceComponent(std::unique_ptr<CComponent>(std::move(component)));
    return added;
  }

  /// Runs an operation in memory.
  /// @return Its status, or `failure` if it throws because the system refuses or memory runs out.
  [[nodiscard]] static int guarded(int failure, vex2::FunctionRef<int()> operation);
  /// Runs an operation that reads or writes files, and keeps the first failure as the last file
  /// error.
  /// @return Its status, or `failure` if it throws because the system refuses or memory runs out.
  [[nodiscard]] int attempt(int failure, vex2::FunctionRef<int()> operation);
  /// Runs an operation on the open file as `attempt` does, and then closes the file.
  /// @return Its status, or `failure` if the operation or closing the file fails.
  [[nodiscard]] int guardedFile(int failure, vex2::FunctionRef<int()> operation);
  /// Replaces the file at `path` by what `write` writes to the open manager.
  /// @return 0; otherwise the status of `write`, or -200, and the old file stays unchanged.
  [[nodiscard]] int saveWhole(const char* path, vex2::FunctionRef<int()> write);
  /// Appends the component to the file at `path`, which need not be readable.
  /// @return 0, or -200 if the file cannot be written; it then keeps its length.
  [[nodiscard]] int appendRecord(const char* path, CComponent& component);
  /// Runs `write` with the file position at the end of the open file, and closes the file.
  /// @return The status of `write`, or -200 if changes of the file are refused or it cannot be
  /// written. Unless this is 0, the file keeps its length.
  [[nodiscard]] int appendToOpenFile(vex2::FunctionRef<int()> write);
  /// Opens the file at `path`, runs `look`, then `change` if `look` returns 0, and closes the file.
  /// @return -100 if the file cannot be read; the status of `look` unless it is 0; -200 if the file
  /// cannot be written; otherwise the status of `change`.
  [[nodiscard]] int changeFile(const char* path, vex2::FunctionRef<int()> look,
                               vex2::FunctionRef<int()> change);

  /// Notes why the document cannot be read whole, and the offset in the file. `reason` is a
  /// constant text. Only the first fault of a reading is kept.
  void noteFault(std::uint64_t offset, const char* reason);

  /// Reads a header at the file position of `file` into `header`. Null means the manager's own
  /// file.
  [[nodiscard]] int ReadHeaderDataHelper(Vex2HeaderData& header, CFile* file);
  /// Writes the header at the file position of `file`, and sets `headerBytes` to its size up to the
  /// end of the usage table. Null means the manager's own file.
  [[nodiscard]] int WriteHeaderDataHelper(std::uint32_t& headerBytes, CFile* file);
  /// Writes the offset of the program into the header in the open file. Returns 0 or -200.
  [[nodiscard]] int UpdateThermocycleOffset(unsigned long offset);
  /// Writes the offset of the raw readings into the header in the open file. Returns 0 or -200.
  [[nodiscard]] int UpdateAcqDataOffset(unsigned long offset);
  /// Writes the program to the end of the open file, and sets its offset in the header in memory.
  /// Returns 0; -200 if no file is open or it cannot be written; -300 if there is no program.
  [[nodiscard]] int WriteThermocycleComp();
  /// Writes the plate setup to the end of the open file. Returns 0; -200 if no file is open or it
  /// cannot be written; -300 if there is no plate setup.
  [[nodiscard]] int WritePlateSetupComp();

  /// Replaces the raw readings in memory by a copy of `data` and appends them to the file at
  /// `path`, which need not be readable. Returns 0 or -200.
  [[nodiscard]] int AppendAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data);
  /// The data block of this type, owned by the document; null if there is none.
  AcquisitionDataComp* findBlock(Vex2DataType type) const;
  /// The offset of the block's tag in the open file; 0 if there is no such block.
  long findReporterCompOffset(Vex2DataType type);
  /// Reads frame `frameIndex` of the block at `blockOffset` in the open file into `frame`, which
  /// may be null. Returns 0, even if there is no such frame; -100 if the file ends within it.
  [[nodiscard]] int readAFrame(int frameIndex, Vex2FrameData* frame, long blockOffset);

  /// Whether a save writes the component. In a study, it writes only eight kinds of components;
  /// otherwise it writes all.
  bool isWritten(const CComponent& component) const;

  /// The storage of the plate's analysis results; null if there is none.
  VexAnalysis* LookupAnalysisPtr(const CString& plateName) const;
  /// Destroys the storage of the analysis results of all plates.
  void ResetAnalysisMap();
  // The overloads above call the next five operations. The storage, which may be null, is their
  // last parameter, so that a null first argument can only mean a plate name.

  /// Sets `matrix` to the multicomponent result in `analysis`, and returns whether there is one.
  bool GetMCDataAt(IDAMCMatrix*& matrix, int well, const VexAnalysis* analysis) const;
  /// Stores a multicomponent result in `analysis`, and returns whether it did.
  bool SetMCDataAt(IDAMCMatrix* matrix, int well, VexAnalysis* analysis);
  /// Sets `matrix` to the reporter result in `analysis`, and returns whether there is one.
  bool GetReporterAt(IDAClippedMatrix*& matrix, int well, bool second,
                     const VexAnalysis* analysis) const;
  /// Stores a reporter result in `analysis`, and returns whether it did.
  bool SetReporterAt(IDAClippedMatrix* matrix, int well, bool second, VexAnalysis* analysis);
  /// Destroys the reporter result in `analysis`, and returns whether there was one.
  bool RemoveReporterAt(int well, bool second, VexAnalysis* analysis);
  /// The object that holds the plate's analysis settings; null if there is none.
  CAnalysisSettingsDetectorMap* LookupAnalysisDetectorMapPtr(const char* plateName) const;
  /// The analysis settings of the detector on the plate; null if there are none.
  CAnalysisSettings* GetAnalysisSettings(const char* plateName, const char* detector) const;
  /// Copies the analysis settings of detectors that only plates have to the document's own
  /// settings.
  void SyncPlateDetectorsWithGlobal();

  Vex2HeaderData header_;                     ///< the header in memory
  std::unique_ptr<VexAnalysis> ownAnalysis_;  ///< the document's own results, null without storage

  /// @}

 private:
  // The components, the document store and all else that the manager has besides its header.
  struct State;

  std::unique_ptr<State> state_;
};
