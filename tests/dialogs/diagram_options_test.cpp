#include "dialogs/diagram_options.h"
#include "storage/storage_names.h"
#include "tests/diagrams/diagrams_rig.h"

namespace
{

constexpr auto kLimits = OptionTab::GraphLimits;
constexpr auto kAlarms = OptionTab::Alarms;
constexpr auto kScan = OptionTab::ScanOptions;

class Options : public DiagramsRig
{
protected:
    Options()
    {
        load(live);
        for (const OptionTab tab : {kLimits, kAlarms, kScan})
            options.afiseaza_tab(tab, boxes);
    }

    QStringList errors;
    DiagramOptions options{station, settings, time, 1,
                           [this](const QString &message) { errors += message; }};
    OptionBoxes boxes;
};

} // namespace

TEST(StorageNames, NeverLeaveTheFolder)
{
    const struct {
        const char *typed, *stored;
    } cases[] = {{"date.mdb", "date.mdb"}, {"date", "date.mdb"}, {"date.MDB", "date.MDB.mdb"},
                 {"a.mdb.x", "a.x.mdb"},   {"a,b", "a,b.mdb"},   {"", ".mdb"},
                 {".", "..mdb"},           {"..", "...mdb"},     {"../x", nullptr},
                 {"..\\x", nullptr},       {"C:x", nullptr},     {"a\"", nullptr},
                 {"a*?", nullptr},         {"a?", nullptr},      {"a|b", nullptr},
                 {"<a", nullptr},          {"a>", nullptr}};
    for (const auto &c : cases) {
        EXPECT_EQ(nume_fisier_valid(c.typed), c.stored != nullptr) << c.typed;
        std::array<QString, 4> names{"w", "x", "y", c.typed};
        adauga_extensie_mdb(names);
        EXPECT_TRUE(!c.stored || names[3] == c.stored) << names[3].toStdString();
    }
}

TEST_F(Options, NumbersAreTakenWithCommaOrPointAndInAnyOrder)
{
    boxes.LimInf = "200,25";                  // above the upper limit: any two numbers are accepted
    boxes.LimSup = u"\u00A0-12.5\u2009\r"_qs; // pasted
    EXPECT_TRUE(options.valideaza_tab(kLimits, boxes));
    EXPECT_EQ(boxes.LimInf, "200.25");
    EXPECT_EQ(boxes.LimSup, "-12.5");
    EXPECT_EQ(live.chart(1).valueAxisMinimum(), 200.25);
    EXPECT_EQ(live.chart(1).valueAxisMaximum(), -12.5);
    EXPECT_EQ(live.chart(0).valueAxisMaximum(), 150) << "the other diagram keeps its own";

    for (const char *bad : {"", "abc", "1.2,3", "12 3", "5x", "-1e999"}) {
        boxes.AlarmInf = "3";
        boxes.AlarmSup = bad;
        options.apply(kAlarms, boxes);
        EXPECT_EQ(boxes.AlarmSup, "138") << bad;
        EXPECT_EQ(station.Diagrame[1].alarma_minim, 10) << bad;
        EXPECT_EQ(errors.takeLast(), "Verificati corectitudinea campurilor.");
    }
}

TEST_F(Options, IntervalIsTheNextLowerWholeNumberForBothDiagrams)
{
    const struct {
        const char *typed;
        int interval, error;
    } cases[] = {{"0", 1, 0},          {"0,0", 1, 0},          {"2.7", 2, 0},
                 {"-2,5", -3, 0},      {"32767.9", 32767, 0},  {"-32768", -32768, 0},
                 {"32768", -32768, 6}, {"-32768.5", -32768, 6}};
    boxes.MasuraTimp = 1;
    for (const auto &c : cases) {
        boxes.Scan = c.typed;
        EXPECT_EQ(errorOf([&] { options.valideaza_tab(kScan, boxes); }), c.error) << c.typed;
        for (const Diagrama &diagram : station.Diagrame) {
            EXPECT_EQ(diagram.interval_scanare, c.interval) << c.typed;
            EXPECT_EQ(diagram.masura_interval, 1);
        }
        EXPECT_EQ(station.nextSampling, time.now().addSecs(60LL * c.interval)) << c.typed;
    }
}

