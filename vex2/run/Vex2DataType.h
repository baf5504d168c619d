#pragma once

#include "vex2/framework/Language.h"

/// Selects a data block. The values are the rows of the blocks' tags in the tag table.
enum Vex2DataType : int {
  DataRAWa = 34,  ///< "RAWa", raw acquisition data
  DataREPr = 42,  ///< "REPr", reporting data
  DataREPn = 43,  ///< "REPn", reporting data
  DataREPd = 44,  ///< "REPd", reporting data
  DataREPt = 45,  ///< "REPt", reporting data
};
