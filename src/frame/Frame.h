#pragma once

// Everything about tables: columns, streams of them, transforms, and how they are written.

#include "Column.h"
#include "Error.h"
#include "Stream.h"
#include "Transforms.h"
#include "Write.h"
