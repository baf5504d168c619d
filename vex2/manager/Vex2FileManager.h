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

/// One plate document: its header and its components, in memory, and the operations that read and
/// change them and bring them to and from the disk.
///
/// Operations that return int answer 0 or a negative `vex2::Status`; none throws, but for the
/// constructors, which throw `std::bad_alloc` where memory runs out. There, operations without a
/// status change nothing and answer as if nothing were there. Those without a
/// path work on the document in memory alone. "Replace" and "Set" operations move what they change
/// to the end of the document. Pointers that are handed out belong to the document and are valid
/// until it changes; arrays that are filled for the caller belong to the caller.
///
/// Wells are numbered from 1 unless called an index; frames and indexes count from 0. One thread
/// uses a manager at a time; managers on different threads are independent.
class VEX2_API Vex2FileManager : public CFile {
 public:
  // --- Life of a document (Vex2FileManager.cpp, Vex2FileManagerFiles.cpp) ---

  /// A closed file and an empty document for a 96-well plate.
  Vex2FileManager();
  /// A closed file and a copy of the other's header, path and components; components of unknown
  /// kinds are left out, analysis results and settings are not copied.
  Vex2FileManager(const Vex2FileManager& other);
  /// Resets and copies as above. Assigning a manager to itself leaves it empty, and so does memory
  /// that runs out.
  Vex2FileManager& operator=(const Vex2FileManager& other);
  ~Vex2FileManager() override;

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();

  CString GetFileName() const override;
  CString GetFileTitle() const override;
  /// The path that was last opened or set, also while the file is closed.
  CString GetFilePath() const override;

  // The order of these six is part of the binary interface. A null file is the manager's own.

  /// Writes the header to the manager's own file and all components to the end of `file`. A study
  /// keeps eight kinds of components and ends with an "EOF " record. -200 when the manager's file
  /// is not open or a write failed.
  [[nodiscard]] virtual int WriteComponentFile(CFile* file);
  /// Resets and reads the whole document. -100 when the manager's file is not open or is no "Vex2"
  /// document, else the status of the record that ended the reading; what was read before stays.
  [[nodiscard]] virtual int ReadComponentFile(CFile* file);

 protected:
  /// Right after `component` was written: keeps the header's positions up to date, in memory and
  /// in the file, and leaves the position at the file's end.
  virtual void UpdateHeaderOffsets(const CComponent& component);

 public:
  [[nodiscard]] virtual int ReadHeaderData(CFile* file);
  /// Reads the header from offset 0 of `file` into `header` and leaves the position behind it.
  /// -100 when the manager's file is not open or is no "Vex2" document.
  [[nodiscard]] virtual int ReadHeaderData(Vex2HeaderData& header, CFile* file);
  /// Writes the header to offset 0 of the manager's own file, whatever `file` is, and drops
  /// everything behind it. -200 when that is not open or refuses.
  [[nodiscard]] virtual int WriteHeaderData(CFile* file);

  /// Empties header and document. The file stays open, the path and the document's own analysis
  /// results stay. Always 0.
  int Reset();

  /// Opens `path` and keeps it as the document's: for reading with `write` 0; else for writing,
  /// emptied with `append` 0, at its end otherwise. 1 when open, 0 when not.
  [[nodiscard]] int SafeOpen(const char* path, int write, int append);

  /// Reads the document at `path`, or one that the user chooses when `path` is null or `dialog`
  /// true. 0 also for a document that could be read in part only: ask `IsWhole`. -50 when the user
  /// cancelled, -100 when the file cannot be opened.
  [[nodiscard]] int ReadFromFile(const char* path, bool dialog = false);
  /// Saves the document to `path`, chosen as above. What stood there is replaced only once the new
  /// document is complete and on the disk. -50 or -200 on failure, and the old one stands.
  [[nodiscard]] int SaveToFile(const char* path, bool dialog = false);
  /// Takes over `header` and saves it alone to `path`, as `SaveToFile` does. 0 or -200.
  [[nodiscard]] int SaveHeader(const char* path, const Vex2HeaderData& header);

