#include "manual_example.h" // the code of docs/jet-engine.md, made from it by CMake

#include "tests/jet/sample_database.h"

#include <gtest/gtest.h>

namespace jet
{
namespace
{

TEST(Example, OfTheManualWorks)
{
    const TemporaryFolder folder;
    testing::internal::CaptureStdout();
    storeReadings(folder / "readings.mdb", kSomeDay);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "134.25\n121.5\n");
    EXPECT_EQ(mdbExport(folder / "readings.mdb", "Readings"), "1,121.5\n2,134.25\n");
}

} // namespace
} // namespace jet
