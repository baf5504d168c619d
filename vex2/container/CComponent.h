#pragma once

#include <cstdint>
#include <string_view>

#include "vex2/framework/CFile.h"
#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"

/// One record of a document: a four-character tag, a 32-bit body length and a body.
///
/// `length` is what stands in the record's length field. Operations that change a component keep
/// it equal to what `WriteBody` writes, but for the cases that say otherwise.
///
/// The virtual operations stand in the order that the binary interface fixes. Reading and writing
/// throw nothing of their own; `CFileException` passes through when the system refuses a read or
/// a write. Components are not thread-safe; different components are independent.
class VEX2_API CComponent : public CObject {
 public:
  /// `tag` is cut to four characters, and filled up with blanks.
  explicit CComponent(std::string_view tag, std::uint32_t length = 0);
  CComponent(const CComponent&) = delete;
  CComponent& operator=(const CComponent&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();

  /// Takes over the content of `source` when that has the same tag; otherwise does nothing.
  virtual CComponent& Assign(const CComponent& source);

  /// Reads the record at the file's position: header and body. Adds the size of the record as it
  /// is held afterwards to `counter`, also when the body failed. A null file gives -100, a header
  /// that cannot be read -300, and so does a record that stands too deep. After a failure the
  /// component is partly filled and of no use.
  virtual int Read(CFile* file, std::uint32_t& counter);
  /// The same without a counter.
  virtual int Read(CFile* file);

  /// Writes the record at the file's position. 0, or -200 for a null file; what the body's writer
  /// answers is not passed on.
  virtual int Write(CFile* file);

  /// Bytes of the whole record on disk: its length and 8 more.
  virtual std::uint64_t GetSize() const;

  /// Make and drop the memory behind the body, in the families that have any.
  virtual void AllocateBody();
  virtual void FreeBody();

  virtual bool IsPlateSetupComp() const;
  virtual bool IsThermocycleComp() const;

  /// The text of a component that holds one; empty otherwise.
  virtual CString GetValueString();

  /// Writes the body. A negative status when there is nothing to write from.
  virtual int WriteBody(CFile* file);
  /// Reads the body of `GetLength()` bytes: 0, or the status of what failed first.
  virtual int ReadBody(CFile* file);

  /// The four characters of the tag; valid for as long as the component.
  std::string_view GetTag() const { return {tag_, sizeof tag_}; }
  /// Bytes of the body as the length field has them.
  std::uint32_t GetLength() const { return length_; }

 protected:
  void setLength(std::uint32_t length) { length_ = length; }
  /// For the placeholder alone, which takes the tag of what it stands for.
  void setTag(std::string_view tag);

 private:
  char tag_[4] = {};
  std::uint32_t length_ = 0;
};
