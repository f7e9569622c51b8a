/* ktclr: color conversion and ICC profiles. Umbrella header. */
#ifndef KTCLR_H
#define KTCLR_H

#include "ktclr/export.h"
#include "ktclr/status.h"
#include "ktclr/colorspace.h"
#include "ktclr/convert.h"
#include "ktclr/embedded.h"
#include "ktclr/icc.h"
#include "ktclr/storage.h"
#include "ktclr/bitmap.h"
#include "ktclr/narrow.h"
#include "ktclr/dialog.h"

#endif
