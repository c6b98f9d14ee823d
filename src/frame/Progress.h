#pragma once

// The display that ReadOptions::progress takes.

#include "../support/Session.h"
