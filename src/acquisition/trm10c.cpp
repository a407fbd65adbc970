#include "acquisition/trm10c.h"
#include "platform/numeric_text.h"

static constexpr qsizetype kFirstField = 39;
static constexpr qsizetype kSlotSize = 27;
static_assert(trm10c::kReplySize == 22 + qsizetype(trm10c::kChannels) * kSlotSize + 2);
static constexpr qsizetype kFieldSize = 10;

QByteArrayList trm10c::readCommands()
{
    return {"\033O 01\r\n", "\033T\r\n", "TS0\r\n", "FM0,01,06\r\n"};
}

QByteArray trm10c::closeCommand()
{
    return "\033C 01\r\n";
}

trm10c::Values trm10c::channelValues(const QByteArray &reply)
{
    Values values{};
    qsizetype at = kFirstField;
    for (double &value : values) {
        value = leadingNumber(QString::fromLatin1(reply.mid(at, kFieldSize)));
        at += kSlotSize;
    }
    return values;
}
