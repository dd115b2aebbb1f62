// Orvane Core: every exported header of libCore.so.
#ifndef ORVANE_CORE_H
#define ORVANE_CORE_H

#include "coreapi.h"
#include "coreglcontext.h"
#include "corepanel.h"
#include "coreplatform.h"
#include "pictolib.h"

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
#include "projectheader.h"

#include "canim.h"
#include "cparamanim.h"

#include "adjacency.h"
#include "ccamera.h"
#include "clight.h"
#include "clusters.h"
#include "cmesh.h"
#include "cnode.h"
#include "cscene.h"
#include "cskin.h"
#include "ik.h"
#include "mtllist.h"
#include "nodelist.h"
#include "projectfile.h"
#include "rsorter.h"
#include "triangulate.h"

#include "cimage.h"
#include "cmaterial.h"

#include "cinterface.h"
#include "undo.h"

#include "cgfx.h"
#include "oglext.h"
#include "texwindow.h"

#endif
