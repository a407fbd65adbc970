#include "app/settings/chart_settings.h"
#include "diagrams/history_date.h"
#include "jet/file/file.h"
#include "platform/file_date.h"
#include "platform/runtime_error.h"
#include "storage/storage_names.h"
#include "tests/diagrams/history_rig.h"

#include <QFile>
#include <cmath>

TEST(HistoryDate, DaysAreReadAsThePromptAsksForThem)
{
    const QLocale romanian(QLocale::Romanian);
    const QLocale american(QLocale::English, QLocale::UnitedStates);
    using Case = std::tuple<const char *, QLocale, QDate>;
    for (const auto &[text, locale, date] :
         std::initializer_list<Case>{Case{"07.03.2026", romanian, {2026, 3, 7}},
                                     {" 7/3/26 ", american, {2026, 3, 7}},
                                     {"07-03-2026", QLocale(QLocale::Swedish), {2026, 3, 7}},
                                     {"2026-03-07", QLocale(QLocale::Swedish), {2026, 3, 7}},
                                     {"12/31/1999", american, {1999, 12, 31}},
                                     {"7 Mar 2026", QLocale::c(), {2026, 3, 7}},
                                     {"07 03 2026", QLocale::c(), {2026, 3, 7}},
                                     {"1.1.30", romanian, {1930, 1, 1}},
                                     {"29.02.2026", romanian, {}},
                                     {"07.03", romanian, {}},
                                     {"azi", romanian, {}},
                                     {"", romanian, {}},
                                     {"07.03.2026x", romanian, {}}})
        EXPECT_EQ(typedDate(QString::fromUtf8(text), locale).value_or(QDate()), date) << text;
    EXPECT_EQ(archiveName(fileDate({2026, 3, 7}), "a%1.mdb"), "arh_07.03.2026_a%1.mdb");

    const QDate today(2026, 11, 21);
    EXPECT_EQ(dateSeparator(today, romanian), ".");
    EXPECT_EQ(dateSeparator(today, american), "/");
    EXPECT_EQ(dateSeparator(today, QLocale(QLocale::Swedish)), "-");
    EXPECT_EQ(dateSeparator(today, QLocale::c()), ".") << "21 Nov 2026 has none of numbers";
}

namespace
{

class HistoryDiagramsTest : public HistoryRig
{
protected:
    void expectCleared()
    {
        for (const std::size_t i : {0u, 1u}) {
            EXPECT_EQ(history.chart(i).rowCount(), kStationRows);
            EXPECT_EQ(valueAt(history.chart(i), 1, 60), station.Diagrame[i].limita_minima);
        }
        EXPECT_EQ(history.chartWidths()[0], 0);
    }
    void expectDay(int samples)
    {
        for (int row = 1; row <= samples; ++row)
            for (int column = 1; column <= 3; ++column) {
                EXPECT_EQ(valueAt(history.chart(0), column, row), reading(column, row));
                EXPECT_EQ(valueAt(history.chart(1), column, row), reading(column + 3, row));
            }
        EXPECT_EQ(history.chart(1).rowCount(), samples);
    }
    /// The number before the description.
    int failure() { return history.genereaza_diagrame({kArchive}).section(' ', 0, 0).toInt(); }
};

} // namespace

TEST_F(HistoryDiagramsTest, LoadTakesLimitsAndNamesFromTheSettings)
{
    folder.setValue("Istoric.Diagrama1.limita_maxima =", "99.5 grade");
    folder.setValue("Istoric.Diagrama2.limita_minima =", "");
    folder.setValue("Istoric.Diagrama2.limita_maxima =", "-4");
    station.Diagrame[1].Nume[2] = "Usa";
    history.load();
    EXPECT_EQ(history.chart(0).valueAxisMaximum(), 99.5);
    EXPECT_EQ(history.chart(1).valueAxisMinimum(), 0);
    EXPECT_EQ(history.chart(1).valueAxisMaximum(), -4);
    EXPECT_EQ(history.chart(1).columnLabelOf(3), "Usa");
    EXPECT_EQ(history.chart(1).columnLabelOf(4), "AL");
    expectCleared();

    folder.setConfig(folder.config().replace("Istoric.Diagrama2.limita_minima =", "gone ="));
    folder.setValue("Istoric.Diagrama1.limita_minima =", "7");
    folder.setValue("Istoric.Diagrama2.limita_maxima =", "8");
    history.load();
    EXPECT_EQ(op.told, QStringList{"Eroare in /config/config.ini"});
    EXPECT_EQ(history.chart(0).valueAxisMinimum(), 7) << "before the missing key";
    EXPECT_EQ(history.chart(1).valueAxisMaximum(), -4) << "behind it";
}