  /// Whether the last reading of a document, by any operation that reads whole documents, took in
  /// all that stands in its file. False also for a file that could not be opened, for records of
  /// unknown kinds, which are left out, and for a study with such a plate. A copy of the manager
  /// answers the same. `Reset` and a new document make it true again.
  ///
  /// An operation that replaces the file that was read in part, under whatever name, first copies
  /// it to "PATH.backup" (see `BackUpFile`), beside the file that a symbolic link leads to; once
  /// for each reading. Where the copy cannot be made the operation fails with -200, `SafeOpen` with
  /// 0, and the file stands.
  bool IsWhole() const;
  /// Where and why the reading ended early or left something out, the first of it.
  const vex2::ReadFault& GetReadFault() const;

  /// Why the last operation that touched a file failed: the first refusal in it. Every operation
  /// with a path begins without one (`FileErrorReason::kNone`), and so does each that works on the
  /// open file; operations in memory alone change nothing here, and a copy of the manager has none
  /// of its source's. It is set where an operation that answers success met a refusal on the way,
  /// too: `ReadFromFile` of a document that can be read in part. Statuses that tell what a document
  /// holds or lacks (-250, -260, -300) come without one. Valid until the next operation.
  const vex2::FileError& GetLastFileError() const;

  int GetAllComponentCount() const;
  /// Empties `tags` and fills it with the components' tags in order. True; false, and `tags` stays
  /// empty, where memory runs out.
  bool GetComponentTagList(CStringList& tags) const;
  /// The component at `index` from 0, owned by the document; null for an index out of range.
  CComponent* GetComponent(int index) const;
  /// For tests of the list operations: a new header and, behind what there is, a placeholder for
  /// each kind, with lengths 100, 99, and so on. No valid document.
  void initTestData();
  bool IsAcquisitionDataAvailable() const;

  // --- Header (Vex2FileManagerHeader.cpp) ---

  const Vex2HeaderData& GetHeaderData() const { return header_; }
  void SetHeaderData(const Vex2HeaderData& header);
  int GetHeaderRows() const { return header_.rows; }
  int GetHeaderCols() const { return header_.columns; }
  /// Always 1024.
  int GetHeaderBytes() const;
  void SetFilePath(const char* path);

  // Tests on the open file; false when it is not open or is no "Vex2" document. They move the
  // position.
  bool IsVex2Format();
  bool IsBlueLightSpecialFile();
  bool IsKestorFile();

  // --- Kind of run (Vex2FileManagerAssay.cpp) ---

  /// Whether the header's code of the run is that of `type`; 0 for a code that is none of the
  /// seven.
  bool IsAssayType(int type) const;
  bool IsBackground() const;
  bool IsPureSpectra() const;
  bool IsAQ() const;
  bool IsRQP() const;
  bool IsRQS() const;
  bool IsAD() const;
  bool IsPM() const;
  bool IsRealTime() const;
  bool IsPlateRead() const;

  /// Appends an element for each pure dye of the calibration that has a name; the list's owner
  /// deletes them. False, and the list is unchanged, when there is no calibration.
  bool LoadDyeList(CObList* list) const;
  /// Of a plate of this study; of the document itself for a null name.
  bool LoadDyeListByName(CObList* list, const char* plateName) const;

  // --- Run-wide settings (Vex2FileManagerSettings.cpp) ---

  /// Copies the settings that the document holds into `info`; -300 when it holds none.
  [[nodiscard]] int GetGlobalComplexInfo(Vex2GlobalComplex* info) const;
  /// Replaces all settings; a null `info` leaves an empty list of them. Always 0.
  [[nodiscard]] int ReplaceGlobalComplexComp(const Vex2GlobalComplex* info);
  /// Replaces all settings and appends them to the file at `path`. 0 or -200.
  [[nodiscard]] int AppendGlobalComplexComp(const char* path, const Vex2GlobalComplex* info);
  /// Most dyes in a well; 4 with -300 when the document does not say, which is so for every
  /// document that was read.
  [[nodiscard]] int GetMaxDyesPerWell(int& count) const;
  [[nodiscard]] int GetConfidencePercent(float& percent) const;
  [[nodiscard]] int UpdateConfidencePercent(float percent);
  /// Getters of texts empty their argument first; -300 when there is none. Setting an empty text
  /// removes it. Setters always answer 0.
  [[nodiscard]] int GetCalibrator(CString& name) const;
  [[nodiscard]] int SetCalibrator(const CString& name);
  [[nodiscard]] int GetEndoControl(CString& name) const;
  [[nodiscard]] int SetEndoControl(const CString& name);
  [[nodiscard]] int GetRQAnalysisType(unsigned short& type) const;
  [[nodiscard]] int SetRQAnalysisType(unsigned short type);
  /// Up to the first zero byte; empty when there is none.
  void GetPassiveReference(CString& name) const;
  void SetPassiveReference(const CString& name);
  int GetSampleVolume() const;
  void SetSampleVolume(unsigned short volume);
  /// One byte each, with its sign.
  void GetPrePostFlags(int& pre, int& post) const;
  void SetPrePostFlags(int pre, int post);

