#pragma once

#include "jet/error.h"
#include "jet/value.h"

namespace jet
{

[[noreturn]] inline void throwTypeConversion()
{
    throw Error(ErrorCode::TypeConversion, "Data type conversion error.");
}

[[noreturn]] inline void throwValueTooLong()
{
    throw Error(ErrorCode::ValueTooLong,
                "The field is too small to accept the amount of data you attempted to add.");
}

/// The held alternative. Throws Error(TypeConversion) when the value holds another one.
template <typename Alternative>
const Alternative &valueAs(const Value &value)
{
    if (const auto *held = std::get_if<Alternative>(&value))
        return *held;
    throwTypeConversion();
}

} // namespace jet