TEST_F(HistoryDiagramsTest, ForeignTablesShowTheSameDayWithThePresentAlarmLimits)
{
    // Other order, other types, no Id for the last ones; records not in the order of their Id.
    jet::TableDesign table = tabel::design();
    std::swap(table.columns[1], table.columns[8]);
    table.columns[2].type = jet::ColumnType::Text;
    table.columns[2].size = 20;
    table.columns[3].type = jet::ColumnType::Currency;
    table.columns[8] = {u"Nota", jet::ColumnType::Memo};
    table.columns.push_back({u"Senzor1", jet::ColumnType::Double});
    table.columns[1] = {u"Data", jet::ColumnType::Text, 10};
    std::vector<jet::Assignments> records;
    for (const int id : {3, 1, 2}) {
        records.push_back(usualRecord(id));
        records.back()[1].second = jet::Text(u"07.03.2026");
    }
    writeArchive(table, records);
    station.Diagrame[0].alarma_minim = 31;
    station.Diagrame[1].alarma_maxim = 77;
    history.load();
    EXPECT_EQ(history.genereaza_diagrame({kArchive}), "");
    expectDay(3);
    EXPECT_EQ(valueAt(history.chart(0), 4, 3), 31);
    EXPECT_EQ(valueAt(history.chart(1), 5, 1), 77);
    EXPECT_EQ(history.pointText(1, 3, 2), "T6 = 60,02\r\n07.03.2026 00:00:02");

    history.unload();
    expectCleared();
}

TEST_F(HistoryDiagramsTest, WhatWasNotStoredIsAGap)
{
    jet::Assignments second = usualRecord(2);
    second.erase(second.begin() + 1, second.begin() + 4); // no date, no time, no Senzor1
    jet::Assignments third = usualRecord(3);
    third[1].second = jet::DateTime{-1};
    third[2].second = jet::DateTime{0.25};
    writeArchive(tabel::design(), {usualRecord(1), second, third});
    EXPECT_EQ(history.genereaza_diagrame({kArchive}), "");
    EXPECT_TRUE(std::isnan(valueAt(history.chart(0), 1, 2)));
    EXPECT_EQ(valueAt(history.chart(0), 2, 2), reading(2, 2));
    EXPECT_EQ(history.pointText(0, 2, 2), "T2 = 20,02\r\n00:00:00");
    EXPECT_TRUE(history.pointText(0, 2, 3).endsWith("29.12.1899 06:00:00"));
}

TEST_F(HistoryDiagramsTest, FailuresAreNumberedAndLeaveClearedCharts)
{
    using jet::ErrorCode;
    const auto tableWithout = [](const jet::Text &name) {
        jet::TableDesign table = tabel::design();
        std::erase_if(table.columns, [&](const auto &column) { return column.name == name; });
        return table;
    };
    const auto writeBytes = [this](const QByteArray &bytes) {
        QFile file(archive());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    jet::TableDesign other = tabel::design();
    other.name = u"Altul";
    jet::TableDesign texts = tabel::design();
    texts.columns[6] = {u"Senzor6", jet::ColumnType::Text, 20};
    struct Case {
        ErrorCode code;
        std::function<void()> prepare;
    };
    for (const Case &c :
         {Case{ErrorCode::FileNotFound, [] {}},
          {ErrorCode::NotADatabase, [&] { writeBytes({}); }},
          {ErrorCode::NotADatabase, [&] { writeBytes(QByteArray(8192, 'x')); }},
          {ErrorCode::NoSuchTable, [&] { writeArchive(other, {}); }},
          {ErrorCode::NoSuchItem, [&] { writeArchive(tableWithout(u"Senzor5"), {}); }},
          {ErrorCode::NoSuchItem, [&] { writeArchive(tableWithout(u"Ora"), {}); }},
          {ErrorCode::TypeConversion, [&] {
               writeArchive(texts, {{{u"Id", std::int32_t(1)}, {u"Senzor6", jet::Text(u"cald")}}});
           }}}) {
        QFile::remove(archive());
        c.prepare();
        EXPECT_EQ(failure(), static_cast<int>(c.code));
        expectCleared();
    }

    QFile::remove(archive());
    writeArchive(tabel::design(), {});
    EXPECT_EQ(failure(), 0) << "a day without lines";
    expectCleared();
    EXPECT_EQ(valueAt(history.chart(0), 5, 1), station.Diagrame[0].alarma_maxim);

    QFile::remove(archive());
    writeDay(400);
    EXPECT_EQ(failure(), 0);
    const auto lock = jet::makeSystemFiles()->openLock(
        std::filesystem::path(nativePath(archive())).replace_extension(".ldb"),
        jet::FileSystem::Access::Create);
    ASSERT_TRUE(lock->tryLock(jet::LockMode::Exclusive));
    EXPECT_EQ(failure(), static_cast<int>(ErrorCode::InUse));
    expectCleared();
}
