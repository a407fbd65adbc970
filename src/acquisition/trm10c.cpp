#include "acquisition/trm10c.h"
#include "platform/numeric_text.h"

static constexpr qsizetype kFieldSize = 10;

QByteArrayList trm10c::readCommands()
{
    const QByteArray lastChannel = QByteArray::number(kChannels).rightJustified(2, '0');
    return {"\033O 01\r\n", "\033T\r\n", "TS0\r\n", "FM0,01," + lastChannel + "\r\n"};
}

QByteArray trm10c::closeCommand()
{
    return "\033C 01\r\n";
}

trm10c::Values trm10c::channelValues(const QByteArray &reply)
{
    Values values{};
    qsizetype slotEnd = kHeaderSize;
    for (double &value : values) {
        slotEnd += kSlotSize;
        value = leadingNumber(QString::fromLatin1(reply.mid(slotEnd - kFieldSize, kFieldSize)));
    }
    return values;
}
