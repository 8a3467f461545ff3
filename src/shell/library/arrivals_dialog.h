// What comes in, shown ahead: what is new, the same or another one, and what becomes of each. Graphical thread only.
#pragma once

#include "telling/user_interface.h"

namespace numalink {

void askArrivals(ArrivalsQuestion &question);

}  // namespace numalink