  // --- Thermal cycling program (Vex2FileManagerProgram.cpp) ---

  /// Copies the program into `program`, which may be null; -300 when there is none.
  [[nodiscard]] int GetThermocycleProgramInfo(ThermocycleProgram* program) const;
  /// `program` must not be null. Always 0.
  [[nodiscard]] int ReplaceThermocycleProgram(const ThermocycleProgram* program);
  ThermocycleProgramComp* GetThermocycleProgComp() const;

  // --- Plate setup (Vex2FileManagerSetup.cpp) ---

  /// Replaces what stands in the wells; a null `setup` leaves a plate without wells. 0, or -200 for
  /// one that is too large to be stored, and then nothing is changed.
  [[nodiscard]] int ReplacePlateSetup(const Vex2PlateSetup* setup);
  /// Copies what stands in the wells into `setup`, which may be null; -300 when there is no setup.
  [[nodiscard]] int GetPlateSetupInfo(Vex2PlateSetup* setup) const;
  CPlateSetupComp* GetPlateSetupComp() const;
  /// Saves header, program and plate setup alone to `path`, as `SaveToFile` does. -300 when the
  /// document lacks program or setup, else 0 or -200.
  [[nodiscard]] int SaveSetupInfo(const char* path);
  /// Wells of the plate type that the header names: 96, 384 or 0.
  int GetPlateSize() const;
  /// Stores which wells are used, row by row. False, and nothing is changed, for null, no rows or
  /// columns, more than 65535 rows or 32 columns. The header's number of columns stays as it is.
  bool SetUsageArray(const bool* usage, int rows, int columns);
  static bool SetUsageArray(const bool* usage, int rows, int columns, Vex2HeaderData& header);
  /// Releases `usage` and fills a new array, which the caller frees with delete[]. False, and
  /// `usage` is unchanged, when the header describes no plate of 1 to 32 columns.
  bool GetUsageArray(bool*& usage) const;

  // --- Detectors (Vex2FileManagerDetectors.cpp) ---
  // A detector without a name is reported to the user and left out; that is no failure.

  /// Replaces all detectors; the list stays also when it is empty. 0 or -200.
  [[nodiscard]] int UpdateDetectorList(const Vex2Detector* list, int count);
  /// Adds a detector at the end, in place of one of its name. 0 or -200.
  [[nodiscard]] int AppendDetectorInfo(const Vex2Detector* detector);
  /// False when there is no such detector. The list goes with its last detector.
  bool RemoveDetectorInfo(const CString& name);
  /// -300 without detectors; see `AppendGlobalComplexComp`.
  [[nodiscard]] int AppendDetectorListToFile(const char* path);
  /// 0 with -300 when there is no list.
  [[nodiscard]] int GetNumberOfDetectors(int& count) const;
  /// Releases `list` and fills a new array, which the caller frees with delete[]. An empty list
  /// leaves it as it was. -300 when there is no list.
  [[nodiscard]] int GetDetectorListInfo(Vex2Detector*& list) const;

  // --- Calibration (Vex2FileManagerCalibration.cpp) ---

