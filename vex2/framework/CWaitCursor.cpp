#include "vex2/framework/CWaitCursor.h"

#include "vex2/framework/Host.h"

CWaitCursor::CWaitCursor() : host_(vex2::GetHost()) {
  host_->BeginWait();
}

CWaitCursor::~CWaitCursor() {
  host_->EndWait();
}
