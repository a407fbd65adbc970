#pragma once

#include "jet/error.h"

#include <string>

namespace jet
{

/// A place in the file where something is wrong.
struct Finding {
    PageNo page = 0;
    std::string reason;
    bool isLostSpace = false; ///< no damage: the page counts as used, but nothing uses it
};

} // namespace jet