  /// Replace the calibration or one part of it; a null record removes the part. 0 or -200.
  [[nodiscard]] int ReplaceCalibComponent(const Vex2PureDye* pureDye, const Vex2BGC* background);
  [[nodiscard]] int ReplacePureDye(const Vex2PureDye* record);
  [[nodiscard]] int ReplaceBackground(const Vex2BGC* record);
  /// Replaces the background in memory and in the file at `path`: where a background stands alone
  /// in the file it is overwritten in place, otherwise the whole calibration is appended, also to
  /// a file without a header. -100 when the file cannot be opened for reading, -250 when its
  /// background has another size, -300 when a document ends within a record, -200 when the file
  /// cannot be written; the file is then unchanged.
  [[nodiscard]] int ReplaceBackground(const char* path, const Vex2BGC* record);
  /// Put a component that stands alone in the document, in place of one of its kind, and append it
  /// to the file at `path`. 0 or -200; the document keeps the component.
  [[nodiscard]] int AppendPureDye(const char* path, const Vex2PureDye* record);
  [[nodiscard]] int AppendBackground(const char* path, const Vex2BGC* record);
  /// Removes the parts, with both the calibration itself. -300 when there is none to remove.
  [[nodiscard]] int RemoveCalibComponents(bool pureDye, bool background);
  /// Copies each part that there is into its record, which is made with new where it is null, and
  /// sets its flag to 1, else to 0. -300 without calibration.
  [[nodiscard]] int GetCalibrationInfo(Vex2PureDye*& pureDye, int* hasPureDye, Vex2BGC*& background,
                                       int* hasBackground) const;
  int GetPureDyeCount() const;
  /// Saves header and calibration alone to `path`, as `SaveToFile` does. -300 without calibration,
  /// else 0 or -200.
  [[nodiscard]] int SaveCalibrationInfo(const char* path);

  // --- Required dyes (Vex2FileManagerDyes.cpp) ---

  /// False when the list has the dye. An empty name adds nothing, but makes a list.
  bool AppendRequiredDyenfo(const CString& dye);
  /// Replaces all dyes; the list stays also when it is empty. 0 or -200.
  [[nodiscard]] int UpdateRequiredDyeList(const CString* dyes, int count);
  /// False when there is no such dye. The list goes with its last dye.
  bool RemoveRequiredDyeInfo(const CString& dye);
  /// -300 without a list; see `AppendGlobalComplexComp`.
  [[nodiscard]] int AppendRequiredDyeListToFile(const char* path);
  /// 0 with -300 when there is no list.
  [[nodiscard]] int GetNumberOfRequiredDyes(int& count) const;
  /// As `GetDetectorListInfo`.
  [[nodiscard]] int GetRequiredDyeListInfo(CString*& dyes) const;

  // --- Data blocks (Vex2FileManagerBlocks.cpp) ---

