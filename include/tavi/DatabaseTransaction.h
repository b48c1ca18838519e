#pragma once

// Several operations as one, for programs that embed the installed library.
#include "facade/DatabaseTransaction.h"
