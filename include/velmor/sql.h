// Umbrella header: every public header of velmor-sql.
#pragma once

#include <velmor/sql/Assert.h>
#include <velmor/sql/Export.h>
