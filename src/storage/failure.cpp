#include "storage/failure.h"
#include "jet/error.h"
#include "platform/runtime_error.h"

Failure currentFailure()
{
    try {
        throw;
    } catch (const jet::Error &error) {
        return {error.number(), QString::fromUtf8(error.what())};
    } catch (const RuntimeError &error) {
        return {error.number(), error.description()};
    }
}

std::optional<Failure> attempt(const std::function<void()> &action)
{
    try {
        action();
    } catch (...) {
        return currentFailure();
    }
    return std::nullopt;
}
