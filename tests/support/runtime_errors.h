#pragma once

#include "platform/runtime_error.h"

/// The number of the RuntimeError that a call throws, 0 when it throws none.
template <typename Call>
int errorOf(Call call)
{
    try {
        call();
    } catch (const RuntimeError &error) {
        return error.number();
    }
    return 0;
}
