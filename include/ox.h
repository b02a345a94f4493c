/* The array library: everything with C linkage. C99 and C++17. One thread calls it, no other. */
#ifndef OX_H
#define OX_H

#include <ox/array_list.h>
#include <ox/assign.h>
#include <ox/catenate.h>
#include <ox/cells.h>
#include <ox/classes.h>
#include <ox/compare.h>
#include <ox/compat.h>
#include <ox/convert.h>
#include <ox/create.h>
#include <ox/errors.h>
#include <ox/levels.h>
#include <ox/memory.h>
#include <ox/module.h>
#include <ox/names.h>
#include <ox/permute.h>
#include <ox/predicates.h>
#include <ox/reference.h>
#include <ox/serialize.h>
#include <ox/sharing.h>
#include <ox/sparse.h>
#include <ox/stream.h>
#include <ox/structs.h>
#include <ox/subscripts.h>
#include <ox/text.h>
#include <ox/types.h>
#include <ox/warnings.h>

#endif
