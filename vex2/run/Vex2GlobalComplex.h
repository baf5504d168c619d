#pragma once

#include <cstdint>

#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"

/// The run-wide settings that travel together, as a caller exchanges them. Owns its three blocks.
/// Units and meaning of `unitCode`, `ftrd`, `drks` and the log belong to the applications.
struct VEX2_API Vex2GlobalComplex {
  std::uint32_t version = 512;
  std::uint8_t* commentData = nullptr;  ///< characters without a terminator
  std::uint32_t commentLength = 0;      ///< bytes
  std::uint16_t sampleVolume = 0;
  std::uint8_t* passiveReferenceData = nullptr;  ///< the dye's name without a terminator
  std::uint32_t passiveReferenceLength = 0;      ///< bytes
  std::uint16_t unitCode = 1;
  std::int32_t ftrd = 0;  ///< of this and the next three, a document keeps the low byte
  std::int32_t drks = 0;
  std::int32_t preFlag = 0;
  std::int32_t postFlag = 0;
  std::uint8_t* logData = nullptr;
  std::uint32_t logLength = 0;  ///< bytes

  Vex2GlobalComplex() = default;
  Vex2GlobalComplex(const Vex2GlobalComplex&) = delete;
  Vex2GlobalComplex& operator=(const Vex2GlobalComplex&) = delete;
  ~Vex2GlobalComplex();

  /// Copy `length` bytes into the record's own block, which is made anew when the length changes.
  /// With a null `data` the block has the length, and zeros where it was made anew. The comment's
  /// and the passive reference's block has a spare byte behind it; the log's deliberately not.
  void SetComment(const void* data, std::uint32_t length);
  void SetPassiveReference(const void* data, std::uint32_t length);
  void SetPassiveReference(const CString& name);
  void SetLog(const void* data, std::uint32_t length);
};
