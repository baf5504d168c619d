#pragma once

#include <cstdint>
#include <string_view>

#include "vex2/framework/CFile.h"
#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"

/// One record of a document: a four-character tag, a 32-bit body length and a body. `length` is the
/// value of the record's length field. Operations that change a component keep it equal to the
/// number of bytes that `WriteBody` writes, unless their comment says otherwise. The binary
/// interface fixes the order of the virtual operations. Reading and writing throw only the
/// `CFileException` of the file, if the system refuses a read or a write. Components are not
/// thread-safe; different components are independent.
class VEX2_API CComponent : public CObject {
 public:
  /// `tag` is truncated to four characters, or padded with spaces.
  explicit CComponent(std::string_view tag, std::uint32_t length = 0);
  CComponent(const CComponent&) = delete;
  CComponent& operator=(const CComponent&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();

  /// Copies the content of `source` if it has the same tag; otherwise does nothing.
  virtual CComponent& Assign(const CComponent& source);

  /// Reads the record at the file position: tag, length and body. Returns -100 for a null file,
  /// -300 if tag and length cannot be read or the record is nested too deep; `counter` is then
  /// unchanged. Otherwise returns the status of the body, and adds the result of `GetSize()` to
  /// `counter`, even if the body could not be read. After a failure the component is partly filled
  /// and must not be used.
  virtual int Read(CFile* file, std::uint32_t& counter);
  /// Reads the record at the file position: tag, length and body. Returns -100 for a null file,
  /// -300 if tag and length cannot be read or the record is nested too deep, otherwise the status
  /// of the body. After a failure the component is partly filled and must not be used.
  virtual int Read(CFile* file);

  /// Writes the record at the file position. Returns 0, or -200 for a null file; ignores the status
  /// of `WriteBody`.
  virtual int Write(CFile* file);

  /// The size of the whole record in the file, in bytes: the body length plus 8.
  virtual std::uint64_t GetSize() const;

  /// Allocates memory for the body, in classes whose body needs memory.
  virtual void AllocateBody();
  /// Releases the memory of the body, in classes whose body needs memory.
  virtual void FreeBody();

  /// Whether this is the plate setup of a document.
  virtual bool IsPlateSetupComp() const;
  /// Whether this is the thermal cycling program of a document.
  virtual bool IsThermocycleComp() const;

  /// The text, if the component holds one; otherwise the empty text.
  virtual CString GetValueString();

  /// Writes the body. Returns a negative status if the component has no body to write.
  virtual int WriteBody(CFile* file);
  /// Reads the body of `GetLength()` bytes. Returns 0, or the status of the first failure.
  virtual int ReadBody(CFile* file);

  /// The four characters of the tag; valid as long as the component.
  std::string_view GetTag() const { return {tag_, sizeof tag_}; }
  /// The length of the body in bytes, as in the record's length field.
  std::uint32_t GetLength() const { return length_; }

 protected:
  /// Sets the body length, in bytes, that `GetLength` returns.
  void setLength(std::uint32_t length) { length_ = length; }
  /// Sets the tag. Only the placeholder calls this, to take the tag of the record that it
  /// represents.
  void setTag(std::string_view tag);

 private:
  char tag_[4] = {};
  std::uint32_t length_ = 0;
};
