#ifndef KVBASE_KVBASE_H
#define KVBASE_KVBASE_H

// Every public header of KvBase.
#include "kvbase_version.h"

#include "basetypes/band.h"
#include "basetypes/bandgsm.h"
#include "basetypes/clock.h"
#include "basetypes/enumhelpers.h"
#include "basetypes/gsm.h"
#include "basetypes/numberhelpers.h"
#include "basetypes/timestamp2qstring.h"
#include "basetypes/units.h"
#include "coord/coord.h"
#include "coord/maskconverter.h"
#include "coord/merccoordtrans.h"
#include "coord/swedishgrids.h"
#include "coord/utm.h"
#include "errorhandling/errorhandler.h"
#include "errorhandling/kvexception.h"
#include "errorhandling/kvtextfile.h"
#include "errorhandling/messagelist.h"
#include "errorhandling/quality.h"
#include "errorhandling/timedcall.h"
#include "jsonwebtoken/content.h"
#include "jsonwebtoken/contentserializer.h"
#include "jsonwebtoken/enums.h"
#include "jsonwebtoken/header.h"
#include "jsonwebtoken/payload.h"
#include "jsonwebtoken/token.h"
#include "observableobserver/observable.h"
#include "qthelpers/qurlhelpers.h"
#include "qthelpers/signaldelayer.h"
#include "qthelpers/signalhandler.h"

#endif
