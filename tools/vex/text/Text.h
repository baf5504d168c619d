#pragma once

#include "lab/Text.h"
#include "lab/text/Columns.h"
#include "tools/vex/Lab.h"