  /// Always 0. In memory only: the header keeps the offset of the block that was removed, also when
  /// the document is saved. Before a commit or `ReplaceAcquisitionDataBlock` on such a file, set
  /// `acquisitionDataOffset` to 0 with `SetHeaderData` and save.
  int RemoveAcquisitionDataBlock(Vex2DataType type);
  /// Replaces the block in memory and in the file at `path`. Raw data must be the file's last
  /// record: everything behind them is cut off. Reporting blocks are rewritten together from the
  /// first of them on. What stood there is replaced only once the new document is on the disk. -100
  /// when the file is no readable document, -200 when it cannot be written, -300 and nothing done
  /// when there is no such type.
  ///
  /// Not for raw data of a file that was saved as a whole: its header holds the offset just past
  /// the block, where this writes, and the old block stays. Use `SaveToFile` there.
  [[nodiscard]] int ReplaceAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data,
                                                Vex2DataType type);

  // --- Frames (Vex2FileManagerFrames.cpp) ---

  /// Gives the block these wells, or makes a block for them. See `AcquisitionDataComp`.
  void InitAcqDataWellNumberArray(const unsigned short* wellNumbers, unsigned short count,
                                  Vex2DataType type);
  /// Appends a frame in memory and commits it, see `CommitAcqDataFrame`.
  ///
  /// Not after the document was saved as a whole: the header then holds the offset just past the
  /// data block, and a commit that trusts it damages the file although it answers 0. Append to the
  /// file that commits alone have written since the block was made, or save what precedes the run
  /// before the first frame.
  [[nodiscard]] int AppendAcquisitionDataFrame(const char* path, const Vex2FrameData* frame,
                                               Vex2DataType type);
  /// Brings a frame that is complete in memory to the file at `path`; when this answers 0 it is on
  /// the disk. Reporting blocks are not written (0). -300 without a block, -100 when the file is no
  /// readable document, -200 when it cannot be written, -260 when there is no such frame. On
  /// failure the file has the length that it had, and the same frame may be tried again. Not so
  /// when the disk failed to store it: from then on this manager refuses all changes of that file
  /// with -200, and tells the user, until a whole document is saved in its place.
  ///
  /// The caller keeps three rules that this does not check. Commit a frame once, in order, and only
  /// when all its wells are set: wells that are not set yet are written as they stand, empty, and
  /// setting them later does not reach the file. Commit no frame of a document that was saved as a
  /// whole after its data block was made, nor after `RemoveAcquisitionDataBlock` and a save: the
  /// header then holds the offset just past the block, so the commit damages the file although it
  /// answers 0.
  [[nodiscard]] int CommitAcqDataFrame(const char* path, int frameIndex, Vex2DataType type);
  /// Sets one well's record in memory; frames are filled in order. False, and nothing changes, for
  /// a well that the block does not have; without a block the user is told, too. Give a frame index
  /// of at most the frame count, which begins the next frame, and a record whose first value is not
  /// 0: the count rises by one with the first such record of a frame, whatever its index. Set in
  /// frame 3 of a block with 2 frames it makes frame 2 count, empty, and is itself not saved.
  bool SetAcqDataWellRecord(const Vex2WellRecord* record, int frameIndex, int wellNumber,
                            Vex2DataType type);
  bool SetAcqDataStartTime(const TimeStamp& time, Vex2DataType type);
  bool SetAcqDataEndTime(const TimeStamp& time, Vex2DataType type);
  bool GetAcqDataStartTime(TimeStamp& time, Vex2DataType type) const;
  bool GetAcqDataEndTime(TimeStamp& time, Vex2DataType type) const;

  /// Copies a frame into `frame`, which may be null. -300 without a block, -260 without the frame.
  [[nodiscard]] int ReadDataFrame(int frameIndex, Vex2FrameData* frame, Vex2DataType type) const;
  bool GetAcqDataWellRecord(Vex2WellRecord* record, int frameIndex, int wellNumber,
                            Vex2DataType type) const;
  bool GetAcqDataWellRecordForWellIndex(Vex2WellRecord* record, int frameIndex, int wellIndex,
                                        Vex2DataType type) const;
  /// Frames that hold the well: all of them, or 0 when the block does not have it.
  int GetDataCntInWell(int wellNumber, Vex2DataType type) const;
  int GetDataFrameCount(Vex2DataType type) const;
  /// Of a plate of this study; of the document itself for a null name.
  int GetDataFrameCountByName(const char* plateName, Vex2DataType type) const;
  int GetWellCount(Vex2DataType type) const;

  /// Straight from a file, which costs the header, the block's head and the frame; the document in
  /// memory stays. A frame index out of range is no error and leaves `frame` as it was.
  [[nodiscard]] int GetDataFrameCount(const char* path, int& count, Vex2DataType type);
  [[nodiscard]] int ReadDataFrame(const char* path, int frameIndex, Vex2FrameData* frame,
                                  Vex2DataType type);

  // --- Acquisition status (Vex2FileManagerStatus.cpp) ---

  CString GetAcquisitionStatus() const;
  /// Exactly four characters; anything else is reported to the user, changes nothing, and is -261.
  [[nodiscard]] int SetAcquisitionStatus(const char* status);
  /// In memory and in the file's header. 0 or -200.
  [[nodiscard]] int SetAcquisitionStatus(const char* path, const char* status);
  bool IsAcquisitionZero() const;
  bool IsAcquisitionProg() const;
  bool IsAcquisitionDone() const;

  // --- Plates of a study (Vex2FileManagerStudy.cpp) ---
  //
  // Plates are known by name: the title of the file that each was added from. Pointers to plates
  // are valid until the plate is removed or the study is reset, read or assigned.

  /// Drops all plates and moves their place to the end of the document. Their names stay taken
  /// until `SyncPlatesWithAnalysisStorageMap`. Always true.
  bool InitMultiplate();
  /// Adds a copy of `plate` under its file's title, see `SplitPath`, and analysis storage for it.
  /// `lastModified` is kept as it is. False, and nothing changes, when the name is taken, which the
  /// analysis storage decides, for null, and where the copy finds no room.
  bool AddRQPlate(const Vex2FileManager* plate, const CString& lastModified);
  /// Removes the plate and its analysis storage. True for every name in a document that holds
  /// plates; otherwise whether there was storage of that name.
  bool RemoveRQPlate(const CString& name);
  /// Empties both lists and fills them with the plates' names and dates, pairwise, in order. False,
  /// and both stay as they were, when the document has no place for plates.
  bool GetMultiPlateList(CStringList& names, CStringList& dates) const;
  int GetRQPlateCount() const;
  int GetNumPlates() const;
  /// The first plate of this name, owned by the study; null when there is none.
  Vex2FileManagerComponent* GetSinglePlatePtrByName(const CString& name) const;
  /// What a plate inside a study knows of its own file: name and date. Kept up to 1023 characters.
  /// Getters leave their argument as it was when there is none. Always 0.
  [[nodiscard]] int AppendPlateName(const CString& name);
  [[nodiscard]] int GetPlateName(CString& name) const;
  [[nodiscard]] int AppendLastModifiedDate(const CString& date);
  [[nodiscard]] int GetLastModifiedDate(CString& date) const;
  /// Makes the document, whatever it was, a plate for studies; in memory only.
  void ConvertAQ2RQ();

  // --- Analysis results (Vex2FileManagerAnalysis.cpp) ---
  //
  // Results live in memory only: of the document itself, and of each plate of a study by its name.
  // What is stored belongs to the document from then on. It is destroyed when it is removed, or
  // with the storage: its own with the document, a plate's with `Reset` too.

  /// Mode 1: new storage for the document itself. Any other: none, and the plates' storage goes,
  /// too. The plate's size; when that is below 1, nothing changes.
  int CreateAnalysisStorage(int mode);
  /// Makes storage for every plate of the study that has none, and destroys what is no plate's.
  void SyncPlatesWithAnalysisStorageMap();

  // Without a name the operations work on the document's own results. A null name means the same;
  // with a `const char*` all but `SetReporterAt` do their work and answer false.
  //
  // Get hands out what is stored, null where nothing is, and answers whether there was anything;
  // for an unknown name the argument stays as it was. Set stores, null included, and destroys
  // nothing: whoever replaces a result has taken the old one back. It is false without storage and
  // for a well that the document's plate does not have. Remove destroys, and is false where nothing
  // was.

  bool GetMCDataAt(IDAMCMatrix*& matrix, int well) const;
  bool GetMCDataAt(const char* plateName, IDAMCMatrix*& matrix, int well) const;
  bool GetMCDataAt(const CString& plateName, IDAMCMatrix*& matrix, int well) const;
  bool SetMCDataAt(IDAMCMatrix* matrix, int well);
  bool SetMCDataAt(const char* plateName, IDAMCMatrix* matrix, int well);
  bool SetMCDataAt(const CString& plateName, IDAMCMatrix* matrix, int well);

  /// Two sets of reporters stand side by side; `second` chooses.
  bool GetReporterAt(IDAClippedMatrix*& matrix, int well, bool second) const;
  bool GetReporterAt(const char* plateName, IDAClippedMatrix*& matrix, int well, bool second) const;
  bool GetReporterAt(const CString& plateName, IDAClippedMatrix*& matrix, int well,
                     bool second) const;
  bool SetReporterAt(IDAClippedMatrix* matrix, int well, bool second);
  bool SetReporterAt(const char* plateName, IDAClippedMatrix* matrix, int well, bool second);
  bool SetReporterAt(const CString& plateName, IDAClippedMatrix* matrix, int well, bool second);
  bool RemoveReporterAt(int well, bool second);
  bool RemoveReporterAt(const char* plateName, int well, bool second);
  bool RemoveReporterAt(const CString& plateName, int well, bool second);

  /// Of the document itself alone.
  bool GetMeltingDataAt(IDAMeltingPoints*& points, int well) const;
  bool SetMeltingDataAt(IDAMeltingPoints* points, int well);
  bool RemoveMeltingDataAt(int well);

  // --- Analysis settings (Vex2FileManagerAnalysisSettings.cpp) ---
  //
  // With what each detector is analysed, and the threshold cycles that came out: of the document
  // itself, for a null plate name, and of each plate of a study. In memory only; `Reset` destroys
  // all of them, those in maps that were handed in included.

  /// Null for a plate without settings. What is handed out stays the document's.
  CAnalysisSettingsDetectorMap* GetAnalysisSettingsDetectorMap(const char* plateName) const;
  CAnalysisSettingsMap* GetAnalysisSettingsMap(const char* plateName) const;
  /// Uses `map` as the plate's settings. The settings in it are the document's from now on; the map
  /// of a plate goes with them, that of the document itself stays the caller's. A map that was
  /// handed in before and is now replaced is the caller's again, with the settings in it. What the
  /// document itself lacks of the plates' detectors, it receives copies of.
  void AddAnalysisSettingsMap(const char* plateName, CAnalysisSettingsMap* map);
  /// Adds settings with the probe's parameters under its name. False, and nothing changes, for a
  /// probe without a name, a plate without settings and a detector that has some.
  bool AddDetectorToAnalysisSettingsMap(const TAGPROBE& probe, const char* plateName);
  /// Destroys the detector's settings. False when there were none.
  bool RemoveDetectorFromAnalysisSettingsMap(const char* detector, const char* plateName);
  /// Null for a null map and for an unknown detector.
  CAnalysisSettings* GetAnalysisSettingsByDetector(const CAnalysisSettingsMap* map,
                                                   const CString& detector) const;
  bool IsAnalysisAvailableFor(const char* plateName, const char* detector) const;
  /// Stores the threshold cycle of a well, numbered from 1, where the detector has settings.
  void SetCtAt(const char* plateName, const char* detector, const float& ct, int well);
  /// `CCtEntry::kNoCt`, which is -999.1, where there is none.
  float GetCtAt(const char* plateName, const char* detector, int well) const;
  /// Destroys the document's own settings; the map stays, empty.
  void ResetGlobalAnalysisSettingsMap();
  /// Destroys the settings of all plates with their maps.
  void ResetAnalysisSettingsPlateMap();
  /// Marks, among the document's own settings, those of the detectors in `list`, which holds
  /// `CNamedObject`s, and no others. False for an empty list.
  bool PrepareQueryList(const CObList& list);

  // --- Plates from files (Vex2FileManagerRQPlates.cpp) ---

  /// Reads a plate that is to join a study, and says in `lastModified` when its file was changed,
  /// in local time, as "Mar 05, 2003 02:07 PM". 0; -50 for a null path or when `choose` is set,
  /// since the chooser for plates always ends as if cancelled; -100 for a file that cannot be
  /// opened; -1 for one that is no document and -2 for one that is not of the kind "Kest", and then
  /// the document stays as it was; otherwise the status of the read.
  [[nodiscard]] int ReadRQPFromFile(CWnd* parent, const char* path, bool choose,
                                    CString& lastModified);
  /// The chooser for plates: shows nothing and answers false, which hosts rely on. See
  /// `ChooseDocumentFile`.
  static bool RQSOpenFile(CWnd* owner, CString& path, CString& folder, const char* filter,
                          const char* initialName, const char* defaultExtension,
                          const char* initialFolder, const char* title, int flag);

  // --- What a plate holds (Vex2FileManagerQueries.cpp) ---
  //
  // Of the raw readings. A study is asked through its plates, in order.

  /// The wells that have readings and how many the fullest one has; in a study, of the first plate
  /// with any.
  void GetPlateDataInfo(int& wellsWithData, int& largestCount) const;
  /// The number of frames, in a study that of the first plate with any; `plateSize` is that of the
  /// last plate that was asked.
  long GetPlateInfo(long& plateSize) const;
  /// How many frames belong to the thermal cycling, and the index of the frame, from 0, that begins
  /// a melting stage, -1 without one. Of the plate of this name, 0 and -1 when there is none; for
  /// null of the first plate of a study, or of the document.
  void FindPCRMeltingParams(const char* plateName, int& pcrFrameCount, int& meltingStart) const;

  // --- Spectra (Vex2FileManagerSpectra.cpp) ---

  /// Fills `spectrum` with the readings of its well in its frame, of the plate of this name or,
  /// when there is none, of the document. In a background document entries 24 to 27 become the
  /// rates of the four groups of readings. False for null, and when there is no such record, and
  /// then `failed` is set and the values stay as they were.
  bool LoadSpectrum(KestorSpectrum* spectrum, const char* plateName) const;

 protected:
  /// Copies header, path and components; what the manager held must be gone.
  void deepCopy(const Vex2FileManager& source);
  /// The same for a manager that exists; where memory runs out, nothing is copied.
  void copyOrStayEmpty(const Vex2FileManager& source);
  /// The first component with this tag, or null. What is found is a position for the next.
  CComponent* includesComponent(std::string_view tag) const;
  /// Deletes the component at the position; nothing happens for null.
  void RemoveComponent(CComponent* position);
  /// The same search with the class; null also when another class stands under the tag.
  template <typename Component>
  Component* find(std::string_view tag) const {
    return dynamic_cast<Component*>(includesComponent(tag));
  }
  void appendComponent(std::unique_ptr<CComponent> component);
  /// Removes the first component with the component's tag and appends the component.
  void replaceComponent(std::unique_ptr<CComponent> component);
  /// The same, and hands out the component, which stays the document's. A search by tag could find
  /// another: documents may hold several components of a kind.
  template <typename Component>
  Component* replaceComponent(std::unique_ptr<Component> component) {
    Component* added = component.get();
    replaceComponent(std::unique_ptr<CComponent>(std::move(component)));
    return added;
  }

  /// Runs an operation in memory. Refusals of the system and memory that runs out become `failure`.
  [[nodiscard]] static int guarded(int failure, vex2::FunctionRef<int()> operation);
  /// Runs an operation that reads or writes files: the first refusal is the last file error, too.
  [[nodiscard]] int attempt(int failure, vex2::FunctionRef<int()> operation);
  /// The same with the file that is open, which is closed afterwards.
  [[nodiscard]] int guardedFile(int failure, vex2::FunctionRef<int()> operation);
  /// Replaces the file at `path` with what `write` puts into the open manager. 0 or the status.
  [[nodiscard]] int saveWhole(const char* path, vex2::FunctionRef<int()> write);
  /// Appends the component to the file at `path`, which need not be readable. 0 or -200; a write
  /// that fails leaves the file's length.
  [[nodiscard]] int appendRecord(const char* path, CComponent& component);
  /// Runs `write` with the position at the open file's end, and closes. -200 when the file is not
  /// trusted; a write that fails leaves the length.
  [[nodiscard]] int appendToOpenFile(vex2::FunctionRef<int()> write);
  /// Opens the file at `path`, runs `look`, then `change` when `look` answers 0, and closes. -100
  /// when the file cannot be read, the status of `look`, -200 when the file cannot be written, or
  /// the status of `change`.
  [[nodiscard]] int changeFile(const char* path, vex2::FunctionRef<int()> look,
                               vex2::FunctionRef<int()> change);

  /// Keeps the first fault of a reading.
  void noteFault(std::uint64_t offset, const char* reason);

  [[nodiscard]] int ReadHeaderDataHelper(Vex2HeaderData& header, CFile* file);
  [[nodiscard]] int WriteHeaderDataHelper(std::uint32_t& headerBytes, CFile* file);
  [[nodiscard]] int UpdateThermocycleOffset(unsigned long offset);
  [[nodiscard]] int UpdateAcqDataOffset(unsigned long offset);
  [[nodiscard]] int WriteThermocycleComp();
  /// Writes the plate setup to the end of the open file. 0, -200 when none is open, -300 when there
  /// is no setup.
  [[nodiscard]] int WritePlateSetupComp();

  [[nodiscard]] int AppendAcquisitionDataBlock(const char* path, const Vex2AcquisitionData* data);
  AcquisitionDataComp* findBlock(Vex2DataType type) const;
  /// The position of the block's tag in the open file, or 0.
  long findReporterCompOffset(Vex2DataType type);
  [[nodiscard]] int readAFrame(int frameIndex, Vex2FrameData* frame, long blockOffset);

  /// The components that a save writes: all of them, but for a study.
  bool isWritten(const CComponent& component) const;

  VexAnalysis* LookupAnalysisPtr(const CString& plateName) const;
  void ResetAnalysisMap();
  // With the storage itself, which may be null; the other overloads come to these. It stands last,
  // so that a null plate name stays a name.
  bool GetMCDataAt(IDAMCMatrix*& matrix, int well, const VexAnalysis* analysis) const;
  bool SetMCDataAt(IDAMCMatrix* matrix, int well, VexAnalysis* analysis);
  bool GetReporterAt(IDAClippedMatrix*& matrix, int well, bool second,
                     const VexAnalysis* analysis) const;
  bool SetReporterAt(IDAClippedMatrix* matrix, int well, bool second, VexAnalysis* analysis);
  bool RemoveReporterAt(int well, bool second, VexAnalysis* analysis);
  CAnalysisSettingsDetectorMap* LookupAnalysisDetectorMapPtr(const char* plateName) const;
  CAnalysisSettings* GetAnalysisSettings(const char* plateName, const char* detector) const;
  void SyncPlateDetectorsWithGlobal();

  Vex2HeaderData header_;
  std::unique_ptr<VexAnalysis> ownAnalysis_;

 private:
  // All that is not the document's own, and its components.
  struct State;

  std::unique_ptr<State> state_;
};
