#include "jet/file/file.h"

#include "jet/error.h"

#include <algorithm>
#include <thread>

namespace jet
{
namespace
{

template <typename Attempt>
bool retry(Attempt attempt, std::chrono::milliseconds timeout)
{
    // Locks are held for milliseconds, so the first retries follow quickly.
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + timeout;
    auto pause = 1ms;
    while (!attempt()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, 16ms);
    }
    return true;
}

} // namespace

std::string displayName(const std::filesystem::path &path)
{
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

void throwFileNotFound(const std::filesystem::path &path)
{
    throw Error(ErrorCode::FileNotFound, "Could not find file '" + displayName(path) + "'.");
}

void throwFileExists(const std::filesystem::path &path)
{
    throw Error(ErrorCode::FileExists, "Database '" + displayName(path) + "' already exists.");
}

std::filesystem::path lockPath(std::filesystem::path database)
{
    return database.replace_extension(".ldb");
}

bool File::lock(LockPart part, LockMode mode, std::chrono::milliseconds timeout)
{
    return retry([&] { return tryLock(part, mode); }, timeout);
}

bool LockFile::lock(LockMode mode, std::chrono::milliseconds timeout)
{
    return retry([&] { return tryLock(mode); }, timeout);
}

} // namespace jet
