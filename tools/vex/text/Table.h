#pragma once

#include "lab/text/Table.h"
#include "tools/vex/Lab.h"
