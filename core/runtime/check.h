// Internal: the assertion-style check every library source uses.
#ifndef ORVANE_CORE_RUNTIME_CHECK_H
#define ORVANE_CORE_RUNTIME_CHECK_H

#include "coreassert.h"

// The build defines CORE_SOURCE_NAME as "Core/<file>" for every library source.
#ifndef CORE_SOURCE_NAME
#define CORE_SOURCE_NAME "Core/unknown"
#endif

// Reports `text` (the condition as the report spells it) through MyAssertFailedLine when
// `condition` is false. Execution continues afterwards if the host's abort hook returns.
#define CORE_CHECK(condition, text) \
    ((condition) ? static_cast<void>(0) : MyAssertFailedLine(text, CORE_SOURCE_NAME, __LINE__))

#endif
