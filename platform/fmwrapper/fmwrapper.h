// The interface between the database application and its plug-ins, in one inclusion.
//
// Functions FM_* are exported by the process that loads the plug-in. The classes of namespace fmx
// are thin: a member calls the flat function of the same name and turns its error record into an
// exception. Their objects are made and deleted by the host and reached by pointer or reference.
#pragma once

#include "platform/fmwrapper/binary_data.h"
#include "platform/fmwrapper/call_block.h"
#include "platform/fmwrapper/data.h"
#include "platform/fmwrapper/error.h"
#include "platform/fmwrapper/expression.h"
#include "platform/fmwrapper/number.h"
#include "platform/fmwrapper/owner.h"
#include "platform/fmwrapper/quad_char.h"
#include "platform/fmwrapper/text.h"
