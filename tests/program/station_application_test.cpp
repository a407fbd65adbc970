#include "platform/runtime_error.h"
#include "program/station_application.h"
#include "tests/support/windows_main.h"

#include <QTimer>
#include <cstdio>
#include <gmock/gmock.h>

// The program ends in these tests: each runs in a process of its own.

using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

TEST(StationApplication, FailureThatNobodyCaughtHaltsTheProgramIsShownAndEndsIt)
{
    auto &application = static_cast<StationApplication &>(*QCoreApplication::instance());
    QObject::connect(&application, &StationApplication::failing,
                     [] { std::fputs("halted\n", stderr); });
    application.showReport = [&](const QString &report) {
        std::fprintf(stderr, "shown: %s\n", qUtf8Printable(report));
        // Of a handler that runs behind the report.
        application.guard([] { throw RuntimeError(RuntimeError::DiskFull); });
    };
    const auto report = HasSubstr("halted\nshown: Run-time error '53':");
    EXPECT_EXIT(application.guard([] { throw RuntimeError(RuntimeError::FileNotFound); }),
                ExitedWithCode(1), report);
    QTimer::singleShot(0, [] { throw RuntimeError(RuntimeError::FileNotFound); });
    EXPECT_EXIT(QCoreApplication::processEvents(), ExitedWithCode(1), report);
    EXPECT_EXIT(application.guard([] { throw std::bad_alloc(); }), ExitedWithCode(1),
                HasSubstr("Run-time error '7':"));
}

int main(int argc, char **argv)
{
    return runWindowTests<StationApplication>(argc, argv);
}