TEST_F(Options, RefusedScanOptionsChangeNothingAndSayWhy)
{
    const OptionBoxes good = boxes;
    const auto refuse = [&](auto &&spoil) {
        boxes = good;
        boxes.MasuraTimp = 2;
        spoil();
        EXPECT_FALSE(options.valideaza_tab(kScan, boxes));
        EXPECT_EQ(errors.takeLast(),
                  "Verificati corectitudinea campurilor!\r\n"
                  "Nu folositi in campurile cu valori numerice litere sau simboluri.\r\n"
                  "Nu folositi caracterele  */?\\|:<>\"in numele fisierelor.");
        EXPECT_EQ(station.Diagrame[0].masura_interval, 0);
    };
    refuse([&] { boxes.Scan = "1s"; });
    refuse([&] { boxes.Scan = "1e999"; });
    refuse([&] { boxes.NumeMdb[3] = "../x"; });
    refuse([&] { boxes.MasuraTimp = -1; });
}

TEST_F(Options, AllTabsStopAtTheFirstRefusedOne)
{
    boxes.LimSup = "77";
    boxes.AlarmInf = "x";
    boxes.Scan = "9";
    EXPECT_FALSE(options.applyAll(boxes));
    EXPECT_EQ(errors.size(), 1);
    EXPECT_EQ(live.chart(1).valueAxisMaximum(), 77);
    EXPECT_EQ(station.Diagrame[0].interval_scanare, 1);
    EXPECT_EQ(boxes.AlarmInf, "10");
    EXPECT_EQ(boxes.Scan, "1");
}

TEST_F(Options, SaveWritesTheTabAndRestoreBringsItBack)
{
    boxes.Scan = "5";
    boxes.NumeMdb = {"date", "a,b", "b", "b"};
    options.saveDefaults(kScan, boxes);
    boxes.AlarmInf = "x"; // refused: what is in memory is saved all the same
    options.saveDefaults(kAlarms, boxes);
    const QByteArray saved = folder.config();
    EXPECT_TRUE(saved.startsWith(
        "Diagrama2.alarma_minim =,10\r\nDiagrama2.alarma_maxim =,138\r\n"
        "Diagrama1.interval_scanare =,5\r\nDiagrama2.interval_scanare =,5\r\n"
        "Diagrama1.masura_interval =,0\r\nDiagrama2.masura_interval =,0\r\n"
        "NumeFisier1 =,date.mdb\r\nNumeFisier2 =,a,b.mdb\r\nNumeFisier3 =,b.mdb\r\n"
        "NumeFisier4 =,b.mdb\r\n"))
        << saved.toStdString();

    for (Diagrama &diagram : station.Diagrame)
        diagram.interval_scanare = diagram.masura_interval = 3;
    station.NumeFisier.fill("other");
    station.Diagrame[1].limita_maxima = station.Diagrame[1].alarma_maxim = 1;
    for (const OptionTab tab : {kLimits, kAlarms, kScan})
        options.restoreDefaults(tab, boxes);
    EXPECT_EQ(live.chart(1).valueAxisMaximum(), 150);
    EXPECT_EQ(live.chart(1).columnData(5)[7], 138);
    EXPECT_EQ(live.chart(1).columnData(3)[7], 0) << "the readings stay";
    for (const Diagrama &diagram : station.Diagrame) {
        EXPECT_EQ(diagram.interval_scanare, 5);
        EXPECT_EQ(diagram.masura_interval, 0);
    }
    EXPECT_EQ(boxes.MasuraTimp, 0);
    EXPECT_EQ(boxes.NumeMdb, (std::array<QString, 4>{"date.mdb", "a", "b.mdb", "b.mdb"}));
    EXPECT_EQ(folder.config(), saved);
}

TEST_F(Options, RestoreOfALackingTabKeepsTheRunningOne)
{
    folder.setConfig(folder.config().replace("Diagrama2.alarma_maxim =", "gone ="));
    folder.setValue("Diagrama2.alarma_minim =", "99");
    options.restoreDefaults(kAlarms, boxes);
    EXPECT_EQ(op.told, QStringList{"Eroare in /config/config.ini"});
    EXPECT_EQ(station.Diagrame[1].alarma_minim, 10) << "half a tab is no tab";

    folder.setValue("Diagrama2.masura_interval =", "99999");
    folder.setValue("Diagrama1.interval_scanare =", "7");
    EXPECT_EQ(errorOf([&] { options.restoreDefaults(kScan, boxes); }), RuntimeError::Overflow);
    EXPECT_EQ(station.Diagrame[0].interval_scanare, 1);
}
