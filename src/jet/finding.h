#pragma once

#include "jet/error.h"

#include <string>

namespace jet
{

/// A place in the file where something is wrong.
struct Finding {
    PageNo page = 0;
    std::string reason;
    bool isLostSpace = false; ///< all that is wrong is that nobody uses the page
};

} // namespace jet
