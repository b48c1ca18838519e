#pragma once

// The public class of TaviMembership, for programs that embed the installed library.
#include "facade/MembershipDatabase.h"
