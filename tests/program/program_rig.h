#pragma once

#include "app/main_menu.h"
#include "jet/database.h"
#include "program/program.h"
#include "storage/storage_file.h"
#include "storage/tabel.h"
#include "tests/support/controls.h"
#include "tests/support/fake_desktop.h"
#include "tests/support/fake_operator.h"
#include "tests/support/joined_line.h"
#include "tests/support/station_folder.h"
#include "tests/support/test_time.h"
#include "tools/trm10c_simulator/recorder_simulation.h"

#include <QMenuBar>

/// The whole program on a simulated recorder: real windows, real line, real files.
class ProgramRig : public ::testing::Test
{
protected:
    ProgramRig()
    {
        createStorageFile(storagePath(), clock.now());
        folder.setValue("ControlPlc.CommPort =", '"' + joined.stationPort.toUtf8() + '"');
        // No time between samples: the tests wait for records, not for the clock.
        folder.setValue("Diagrama1.interval_scanare =", "0");
    }

    void start()
    {
        program = std::make_unique<Program>(
            Program::Environment{folder.path(), QLocale(QLocale::Romanian), clock, op, shell,
                                 printers, [this] { ++ends; }});
        QObject::connect(program.get(), &Program::sampleStored, [this](int id) { lastId = id; });
        program->start();
    }

    /// Starts the program and its monitoring, and waits for the first samples.
    void monitor(int samples)
    {
        start();
        hit(Qt::Key_F1);
        EXPECT_TRUE(reaches(samples));
    }

    QString storagePath() const { return folder.path() + QStringLiteral("/mdb/autoclava1.mdb"); }
    template <typename Widget>
    Widget *child(const char *name)
    {
        return program->window().findChild<Widget *>(QString::fromLatin1(name));
    }
    QAction *item(const char *name)
    {
        return menuItem(*program->window().menuBar(), QString::fromLatin1(name));
    }
    void hit(Qt::Key key) { QTest::keyClick(child<QWidget>("Form1"), key); }
    bool reaches(int id)
    {
        return QTest::qWaitFor([&] { return lastId >= id; }, 60'000);
    }
    std::uint32_t storedRecords() const
    {
        const jet::Database database =
            jet::Database::open(nativePath(storagePath()), {.readOnly = true});
        EXPECT_TRUE(database.check().empty());
        return database.table(tabel::kName).recordCount();
    }

    TestTime clock;
    QObject timers;
    QtScheduler scheduler{timers};
    StationFolder folder;
    JoinedLine joined = joinLine();
    RecorderSimulation recorder{RecorderSettings{}, *joined.recorderEnd, clock, scheduler};
    FakeOperator op;
    FakeShell shell;
    FakePrinters printers;
    std::unique_ptr<Program> program;
    int lastId = 0;
    int ends = 0;
};
