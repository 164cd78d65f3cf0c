#ifndef KVBASE_KVBASE_H
#define KVBASE_KVBASE_H

// Every public header of KvBase.
#include "basetypes/enumhelpers.h"
#include "errorhandling/kvexception.h"

#endif
