#include "platform/clock.h"
#include "platform/durable_file.h"
#include "platform/line_settings.h"
#include "platform/locale_date_text.h"
#include "platform/numeric_text.h"
#include "platform/runtime_error.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

TEST(NumericText, LeadingNumberReadsWhatCanContinueIt)
{
    const std::pair<const char *, double> cases[] = {
        {"      23.5", 23.5}, {"          ", 0}, {"12.3A", 12.3}, {"1 2.5", 12.5}, {"\t-\n4", -4},
        {"+.5", .5},          {"1e2", 100},      {"1e", 1},       {"1e+x", 1},     {"1,5", 1},
        {"--1", 0},           {".", 0},          {"1E-999", 0},   {"0012", 12},    {"1.2.3", 1.2}};
    for (const auto &[text, number] : cases)
        EXPECT_EQ(leadingNumber(QString::fromLatin1(text)), number) << text;
    EXPECT_EQ(leadingNumber(u"1E400"), 1e40) << "line noise must not end the program";
}

TEST(NumericText, TypedNumberIsTheWholeTextWithPointOrComma)
{
    const std::pair<const char *, double> cases[] = {
        {"12,5", 12.5},        {" -3 ", -3},           {"+1", 1},    {",5", .5}, {"5,", 5},
        {"\u00A01e3\r", 1000}, {"\u20097\u3000\t", 7}, {"1e-999", 0}};
    for (const auto &[text, number] : cases)
        EXPECT_EQ(typedNumber(QString::fromUtf8(text)), number) << text;
    for (const char *text : {"", " ", "a", "1.234,5", "1 2", "1\u00A02", "-", "1e", "1-", "12x",
                             "inf", "nan", "1e999", "-1E400"})
        EXPECT_FALSE(typedNumber(QString::fromUtf8(text))) << text;
    EXPECT_THROW(numberFromText(u"1e999"), RuntimeError);
}

TEST(NumericText, SixteenBitsRoundHalfToEvenAndOverflow)
{
    EXPECT_EQ(toInt16(2.5), 2);
    EXPECT_EQ(toInt16(3.5), 4);
    EXPECT_EQ(toInt16(-32768.4), -32768);
    for (const double number : {32767.5, -32769.0, 1e300})
        EXPECT_THROW(toInt16(number), RuntimeError) << number;
}

TEST(NumericText, DefaultTextHasFifteenDigits)
{
    const QLocale romanian(QLocale::Romanian);
    EXPECT_EQ(numberText(0.1 + 0.2, romanian), "0,3");
    EXPECT_EQ(numberText(1234567.5, romanian), "1234567,5");
    EXPECT_EQ(numberText(-0.0, romanian), "0");
    EXPECT_EQ(numberFromText(numberText(0.5, QLocale(QLocale::Persian))), 0.5);
    EXPECT_EQ(fileNumberText(121.000000000000014), "121");
    EXPECT_EQ(fileNumberText(1e15), "1E+15");
}

TEST(DateText, DefaultTextLeavesOutWhatIsZero)
{
    const QLocale romanian(QLocale::Romanian, QLocale::Romania);
    const QDate day(2006, 3, 7);
    EXPECT_EQ(dateTimeText(wallTime(day, QTime(9, 5, 1)), romanian), "07.03.2006 09:05:01");
    EXPECT_EQ(dateTimeText(wallTime(day, QTime(0, 0)), romanian), "07.03.2006");
    EXPECT_EQ(dateTimeText(zeroDateTime(), romanian), "00:00:00");
    EXPECT_EQ(timeText(QTime(9, 5, 1), QLocale(QLocale::Finnish)), "9.05.01");
}

TEST(SystemClock, GivesTheTimeOfTheWall)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "the environment does not choose the zone here";
#endif
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "EET-2"); // where the system counts in UTC any clock would do
    const double ahead = double(QDateTime::currentDateTimeUtc().secsTo(SystemClock().now()));
    EXPECT_EQ(std::lround(ahead / 3600), 2);
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
}

TEST(DateText, AMomentOfADatabaseIsOfTheCalendarOrZero)
{
    EXPECT_EQ(momentFromDays(38783.5), wallTime(QDate(2006, 3, 7), QTime(12, 0)));
    EXPECT_EQ(momentFromDays(-1.25), wallTime(QDate(1899, 12, 29), QTime(6, 0)));
    EXPECT_EQ(momentFromDays(2'958'465.5), wallTime(QDate(9999, 12, 31), QTime(12, 0)));
    EXPECT_EQ(momentFromDays(-657'434.5), wallTime(QDate(100, 1, 1), QTime(12, 0)));
    for (const double none : {1e300, -1e300, 2'958'466.0, -657'435.0, std::nan("")})
        EXPECT_EQ(momentFromDays(none), zeroDateTime()) << none;
}

TEST(LineSettings, ANumberNamesAPortOfTheSystem)
{
    EXPECT_NE(systemPortName(QStringLiteral("1")), "1");
}

TEST(DurableFile, IsCopiedWhole)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("day.mdb"));
    const QString copy = folder.filePath(QStringLiteral("archive.mdb"));
    const QByteArray day = QByteArray(1 << 20, 'a') + QByteArray(1 << 20, 'b') + "end";
    replaceFile(path, day);
    copyFile(path, copy);
    QFile copied(copy);
    ASSERT_TRUE(copied.open(QIODevice::ReadOnly));
    EXPECT_TRUE(copied.readAll() == day);
}
