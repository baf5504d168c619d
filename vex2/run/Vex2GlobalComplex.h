#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// The run-wide settings as callers pass them. Owns the bytes of its three texts. Applications
/// define the units and meaning of `unitCode`, `ftrd`, `drks` and the log.
struct VEX2_API Vex2GlobalComplex {
  std::uint32_t version = 512;                   ///< of the settings, stored unchanged
  std::uint8_t* commentData = nullptr;           ///< characters without a terminator
  std::uint32_t commentLength = 0;               ///< bytes
  std::uint16_t sampleVolume = 0;                ///< as stored; applications define the unit
  std::uint8_t* passiveReferenceData = nullptr;  ///< the dye's name without a terminator
  std::uint32_t passiveReferenceLength = 0;      ///< bytes
  std::uint16_t unitCode = 1;                    ///< stored unchanged
  std::int32_t ftrd = 0;                         ///< documents keep the low byte
  std::int32_t drks = 0;                         ///< documents keep the low byte
  std::int32_t preFlag = 0;                      ///< the pre-run flag; documents keep the low byte
  std::int32_t postFlag = 0;                     ///< the post-run flag; documents keep the low byte
  std::uint8_t* logData = nullptr;               ///< bytes, stored unchanged
  std::uint32_t logLength = 0;                   ///< bytes

  Vex2GlobalComplex() = default;
  Vex2GlobalComplex(const Vex2GlobalComplex&) = delete;
  Vex2GlobalComplex& operator=(const Vex2GlobalComplex&) = delete;
  ~Vex2GlobalComplex();

  /// Copies `length` bytes of the comment into a buffer that the record owns, with a spare byte at
  /// the end. Allocates a new buffer if the length changes. If `data` is null, sets only the
  /// length; a new buffer then holds zeros.
  void SetComment(const void* data, std::uint32_t length);
  /// Copies `length` bytes of the dye's name into a buffer that the record owns, with a spare byte
  /// at the end. If `data` is null, sets only the length; a new buffer then holds zeros.
  void SetPassiveReference(const void* data, std::uint32_t length);
  /// Copies the name of the dye into a buffer that the record owns, with a spare byte at the end.
  void SetPassiveReference(const CString& name);
  /// Copies `length` bytes of the log into a buffer that the record owns, deliberately without a
  /// spare byte. If `data` is null, sets only the length; a new buffer then holds zeros.
  void SetLog(const void* data, std::uint32_t length);
};
