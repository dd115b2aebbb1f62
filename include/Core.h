// Orvane Core: every exported header of libCore.so.
#ifndef ORVANE_CORE_H
#define ORVANE_CORE_H

#include "coreapi.h"
#include "coreplatform.h"

#include "animclock.h"
#include "corearray.h"
#include "coreassert.h"
#include "coreinterface.h"
#include "corerandom.h"

#include "cangleaxis.h"
#include "cbitarray.h"
#include "ccolor.h"
#include "cfixed.h"
#include "cmatrix4.h"
#include "cpoint.h"
#include "cquat.h"

#include "cio.h"
#include "ciofields.h"

#endif
