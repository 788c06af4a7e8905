#pragma once

// The whole library for a host. Start with evaluador.h.

#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/convert.h"
#include "tovalin/dispatch.h"
#include "tovalin/error.h"
#include "tovalin/event.h"
#include "tovalin/factory.h"
#include "tovalin/locale.h"
#include "tovalin/object.h"
#include "tovalin/settings.h"
#include "tovalin/text.h"
#include "tovalin/variant.h"
