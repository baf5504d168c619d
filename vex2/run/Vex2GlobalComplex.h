#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// The run-wide settings as callers pass them. Owns the bytes of its three texts. Applications
/// define the units and meaning of `unitCode`, `ftrd`, `drks` and the log.
struct VEX2_API Vex2GlobalComplex {
  std::uint32_t version = 512;
  std::uint8_t* commentData = nullptr;  ///< characters without a terminator
  std::uint32_t commentLength = 0;      ///< bytes
  std::uint16_t sampleVolume = 0;
  std::uint8_t* passiveReferenceData = nullptr;  ///< the dye's name without a terminator
  std::uint32_t passiveReferenceLength = 0;      ///< bytes
  std::uint16_t unitCode = 1;
  std::int32_t ftrd = 0;  ///< documents keep only the low byte of this and the next three
  std::int32_t drks = 0;
  std::int32_t preFlag = 0;
  std::int32_t postFlag = 0;
  std::uint8_t* logData = nullptr;
  std::uint32_t logLength = 0;  ///< bytes

  Vex2GlobalComplex() = default;
  Vex2GlobalComplex(const Vex2GlobalComplex&) = delete;
  Vex2GlobalComplex& operator=(const Vex2GlobalComplex&) = delete;
  ~Vex2GlobalComplex();

  /// Copy `length` bytes into a buffer that the record owns, which is allocated again if the length
  /// changes. If `data` is null, only the length is set, and a new buffer holds zeros. The buffers
  /// of comment and passive reference have a spare byte at the end; the buffer of the log
  /// deliberately has none.
  void SetComment(const void* data, std::uint32_t length);
  void SetPassiveReference(const void* data, std::uint32_t length);
  void SetPassiveReference(const CString& name);
  void SetLog(const void* data, std::uint32_t length);
};
