// Kept for hosts that include the error classes from here: they live in errors/ now.
#pragma once

#include <velmor/sql/errors/SemanticErrors.h>
